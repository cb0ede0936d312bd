#include <cmath>

#include "platform/spreadsheet/formula/Calendar.h"
#include "platform/spreadsheet/formula/Call.h"

namespace excelexp::formula {
namespace {

Value MakeDate(Call& call) {
  return Value::Number(SerialOf(call.Whole(0), call.Whole(1), call.Whole(2)));
}

Value MakeTime(Call& call) {
  const double seconds = call.Whole(0) * 3600.0 + call.Whole(1) * 60.0 + call.Whole(2);
  if (seconds < 0.0) return Value::Error(ErrorCode::kNum);
  return Value::Number(std::fmod(seconds, 86400.0) / 86400.0);
}

template <int Date::*part>
Value PartOfDate(Call& call) {
  return Value::Number(DateOf(call.Number(0)).*part);
}

/// Hours, minutes or seconds: what is left of the day in that unit, within the next larger one.
template <int unit, int larger>
Value PartOfTime(Call& call) {
  const double serial = call.Number(0);
  if (serial < 0.0) return Value::Error(ErrorCode::kNum);
  const int part = SecondsOf(serial) % larger / unit;
  return Value::Number(part);
}

Value Weekday(Call& call) {
  const double serial = call.Number(0);
  const int kind = call.Whole(1, 1);
  if (serial < 0.0 || serial > kLastSerial + 1.0 || kind < 1 || kind > 3)
    return Value::Error(ErrorCode::kNum);
  const int from_sunday = DayOfWeek(serial);
  if (kind == 1) return Value::Number(from_sunday);
  const int from_monday = (from_sunday + 5) % 7;
  return Value::Number(kind == 2 ? from_monday + 1 : from_monday);
}

bool IsLastOfFebruary(const Date& date) {
  return date.month == 2 && date.day == DaysInMonth(date.year, 2);
}

/// Days of a year of twelve months of 30 days; the method of the USA unless the third argument is TRUE.
Value Days360(Call& call) {
  Date from = DateOf(call.Number(0));
  Date to = DateOf(call.Number(1));
  const bool european = call.Logical(2, false);
  if (european) {
    from.day = std::min(from.day, 30);
    to.day = std::min(to.day, 30);
  } else {
    if (from.day == 31 || IsLastOfFebruary(from)) from.day = 30;
    if (to.day == 31 && from.day == 30) to.day = 30;
  }
  return Value::Number((to.year - from.year) * 360.0 + (to.month - from.month) * 30.0 + (to.day - from.day));
}

/// The month that lies `call`'s second argument after the date's.
Date ShiftedMonth(Call& call, Date& date) {
  date = DateOf(call.Number(0));
  return DateOf(SerialOf(date.year, date.month + std::int64_t{call.Whole(1)}, 1));
}

Value AddMonths(Call& call) {
  Date date;
  const Date month = ShiftedMonth(call, date);
  return Value::Number(
      SerialOf(month.year, month.month, std::min(date.day, DaysInMonth(month.year, month.month))));
}

Value EndOfMonth(Call& call) {
  Date date;
  const Date month = ShiftedMonth(call, date);
  return Value::Number(SerialOf(month.year, month.month, DaysInMonth(month.year, month.month)));
}

Value DateValue(Call& call) {
  if (call[0].type != ValueType::kText) return Value::Error(ErrorCode::kValue);
  const std::string_view text = call[0].text;
  const double serial = call.Number(0);
  // A number or a time alone is no date.
  if (text.find('-', 1) == std::string::npos) return Value::Error(ErrorCode::kValue);
  return Value::Number(std::floor(serial));
}

constexpr Implementation kFunctions[] = {
    {"DATE", Arguments::kScalars, MakeDate},
    {"DATEVALUE", Arguments::kScalars, DateValue},
    {"DAY", Arguments::kScalars, PartOfDate<&Date::day>},
    {"DAYS360", Arguments::kScalars, Days360},
    {"EDATE", Arguments::kScalars, AddMonths},
    {"EOMONTH", Arguments::kScalars, EndOfMonth},
    {"HOUR", Arguments::kScalars, PartOfTime<3600, 86400>},
    {"MINUTE", Arguments::kScalars, PartOfTime<60, 3600>},
    {"MONTH", Arguments::kScalars, PartOfDate<&Date::month>},
    {"NOW", Arguments::kScalars, [](Call& call) { return Value::Number(call.Cells().Now().days); }},
    {"SECOND", Arguments::kScalars, PartOfTime<1, 60>},
    {"TIME", Arguments::kScalars, MakeTime},
    {"TODAY", Arguments::kScalars,
     [](Call& call) { return Value::Number(std::floor(call.Cells().Now().days)); }},
    {"WEEKDAY", Arguments::kScalars, Weekday},
    {"YEAR", Arguments::kScalars, PartOfDate<&Date::year>},
};

}  // namespace

std::span<const Implementation> DateFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
