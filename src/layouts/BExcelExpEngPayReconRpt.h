#pragma once

#include <string>
#include <vector>

#include "layouts/MatrixLayout.h"

namespace excelexp {

/// The pay reconciliation: a pay period beside an earlier one. The columns are the report's status items:
/// the current value, the previous value or the variance, which one record holds together.
class BExcelExpEngPayReconRpt final : public MatrixLayout {
 public:
  explicit BExcelExpEngPayReconRpt(BExcelExpEngCore* core);

  /// The headings of both periods over the whole block; also makes the labels of the status titles.
  bool PrintPayPeriodInfo() override;
  /// The titles of the status columns, one column right of the current one.
  bool PrintColStatusFinancialData();

 protected:
  bool OpenColumnItems() override;
  bool PrintBlock() override;
  bool PrintBlockHeadings() override;
  std::vector<MatrixColumn> ColumnsOfPeriod() override;
  ValueColumn BankValue(const BankColumn& column, const std::string& map_column) override;

 private:
  bool PrintStatusTitle();
  bool MergeHeading(int row);
  /// "Year 2024 Mar": a period as it is named below a status title.
  std::string PeriodLabel(int year, int period) const;

  Query FinanceColItemStatusQry;
  std::string current_label_;
  std::string previous_label_;
};

}  // namespace excelexp
