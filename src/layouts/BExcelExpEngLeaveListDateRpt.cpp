#include "layouts/BExcelExpEngLeaveListDateRpt.h"

#include <stdexcept>

#include "platform/host/CommonLibrary.h"
#include "platform/host/Format.h"

namespace excelexp {
namespace {

// Below ExecuteOperation the messages name the class that this listing once was part of.
constexpr LeaveTraits kTraits = {.financial = {.class_name = "BExcelExpEngLeaveListDateRpt",
                                               .records = EntityRecords::kByLevel,
                                               .records_operation = "PrintPayRecInfo",
                                               .lookup = {.plain_bank = BankKey::kLookUp}},
                                 .message_class = "BExcelExpEngLeaveSumRpt",
                                 .derives_groups = false,
                                 .period_columns = 1};

}  // namespace

BExcelExpEngLeaveListDateRpt::BExcelExpEngLeaveListDateRpt(BExcelExpEngCore* core)
    : LeaveLayout(core, kTraits) {}

bool BExcelExpEngLeaveListDateRpt::PrintBlockHeading() {
  if (!AtFirstEntity()) return true;
  current_col_ = core_->LastPrintedCol;
  return PrintAsOfDateInfo();
}

bool BExcelExpEngLeaveListDateRpt::PrintAsOfDateInfo() {
  const OperationName where = LeaveWhere("PrintPayPeriodInfo");
  core_->WriteBanner(Memo::kInternal, {"    PRINT PAY PERIOD INFORMATION PROCESSING     "});
  if (!cells_.OpenTitleScheme(where)) return false;
  const PeriodKey day = PeriodOf(ExcelRptLayoutQry);
  std::string date;
  try {
    date = FormatDateTime(FGetDBDateFormat(), EncodeDate(day.year, day.period_month, day.sub_period));
  } catch (const std::invalid_argument& error) {
    return Fail(where, "The As Of Date is wrong: " + std::string(error.what()) + ".");
  }
  cells_.WriteText(current_row_ - 5, current_col_, "As Of Date 1 : " + date);
  return cells_.FormatAsFirst(current_row_ - 5, current_col_, where);
}

bool BExcelExpEngLeaveListDateRpt::PrintPayPeriodInfo() {
  if (!ReadGroupTexts()) return false;
  cells_.WriteText(current_row_, current_col_, PeriodOf(ExcelRptLayoutQry).pay_record_basis);
  return cells_.FormatAsFirst(current_row_, current_col_, LeaveWhere("PrintPayPeriodInfo"));
}

}  // namespace excelexp
