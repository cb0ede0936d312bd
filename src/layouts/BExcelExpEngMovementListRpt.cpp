#include "layouts/BExcelExpEngMovementListRpt.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "platform/host/Format.h"

namespace excelexp {
namespace {

constexpr FinancialTraits kTraits = {
    .class_name = "BExcelExpEngMovementListRpt",
    .records = EntityRecords::kAlwaysAll,
    .records_operation = "PrintPayRecInfo",
    .lookup = {.has_pay_record_basis = false, .plain_bank = BankKey::kLookUp}};

constexpr std::array<std::string_view, 5> kComponents = {"PaySystem", "BankRecord", "LeaveSystem",
                                                         "LeaveCareerSystem", "Movement"};

constexpr ColumnWalk kWalk = {.operation = "PrintFinancialData",
                              .banner = "     PRINT FINANCIAL INFORMATION PROCESSING     ",
                              .component_groupings = kComponents};

}  // namespace

BExcelExpEngMovementListRpt::BExcelExpEngMovementListRpt(BExcelExpEngCore* core)
    : ListingLayout(core, kTraits) {
  value_style_.integer_format = "#,0;-#,0";
}

bool BExcelExpEngMovementListRpt::ExecuteOperation() {
  const std::string options =
      "SELECT * FROM ExcelWSItemRptOpts WHERE WkSheetItemSysId = " + std::to_string(core_->ExcelWSItemSysId);
  if (!ReadReport() || !ReadProject() || !OpenRecords() || !OpenPeriods(options)) return false;
  if (!HasPeriods() && !OpenPeriods(DataOptionsSql())) return false;
  return HasPeriods() ? PrintColumnItems() : FailNoPeriods();
}

std::string BExcelExpEngMovementListRpt::DataOptionsSql() const {
  return "SELECT DISTINCT AnlysItemRecYear AS WSItemFromYear, AnlysItemRecPeriodMonth AS "
         "WSItemFromMthPeriod, "
         "AnlysItemRecSubPeriod AS WSItemFromSubPeriod FROM AnlysItemRecord " +
         DataCondition() +
         " ORDER BY AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod, "
         "AnlysPayRecBasis";
}

bool BExcelExpEngMovementListRpt::PrintPayRecInfo() {
  TakePeriod();
  SetStartPrintedCol(current_col_);
  if (AtFirstEntity() && !PrintPayPeriodInfo()) return false;
  const int heading_end = core_->LastPrintedCol + GetNoOfMergeCells();
  if (!PrintFinancialData()) return false;
  RaiseLastPrintedRow(current_row_);
  // An "<ALL>" item without items leaves the heading wider than its columns; the next report begins beside
  // both.
  SetLastPrintedCol(std::max(current_col_, heading_end));
  return true;
}

void BExcelExpEngMovementListRpt::TakePeriod() {
  ExcelRptLayoutQry.First();
  period_.year = ExcelRptLayoutQry.FieldByName("WSItemFromYear").AsInteger();
  period_.period_month = ExcelRptLayoutQry.FieldByName("WSItemFromMthPeriod").AsInteger();
  period_.sub_period = ExcelRptLayoutQry.FieldByName("WSItemFromSubPeriod").AsInteger();
}

bool BExcelExpEngMovementListRpt::PrintPayPeriodInfo() {
  const OperationName where = Where("PrintPayPeriodInfo");
  core_->WriteBanner(Memo::kInternal, {"    PRINT PAY PERIOD INFORMATION PROCESSING     "});
  if (!cells_.OpenTitleScheme(where) || !ReadCycle(where)) return false;

  const int first_row = current_row_ - 5;
  const int last_row = current_row_ - 2;
  std::string heading;
  try {
    heading = HeadingText();
  } catch (const std::invalid_argument& error) {
    return Fail(where, "The reporting period is wrong: " + std::string(error.what()) + ".");
  }
  if (!heading.empty()) cells_.WriteText(first_row, current_col_, heading);
  if (!cells_.FormatAsFirst(first_row, current_col_, where)) return false;
  const int last_col = current_col_ + GetNoOfMergeCells() - 1;
  if (GetCellName(last_row, last_col).empty()) {
    return Fail(Where("PrintColFinancialData"), "Excel worksheet is limited to 256 columns.");
  }
  cells_.Merge(first_row, current_col_, last_row, last_col);
  return true;
}

std::string BExcelExpEngMovementListRpt::HeadingText() const {
  const int year = period_.year;
  const int period = period_.period_month;
  const auto month = [](int of_year, int number) {
    return FormatDateTime("mmmm yyyy", EncodeDate(of_year, number, 1));
  };
  if (project_.cycle_group_by == "CalenGrpYr") {
    const std::string start = period == 12 ? month(year, 1) : month(year - 1, period + 1);
    return "Staff Movement Report for Year, from " + start + " to " + month(year, period);
  }
  return project_.cycle_group_by == "CalenGrpMth" ? "Staff Movement Report for Month " + month(year, period)
                                                  : "";
}

bool BExcelExpEngMovementListRpt::PrintFinancialData() {
  return WalkColumns(kWalk);
}

}  // namespace excelexp
