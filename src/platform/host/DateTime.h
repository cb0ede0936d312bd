#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace excelexp {

/// A moment as a day count: whole days since 1899-12-30, the time of day as the fraction.
/// 0 is the null date. Moments before 1899-12-30 have a negative whole part; their fraction still counts
/// forward from midnight (-1.25 is 1899-12-29 06:00).
struct DateTime {
  double days = 0.0;

  friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// A moment taken apart; the proleptic Gregorian calendar.
struct CivilTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

/// Throws std::invalid_argument, naming the values, for a date that does not exist (year 1 to 9999).
DateTime EncodeDate(int year, int month, int day);
DateTime EncodeDateTime(const CivilTime& civil);
CivilTime DecodeDateTime(DateTime moment);

/// Reads 'yyyy-mm-dd', 'hh:mm[:ss[.fff]]' or both with a blank or 'T' between them; surrounding blanks are
/// ignored. Throws std::invalid_argument, quoting the text, for anything else.
DateTime ParseDateTime(std::string_view text);

}  // namespace excelexp
