#include "layouts/MatrixLayout.h"

#include <algorithm>

#include "engine/DefinitionTables.h"
#include "platform/database/SqlText.h"
#include "services/PeriodTexts.h"

namespace excelexp {

MatrixLayout::MatrixLayout(BExcelExpEngCore* core, const MatrixTraits& traits)
    : FinancialLayout(core, traits.financial), matrix_(traits), FinanceRowItemQry(core->DatabaseName) {}

bool MatrixLayout::ExecuteOperation() {
  const bool derives_periods = matrix_.periods == MatrixPeriods::kChosenOrData;
  if (!ReadReport() || !OpenRecords() || !OpenPeriods(PeriodsSql())) return false;
  if (!HasPeriods() && derives_periods && !OpenPeriods(DataPeriodsSql())) return false;
  if (!HasPeriods()) return EndWithoutPeriods();
  if (!OpenColumnItems() || !OpenRowItems()) return false;
  if (FinanceRowItemQry.RowCount() == 0) return WarnItemsNotSet("Row");
  row_items_ = ItemsOf(FinanceRowItemQry, "FinRow");
  return PrintBlock();
}

std::string MatrixLayout::PeriodsSql() const {
  if (matrix_.periods != MatrixPeriods::kReportOptions) return ChosenPeriodsSql();
  return "SELECT * FROM ExcelWSItemRptOpts WHERE WkSheetItemSysId = " +
         std::to_string(core_->ExcelWSItemSysId);
}

bool MatrixLayout::EndWithoutPeriods() {
  if (matrix_.no_periods_warning.empty()) return FailNoPeriods();
  core_->WriteUserEntry(matrix_.no_periods_warning);
  return true;
}

bool MatrixLayout::OpenColumnItems() {
  return core_->OpenOrLog(FinanceColItemQry, ColumnItemsSql(), Where("ExecuteOperation"), "FinanceColItemQry",
                          Rows::kOptional);
}

bool MatrixLayout::OpenRowItems() {
  static const std::string gap(36, ' ');
  return core_->OpenOrLog(FinanceRowItemQry,
                          "SELECT * FROM FinanceRowItem" + gap + "WHERE FinancialRptId = " +
                              SqlText(core_->ExcelWSItemRptId) + gap + "ORDER BY FinRowItemOrder",
                          Where("ExecuteOperation"), "FinanceRowItemQry", Rows::kOptional);
}

bool MatrixLayout::PrintBlock() {
  columns_.clear();
  current_row_ = core_->StartPrintedRow;
  current_col_ = core_->StartPrintedCol;
  if (FinanceColItemQry.RowCount() > 0 && !PrintColFinancialData()) return false;
  row_title_col_ = current_col_;
  if (!PrintBlockHeadings()) return false;
  for (FinanceRowItemQry.First(); !FinanceRowItemQry.Eof(); FinanceRowItemQry.Next()) {
    if (!PrintRowItem()) return false;
  }
  SetLastPrintedCol(current_col_);
  RaiseLastPrintedRow(current_row_ - 1 + matrix_.rows_below);
  return true;
}

bool MatrixLayout::PrintColFinancialData() {
  core_->WriteBanner(Memo::kInternal, {matrix_.columns_banner});
  for (FinanceColItemQry.First(); !FinanceColItemQry.Eof(); FinanceColItemQry.Next()) {
    if (!PrintColumnItem()) return false;
  }
  RaiseLastPrintedRow(current_row_);  // they take a row of the sheet also when no row item prints one
  return true;
}

bool MatrixLayout::PrintColumnItem() {
  const OperationName where = Where("PrintColFinancialData");
  const std::string type = Text(FinanceColItemQry, "FinColItemType");
  const std::string scheme = Text(FinanceColItemQry, "ColourSchemeId");
  if (!cells_.OpenSchemes(scheme, where)) return false;
  if (AtFirstEntity() &&
      !cells_.WriteTitle(current_row_ - 1, current_col_, Text(FinanceColItemQry, "FinColItemTitle"), where)) {
    return false;
  }
  if (type == item_type::kSummaryLevel) {
    PrintEntityField(Text(FinanceColItemQry, "FinColGrouping"), Text(FinanceColItemQry, "FinColComponent"),
                     current_row_, current_col_);
  } else if (type == item_type::kBlank) {
    cells_.WriteText(current_row_, current_col_, "");
  }
  if (!cells_.Format(scheme, current_row_, current_col_, where)) return false;
  ++current_col_;
  return true;
}

bool MatrixLayout::IsAllItems() const {
  return CurrentRow().type == item_type::kAnalysis && CurrentRow().item == kAllItems;
}

bool MatrixLayout::PrintRowItem() {
  if (!IsAllItems()) return PrintRow();
  const std::string& grouping = CurrentRow().grouping;
  if (!OpenAllItems(grouping, Where("ExecuteOperation"))) return false;
  if (AllFormulaQry.RowCount() == 0) WarnNoItems(grouping);
  for (AllFormulaQry.First(); !AllFormulaQry.Eof(); AllFormulaQry.Next()) {
    if (!PrintRow()) return false;
  }
  return true;
}

bool MatrixLayout::PrintRow() {
  current_col_ = row_title_col_;
  if (!PrintRowFinancialData()) return false;
  ++current_row_;
  return true;
}

bool MatrixLayout::PrintRowFinancialData() {
  const OperationName where = Where("PrintRowFinancialData");
  core_->WriteBanner(Memo::kInternal, {matrix_.row_banner});
  KnownColumnItem& item = CurrentRow();
  if (!cells_.OpenSchemes(item, where)) return false;
  const std::string title = IsAllItems() ? Text(AllFormulaQry, "AnlysItemDesc") : item.title;
  if (!cells_.WriteTitle(current_row_, current_col_, title, where)) return false;
  const int first_period_col = ++current_col_;
  for (ExcelRptLayoutQry.First(); !ExcelRptLayoutQry.Eof(); ExcelRptLayoutQry.Next()) {
    if (!PrintPeriod()) return false;
  }
  return matrix_.summary.title.empty() || PrintSummary(first_period_col);
}

bool MatrixLayout::PrintPeriod() {
  const bool headed = matrix_.headings == PeriodHeadings::kOverEachPeriod && AtFirstRow();
  if (headed && !PrintPayPeriodInfo()) return false;
  const auto period = static_cast<std::size_t>(ExcelRptLayoutQry.RowIndex());
  if (period == columns_.size()) columns_.push_back(ColumnsOfPeriod());
  for (const MatrixColumn& column : columns_[period]) {
    if (!PrintCell(column) || !FormatCell()) return false;
    ++current_col_;
  }
  current_col_ += matrix_.gap_after_period;
  return true;
}

bool MatrixLayout::PrintCell(const MatrixColumn& column) {
  const KnownColumnItem& item = CurrentRow();
  if (item.type == item_type::kAnalysis) return PrintAnalysisCell(column);
  if (item.type == item_type::kCalculated) {
    cells_.WriteFormula(
        current_row_, current_col_,
        formulas_.DecodeRowExcelFormula(item.formula, AllFormulaQry, current_cell_, current_col_));
    if (matrix_.formats_formulas) cells_.WriteAmountFormat(current_row_, current_col_);
  } else if (item.type == item_type::kBlank) {
    cells_.WriteText(current_row_, current_col_, "");
  }
  return true;
}

bool MatrixLayout::PrintAnalysisCell(const MatrixColumn& column) {
  KnownColumnItem& item = CurrentRow();
  if (item.grouping == kBankRecordGrouping) {
    if (const BankColumn* bank_column = FindBankColumn(item.component)) {
      PrintFound(column, BankValue(*bank_column, column.map_column));
      return true;
    }
  }
  const ValueColumn* const value = ValueColumnOf(item, Where("PrintRowFinancialData"), column.map_column);
  if (value != nullptr) PrintFound(column, *value);
  return value != nullptr;
}

void MatrixLayout::PrintFound(const MatrixColumn& column, const ValueColumn& value) {
  const std::string& grouping = CurrentRow().grouping;
  // A component without such a value (a rate has no variance) maps to no column: a blank.
  const bool found = !value.column.empty() && lookup_.Locate(column.period, ItemId(), grouping, grouping);
  grouping == kBankRecordGrouping ? PrintBankValue(found, value, current_row_, current_col_)
                                  : PrintValue(found, value, current_row_, current_col_);
}

std::string MatrixLayout::ItemId() const {
  const KnownColumnItem& item = CurrentRow();
  if (item.grouping == kBankRecordGrouping) return BankPaymentCategory(item.item);
  const auto& by_component = matrix_.component_groupings;
  if (std::find(by_component.begin(), by_component.end(), item.grouping) != by_component.end()) {
    return item.component;
  }
  return IsAllItems() ? Text(AllFormulaQry, "AnlysItem1Id") : item.item;
}

bool MatrixLayout::PrintSummary(int first_period_col) {
  if (AtFirstRow() && !cells_.WriteTitle(current_row_ - 2, current_col_, std::string(matrix_.summary.title),
                                         Where("PrintRowFinancialData"))) {
    return false;
  }
  if (CurrentRow().type != item_type::kBlank) {
    const std::string first = GetCellName(current_row_, first_period_col);
    const std::string last = GetCellName(current_row_, current_col_ - 1);
    cells_.WriteFormula(current_row_, current_col_, matrix_.summary.formula(first, last));
    cells_.WriteAmountFormat(current_row_, current_col_);
  }
  if (!FormatCell()) return false;
  ++current_col_;
  return true;
}

bool MatrixLayout::FormatCell() {
  return cells_.Format(CurrentRow(), current_row_, current_col_, Where("PrintRowFinancialData"));
}

std::vector<MatrixColumn> MatrixLayout::ColumnsOfPeriod() {
  return {{.period = PeriodOf(ExcelRptLayoutQry)}};
}

ValueColumn MatrixLayout::BankValue(const BankColumn& column, const std::string& /*map_column*/) {
  return {std::string(column.column), std::string(column.type)};
}

bool MatrixLayout::PrintHeading(int row, const std::string& text) {
  return cells_.WriteTitle(row, current_col_, text, matrix_.heading_scheme_where);
}

bool MatrixLayout::PrintPayPeriodInfo() {
  core_->WriteBanner(Memo::kInternal, {"    PRINT PAY PERIOD INFORMATION PROCESSING     "});
  if (!ReadCycle(matrix_.project_where)) return false;
  const PeriodKey period = PeriodOf(ExcelRptLayoutQry);
  const int row = core_->StartPrintedRow;
  return PrintHeading(row - 5, YearText(period.year)) &&
         PrintHeading(row - 4, PeriodText(project_.cycle_group_by, period.year, period.period_month)) &&
         PrintHeading(row - 3, SubPeriodText(period.sub_period)) &&
         PrintHeading(row - 2, period.pay_record_basis);
}

bool MatrixLayout::AnlysItemRecLocate(int year, int period_month, int sub_period,
                                      const std::string& pay_rec_basis, const std::string& item_id,
                                      const std::string& item_type_id) {
  return lookup_.Locate({year, period_month, sub_period, pay_rec_basis}, item_id, item_type_id,
                        CurrentRow().grouping);
}

bool MatrixLayout::AnlysItemRecLocateCSS(int year, int period_month, int sub_period,
                                         const std::string& pay_rec_basis, const std::string& item_id,
                                         const std::string& item_type_id, const std::string& country) {
  return lookup_.LocateCSS({year, period_month, sub_period, pay_rec_basis}, item_id, item_type_id, country,
                           CurrentRow().grouping);
}

}  // namespace excelexp
