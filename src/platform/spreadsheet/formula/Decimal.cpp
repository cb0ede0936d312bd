#include "platform/spreadsheet/formula/Decimal.h"

#include <charconv>
#include <cmath>
#include <string>

namespace excelexp::formula {
namespace {

constexpr int kSignificant = 15;

/// A positive number 0.d1d2d3... * 10^exponent.
struct Digits {
  std::string text;
  int exponent = 0;

  /// Keeps `count` digits, adding one to the last of them when `up`.
  void Cut(int count, bool up) {
    text.resize(static_cast<std::size_t>(count));
    if (!up) return;
    for (std::size_t i = text.size(); i-- > 0;) {
      if (++text[i] <= '9') return;
      text[i] = '0';
    }
    text.insert(text.begin(), '1');
    ++exponent;
  }

  double Value() const {
    const std::string number = "0." + text + "e" + std::to_string(exponent);
    double value = 0.0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return value;
  }
};

/// The digits of the shortest text that reads back as the value, at most 15 of them.
Digits DigitsOf(double positive) {
  char buffer[40];
  const char* const end =
      std::to_chars(buffer, buffer + sizeof buffer, positive, std::chars_format::scientific).ptr;
  Digits digits;
  const char* place = buffer;
  for (; *place != 'e'; ++place) {
    if (*place != '.') digits.text += *place;
  }
  if (*++place == '+') ++place;
  std::from_chars(place, end, digits.exponent);
  ++digits.exponent;
  if (digits.text.size() > kSignificant) digits.Cut(kSignificant, digits.text[kSignificant] >= '5');
  return digits;
}

enum class Direction { kHalfAway, kAway, kToward };

double RoundPositive(double value, int decimals, Direction direction) {
  Digits digits = DigitsOf(value);
  const int kept = digits.exponent + decimals;
  const auto size = static_cast<int>(digits.text.size());
  if (kept >= kSignificant) return value;
  if (kept >= size) return digits.Value();
  if (kept < 0) {
    digits.text = "0";
    if (direction != Direction::kAway) return 0.0;
    return Digits{"1", 1 - decimals}.Value();
  }
  const bool rest = digits.text.find_first_not_of('0', static_cast<std::size_t>(kept)) != std::string::npos;
  const bool half = digits.text[static_cast<std::size_t>(kept)] >= '5';
  digits.Cut(kept, direction == Direction::kAway ? rest : direction == Direction::kHalfAway && half);
  return digits.text.empty() ? 0.0 : digits.Value();
}

double Round(double value, int digits, Direction direction) {
  if (value == 0.0 || !std::isfinite(value)) return value;
  return std::copysign(RoundPositive(std::fabs(value), digits, direction), value);
}

}  // namespace

double RoundHalfAway(double value, int digits) {
  return digits == 0 ? std::round(value) : Round(value, digits, Direction::kHalfAway);
}

double RoundAwayFromZero(double value, int digits) {
  return Round(value, digits, Direction::kAway);
}

double RoundTowardZero(double value, int digits) {
  return Round(value, digits, Direction::kToward);
}

double Floor15(double value) {
  return value < 0.0 ? RoundAwayFromZero(value, 0) : RoundTowardZero(value, 0);
}

bool NearlyEqual(double a, double b) {
  if (a == b) return true;
  const double difference = std::fabs(a - b);
  const double smaller = std::fmin(std::fabs(a), std::fabs(b));
  // Whole numbers are exact: neighbours beyond 2^48 differ.
  const bool whole =
      std::fabs(a) < 0x1p53 && std::fabs(b) < 0x1p53 && a == std::trunc(a) && b == std::trunc(b);
  return !whole && difference < smaller * 0x1p-48;
}

double NearlyAdd(double a, double b) {
  const bool opposite = (a < 0.0) != (b < 0.0);
  return opposite && NearlyEqual(a, -b) ? 0.0 : a + b;
}

}  // namespace excelexp::formula
