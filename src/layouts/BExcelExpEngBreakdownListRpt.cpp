#include "layouts/BExcelExpEngBreakdownListRpt.h"

#include <array>

#include "engine/DefinitionTables.h"
#include "platform/database/SqlText.h"
#include "platform/host/CommonLibrary.h"
#include "services/PeriodTexts.h"

namespace excelexp {
namespace {

constexpr FinancialTraits kTraits = {.class_name = "BExcelExpEngBreakdownListRpt",
                                     .records = EntityRecords::kByLevel,
                                     .records_operation = "PrintPayRecInfo"};

constexpr std::array<std::string_view, 3> kPayComponents = {"PaySystem", "LeaveSystem", "LeaveCareerSystem"};
constexpr std::array<std::string_view, 3> kTimesheetComponents = {"TsDetail", "TsDistribute",
                                                                  "TsLeaveDeduction"};

constexpr std::string_view kBanner = "     PRINT FINANCIAL INFORMATION PROCESSING     ";

constexpr ColumnWalk kPayWalk = {.operation = "PrintFinancialData",
                                 .banner = kBanner,
                                 .bank = BankRule::kCategory,
                                 .component_groupings = kPayComponents};
constexpr ColumnWalk kTimesheetWalk = {
    .operation = "PrintTimesheetFinData", .banner = kBanner, .component_groupings = kTimesheetComponents};
constexpr ColumnWalk kEmptyTimesheetWalk = {.operation = "PrintEmptyFinancialData",
                                            .banner = "  PRINT EMPTY FINANCIAL INFORMATION PROCESSING  ",
                                            .component_groupings = kTimesheetComponents,
                                            .blank = true};

constexpr std::string_view kTimesheetScheme = "DefColourScheme";

}  // namespace

BExcelExpEngBreakdownListRpt::BExcelExpEngBreakdownListRpt(BExcelExpEngCore* core)
    : ListingLayout(core, kTraits), TimesheetBasisQry(core->DatabaseName) {}

bool BExcelExpEngBreakdownListRpt::ExecuteOperation() {
  if (!ReadReport() || !ReadProject() || !OpenRecords() || !OpenPeriods(ChosenPeriodsSql())) return false;
  if (!HasPeriods() && !OpenPeriods(DataPeriodsSql())) return false;
  return HasPeriods() ? PrintColumnItems() : FailNoPeriods();
}

bool BExcelExpEngBreakdownListRpt::PrintBlock() {
  const bool pay_records = project_.sub_type == project_sub_type::kPayRecord ||
                           project_.sub_type == project_sub_type::kLeaveSummary;
  return pay_records ? PrintPayRecInfo() : PrintTimeSheetInfo();
}

bool BExcelExpEngBreakdownListRpt::PrintPayRecInfo() {
  for (ExcelRptLayoutQry.First(); !ExcelRptLayoutQry.Eof(); ExcelRptLayoutQry.Next()) {
    period_ = PeriodOf(ExcelRptLayoutQry);
    SetStartPrintedCol(current_col_);
    if (AtFirstEntity() && !PrintPayPeriodInfo()) return false;
    if (!PrintFinancialData()) return false;
  }
  RaiseLastPrintedRow(current_row_);
  SetLastPrintedCol(current_col_);
  return true;
}

bool BExcelExpEngBreakdownListRpt::PrintTimeSheetInfo() {
  for (ExcelRptLayoutQry.First(); !ExcelRptLayoutQry.Eof(); ExcelRptLayoutQry.Next()) {
    period_ = PeriodOf(ExcelRptLayoutQry);
    SetStartPrintedCol(current_col_);
    if (!PrintTimesheetGroup()) return false;
  }
  SetLastPrintedCol(current_col_);
  return true;
}

bool BExcelExpEngBreakdownListRpt::PrintTimesheetGroup() {
  current_row_ = core_->StartPrintedRow;
  if (!OpenTimesheetRows()) return false;
  if (AtFirstEntity() && !PrintPayPeriodInfo()) return false;
  if (TimesheetBasisQry.RowCount() == 0) {
    RaiseLastPrintedRow(current_row_);  // the row of blanks is a printed row: the next entity goes below it
    return PrintTimesheetData() && PrintEmptyTimesheetFinData();
  }
  for (TimesheetBasisQry.First(); !TimesheetBasisQry.Eof(); TimesheetBasisQry.Next()) {
    current_col_ = core_->StartPrintedCol;
    if (!PrintTimesheetData() || !PrintTimesheetFinData()) return false;
    ++current_row_;
  }
  RaiseLastPrintedRow(current_row_ - 1);
  return true;
}

std::string BExcelExpEngBreakdownListRpt::FirstPairColumn() const {
  return core_->ExcelWkSheetRptSumLvl == summary_level::kCompany ? "Basis1Id" : "Basis2Id";
}

std::string BExcelExpEngBreakdownListRpt::SecondPairColumn() const {
  return core_->ExcelWkSheetRptSumLvl == summary_level::kCompany ? "Basis2Id" : "Basis3Id";
}

bool BExcelExpEngBreakdownListRpt::OpenTimesheetRows() {
  const std::string pair = FirstPairColumn() + ", " + SecondPairColumn();
  std::string sql = "SELECT DISTINCT " + pair + " FROM AnlysItemRecord " + DataCondition();
  if (core_->ExcelWkSheetRptSumLvl != summary_level::kCompany) {
    sql += " AND Basis1Id = " + SqlText(Text(*core_->EmpCoyBasisQry, "Basis1Id"));
  }
  sql += " AND AnlysItemRecYear = " + std::to_string(period_.year) +
         " AND AnlysItemRecPeriodMonth = " + std::to_string(period_.period_month) +
         " AND AnlysItemRecSubPeriod = " + std::to_string(period_.sub_period) +
         " AND AnlysPayRecBasis = " + SqlText(period_.pay_record_basis) + " ORDER BY " + pair;
  return core_->OpenOrLog(TimesheetBasisQry, sql, Where("PrintTimeSheetInfo"), "AnlysItemRecQry",
                          Rows::kOptional);
}

int BExcelExpEngBreakdownListRpt::GetNoOfMergeCells() {
  int width = 0;
  return CountColumns(width) ? width : 0;
}

bool BExcelExpEngBreakdownListRpt::CountColumns(int& width) {
  width = project_.sub_type == project_sub_type::kTimesheetSummary  ? 1
          : project_.sub_type == project_sub_type::kTimesheetRecord ? 2
                                                                    : 0;
  for (FinanceColItemQry.First(); !FinanceColItemQry.Eof(); FinanceColItemQry.Next()) {
    if (Text(FinanceColItemQry, "FinColItemType") != item_type::kAnalysis ||
        Text(FinanceColItemQry, "FinColItem") != kAllItems) {
      ++width;
      continue;
    }
    if (!core_->ExecuteSQL(AllItemsSql(Text(FinanceColItemQry, "FinColGrouping")))) {
      return Fail(Where("GetNoOfMergeCells"), "Unable to get Formula Details.");
    }
    width += core_->SQLQry->RowCount();
  }
  return true;
}

bool BExcelExpEngBreakdownListRpt::PrintPayPeriodInfo() {
  const OperationName where = Where("PrintPayPeriodInfo");
  int width = 0;
  if (!CountColumns(width)) return false;
  core_->WriteBanner(Memo::kInternal, {"    PRINT PAY PERIOD INFORMATION PROCESSING     "});
  if (!cells_.OpenTitleScheme(where) || !ReadCycle(where)) return false;

  return PrintHeading(current_row_ - 5, YearText(period_.year), width) &&
         PrintHeading(current_row_ - 4,
                      PeriodText(project_.cycle_group_by, period_.year, period_.period_month), width) &&
         PrintHeading(current_row_ - 3, SubPeriodText(period_.sub_period), width) &&
         PrintHeading(current_row_ - 2, period_.pay_record_basis, width);
}

bool BExcelExpEngBreakdownListRpt::PrintHeading(int row, const std::string& text, int width) {
  cells_.WriteText(row, current_col_, text);
  if (!cells_.FormatAsFirst(row, current_col_, Where("PrintPayPeriodInfo"))) return false;
  if (width <= 0) return true;
  if (GetCellName(row, current_col_ + width - 1).empty()) {
    return Fail("BExcelExpEngBreakdownRpt::PrintColFinancialData",
                "Excel worksheet is limited to 256 columns.");
  }
  cells_.Merge(row, current_col_, row, current_col_ + width - 1);
  return true;
}

bool BExcelExpEngBreakdownListRpt::PrintFinancialData() {
  by_basis_pair_ = false;
  return WalkColumns(kPayWalk);
}

bool BExcelExpEngBreakdownListRpt::PrintTimesheetFinData() {
  by_basis_pair_ = true;
  return WalkColumns(kTimesheetWalk);
}

bool BExcelExpEngBreakdownListRpt::PrintEmptyTimesheetFinData() {
  return WalkColumns(kEmptyTimesheetWalk);
}

bool BExcelExpEngBreakdownListRpt::LocateItem(const std::string& item_id, const std::string& item_type) {
  if (!by_basis_pair_) return ListingLayout::LocateItem(item_id, item_type);
  return lookup_.LocateBasis(period_, Text(TimesheetBasisQry, FirstPairColumn()),
                             Text(TimesheetBasisQry, SecondPairColumn()), item_id, item_type);
}

bool BExcelExpEngBreakdownListRpt::PrintTimesheetData() {
  const std::array<std::string, 2> schemes = {std::string(kTimesheetScheme),
                                              core_->ExcelWkSheetTitleColourSchemeId};
  if (!cells_.OpenSchemes(schemes, Where("PrintTimesheetData"))) return false;
  const auto value = [this](const std::string& column) {
    return TimesheetBasisQry.RowCount() == 0 ? "" : Text(TimesheetBasisQry, column);
  };
  if (!PrintTimesheetKey("Job Code", value(FirstPairColumn()))) return false;
  return project_.sub_type != project_sub_type::kTimesheetRecord ||
         PrintTimesheetKey("Date", FGetInValidDate(value(SecondPairColumn())));
}

bool BExcelExpEngBreakdownListRpt::PrintTimesheetKey(const std::string& title, const std::string& value) {
  const OperationName where = Where("PrintTimesheetData");
  const bool first_row = AtFirstEntity() && current_row_ == core_->StartPrintedRow;
  if (first_row && !cells_.WriteTitle(current_row_ - 1, current_col_, title, where)) return false;
  cells_.WriteText(current_row_, current_col_, value);
  if (!cells_.Format(std::string(kTimesheetScheme), current_row_, current_col_, where)) return false;
  ++current_col_;
  return true;
}

}  // namespace excelexp
