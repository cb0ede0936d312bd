#include "frames/FrameTotals.h"

#include <algorithm>
#include <utility>

#include "engine/DefinitionTables.h"
#include "platform/database/SqlText.h"
#include "platform/host/Format.h"

namespace excelexp {
namespace {

constexpr std::string_view kSubTotal = "PrintGrpSubTotalEmpCt";
constexpr std::string_view kGrandTotal = "PrintRptGrandTotalEmpCt";
constexpr int kSubTotalGap = 55;
constexpr int kGrandTotalGap = 49;
constexpr int kNothingToSum = 0;

std::string LayoutSchemeSql(const FrameTraits& traits, const std::string& report, int gap_length) {
  if (!traits.totals.asks_cycle_method) {
    return "SELECT LayoutSchemeId FROM FinancialRpt WHERE FinancialRptId = " + SqlText(report);
  }
  const std::string gap(static_cast<std::size_t>(gap_length), ' ');
  return "SELECT LayoutSchemeId, CycleMethod FROM" + gap + "FinancialRpt JOIN AnlysProject ON" + gap +
         "FinancialRpt.FinancialAnalysProjId = AnlysProject.AnlysProjectId" + gap +
         "WHERE FinancialRptId = " + SqlText(report);
}

}  // namespace

bool Fits(AsOfDate condition, std::string_view cycle_method) {
  return condition == AsOfDate::kAny || (condition == AsOfDate::kYes) == (cycle_method == kCycleAsOfDate);
}

std::string SummingFormula(SumRule rule, const std::string& first_cell, const std::string& ranges) {
  constexpr std::string_view kFormatOf = "CELL(\"format\",";
  switch (rule) {
    case SumRule::kAmounts:
      return Joined({"=IF(OR(", kFormatOf, first_cell, ")=\",2\", ", kFormatOf, first_cell, ")=\",0\"),SUM(",
                     ranges, "), \"\")"});
    case SumRule::kTwoDecimals:
      return Joined({"=IF(", kFormatOf, first_cell, ")=\",2\",SUM(", ranges, "), \"\")"});
    case SumRule::kAlways:
      break;
  }
  return Joined({"=SUM(", ranges, ")"});
}

FrameTotals::FrameTotals(BExcelExpEngCore* core, const FrameTraits& traits, std::vector<WkSheetItem>& items)
    : core_(core),
      traits_(traits),
      items_(items),
      ColourSchemeQry(traits.database.empty() ? core->DatabaseName : std::string(traits.database)),
      cells_(core, &ColourSchemeQry),
      formulas_(core) {}

OperationName FrameTotals::Where(std::string_view operation) const {
  return {traits_.class_name, operation};
}

bool FrameTotals::PrintGrpSubTotalEmpCt(int level_order, std::vector<GrpItem>& groups, int first_data_row) {
  core_->WriteBanner(Memo::kAll, {"  REPORT GROUPING SUB TOTAL AND EMPLOYEE COUNT  "});
  if (!cells_.OpenTitleScheme(Where(kSubTotal))) return false;
  for (auto level = groups.begin(); level != groups.end() - 1; ++level) {
    if (level->FinGrpItemOrder < level_order || level->GrpBreakPrinted) continue;
    if (!PrintLevel(*level, first_data_row)) return false;
  }
  return true;
}

bool FrameTotals::PrintLevel(GrpItem& level, int first_data_row) {
  if (level.FinGrpHasSubTotal != 0) {
    const int row = core_->LastPrintedRow + 1;
    core_->SetLastPrintedRow(row);
    const std::string label =
        traits_.totals.label_names_level ? "Sub Total(" + level.FinGrpItemTitle + ")" : "Sub Total";
    if (!PrintLabel(row, label, kSubTotal)) return false;
    const std::string template_ranges = std::exchange(level.GrpRowRanges, "");
    const auto ranges_of = [&](int column) {
      return formulas_.DecodeRptTotalExcelFormula(template_ranges, current_cell_, column);
    };
    const auto note_total = [&] { formulas_.NoteRptTotal(); };
    if (!PrintSums(row, first_data_row, kSubTotal, kSubTotalGap, ranges_of, note_total)) return false;
  }
  if (level.FinGrpHasEmpCount != 0) {
    const int row = core_->LastPrintedRow + 1;
    core_->SetLastPrintedRow(row);
    if (!PrintLabel(row, "Total Employees", kSubTotal)) return false;
    cells_.WriteNumber(row, 2, std::exchange(level.GrpEmpCount, 0));
  }
  level.GrpBreakPrinted = true;
  return true;
}

bool FrameTotals::PrintRptGrandTotalEmpCt(const std::vector<GrpItem>& groups, int first_data_row) {
  core_->WriteBanner(Memo::kAll, {"      REPORT GRAND TOTAL AND EMPLOYEE COUNT     "});
  if (!cells_.OpenTitleScheme(Where(kGrandTotal))) return false;
  const bool grouped = !groups.empty();
  const int last_data_row = core_->LastPrintedRow;
  int row = last_data_row + 2;
  if (core_->FirstWSItemHasGrandTot != 0) {
    if (!PrintLabel(row, "Grand Total ", kGrandTotal)) return false;
    const auto ranges_of = [&](int column) {
      return grouped ? formulas_.DecodeRptTotalExcelFormula(groups.back().GrpRowRanges, current_cell_, column)
                     : GetCellName(first_data_row, column) + ":" + GetCellName(last_data_row, column);
    };
    const auto note_total = [&] {
      if (grouped) formulas_.NoteRptTotal();
    };
    if (!PrintSums(row, first_data_row, kGrandTotal, kGrandTotalGap, ranges_of, note_total)) return false;
    ++row;
  }
  if (core_->FirstWSItemHasTotEmpCt != 0) {
    if (!PrintLabel(row, "Total Employees: ", kGrandTotal)) return false;
    cells_.WriteNumber(row, 2, grouped ? groups.back().GrpEmpCount : core_->EmpCoyBasisQry->RowCount());
  }
  core_->SetLastPrintedRow(row);
  return true;
}

bool FrameTotals::PrintLabel(int row, const std::string& text, std::string_view operation) {
  return cells_.WriteTitle(row, 1, text, Where(operation));
}

template <typename RangesOf, typename NoteTotal>
bool FrameTotals::PrintSums(int row, int first_data_row, std::string_view operation, int gap,
                            const RangesOf& ranges_of, const NoteTotal& note_total) {
  for (const WkSheetItem& item : items_) {
    if (item.WkSheetItemRptType != report_type::kFinancial) continue;
    int column = kNothingToSum;
    if (!ReadFirstSummingColumn(item, operation, gap, column)) return false;
    const int first_column = column;
    for (; column != kNothingToSum && column <= item.LastCol; ++column) {
      if (column > first_column && column <= kLastNamedColumn) {
        note_total();
        cells_.RepeatFormula(row, column);
      } else {
        const std::string first_cell = GetCellName(first_data_row, column);
        cells_.WriteFormula(row, column, SummingFormula(traits_.totals.rule, first_cell, ranges_of(column)));
      }
      cells_.WriteAmountFormat(row, column);
    }
  }
  return true;
}

bool FrameTotals::ReadFirstSummingColumn(const WkSheetItem& item, std::string_view operation, int gap,
                                         int& column) {
  core_->SetExcelWSItemSysId(item.WkSheetItemSysId);
  core_->SetExcelWSItemRptId(item.WkSheetItemRptId);
  core_->SetExcelWSItemOrdering(item.WkSheetItemOrdering);
  const TotalTraits& totals = traits_.totals;
  Query layout(totals.layout_database.empty() ? core_->DatabaseName : std::string(totals.layout_database));
  try {
    layout.SetSql(LayoutSchemeSql(traits_, item.WkSheetItemRptId, gap));
    layout.Open();
  } catch (...) {
    core_->WriteErrorEntry(Where(operation).Text() +
                           " Error: Error in getting the financial report layout scheme.");
    return false;
  }
  if (layout.IsEmpty()) {
    core_->WriteErrorEntry(Where(operation).Text() +
                           " Error: Empty financial report layout scheme information.");
    return false;
  }
  const std::string scheme = layout.FieldByName("LayoutSchemeId").AsString();
  const std::string cycle_method =
      totals.asks_cycle_method ? layout.FieldByName("CycleMethod").AsString() : "";
  const auto found = std::find_if(
      totals.summing.begin(), totals.summing.end(),
      [&](const SummingLayout& row) { return row.scheme == scheme && Fits(row.as_of, cycle_method); });
  column = found == totals.summing.end() ? kNothingToSum : item.FirstCol + found->first_column;
  return true;
}

}  // namespace excelexp
