#include "layouts/BExcelExpEngLeaveListPeriodRpt.h"

#include "services/PeriodTexts.h"

namespace excelexp {
namespace {

constexpr LeaveTraits kTraits = {.financial = {.class_name = "BExcelExpEngLeaveListPeriodRpt",
                                               .records = EntityRecords::kByLevel,
                                               .records_operation = "PrintPayRecInfo",
                                               .lookup = {.plain_bank = BankKey::kNone}},
                                 .message_class = "BExcelExpEngLeaveListPeriodRpt",
                                 .derives_groups = true,
                                 .period_columns = 4};

}  // namespace

BExcelExpEngLeaveListPeriodRpt::BExcelExpEngLeaveListPeriodRpt(BExcelExpEngCore* core)
    : LeaveLayout(core, kTraits) {}

void BExcelExpEngLeaveListPeriodRpt::TakeGroup() {
  const PeriodKey period = PeriodOf(ExcelRptLayoutQry);
  new_period_ = !previous_ || previous_->year != period.year ||
                previous_->period_month != period.period_month || previous_->sub_period != period.sub_period;
  previous_ = period;
}

bool BExcelExpEngLeaveListPeriodRpt::PrintPayPeriodInfo() {
  if (!ReadGroupTexts()) return false;
  const PeriodKey period = PeriodOf(ExcelRptLayoutQry);
  if (new_period_ && !(PrintText(0, YearText(period.year)) &&
                       PrintText(1, PeriodText(project_.cycle_group_by, period.year, period.period_month)) &&
                       PrintText(2, SubPeriodText(period.sub_period)))) {
    return false;
  }
  return PrintText(3, period.pay_record_basis);
}

bool BExcelExpEngLeaveListPeriodRpt::PrintText(int column, const std::string& text) {
  cells_.WriteText(current_row_, current_col_ + column, text);
  return cells_.FormatAsFirst(current_row_, current_col_ + column, LeaveWhere("PrintPayPeriodInfo"));
}

}  // namespace excelexp
