#pragma once

#include <span>
#include <string>
#include <string_view>

#include "layouts/FinancialLayout.h"

namespace excelexp {

/// When a column's title is written above the data.
enum class TitleRule {
  kFirstEntity,      ///< on the first row of the first entity of the list
  kFirstEntityFlag,  ///< while the context's FirstEntity is set
  kAlways
};

/// How an item of the grouping "BankRecord" is printed.
enum class BankRule {
  kCategory,  ///< by payment category, the column by the item's component
  kAnyItem    ///< like every other analysis item
};

/// What the walks over a report's columns do differently. One walk prints one row of values.
struct ColumnWalk {
  std::string_view message_class = {};  ///< "" is the layout's own class
  std::string_view operation = {};      ///< as messages name it
  std::string_view banner = {};
  TitleRule titles = TitleRule::kFirstEntity;
  BankRule bank = BankRule::kAnyItem;
  bool expands_all = true;  ///< "<ALL>" items print one column per analysis item
  std::span<const std::string_view> component_groupings =
      {};                        ///< whose items are found by component, not by item
  int shift = 0;                 ///< columns of the row that stand before the first item's
  bool blank = false;            ///< print blanks of the values' types instead of values
  bool formats_formulas = true;  ///< calculated cells get the amount format
};

/// The spine of the listings: one row of columns per entity (and group), in the order of the report's column
/// items.
class ListingLayout : public FinancialLayout {
 public:
  using FinancialLayout::FinancialLayout;

 protected:
  /// Opens the report's column items and prints the block from its top left cell; a report without column
  /// items is warned about and prints nothing.
  bool PrintColumnItems();
  /// Prints the entity's block from (current_row_, current_col_) and leaves the context's counters after it.
  virtual bool PrintBlock() = 0;

  /// Prints one row at (current_row_, current_col_ + shift) and advances current_col_ past the columns
  /// printed.
  bool WalkColumns(const ColumnWalk& walk);
  /// Prints the column item that FinanceColItemQry stands on.
  bool WalkColumn(const ColumnWalk& walk);

  /// The column item that FinanceColItemQry stands on.
  KnownColumnItem& CurrentItem() const {
    return (*items_)[static_cast<std::size_t>(FinanceColItemQry.RowIndex())];
  }

  /// Moves the record query to the record of an item, in the column group being printed.
  virtual bool LocateItem(const std::string& item_id, const std::string& item_type);

  /// Prints one column of an analysis item: title and value, without the item's format.
  virtual bool PrintAnalysisColumn(const ColumnWalk& walk, const std::string& title,
                                   const std::string& item_id, const std::string& item_type,
                                   const ValueColumn& value);

  /// Prints the value of the record the query stands on, or a blank where none was found.
  void PrintItemValue(const ColumnWalk& walk, const std::string& item_type, bool found,
                      const ValueColumn& value);

  /// The warning for an "<ALL>" item without items begins with this.
  virtual std::string_view NoItemsPrefix() const { return "Warning "; }

  PeriodKey period_;  ///< the column group being printed

  bool PrintTitle(const ColumnWalk& walk, const std::string& title);
  OperationName WalkWhere(const ColumnWalk& walk) const;
  /// The column that the walk prints to next.
  int WalkCol(const ColumnWalk& walk) const { return current_col_ + walk.shift; }

 private:
  bool PrintColumn(const ColumnWalk& walk, KnownColumnItem& item, const OperationName& where);
  bool PrintAnalysisItem(const ColumnWalk& walk, KnownColumnItem& item, const OperationName& where);
  bool PrintAllItems(const ColumnWalk& walk, KnownColumnItem& item, const ValueColumn& value,
                     const OperationName& where);
  bool IsTitled(const ColumnWalk& walk) const;

  std::shared_ptr<std::vector<KnownColumnItem>> items_;  // of the rows of FinanceColItemQry
};

}  // namespace excelexp
