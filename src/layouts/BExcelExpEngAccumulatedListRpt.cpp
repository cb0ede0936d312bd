#include "layouts/BExcelExpEngAccumulatedListRpt.h"

#include <algorithm>
#include <array>

#include "engine/DefinitionTables.h"
#include "services/BankPayments.h"
#include "services/PeriodTexts.h"

namespace excelexp {
namespace {

constexpr FinancialTraits kTraits = {.class_name = "BExcelExpEngAccumulatedListRpt",
                                     .records = EntityRecords::kAllBelowCompany};

constexpr std::array<std::string_view, 1> kComponents = {"PaySystem"};

constexpr ColumnWalk kWalk = {.operation = "PrintFinancialData",
                              .banner = "     PRINT FINANCIAL INFORMATION PROCESSING     ",
                              .bank = BankRule::kCategory,
                              .component_groupings = kComponents,
                              .formats_formulas = false};

/// Components of which a sum over periods means nothing.
constexpr std::array<std::string_view, 7> kNonAdditive = {
    "FormulaOTRate",         "FormulaShiftRate",       "AnlLveBroughtForward", "AnlCurrLveEntitlement",
    "SickLveBroughtForward", "SickCurrLveEntitlement", "PayHeadCount"};

/// The sub groupings under which a range without a pay record basis stands for all of them, and where these
/// are listed.
struct AllBases {
  std::string_view sub_grouping;
  std::string_view sql;
  std::string_view column;
  std::string_view name;  ///< in messages
};

constexpr std::array<AllBases, 2> kAllBases = {{
    {"SubGrpPayRecType", "SELECT * FROM KeyWord WHERE KeywordCategory = 'Pay Rec Type'", "KeyWordId",
     "Keyword"},
    {"SubGrpPayRecId", "SELECT DISTINCT PayRecId FROM PayRecord", "PayRecId", "Pay Record ID"},
}};

const AllBases* FindAllBases(std::string_view sub_grouping) {
  const auto* found = std::find_if(kAllBases.begin(), kAllBases.end(),
                                   [&](const AllBases& all) { return all.sub_grouping == sub_grouping; });
  return found == kAllBases.end() ? nullptr : found;
}

bool IsNumeric(const ValueColumn& value) {
  return IsWholeNumber(value) || IsAmount(value);
}

}  // namespace

BExcelExpEngAccumulatedListRpt::BExcelExpEngAccumulatedListRpt(BExcelExpEngCore* core)
    : ListingLayout(core, kTraits), FinColAccuRangeQry(core->DatabaseName) {}

bool BExcelExpEngAccumulatedListRpt::ExecuteOperation() {
  return ReadReport() && ReadProject() && OpenRecords() && PrintColumnItems();
}

bool BExcelExpEngAccumulatedListRpt::PrintBlock() {
  for (FinanceColItemQry.First(); !FinanceColItemQry.Eof(); FinanceColItemQry.Next()) {
    if (!PrintFinancialData()) return false;
  }
  RaiseLastPrintedRow(current_row_);
  SetLastPrintedCol(current_col_);
  return true;
}

bool BExcelExpEngAccumulatedListRpt::PrintFinancialData() {
  core_->WriteBanner(Memo::kInternal, {kWalk.banner});
  const bool analysis = Text(FinanceColItemQry, "FinColItemType") == item_type::kAnalysis;
  return (!analysis || OpenRanges()) && WalkColumn(kWalk);
}

bool BExcelExpEngAccumulatedListRpt::OpenRanges() {
  const OperationName where = WalkWhere(kWalk);
  const std::string chosen = "SELECT * FROM FinColAccumulated WHERE FinColItemSysId = " +
                             std::to_string(FinanceColItemQry.FieldByName("FinColItemSysId").AsInteger());
  if (!core_->OpenOrLog(FinColAccuRangeQry, chosen, where, "FinColAccuRangeQry", Rows::kOptional))
    return false;
  ranges_chosen_ = FinColAccuRangeQry.RowCount() > 0;
  if (ranges_chosen_) return true;
  return core_->OpenOrLog(
      FinColAccuRangeQry,
      "SELECT DISTINCT AnlysItemRecYear AS FinColAccuYear, AnlysItemRecPeriodMonth AS FinColAccuMthPeriod, "
      "AnlysItemRecSubPeriod AS FinColAccuSubPeriod, AnlysPayRecBasis AS FinColAccuPayRecIdType FROM "
      "AnlysItemRecord " +
          DataCondition() +
          " ORDER BY AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod, AnlysPayRecBasis",
      where, "FinColAccuRangeQry", Rows::kOptional);
}

bool BExcelExpEngAccumulatedListRpt::PrintAnalysisColumn(const ColumnWalk& walk, const std::string& title,
                                                         const std::string& item_id,
                                                         const std::string& item_type,
                                                         const ValueColumn& value) {
  if (FinColAccuRangeQry.RowCount() == 0) {
    if (!PrintTitle(walk, title)) return false;
    PrintItemValue(walk, item_type, false, value);
    return true;
  }
  if (!PrintRangeTitle(walk, title)) return false;
  Accumulated result;
  if (!Accumulate(item_id, item_type, value, result)) return false;
  if (!IsNumeric(value) || result.single) {
    PrintItemValue(walk, item_type, result.found, value);
  } else {
    cells_.WriteAmount(current_row_, current_col_, result.sum);
  }
  return true;
}

bool BExcelExpEngAccumulatedListRpt::PrintRangeTitle(const ColumnWalk& walk, const std::string& title) {
  if (!AtFirstEntity()) return true;
  const bool with_ranges = FinanceColItemQry.FieldByName("FinColIncAccuRange").AsInteger() != 0;
  if (!PrintTitle(walk, with_ranges ? title + "(" + GetAccumulatedRange() + ")" : title)) return false;
  core_->ExcelAPI->SetWordWrap(core_->ExcelWorkbook, core_->ExcelWorksheetName,
                               GetCellName(current_row_ - 1, current_col_), true);
  return true;
}

bool BExcelExpEngAccumulatedListRpt::RangeStandsForAll() const {
  return ranges_chosen_ && FindAllBases(cycle_sub_group_by_) != nullptr &&
         Text(FinColAccuRangeQry, "FinColAccuPayRecIdType").empty();
}

bool BExcelExpEngAccumulatedListRpt::BasesOfRange(std::vector<std::string>& bases) {
  if (!RangeStandsForAll()) {
    bases = {Text(FinColAccuRangeQry, "FinColAccuPayRecIdType")};
    return true;
  }
  const AllBases* all = FindAllBases(cycle_sub_group_by_);
  const std::string name(all->name);
  if (!core_->ExecuteSQL(std::string(all->sql))) {
    return Fail(WalkWhere(kWalk), "Error in getting " + name + " Information.");
  }
  if (core_->SQLQry->RowCount() == 0) return Fail(WalkWhere(kWalk), "Empty " + name + " Information.");
  for (core_->SQLQry->First(); !core_->SQLQry->Eof(); core_->SQLQry->Next()) {
    bases.push_back(Text(*core_->SQLQry, all->column));
  }
  return true;
}

bool BExcelExpEngAccumulatedListRpt::Accumulate(const std::string& item_id, const std::string& item_type,
                                                const ValueColumn& value, Accumulated& result) {
  const std::string component = Text(FinanceColItemQry, "FinColComponent");
  const bool non_additive =
      std::find(kNonAdditive.begin(), kNonAdditive.end(), component) != kNonAdditive.end();
  for (FinColAccuRangeQry.First(); !FinColAccuRangeQry.Eof(); FinColAccuRangeQry.Next()) {
    range_.year = FinColAccuRangeQry.FieldByName("FinColAccuYear").AsInteger();
    range_.period_month = FinColAccuRangeQry.FieldByName("FinColAccuMthPeriod").AsInteger();
    range_.sub_period = FinColAccuRangeQry.FieldByName("FinColAccuSubPeriod").AsInteger();
    std::vector<std::string> bases;
    if (!BasesOfRange(bases)) return false;
    for (const std::string& basis : bases) {
      range_.pay_record_basis = basis;
      if (!LocateItem(item_id, item_type)) continue;
      result.found = true;
      result.single = non_additive && !RangeStandsForAll();
      if (result.single) return true;
      if (!IsNumeric(value)) continue;
      const Field field = AnlysItemRecQry.FieldByName(value.column);
      result.sum += IsWholeNumber(value) ? field.AsInteger() : field.AsFloat();
    }
  }
  return true;
}

bool BExcelExpEngAccumulatedListRpt::LocateItem(const std::string& item_id, const std::string& item_type) {
  return lookup_.Locate(range_, item_id, item_type, item_type);
}

std::string BExcelExpEngAccumulatedListRpt::GetAccumulatedRange() {
  if (!ReadCycle(Where("GetAccumulatedRange"))) return "";
  std::string text;
  for (FinColAccuRangeQry.First(); !FinColAccuRangeQry.Eof(); FinColAccuRangeQry.Next()) {
    text += (FinColAccuRangeQry.Bof() ? "" : ", ") + RangeText();
  }
  return text;
}

std::string BExcelExpEngAccumulatedListRpt::RangeText() const {
  const int year = FinColAccuRangeQry.FieldByName("FinColAccuYear").AsInteger();
  const int period = FinColAccuRangeQry.FieldByName("FinColAccuMthPeriod").AsInteger();
  const int sub_period = FinColAccuRangeQry.FieldByName("FinColAccuSubPeriod").AsInteger();
  const std::string in_year = "Yr " + std::to_string(year);
  const std::string in_period = in_year + " Pd " + std::to_string(period);
  std::string text;
  if (cycle_group_by_ == "CalenGrpYr" || cycle_group_by_ == "PeriodGrpYr") {
    text = in_year;
  } else if (cycle_group_by_ == "CalenGrpMth") {
    text = ShortMonth(year, period) + " " + std::to_string(year);
  } else if (cycle_group_by_ == "PeriodGrpPd") {
    text = in_period;
  } else if (cycle_group_by_ == "PeriodGrpSubPeriod") {
    text = in_period + " SP " + std::to_string(sub_period);
  }
  if (FindAllBases(cycle_sub_group_by_) == nullptr) return text;
  const std::string basis = Text(FinColAccuRangeQry, "FinColAccuPayRecIdType");
  return text + " " + (basis.empty() ? "ALL" : basis);
}

}  // namespace excelexp
