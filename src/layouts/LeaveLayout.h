#pragma once

#include <string>
#include <string_view>

#include "layouts/ListingLayout.h"

namespace excelexp {

/// What the two leave listings do differently.
struct LeaveTraits {
  FinancialTraits financial;
  std::string_view message_class;  ///< of the messages below ExecuteOperation's
  bool derives_groups;             ///< column groups come from the data when none are chosen
  int period_columns;              ///< columns before the items' that tell the group; totals leave them out
};

/// The spine of the leave listings: one row per column group for which the entity has records, the group's
/// texts to the left of its items. Groups without records are passed over.
class LeaveLayout : public ListingLayout {
 public:
  LeaveLayout(BExcelExpEngCore* core, const LeaveTraits& traits);

  bool ExecuteOperation() override;
  bool PrintPayRecInfo();
  /// Whether the entity has records in the current column group; false also after a failure, which is logged.
  bool CheckRowDataExist();
  bool PrintFinancialData();
  bool PrintEmptyFinancialData();
  /// The texts of the current column group, on its own row.
  virtual bool PrintPayPeriodInfo() = 0;

 protected:
  bool PrintBlock() override { return PrintPayRecInfo(); }
  /// Once per entity, before its groups.
  virtual bool PrintBlockHeading() { return true; }
  /// Before a group with records is printed.
  virtual void TakeGroup() {}

  OperationName LeaveWhere(std::string_view operation) const;
  /// Opens the title scheme and reads the project's cycle grouping.
  bool ReadGroupTexts();

 private:
  bool ReadRowDataExist(bool& exists);
  bool PrintGroup();
  /// Totals show where the first entity's cells have an amount format: gives them one when nothing was
  /// printed.
  bool FormatEmptyRow();
  bool Walk(const ColumnWalk& walk);
  ColumnWalk WalkOf(TitleRule titles, bool blank) const;

  const LeaveTraits& leave_traits_;
};

}  // namespace excelexp
