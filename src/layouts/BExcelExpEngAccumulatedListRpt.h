#pragma once

#include <memory>
#include <string>
#include <vector>

#include "layouts/ListingLayout.h"

namespace excelexp {

/// One of the ranges that a column sums over.
struct AccumulatedRange {
  PeriodKey period;
  /// It was chosen without a pay record basis and stands for all of them. One that comes from the data names
  /// the basis of its records, which can be empty: expanded it would count the others twice.
  bool all_bases = false;
  std::vector<PeriodKey> keys;  ///< of the records, once a cell has asked for them
};

struct AccumulatedRanges {
  bool chosen = false;                    ///< for the column item; else they come from the data
  std::shared_ptr<const ResultSet> data;  ///< that those were read from
  std::vector<AccumulatedRange> list;
};

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
  bool OpenChosenRanges(std::shared_ptr<AccumulatedRanges>& ranges);
  bool OpenDataRanges(std::shared_ptr<AccumulatedRanges>& ranges);
  std::vector<AccumulatedRange> ReadRanges(Query& rows, bool chosen) const;
  /// Fills the keys of a range; false after a failure.
  bool ReadKeys(AccumulatedRange& range);
  bool Accumulate(const std::string& item_id, const std::string& item_type, const ValueColumn& value,
                  Accumulated& result);
  bool PrintRangeTitle(const ColumnWalk& walk, const std::string& title);
  std::string RangeText(const PeriodKey& range) const;

  Query FinColAccuRangeQry;
  Query DataRangeQry;
  std::shared_ptr<AccumulatedRanges> ranges_;  // of the current column item
};

}  // namespace excelexp
