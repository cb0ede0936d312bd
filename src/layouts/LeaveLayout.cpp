#include "layouts/LeaveLayout.h"

#include <array>

#include "engine/DefinitionTables.h"
#include "platform/database/SqlText.h"

namespace excelexp {
namespace {

constexpr std::array<std::string_view, 2> kComponents = {"LeaveSystem", "LeaveCareerSystem"};

}  // namespace

LeaveLayout::LeaveLayout(BExcelExpEngCore* core, const LeaveTraits& traits)
    : ListingLayout(core, traits.financial), leave_traits_(traits) {
  value_style_.short_midnight = true;
}

OperationName LeaveLayout::LeaveWhere(std::string_view operation) const {
  return {leave_traits_.message_class, operation};
}

bool LeaveLayout::ExecuteOperation() {
  if (!ReadReport() || !ReadProject() || !OpenRecords() || !OpenPeriods(ChosenPeriodsSql())) return false;
  if (!HasPeriods() && leave_traits_.derives_groups && !OpenPeriods(DataPeriodsSql())) return false;
  return HasPeriods() ? PrintColumnItems() : FailNoPeriods();
}

bool LeaveLayout::PrintPayRecInfo() {
  ExcelRptLayoutQry.First();
  SetStartPrintedCol(current_col_);
  if (!PrintBlockHeading()) return false;
  for (; !ExcelRptLayoutQry.Eof(); ExcelRptLayoutQry.Next()) {
    current_col_ = core_->LastPrintedCol;
    if (!PrintGroup()) return false;
  }
  if (AtFirstEntity() && current_row_ == core_->StartPrintedRow && !FormatEmptyRow()) return false;
  RaiseLastPrintedRow(current_row_);
  SetLastPrintedCol(current_col_ + leave_traits_.period_columns);
  return true;
}

bool LeaveLayout::PrintGroup() {
  bool exists = false;
  if (!ReadRowDataExist(exists)) return false;  // else the report would lack rows, and nobody would know
  if (exists) {
    TakeGroup();
    return PrintPayPeriodInfo() && PrintFinancialData();
  }
  if (core_->MultipleWkSheetItems && core_->StartPrintedRow == current_row_) return PrintEmptyFinancialData();
  current_col_ += FinanceColItemQry.RowCount();
  return true;
}

bool LeaveLayout::FormatEmptyRow() {
  int column = core_->LastPrintedCol + leave_traits_.period_columns;
  for (FinanceColItemQry.First(); !FinanceColItemQry.Eof(); FinanceColItemQry.Next(), ++column) {
    const std::string type = Text(FinanceColItemQry, "FinColItemType");
    ValueColumn value;
    if (type == item_type::kAnalysis && !ReadValueColumn(Text(FinanceColItemQry, "FinColGrouping"),
                                                         Text(FinanceColItemQry, "FinColComponent"),
                                                         LeaveWhere("PrintFinancialData"), value)) {
      return false;
    }
    if (type == item_type::kCalculated || IsAmount(value)) {
      cells_.WriteAmountFormat(current_row_, column);
    }
  }
  return true;
}

bool LeaveLayout::CheckRowDataExist() {
  bool exists = false;
  return ReadRowDataExist(exists) && exists;
}

bool LeaveLayout::ReadRowDataExist(bool& exists) {
  period_ = PeriodOf(ExcelRptLayoutQry);
  if (core_->ExecuteSQL("SELECT * FROM AnlysItemRecord " + DataCondition() + EntityCondition() +
                        " AND AnlysItemRecYear = " + std::to_string(period_.year) +
                        " AND AnlysItemRecPeriodMonth = " + std::to_string(period_.period_month) +
                        " AND AnlysItemRecSubPeriod = " + std::to_string(period_.sub_period) +
                        " AND AnlysPayRecBasis = " + SqlText(period_.pay_record_basis))) {
    exists = core_->SQLQry->RowCount() > 0;
    return true;
  }
  return Fail(Where("CheckRowDataExist"), "Error in checking Record Exist in AnlysItemRecord Table.");
}

bool LeaveLayout::ReadGroupTexts() {
  const OperationName where = LeaveWhere("PrintPayPeriodInfo");
  return cells_.OpenTitleScheme(where) && ReadCycle(where);
}

ColumnWalk LeaveLayout::WalkOf(TitleRule titles, bool blank) const {
  return {.message_class = leave_traits_.message_class,
          .operation = "PrintFinancialData",
          .banner = "     PRINT FINANCIAL INFORMATION PROCESSING     ",
          .titles = titles,
          .expands_all = false,
          .component_groupings = kComponents,
          .shift = leave_traits_.period_columns,
          .blank = blank};
}

bool LeaveLayout::PrintFinancialData() {
  return Walk(WalkOf(TitleRule::kFirstEntityFlag, false));
}

bool LeaveLayout::PrintEmptyFinancialData() {
  return Walk(WalkOf(TitleRule::kAlways, true));
}

bool LeaveLayout::Walk(const ColumnWalk& walk) {
  const int block_col = current_col_;
  SetStartPrintedCol(WalkCol(walk));  // references in formulas count the items from there
  const bool printed = WalkColumns(walk);
  SetStartPrintedCol(block_col);
  if (!printed) return false;
  ++current_row_;
  core_->FirstEntity = false;
  return true;
}

}  // namespace excelexp
