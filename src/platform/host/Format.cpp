#include "platform/host/Format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <vector>

namespace excelexp {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};

/// With leading zeros up to the width.
void AppendPadded(std::string& text, int value, std::size_t width) {
  std::array<char, 12> digits;
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  const auto count = static_cast<std::size_t>(result.ptr - digits.data());
  if (count < width) text.append(width - count, '0');
  text.append(digits.data(), count);
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// One token of a date pattern: the letter and how often it stands there.
void AppendDateToken(std::string& text, char letter, std::size_t count, const CivilTime& civil) {
  switch (letter) {
    case 'd':
      return AppendPadded(text, civil.day, count);
    case 'm':
      if (count < 3) return AppendPadded(text, civil.month, count);
      text += kMonths[static_cast<std::size_t>(civil.month - 1)].substr(0, count == 3 ? 3 : 99);
      return;
    case 'y':
      return count > 2 ? AppendPadded(text, civil.year, 4) : AppendPadded(text, civil.year % 100, 2);
    case 'h':
      return AppendPadded(text, civil.hour, count);
    case 'n':
      return AppendPadded(text, civil.minute, count);
    case 's':
      return AppendPadded(text, civil.second, count);
    default:
      return AppendPadded(text, civil.millisecond, count);
  }
}

/// A decimal number taken apart: value = 0.digits x 10^point.
struct Decimal {
  std::string digits;
  int point = 0;
};

Decimal ShortestDigits(double magnitude) {
  std::array<char, 64> buffer{};
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, std::chars_format::scientific);
  const std::string_view text(buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data()));
  const std::size_t exponent_mark = text.find('e');
  Decimal decimal;
  for (const char c : text.substr(0, exponent_mark)) {
    if (c != '.') decimal.digits += c;
  }
  int exponent = 0;
  const std::string_view exponent_text =
      text.substr(exponent_mark + (text[exponent_mark + 1] == '+' ? 2 : 1));
  std::from_chars(exponent_text.data(), exponent_text.data() + exponent_text.size(), exponent);
  decimal.point = exponent + 1;
  return decimal;
}

/// Rounds half away from zero to that many decimals; what is left is padded with zeros up to them.
void RoundTo(Decimal& decimal, int decimals) {
  const int keep = decimal.point + decimals;
  if (keep < 0) {
    decimal = {"", -decimals};
  } else if (keep < static_cast<int>(decimal.digits.size())) {
    const bool up = decimal.digits[static_cast<std::size_t>(keep)] >= '5';
    decimal.digits.resize(static_cast<std::size_t>(keep));
    int at = keep - 1;
    for (; up && at >= 0; --at) {
      char& digit = decimal.digits[static_cast<std::size_t>(at)];
      if (digit != '9') {
        ++digit;
        break;
      }
      digit = '0';
    }
    if (up && at < 0) {
      decimal.digits.insert(decimal.digits.begin(), '1');
      ++decimal.point;
    }
  }
}

/// What a number section asks for.
struct NumberSection {
  std::string prefix;
  std::string suffix;
  int min_integer_digits = 0;
  int min_decimals = 0;
  int max_decimals = 0;
  bool grouped = false;
};

NumberSection ParseNumberSection(std::string_view pattern) {
  NumberSection section;
  bool seen_digit = false;
  bool after_point = false;
  for (const char c : pattern) {
    if (c == '0' || c == '#') {
      seen_digit = true;
      if (after_point) {
        ++section.max_decimals;
        if (c == '0') section.min_decimals = section.max_decimals;
      } else if (c == '0' || section.min_integer_digits > 0) {
        ++section.min_integer_digits;
      }
    } else if (c == '.') {
      after_point = true;
    } else if (c == ',') {
      section.grouped = true;
    } else {
      (seen_digit ? section.suffix : section.prefix) += c;
    }
  }
  return section;
}

