#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "layouts/FinancialLayout.h"
#include "services/BankPayments.h"

namespace excelexp {

/// Where a row matrix takes its pay periods from (the rows of ExcelRptLayoutQry).
enum class MatrixPeriods {
  kChosenOrData,  ///< those chosen for the item, else all that the analysis records hold
  kChosen,
  kReportOptions  ///< the item's period range: one row, its end is the period compared
};

/// When the headings of the periods are printed, on the first entity.
enum class PeriodHeadings {
  kOverEachPeriod,  ///< with the first row, above each of its cells
  kOverBlock        ///< before the rows, above the whole block
};

/// The column behind the periods, computed from the row's cells in the first and the last of them.
struct SummaryColumn {
  std::string_view title = {};  ///< "" for members without such a column
  std::string (*formula)(const std::string& first, const std::string& last) = nullptr;
};

/// What the row matrices do differently.
struct MatrixTraits {
  FinancialTraits financial = {};
  std::string_view columns_banner = "  PRINT FINANCIAL COLUMN INFORMATION PROCESSING  ";
  std::string_view row_banner = "     PRINT FINANCIAL INFORMATION PROCESSING     ";

  MatrixPeriods periods = MatrixPeriods::kChosen;
  std::string_view no_periods_warning = {};  ///< the user's, and the end; "" makes missing periods a failure
  PeriodHeadings headings = PeriodHeadings::kOverEachPeriod;
  std::string_view heading_scheme_where = {};  ///< named when the title scheme is missing; "" says nothing
  std::string_view project_where = {};         ///< named when the project's cycle cannot be read

  std::span<const std::string_view> component_groupings = {};  ///< whose items are found by component
  bool formats_formulas = true;  ///< calculated cells get the amount format, which summaries ask for
  SummaryColumn summary = {};
  int gap_after_period = 0;  ///< blank columns behind the columns of each period
  int rows_below = 0;        ///< blank rows below the last row that belong to the block
};

/// One cell of a row within a period: which record, and which of its values.
struct MatrixColumn {
  PeriodKey period;
  std::string map_column = "AnlysMapField";  ///< of AnItemLookup, naming the record's column
};

/// The spine of the row matrices: one worksheet row per row item of the report (an "<ALL>" item: one per
/// analysis item), one column or more per pay period. To their left stand the report's column items, in the
/// block's first row, and the row titles.
class MatrixLayout : public FinancialLayout {
 public:
  /// `core` and `traits` outlive the layout.
  MatrixLayout(BExcelExpEngCore* core, const MatrixTraits& traits);

  bool ExecuteOperation() override;
  /// The column items, from the current column on.
  bool PrintColFinancialData();
  /// The row item that the row query stands on (and the item of its expansion), at the current row.
  bool PrintRowFinancialData();
  /// The headings of the period that the period query stands on, at the current column.
  virtual bool PrintPayPeriodInfo();

  /// Moves the record query to the record of a cell of the current row item.
  bool AnlysItemRecLocate(int year, int period_month, int sub_period, const std::string& pay_rec_basis,
                          const std::string& item_id, const std::string& item_type_id);
  bool AnlysItemRecLocateCSS(int year, int period_month, int sub_period, const std::string& pay_rec_basis,
                             const std::string& item_id, const std::string& item_type_id,
                             const std::string& country);

 protected:
  virtual bool OpenColumnItems();
  virtual bool PrintBlock();
  /// Called for every entity, when the row titles' column is known; leaves the current column where a block
  /// without rows ends.
  virtual bool PrintBlockHeadings() { return true; }
  /// The cells of a row within the period that the period query stands on.
  virtual std::vector<MatrixColumn> ColumnsOfPeriod();
  /// Where a cell finds a component of a bank payment.
  virtual ValueColumn BankValue(const BankColumn& column, const std::string& map_column);

  /// A text in the title scheme, in the current column.
  bool PrintHeading(int row, const std::string& text);

  const MatrixTraits& matrix_;
  Query FinanceRowItemQry;
  int row_title_col_ = 1;

 private:
  std::string PeriodsSql() const;
  bool OpenRowItems();
  bool EndWithoutPeriods();

  bool PrintColumnItem();
  bool PrintRowItem();
  bool PrintRow();
  bool PrintPeriod();
  bool PrintCell(const MatrixColumn& column);
  bool PrintAnalysisCell(const MatrixColumn& column);
  void PrintFound(const MatrixColumn& column, const ValueColumn& value);
  bool PrintSummary(int first_period_col);
  bool FormatCell();

  /// The row item that FinanceRowItemQry stands on.
  KnownColumnItem& CurrentRow() const {
    return (*row_items_)[static_cast<std::size_t>(FinanceRowItemQry.RowIndex())];
  }
  bool IsAllItems() const;
  std::string ItemId() const;
  /// True for the row that carries the headings of the whole sheet.
  bool AtFirstRow() const { return AtFirstEntity() && current_row_ == core_->StartPrintedRow; }

  std::shared_ptr<std::vector<KnownColumnItem>> row_items_;  // of the rows of FinanceRowItemQry
  std::vector<std::vector<MatrixColumn>> columns_;           // of each period, once a row has asked
};

}  // namespace excelexp
