#pragma once

#include <chrono>

#include "demo/DemoRandom.h"
#include "demo/DemoTable.h"

namespace excelexp {

/// The year whose twelve months are paid; a leap year, so that 29 February is an ordinary day of the demo.
inline constexpr int kDemoYear = 2024;

inline DemoDay DayOf(int year, int month, int day) {
  return std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) /
         std::chrono::day(static_cast<unsigned>(day));
}
inline DemoDay FirstDay(int year, int month) {
  return DayOf(year, month, 1);
}
inline DemoDay LastDay(int year, int month) {
  return std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) / std::chrono::last;
}

/// The same day some months later; for a day that the month does not have, its last.
inline DemoDay MonthsLater(DemoDay day, int months) {
  const std::chrono::year_month_day date = std::chrono::year_month_day(day) + std::chrono::months(months);
  return date.ok() ? DemoDay(date) : DemoDay(date.year() / date.month() / std::chrono::last);
}

/// A day of the years given; the 29th and later are nobody's.
inline DemoDay DrawDay(DemoRandom& random, int first_year, int last_year) {
  const int year = random.Between(first_year, last_year);
  const int month = random.Between(1, 12);
  return DayOf(year, month, random.Between(1, 28));
}

}  // namespace excelexp
