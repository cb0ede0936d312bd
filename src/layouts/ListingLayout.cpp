#include "layouts/ListingLayout.h"

#include <algorithm>

#include "engine/DefinitionTables.h"
#include "services/BankPayments.h"

namespace excelexp {

std::string ListingLayout::WalkWhere(const ColumnWalk& walk) const {
  return std::string(walk.message_class.empty() ? traits_.class_name : walk.message_class) +
         "::" + std::string(walk.operation);
}

bool ListingLayout::PrintColumnItems() {
  if (!core_->OpenOrLog(FinanceColItemQry, ColumnItemsSql(), Where("ExecuteOperation"), "FinanceColItemQry",
                        Rows::kOptional)) {
    return false;
  }
  if (FinanceColItemQry.RowCount() == 0) return WarnItemsNotSet("Column");
  current_row_ = core_->StartPrintedRow;
  current_col_ = core_->LastPrintedCol;
  return PrintBlock();
}

bool ListingLayout::WalkColumns(const ColumnWalk& walk) {
  core_->WriteBanner(Memo::kInternal, {walk.banner});
  for (FinanceColItemQry.First(); !FinanceColItemQry.Eof(); FinanceColItemQry.Next()) {
    if (!WalkColumn(walk)) return false;
  }
  return true;
}

bool ListingLayout::WalkColumn(const ColumnWalk& walk) {
  const std::string type = Text(FinanceColItemQry, "FinColItemType");
  const std::string scheme = Text(FinanceColItemQry, "ColourSchemeId");
  const std::string title = Text(FinanceColItemQry, "FinColItemTitle");
  const std::string where = WalkWhere(walk);
  if (!cells_.OpenSchemes(scheme, where)) return false;
  if (type == item_type::kAnalysis) {
    if (!PrintAnalysisItem(walk)) return false;
    if (walk.expands_all && Text(FinanceColItemQry, "FinColItem") == kAllItems) return true;
  } else {
    if (!PrintTitle(walk, title)) return false;
    const int col = WalkCol(walk);
    if (type == item_type::kSummaryLevel) {
      PrintEntityField(Text(FinanceColItemQry, "FinColGrouping"), Text(FinanceColItemQry, "FinColComponent"),
                       current_row_, col);
    } else if (type == item_type::kCalculated) {
      cells_.WriteFormula(current_row_, col,
                          formulas_.DecodeColExcelFormula(Text(FinanceColItemQry, "FinColExcelFormula"),
                                                          AllFormulaQry, current_cell_, current_row_));
      if (walk.formats_formulas) cells_.WriteAmountFormat(current_row_, col);
    } else if (type == item_type::kBlank) {
      cells_.WriteText(current_row_, col, "");
    }
  }
  if (!cells_.Format(scheme, current_row_, WalkCol(walk), where)) return false;
  ++current_col_;
  return true;
}

bool ListingLayout::PrintAnalysisItem(const ColumnWalk& walk) {
  const std::string grouping = Text(FinanceColItemQry, "FinColGrouping");
  const std::string component = Text(FinanceColItemQry, "FinColComponent");
  const std::string item = Text(FinanceColItemQry, "FinColItem");
  const std::string title = Text(FinanceColItemQry, "FinColItemTitle");
  ValueColumn value;
  if (walk.bank == BankRule::kCategory && grouping == kBankRecordGrouping) {
    if (const BankColumn* column = FindBankColumn(component))
      value = {std::string(column->column), std::string(column->type)};
    return PrintAnalysisColumn(walk, title, BankPaymentCategory(item), grouping, value);
  }
  if (!ReadValueColumn(grouping, component, WalkWhere(walk), value)) return false;
  if (walk.expands_all && item == kAllItems) return PrintAllItems(walk, grouping, value);
  const bool by_component = std::find(walk.component_groupings.begin(), walk.component_groupings.end(),
                                      grouping) != walk.component_groupings.end();
  return PrintAnalysisColumn(walk, title, by_component ? component : item, grouping, value);
}

bool ListingLayout::PrintAllItems(const ColumnWalk& walk, const std::string& grouping,
                                  const ValueColumn& value) {
  const std::string where = WalkWhere(walk);
  const std::string scheme = Text(FinanceColItemQry, "ColourSchemeId");
  if (!OpenAllItems(grouping, where)) return false;
  if (AllFormulaQry.RowCount() == 0) WarnNoItems(grouping, NoItemsPrefix());
  for (AllFormulaQry.First(); !AllFormulaQry.Eof(); AllFormulaQry.Next()) {
    if (!PrintAnalysisColumn(walk, Text(AllFormulaQry, "AnlysItemDesc"), Text(AllFormulaQry, "AnlysItem1Id"),
                             grouping, value) ||
        !cells_.Format(scheme, current_row_, WalkCol(walk), where)) {
      return false;
    }
    ++current_col_;
  }
  return true;
}

bool ListingLayout::PrintAnalysisColumn(const ColumnWalk& walk, const std::string& title,
                                        const std::string& item_id, const std::string& item_type,
                                        const ValueColumn& value) {
  if (!PrintTitle(walk, title)) return false;
  PrintItemValue(walk, item_type, !walk.blank && LocateItem(item_id, item_type), value);
  return true;
}

void ListingLayout::PrintItemValue(const ColumnWalk& walk, const std::string& item_type, bool found,
                                   const ValueColumn& value) {
  if (item_type == kBankRecordGrouping && walk.bank == BankRule::kCategory) {
    PrintBankValue(found, value, current_row_, WalkCol(walk));
  } else {
    PrintValue(found, value, current_row_, WalkCol(walk));
  }
}

bool ListingLayout::IsTitled(const ColumnWalk& walk) const {
  switch (walk.titles) {
    case TitleRule::kFirstEntity:
      return AtFirstEntity() && current_row_ == core_->StartPrintedRow;
    case TitleRule::kFirstEntityFlag:
      return core_->FirstEntity;
    case TitleRule::kAlways:
      break;
  }
  return true;
}

bool ListingLayout::PrintTitle(const ColumnWalk& walk, const std::string& title) {
  return !IsTitled(walk) || cells_.WriteTitle(current_row_ - 1, WalkCol(walk), title, WalkWhere(walk));
}

}  // namespace excelexp
