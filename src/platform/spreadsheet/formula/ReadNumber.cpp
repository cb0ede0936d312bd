#include <algorithm>
#include <charconv>

#include "platform/spreadsheet/formula/Calendar.h"
#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/Value.h"

namespace excelexp::formula {
namespace {

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool Take(std::string_view& text, char c) {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

/// Digits only; how many there were.
int TakeDigits(std::string_view& text, int& number) {
  int count = 0;
  for (number = 0; count < 9 && !text.empty() && IsDigit(text.front()); ++count, text.remove_prefix(1)) {
    number = number * 10 + (text.front() - '0');
  }
  return count;
}

/// The whole part with its commas: the first group has one to three digits, each later one three.
bool TakeGroups(std::string_view text, std::string& digits) {
  bool first = true;
  for (;;) {
    std::size_t length = 0;
    while (length < text.size() && IsDigit(text[length])) ++length;
    const bool last = length == text.size();
    if (!last && text[length] != ',') return false;
    if (first ? (!last && (length < 1 || length > 3)) : length != 3) return false;
    digits += text.substr(0, length);
    if (last) return true;
    text.remove_prefix(length + 1);
    first = false;
  }
}

/// "1,234.5E-3" without a sign.
std::optional<double> ReadUnsigned(std::string_view text) {
  const std::size_t whole_end = std::min(text.find_first_not_of("0123456789,"), text.size());
  std::string plain;
  if (!TakeGroups(text.substr(0, whole_end), plain)) return std::nullopt;
  plain += text.substr(whole_end);
  if (plain.empty() ||
      !(IsDigit(plain.front()) || (plain.front() == '.' && plain.size() > 1 && IsDigit(plain[1])))) {
    return std::nullopt;
  }
  double number = 0.0;
  const char* const end = plain.data() + plain.size();
  const auto [stop, error] = std::from_chars(plain.data(), end, number);
  if (stop != end || error != std::errc{}) return std::nullopt;
  return number;
}

std::optional<double> ReadPlain(std::string_view text) {
  bool negative = false;
  if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
    text = WithoutBlanks(text.substr(1, text.size() - 2));
    negative = true;
  } else if (Take(text, '-')) {
    negative = true;
  } else {
    Take(text, '+');
  }
  Take(text, '$');
  double factor = 1.0;
  if (!text.empty() && text.back() == '%') {
    text.remove_suffix(1);
    factor = 0.01;
  }
  const std::optional<double> number = ReadUnsigned(WithoutBlanks(text));
  if (!number) return std::nullopt;
  return (negative ? -*number : *number) * factor;
}

/// "h:mm", "h:mm:ss", with AM or PM; the fraction of a day.
std::optional<double> ReadTime(std::string_view text) {
  int hours = 0;
  int minutes = 0;
  int seconds = 0;
  if (TakeDigits(text, hours) == 0 || !Take(text, ':') || TakeDigits(text, minutes) == 0 || minutes > 59) {
    return std::nullopt;
  }
  if (Take(text, ':') && (TakeDigits(text, seconds) == 0 || seconds > 59)) return std::nullopt;
  const std::string half = Capitals(WithoutBlanks(text));
  if (half == "AM" || half == "PM") {
    if (hours < 1 || hours > 12) return std::nullopt;
    hours = hours % 12 + (half == "PM" ? 12 : 0);
  } else if (!half.empty()) {
    return std::nullopt;
  }
  return (hours * 3600.0 + minutes * 60.0 + seconds) / 86400.0;
}

/// "yyyy-mm-dd", with a time after a blank or not.
std::optional<double> ReadIsoDate(std::string_view text) {
  Date date;
  if (TakeDigits(text, date.year) != 4 || !Take(text, '-') || TakeDigits(text, date.month) == 0 ||
      !Take(text, '-') || TakeDigits(text, date.day) == 0) {
    return std::nullopt;
  }
  const std::optional<double> day = SerialOfExisting(date);
  if (!day || text.empty()) return day;
  if (!Take(text, ' ') && !Take(text, 'T')) return std::nullopt;
  const std::optional<double> time = ReadTime(text);
  if (!time) return std::nullopt;
  return *day + *time;
}

/// Digits beside a date separator or a month's name: whether that is a date depends on the language.
bool MayBeDate(std::string_view text) {
  bool digit = false;
  bool separator = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    digit = digit || IsDigit(text[i]);
    const bool between = i > 0 && i + 1 < text.size() && IsDigit(text[i - 1]) && IsDigit(text[i + 1]);
    separator = separator || (between && (text[i] == '/' || text[i] == '-' || text[i] == '.'));
  }
  if (!digit) return false;
  if (separator) return true;
  const std::string capitals = Capitals(text);
  for (const char* month :
       {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"}) {
    if (capitals.find(month) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

std::optional<double> ReadNumber(std::string_view text) {
  text = WithoutBlanks(text);
  if (text.empty()) return std::nullopt;
  for (const auto read : {ReadPlain, ReadIsoDate, ReadTime}) {
    if (const std::optional<double> number = read(text)) return number;
  }
  if (MayBeDate(text)) throw UnknownResult{};
  return std::nullopt;
}

}  // namespace excelexp::formula
