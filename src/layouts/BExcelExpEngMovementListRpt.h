#pragma once

#include <string>

#include "layouts/ListingLayout.h"

namespace excelexp {

/// The staff movement listing: one row per entity with the values of one reporting period, under one merged
/// heading that names the period covered. Its records carry no pay record basis. The report options hold the
/// one period; were there several, the first would be printed: the figures are those of the heading's period.
class BExcelExpEngMovementListRpt final : public ListingLayout {
 public:
  explicit BExcelExpEngMovementListRpt(BExcelExpEngCore* core);

  bool ExecuteOperation() override;
  bool PrintPayRecInfo();
  bool PrintPayPeriodInfo();
  bool PrintFinancialData();
  /// The width of the heading: the number of column items, however many columns these expand to.
  int GetNoOfMergeCells() const { return FinanceColItemQry.RowCount(); }

 protected:
  bool PrintBlock() override { return PrintPayRecInfo(); }

 private:
  /// What the data holds, in the columns of the report options.
  std::string DataOptionsSql() const;
  void TakePeriod();
  /// "Staff Movement Report for ..." for the current period; "" for other groupings than by year and month.
  std::string HeadingText() const;
};

}  // namespace excelexp
