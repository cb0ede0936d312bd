#include "layouts/BExcelExpEngAccumulatedListRpt.h"

#include <algorithm>
#include <array>

#include "engine/DefinitionTables.h"
#include "platform/host/Format.h"
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
    : ListingLayout(core, kTraits),
      FinColAccuRangeQry(core->DatabaseName),
      DataRangeQry(core->DatabaseName) {}

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
  const bool analysis = CurrentItem().type == item_type::kAnalysis;
  return (!analysis || OpenRanges()) && WalkColumn(kWalk);
}

/// What was chosen is asked for once, what the data holds for each entity: another worksheet may have other
/// data under the same key.
bool BExcelExpEngAccumulatedListRpt::OpenRanges() {
  std::shared_ptr<AccumulatedRanges>& ranges = CurrentItem().ranges;
  if (ranges == nullptr && !OpenChosenRanges(ranges)) return false;
  if (!ranges->chosen && !OpenDataRanges(ranges)) return false;
  ranges_ = ranges;
  return true;
}

bool BExcelExpEngAccumulatedListRpt::OpenChosenRanges(std::shared_ptr<AccumulatedRanges>& ranges) {
  const std::string sql = "SELECT * FROM FinColAccumulated WHERE FinColItemSysId = " +
                          std::to_string(FinanceColItemQry.FieldByName("FinColItemSysId").AsInteger());
  if (!core_->OpenOrLog(FinColAccuRangeQry, sql, WalkWhere(kWalk), "FinColAccuRangeQry", Rows::kOptional))
    return false;
  const bool chosen = FinColAccuRangeQry.RowCount() > 0;
  ranges = std::make_shared<AccumulatedRanges>(
      AccumulatedRanges{chosen, nullptr, ReadRanges(FinColAccuRangeQry, chosen)});
  return true;
}

bool BExcelExpEngAccumulatedListRpt::OpenDataRanges(std::shared_ptr<AccumulatedRanges>& ranges) {
  constexpr std::string_view kSelect =
      "SELECT DISTINCT AnlysItemRecYear AS FinColAccuYear, AnlysItemRecPeriodMonth AS FinColAccuMthPeriod, "
      "AnlysItemRecSubPeriod AS FinColAccuSubPeriod, AnlysPayRecBasis AS FinColAccuPayRecIdType FROM "
      "AnlysItemRecord ";
  constexpr std::string_view kOrder =
      " ORDER BY AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod, AnlysPayRecBasis";
  if (!DataRangeQry.IsOpen() && !core_->OpenOrLog(DataRangeQry, Joined({kSelect, DataCondition(), kOrder}),
                                                  WalkWhere(kWalk), "FinColAccuRangeQry", Rows::kOptional)) {
    return false;
  }
  if (ranges->data == DataRangeQry.Result()) return true;
  ranges->data = DataRangeQry.Result();
  ranges->list = ReadRanges(DataRangeQry, false);
  return true;
}

std::vector<AccumulatedRange> BExcelExpEngAccumulatedListRpt::ReadRanges(Query& rows, bool chosen) const {
  const bool expands = chosen && FindAllBases(project_.cycle_sub_group_by) != nullptr;
  const auto number = [&rows](std::string_view field) { return rows.FieldByName(field).AsInteger(); };
  std::vector<AccumulatedRange> ranges;
  for (rows.First(); !rows.Eof(); rows.Next()) {
    AccumulatedRange& range = ranges.emplace_back();
    range.period.year = number("FinColAccuYear");
    range.period.period_month = number("FinColAccuMthPeriod");
    range.period.sub_period = number("FinColAccuSubPeriod");
    range.period.pay_record_basis = Text(rows, "FinColAccuPayRecIdType");
    range.all_bases = expands && range.period.pay_record_basis.empty();
    if (!range.all_bases) range.keys = {range.period};
  }
  return ranges;
}

bool BExcelExpEngAccumulatedListRpt::PrintAnalysisColumn(const ColumnWalk& walk, const std::string& title,
                                                         const std::string& item_id,
                                                         const std::string& item_type,
                                                         const ValueColumn& value) {
  if (ranges_->list.empty()) {
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

bool BExcelExpEngAccumulatedListRpt::ReadKeys(AccumulatedRange& range) {
  const AllBases* all = FindAllBases(project_.cycle_sub_group_by);
  const std::string name(all->name);
  if (!core_->ExecuteSQL(std::string(all->sql))) {
    return Fail(WalkWhere(kWalk), "Error in getting " + name + " Information.");
  }
  if (core_->SQLQry->RowCount() == 0) return Fail(WalkWhere(kWalk), "Empty " + name + " Information.");
  for (core_->SQLQry->First(); !core_->SQLQry->Eof(); core_->SQLQry->Next()) {
    range.keys.push_back(range.period);
    range.keys.back().pay_record_basis = Text(*core_->SQLQry, all->column);
  }
  return true;
}

bool BExcelExpEngAccumulatedListRpt::Accumulate(const std::string& item_id, const std::string& item_type,
                                                const ValueColumn& value, Accumulated& result) {
  const std::string& component = CurrentItem().component;
  const bool non_additive =
      std::find(kNonAdditive.begin(), kNonAdditive.end(), component) != kNonAdditive.end();
  const bool whole = IsWholeNumber(value);
  const bool numeric = IsNumeric(value);
  for (AccumulatedRange& range : ranges_->list) {
    if (range.keys.empty() && !ReadKeys(range)) return false;
    for (const PeriodKey& key : range.keys) {
      if (!lookup_.Locate(key, item_id, item_type, item_type)) continue;
      result.found = true;
      result.single = non_additive && !range.all_bases;
      if (result.single) return true;
      if (!numeric) continue;
      const Field field = AnlysItemRecQry.FieldByName(value.column);
      result.sum += whole ? field.AsInteger() : field.AsFloat();
    }
  }
  return true;
}

std::string BExcelExpEngAccumulatedListRpt::GetAccumulatedRange() {
  if (!ReadCycle(Where("GetAccumulatedRange"))) return "";
  std::string text;
  for (const AccumulatedRange& range : ranges_->list)
    text += (&range == &ranges_->list.front() ? "" : ", ") + RangeText(range.period);
  return text;
}

std::string BExcelExpEngAccumulatedListRpt::RangeText(const PeriodKey& range) const {
  const int year = range.year;
  const int period = range.period_month;
  const std::string in_year = "Yr " + std::to_string(year);
  const std::string in_period = in_year + " Pd " + std::to_string(period);
  std::string text;
  if (project_.cycle_group_by == "CalenGrpYr" || project_.cycle_group_by == "PeriodGrpYr") {
    text = in_year;
  } else if (project_.cycle_group_by == "CalenGrpMth") {
    text = ShortMonth(year, period) + " " + std::to_string(year);
  } else if (project_.cycle_group_by == "PeriodGrpPd") {
    text = in_period;
  } else if (project_.cycle_group_by == "PeriodGrpSubPeriod") {
    text = in_period + " SP " + std::to_string(range.sub_period);
  }
  if (FindAllBases(project_.cycle_sub_group_by) == nullptr) return text;
  return text + " " + (range.pay_record_basis.empty() ? "ALL" : range.pay_record_basis);
}

}  // namespace excelexp
