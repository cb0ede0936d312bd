#include "services/PeriodTexts.h"

#include "platform/host/Format.h"

namespace excelexp {

std::string YearText(int year) {
  return "Year " + std::to_string(year);
}

std::string PeriodText(std::string_view cycle_group_by, int year, int period) {
  if (period == 0) return "";
  if (cycle_group_by == "PeriodGrpPd" || cycle_group_by == "PeriodGrpSubPeriod") {
    return "Period " + std::to_string(period);
  }
  return cycle_group_by == "CalenGrpMth" ? ShortMonth(year, period) : "";
}

std::string SubPeriodText(int sub_period) {
  return sub_period == 0 ? "" : "Sub Period " + std::to_string(sub_period);
}

std::string ShortMonth(int year, int month) {
  return FormatDateTime("mmm", EncodeDate(year, month, 1));
}

}  // namespace excelexp
