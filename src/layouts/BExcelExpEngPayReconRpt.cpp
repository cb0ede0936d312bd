#include "layouts/BExcelExpEngPayReconRpt.h"

#include <algorithm>
#include <array>

#include "services/PeriodTexts.h"

namespace excelexp {
namespace {

// What a status item shows, and the column of AnItemLookup that names where.
constexpr std::string_view kCurrent = "AnlysMapField";
constexpr std::string_view kPrevious = "AnlysMapFieldPrev";
constexpr std::string_view kVariance = "AnlysMapFieldVar";

constexpr std::string_view kOrdinaryItems =
    " AND FinColItem NOT LIKE 'AnlysMapField' AND FinColItem NOT LIKE 'AnlysMapFieldPrev'"
    " AND FinColItem NOT LIKE 'AnlysMapFieldVar'";
constexpr std::string_view kStatusItems =
    " AND (FinColItem LIKE 'AnlysMapField' OR FinColItem LIKE 'AnlysMapFieldPrev'"
    " OR FinColItem LIKE 'AnlysMapFieldVar')";

/// Where a bank record keeps the other values of an amount. Its ids are the same in every status.
struct BankAmount {
  std::string_view current;
  std::string_view previous;
  std::string_view variance;
};
constexpr std::array<BankAmount, 2> kBankAmounts = {{
    {"AnlysAmount1", "AnlysFAmount1", "AnlysDoubleValue1"},
    {"AnlysAmount2", "AnlysFAmount2", "AnlysDoubleValue2"},
}};

constexpr std::array<std::string_view, 1> kComponentGroupings = {"PaySystem"};

constexpr MatrixTraits kTraits = {
    .financial = {.class_name = "BExcelExpEngPayReconRpt", .records = EntityRecords::kAllBelowCompany},
    .columns_banner = "  PRINT FINANCIAL COLUMN INFORMATION PROCESSING ",
    .periods = MatrixPeriods::kReportOptions,
    .no_periods_warning = "Warning: The pay periods to be printed for the PayRecon report is not selected.",
    .headings = PeriodHeadings::kOverBlock,
    .heading_scheme_where = "BExcelExpEngPayReconRpt::PrintPayPeriodInfo",
    .project_where = "ExcelExpEngPayReconRpt",
    .component_groupings = kComponentGroupings,
    .gap_after_period = 1,
    .rows_below = 1};

}  // namespace

BExcelExpEngPayReconRpt::BExcelExpEngPayReconRpt(BExcelExpEngCore* core)
    : MatrixLayout(core, kTraits), FinanceColItemStatusQry(core->DatabaseName) {}

bool BExcelExpEngPayReconRpt::OpenColumnItems() {
  const OperationName where = Where("ExecuteOperation");
  if (!core_->OpenOrLog(FinanceColItemQry, ColumnItemsSql(kOrdinaryItems), where, "FinanceColItemQry",
                        Rows::kOptional) ||
      !core_->OpenOrLog(FinanceColItemStatusQry, ColumnItemsSql(kStatusItems), where,
                        "FinanceColItemStatusQry", Rows::kOptional)) {
    return false;
  }
  if (FinanceColItemStatusQry.RowCount() > 0) return true;
  core_->WriteUserEntry("Error: Pay Reconciliation Col Items are not selected for " +
                        core_->ExcelWSItemRptId + ".");
  return false;
}

bool BExcelExpEngPayReconRpt::PrintBlock() {
  const std::string scheme =
      FinanceColItemQry.RowCount() == 0 ? "" : Text(FinanceColItemQry, "ColourSchemeId");
  return cells_.OpenSchemes(scheme, Where("ExecuteOperation")) && MatrixLayout::PrintBlock();
}

bool BExcelExpEngPayReconRpt::PrintBlockHeadings() {
  if (AtFirstEntity()) {
    current_col_ = core_->StartPrintedCol;
    if (!PrintPayPeriodInfo()) return false;
    current_col_ = row_title_col_;
    if (!PrintColStatusFinancialData()) return false;
  }
  current_col_ = row_title_col_ + 1 + FinanceColItemStatusQry.RowCount() + matrix_.gap_after_period;
  return true;
}

bool BExcelExpEngPayReconRpt::PrintPayPeriodInfo() {
  core_->WriteBanner(Memo::kInternal, {"    PRINT PAY PERIOD INFORMATION PROCESSING     "});
  if (!ReadCycle(matrix_.project_where)) return false;
  const auto option = [this](std::string_view name) {
    return ExcelRptLayoutQry.FieldByName(name).AsInteger();
  };
  const int year = option("WSItemToYear");
  const int period = option("WSItemToMthPeriod");
  const std::string period_text = PeriodText(project_.cycle_group_by, year, period);
  if (!period_text.empty()) {
    current_label_ = PeriodLabel(year, period);
    previous_label_ = PeriodLabel(option("WSItemFromYear"), option("WSItemFromMthPeriod"));
  }
  const int row = core_->StartPrintedRow;
  return PrintHeading(row - 5, YearText(year)) && MergeHeading(row - 5) &&
         PrintHeading(row - 4, period_text) && MergeHeading(row - 4) && MergeHeading(row - 3) &&
         MergeHeading(row - 2);
}

std::string BExcelExpEngPayReconRpt::PeriodLabel(int year, int period) const {
  const std::string text = PeriodText(project_.cycle_group_by, year, period);
  return text.empty() ? YearText(year) : YearText(year) + " " + text;
}

bool BExcelExpEngPayReconRpt::MergeHeading(int row) {
  const int last_col =
      current_col_ + FinanceColItemStatusQry.RowCount() + FinanceColItemQry.RowCount();  // and the row titles
  if (GetCellName(row, last_col).empty()) {
    return Fail(Where("PrintPayPeriodInfo"), "Excel worksheet is limited to 256 columns.");
  }
  cells_.Merge(row, current_col_, row, last_col);
  return true;
}

bool BExcelExpEngPayReconRpt::PrintColStatusFinancialData() {
  core_->WriteBanner(Memo::kInternal, {"        PRINT PAY RECONCILIATION COLUMN         ",
                                       "             INFORMATION PROCESSING             "});
  for (FinanceColItemStatusQry.First(); !FinanceColItemStatusQry.Eof(); FinanceColItemStatusQry.Next()) {
    if (!PrintStatusTitle()) return false;
    ++current_col_;
  }
  return true;
}

bool BExcelExpEngPayReconRpt::PrintStatusTitle() {
  const OperationName where = Where("PrintColStatusFinancialData");
  if (!cells_.OpenSchemes(Text(FinanceColItemStatusQry, "ColourSchemeId"), where)) return false;
  const std::string status = Text(FinanceColItemStatusQry, "FinColItem");
  const std::string label = status == kCurrent ? current_label_ : status == kPrevious ? previous_label_ : "";
  const int row = current_row_ - 1;
  const int col = current_col_ + 1;  // above the values, which stand right of the row titles
  if (!cells_.WriteTitle(row, col, Text(FinanceColItemStatusQry, "FinColItemTitle") + "\n" + label, where)) {
    return false;
  }
  core_->ExcelAPI->SetWordWrap(core_->ExcelWorkbook, core_->ExcelWorksheetName, GetCellName(row, col), true);
  return true;
}

std::vector<MatrixColumn> BExcelExpEngPayReconRpt::ColumnsOfPeriod() {
  PeriodKey period;
  period.year = ExcelRptLayoutQry.FieldByName("WSItemToYear").AsInteger();
  period.period_month = ExcelRptLayoutQry.FieldByName("WSItemToMthPeriod").AsInteger();
  period.sub_period = ExcelRptLayoutQry.FieldByName("WSItemToSubPeriod").AsInteger();
  std::vector<MatrixColumn> columns;
  for (FinanceColItemStatusQry.First(); !FinanceColItemStatusQry.Eof(); FinanceColItemStatusQry.Next()) {
    const std::string component = Text(FinanceColItemStatusQry, "FinColComponent");
    const std::size_t end = component.find('_');
    period.pay_record_basis = end == std::string::npos ? "" : component.substr(0, end);
    columns.push_back({period, Text(FinanceColItemStatusQry, "FinColItem")});
  }
  return columns;
}

ValueColumn BExcelExpEngPayReconRpt::BankValue(const BankColumn& column, const std::string& map_column) {
  const auto* amount =
      std::find_if(kBankAmounts.begin(), kBankAmounts.end(),
                   [&](const BankAmount& candidate) { return candidate.current == column.column; });
  if (amount == kBankAmounts.end()) return MatrixLayout::BankValue(column, map_column);
  const std::string_view shown = map_column == kPrevious   ? amount->previous
                                 : map_column == kVariance ? amount->variance
                                                           : amount->current;
  return {std::string(shown), std::string(column.type)};
}

}  // namespace excelexp
