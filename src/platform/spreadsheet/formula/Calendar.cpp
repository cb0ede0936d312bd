#include "platform/spreadsheet/formula/Calendar.h"

#include <chrono>
#include <cmath>

#include "platform/spreadsheet/formula/Value.h"

namespace excelexp::formula {
namespace {

constexpr std::chrono::sys_days kDayZero = std::chrono::year{1899} / 12 / 30;
/// From here on serials are days since kDayZero; before, the calendar is one short of the 29 February 1900.
constexpr std::int64_t kMarch1900 = 61;
constexpr std::int64_t kPhantomDay = 60;

std::int64_t FirstOfMonth(int year, int month) {
  const std::chrono::sys_days first = std::chrono::year{year} / month / 1;
  const std::int64_t days = (first - kDayZero).count();
  return days < kMarch1900 ? days - 1 : days;
}

}  // namespace

Date DateOf(double serial) {
  if (!(serial >= 0.0 && serial < kLastSerial + 1.0)) throw FormulaError{ErrorCode::kNum};
  const auto days = static_cast<std::int64_t>(serial);
  if (days == 0) return {};
  if (days == kPhantomDay) return {1900, 2, 29};
  const std::chrono::year_month_day date{kDayZero + std::chrono::days{days < kPhantomDay ? days + 1 : days}};
  return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day()))};
}

double SerialOf(std::int64_t year, std::int64_t month, std::int64_t day) {
  constexpr std::int64_t kFar = 10'000'000;
  if (year < 0 || year > 9999 || std::abs(month) > kFar || std::abs(day) > kFar)
    throw FormulaError{ErrorCode::kNum};
  if (year < 1900) year += 1900;
  const std::int64_t months = year * 12 + month - 1;
  const std::int64_t real_year = months / 12;
  if (months < 0 || real_year < 1899 || real_year > 9999) throw FormulaError{ErrorCode::kNum};
  const auto serial = static_cast<double>(
      FirstOfMonth(static_cast<int>(real_year), static_cast<int>(months % 12) + 1) + day - 1);
  if (serial < 0.0 || serial > kLastSerial) throw FormulaError{ErrorCode::kNum};
  return serial;
}

std::optional<double> SerialOfExisting(const Date& date) {
  const bool exists = date.year >= 1900 && date.year <= 9999 && date.month >= 1 && date.month <= 12 &&
                      date.day >= 1 && date.day <= DaysInMonth(date.year, date.month);
  if (!exists) return std::nullopt;
  return SerialOf(date.year, date.month, date.day);
}

int DaysInMonth(int year, int month) {
  if (year == 1900 && month == 2) return 29;
  const std::chrono::year_month_day_last last{
      std::chrono::year{year}, std::chrono::month_day_last{std::chrono::month{static_cast<unsigned>(month)}}};
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

int DayOfWeek(double serial) {
  const auto days = static_cast<std::int64_t>(std::floor(serial));
  return static_cast<int>((days + 6) % 7) + 1;
}

int SecondsOf(double serial) {
  const double fraction = serial - std::floor(serial);
  return static_cast<int>(std::llround(fraction * 86400.0) % 86400);
}

}  // namespace excelexp::formula