std::string RenderNumber(const NumberSection& section, const Decimal& decimal) {
  const auto digit_at = [&decimal](int position) {  // 0 is the first decimal, -1 the ones
    const int index = decimal.point + position;
    return index >= 0 && index < static_cast<int>(decimal.digits.size())
               ? decimal.digits[static_cast<std::size_t>(index)]
               : '0';
  };
  std::string integer;
  for (int i = std::max(decimal.point, section.min_integer_digits); i >= 1; --i) {
    integer += digit_at(-i);
    if (section.grouped && i > 1 && (i - 1) % 3 == 0) integer += ',';
  }
  std::string decimals;
  for (int i = 0; i < section.max_decimals; ++i) decimals += digit_at(i);
  while (static_cast<int>(decimals.size()) > section.min_decimals && decimals.back() == '0')
    decimals.pop_back();
  return section.prefix + integer + (decimals.empty() ? "" : "." + decimals) + section.suffix;
}

bool IsZero(const Decimal& decimal) {
  return std::all_of(decimal.digits.begin(), decimal.digits.end(), [](char c) { return c == '0'; });
}

std::string& ShortDatePattern() {
  static std::string pattern = "dd/mm/yyyy";
  return pattern;
}

}  // namespace

std::string FormatDateTime(std::string_view pattern, DateTime moment) {
  const CivilTime civil = DecodeDateTime(moment);
  std::string text;
  bool after_hour = false;
  for (std::size_t i = 0; i < pattern.size();) {
    const char letter = Lower(pattern[i]);
    if (pattern[i] == '\'' || pattern[i] == '"') {
      const std::size_t end = std::min(pattern.find(pattern[i], i + 1), pattern.size());
      text += pattern.substr(i + 1, end - i - 1);
      i = end + 1;
    } else if (std::string_view("dmyhnsz").find(letter) != std::string_view::npos) {
      std::size_t end = i;
      while (end < pattern.size() && Lower(pattern[end]) == letter) ++end;
      AppendDateToken(text, letter == 'm' && after_hour ? 'n' : letter, end - i, civil);
      after_hour = letter == 'h';
      i = end;
    } else {
      text += pattern[i++];
    }
  }
  return text;
}

std::string FormatFloat(std::string_view pattern, double value) {
  std::vector<std::string_view> sections;
  for (std::size_t start = 0; start <= pattern.size();) {
    const std::size_t end = std::min(pattern.find(';', start), pattern.size());
    sections.push_back(pattern.substr(start, end - start));
    start = end + 1;
  }
  if (!std::isfinite(value)) return std::isnan(value) ? "NAN" : value > 0 ? "INF" : "-INF";

  const bool own_negative = sections.size() > 1 && !sections[1].empty();
  NumberSection section = ParseNumberSection(value < 0 && own_negative ? sections[1] : sections[0]);
  Decimal decimal = ShortestDigits(std::abs(value));
  RoundTo(decimal, section.max_decimals);
  if (IsZero(decimal)) {
    decimal = {};
    section = ParseNumberSection(sections.size() > 2 && !sections[2].empty() ? sections[2] : sections[0]);
  } else if (value < 0 && !own_negative) {
    section.prefix.insert(0, "-");
  }
  return RenderNumber(section, decimal);
}

std::string FloatToText(double value) {
  std::array<char, 64> buffer{};
  const double magnitude = std::abs(value);
  const bool fixed = value == 0 || (magnitude >= 1e-5 && magnitude < 1e15);
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value == 0 ? 0.0 : value,
                                    fixed ? std::chars_format::fixed : std::chars_format::general);
  return {buffer.data(), result.ptr};
}

std::string Joined(std::initializer_list<std::string_view> pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  std::string text;
  text.reserve(size);
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

std::string ShortDateFormat() {
  return ShortDatePattern();
}

void SetShortDateFormat(std::string pattern) {
  ShortDatePattern() = std::move(pattern);
}

}  // namespace excelexp
