#pragma once

#include <string>
#include <vector>

#include "layouts/ListingLayout.h"

namespace excelexp {

/// The accumulated listing: one row per entity, each amount the sum of an item's records over the column's
/// accumulation ranges (without ranges: over every period of the data). The title can name the ranges.
class BExcelExpEngAccumulatedListRpt final : public ListingLayout {
 public:
  explicit BExcelExpEngAccumulatedListRpt(BExcelExpEngCore* core);

  bool ExecuteOperation() override;
  /// Prints the column item that the column query stands on.
  bool PrintFinancialData();
  /// The ranges of the current column item as text; "" after a failure.
  std::string GetAccumulatedRange();

 protected:
  bool PrintBlock() override;
  bool LocateItem(const std::string& item_id, const std::string& item_type) override;
  bool PrintAnalysisColumn(const ColumnWalk& walk, const std::string& title, const std::string& item_id,
                           const std::string& item_type, const ValueColumn& value) override;
  std::string_view NoItemsPrefix() const override { return "Warning Acc"; }

 private:
  /// What a walk over the ranges found.
  struct Accumulated {
    double sum = 0.0;
    bool found = false;
    bool single = false;  ///< a value that must not be summed: the record query stands on its record
  };

  bool OpenRanges();
  /// Whether the current range has no pay record basis and stands for all of them. One that comes from the
  /// data names the basis of its records, which can be empty: expanded it would count the others twice.
  bool RangeStandsForAll() const;
  /// The pay record bases to sum for the current range; false after a failure.
  bool BasesOfRange(std::vector<std::string>& bases);
  bool Accumulate(const std::string& item_id, const std::string& item_type, const ValueColumn& value,
                  Accumulated& result);
  bool PrintRangeTitle(const ColumnWalk& walk, const std::string& title);
  std::string RangeText() const;

  Query FinColAccuRangeQry;
  bool ranges_chosen_ = false;  ///< for the current column item; else they come from the data
  PeriodKey range_;             ///< the one being summed
};

}  // namespace excelexp
