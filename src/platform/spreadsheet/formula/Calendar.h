#pragma once

#include <cstdint>
#include <optional>

namespace excelexp::formula {

/// A date of the 1900 system, which has a 29 February 1900 (serial 60) and a day 0 (0 January 1900).
struct Date {
  int year = 1900;
  int month = 1;
  int day = 0;
};

/// The last day that the application knows, 9999-12-31.
inline constexpr double kLastSerial = 2958465.0;

/// The date of a serial day number, whose fraction does not count; throws FormulaError (#NUM!) outside 0 to
/// kLastSerial.
Date DateOf(double serial);

/// The serial of a date whose month and day may run over or under: month 14 is February of the next year, day
/// 0 the last of the month before. Years below 1900 count from 1900. Throws FormulaError (#NUM!) outside the
/// calendar.
double SerialOf(std::int64_t year, std::int64_t month, std::int64_t day);

/// Nothing for a date that does not exist.
std::optional<double> SerialOfExisting(const Date& date);

/// 28 to 31; 29 for February 1900 as well.
int DaysInMonth(int year, int month);

/// 1 for Sunday to 7 for Saturday, as the 1900 system counts them.
int DayOfWeek(double serial);

/// Seconds since midnight, rounded to whole ones; below 86,400.
int SecondsOf(double serial);

}  // namespace excelexp::formula
