#include "platform/host/DateTime.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <stdexcept>

namespace excelexp {
namespace {

constexpr std::int64_t kMillisecondsPerDay = 86'400'000;
constexpr std::chrono::sys_days kDayZero = std::chrono::year{1899} / 12 / 30;

[[noreturn]] void FailDate(int year, int month, int day) {
  throw std::invalid_argument("there is no date " + std::to_string(year) + "-" + std::to_string(month) + "-" +
                              std::to_string(day));
}

bool TakeNumber(std::string_view& text, std::size_t digits, int& value) {
  if (text.size() < digits) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + digits, value);
  if (error != std::errc{} || end != text.data() + digits || text.front() == '-') return false;
  text.remove_prefix(digits);
  return true;
}

bool Take(std::string_view& text, char c) {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

bool TakeDate(std::string_view& text, CivilTime& civil) {
  return TakeNumber(text, 4, civil.year) && Take(text, '-') && TakeNumber(text, 2, civil.month) &&
         Take(text, '-') && TakeNumber(text, 2, civil.day);
}

bool TakeTime(std::string_view& text, CivilTime& civil) {
  if (!TakeNumber(text, 2, civil.hour) || !Take(text, ':') || !TakeNumber(text, 2, civil.minute))
    return false;
  if (!Take(text, ':')) return true;
  if (!TakeNumber(text, 2, civil.second)) return false;
  if (!Take(text, '.')) return true;
  std::size_t digits = 0;
  for (int scale = 100; !text.empty() && text.front() >= '0' && text.front() <= '9'; scale /= 10, ++digits) {
    civil.millisecond += (text.front() - '0') * scale;
    text.remove_prefix(1);
  }
  return digits > 0;
}

}  // namespace

DateTime EncodeDate(int year, int month, int day) {
  const std::chrono::year_month_day date{std::chrono::year{year},
                                         std::chrono::month{static_cast<unsigned>(month)},
                                         std::chrono::day{static_cast<unsigned>(day)}};
  if (year < 1 || year > 9999 || month < 1 || day < 1 || !date.ok()) FailDate(year, month, day);
  return {static_cast<double>((std::chrono::sys_days{date} - kDayZero).count())};
}

DateTime EncodeDateTime(const CivilTime& civil) {
  const double day = EncodeDate(civil.year, civil.month, civil.day).days;
  if (civil.hour < 0 || civil.hour > 23 || civil.minute < 0 || civil.minute > 59 || civil.second < 0 ||
      civil.second > 59 || civil.millisecond < 0 || civil.millisecond > 999) {
    throw std::invalid_argument("there is no time " + std::to_string(civil.hour) + ":" +
                                std::to_string(civil.minute) + ":" + std::to_string(civil.second) + "." +
                                std::to_string(civil.millisecond));
  }
  const std::int64_t time = ((civil.hour * 60 + civil.minute) * 60 + civil.second) * 1000 + civil.millisecond;
  const double fraction = static_cast<double>(time) / static_cast<double>(kMillisecondsPerDay);
  return {day < 0 ? day - fraction : day + fraction};
}

CivilTime DecodeDateTime(DateTime moment) {
  double whole = std::trunc(moment.days);
  std::int64_t time = std::llround(std::abs(moment.days - whole) * static_cast<double>(kMillisecondsPerDay));
  if (time == kMillisecondsPerDay) {
    time = 0;
    whole += 1;
  }
  const std::chrono::year_month_day date{kDayZero + std::chrono::days{static_cast<int>(whole)}};
  CivilTime civil;
  civil.year = static_cast<int>(date.year());
  civil.month = static_cast<int>(static_cast<unsigned>(date.month()));
  civil.day = static_cast<int>(static_cast<unsigned>(date.day()));
  civil.millisecond = static_cast<int>(time % 1000);
  civil.second = static_cast<int>(time / 1000 % 60);
  civil.minute = static_cast<int>(time / 60'000 % 60);
  civil.hour = static_cast<int>(time / 3'600'000);
  return civil;
}

DateTime ParseDateTime(std::string_view text) {
  std::string_view rest = text;
  while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
  while (!rest.empty() && rest.back() == ' ') rest.remove_suffix(1);
  CivilTime civil;
  const bool has_date = rest.size() > 4 && rest[4] == '-';
  bool good = !has_date || TakeDate(rest, civil);
  if (good && has_date && !rest.empty()) good = Take(rest, ' ') || Take(rest, 'T');
  if (good && (!has_date || !rest.empty())) good = TakeTime(rest, civil);
  if (!good || !rest.empty())
    throw std::invalid_argument("'" + std::string(text) + "' is not a date or time");
  return EncodeDateTime(civil);
}

}  // namespace excelexp
