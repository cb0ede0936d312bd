#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// "Year 2024".
std::string YearText(int year);

/// The period of a heading by the project's `CycleGroupBy`: "Period 3" for "PeriodGrpPd" and
/// "PeriodGrpSubPeriod", "Mar" for "CalenGrpMth"; "" for a period of 0 and for any other grouping. Throws
/// std::invalid_argument for a month that does not exist.
std::string PeriodText(std::string_view cycle_group_by, int year, int period);

/// "Sub Period 2"; "" for 0.
std::string SubPeriodText(int sub_period);

/// The short month name of a month: "Mar". Throws std::invalid_argument for a month that does not exist.
std::string ShortMonth(int year, int month);

}  // namespace excelexp
