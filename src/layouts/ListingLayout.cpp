#include "layouts/ListingLayout.h"

#include <algorithm>

#include "engine/DefinitionTables.h"
#include "services/BankPayments.h"

namespace excelexp {

OperationName ListingLayout::WalkWhere(const ColumnWalk& walk) const {
  return {walk.message_class.empty() ? traits_.class_name : walk.message_class, walk.operation};
}

bool ListingLayout::PrintColumnItems() {
  if (!core_->OpenOrLog(FinanceColItemQry, ColumnItemsSql(), Where("ExecuteOperation"), "FinanceColItemQry",
                        Rows::kOptional)) {
    return false;
  }
  if (FinanceColItemQry.RowCount() == 0) return WarnItemsNotSet("Column");
  items_ = ItemsOf(FinanceColItemQry, "FinCol");
  current_row_ = core_->StartPrintedRow;
  current_col_ = core_->LastPrintedCol;
  return PrintBlock();
}

bool ListingLayout::WalkColumns(const ColumnWalk& walk) {
  core_->WriteBanner(Memo::kInternal, {walk.banner});
  const OperationName where = WalkWhere(walk);
  for (FinanceColItemQry.First(); !FinanceColItemQry.Eof(); FinanceColItemQry.Next()) {
    if (!PrintColumn(walk, CurrentItem(), where)) return false;
  }
  return true;
}

bool ListingLayout::WalkColumn(const ColumnWalk& walk) {
  return PrintColumn(walk, CurrentItem(), WalkWhere(walk));
}

bool ListingLayout::PrintColumn(const ColumnWalk& walk, KnownColumnItem& item, const OperationName& where) {
  if (!cells_.OpenSchemes(item, where)) return false;
  if (item.type == item_type::kAnalysis) {
    if (!PrintAnalysisItem(walk, item, where)) return false;
    if (walk.expands_all && item.item == kAllItems) return true;
  } else {
    if (!PrintTitle(walk, item.title)) return false;
    const int col = WalkCol(walk);
    if (item.type == item_type::kSummaryLevel) {
      PrintEntityField(item.grouping, item.component, current_row_, col);
    } else if (item.type == item_type::kCalculated) {
      cells_.WriteFormula(
          current_row_, col,
          formulas_.DecodeColExcelFormula(item.formula, AllFormulaQry, current_cell_, current_row_));
      if (walk.formats_formulas) cells_.WriteAmountFormat(current_row_, col);
    } else if (item.type == item_type::kBlank) {
      cells_.WriteText(current_row_, col, "");
    }
  }
  if (!cells_.Format(item, current_row_, WalkCol(walk), where)) return false;
  ++current_col_;
  return true;
}

bool ListingLayout::PrintAnalysisItem(const ColumnWalk& walk, KnownColumnItem& item,
                                      const OperationName& where) {
  if (walk.bank == BankRule::kCategory && item.grouping == kBankRecordGrouping) {
    ValueColumn value;
    if (const BankColumn* column = FindBankColumn(item.component))
      value = {std::string(column->column), std::string(column->type)};
    return PrintAnalysisColumn(walk, item.title, BankPaymentCategory(item.item), item.grouping, value);
  }
  const ValueColumn* const value = ValueColumnOf(item, where);
  if (value == nullptr) return false;
  if (walk.expands_all && item.item == kAllItems) return PrintAllItems(walk, item, *value, where);
  const bool by_component = std::find(walk.component_groupings.begin(), walk.component_groupings.end(),
                                      item.grouping) != walk.component_groupings.end();
  return PrintAnalysisColumn(walk, item.title, by_component ? item.component : item.item, item.grouping,
                             *value);
}

bool ListingLayout::PrintAllItems(const ColumnWalk& walk, KnownColumnItem& item, const ValueColumn& value,
                                  const OperationName& where) {
  if (!OpenAllItems(item.grouping, where)) return false;
  if (AllFormulaQry.RowCount() == 0) WarnNoItems(item.grouping, NoItemsPrefix());
  for (AllFormulaQry.First(); !AllFormulaQry.Eof(); AllFormulaQry.Next()) {
    if (!PrintAnalysisColumn(walk, Text(AllFormulaQry, "AnlysItemDesc"), Text(AllFormulaQry, "AnlysItem1Id"),
                             item.grouping, value) ||
        !cells_.Format(item, current_row_, WalkCol(walk), where)) {
      return false;
    }
    ++current_col_;
  }
  return true;
}

bool ListingLayout::LocateItem(const std::string& item_id, const std::string& item_type) {
  return lookup_.Locate(period_, item_id, item_type, item_type);
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
