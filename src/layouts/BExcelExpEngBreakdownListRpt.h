#pragma once

#include <string>

#include "layouts/ListingLayout.h"

namespace excelexp {

/// The breakdown listing: one block of columns per pay period, each with one column per column item (an
/// "<ALL>" item: one per analysis item), under five heading rows above the first entity. Timesheet projects
/// print one row per job code (and date).
class BExcelExpEngBreakdownListRpt final : public ListingLayout {
 public:
  explicit BExcelExpEngBreakdownListRpt(BExcelExpEngCore* core);

  bool ExecuteOperation() override;
  bool PrintPayRecInfo();
  bool PrintTimeSheetInfo();
  /// The heading rows of the column group that ExcelRptLayoutQry stands on.
  bool PrintPayPeriodInfo();
  /// The width of one column group; 0 after a failure.
  int GetNoOfMergeCells();
  bool PrintFinancialData();
  /// The job code (and date) of one timesheet row.
  bool PrintTimesheetData();
  bool PrintTimesheetFinData();
  bool PrintEmptyTimesheetFinData();

 protected:
  bool PrintBlock() override;
  bool LocateItem(const std::string& item_id, const std::string& item_type) override;

 private:
  bool CountColumns(int& width);
  bool PrintTimesheetGroup();
  bool OpenTimesheetRows();
  bool PrintTimesheetKey(const std::string& title, const std::string& value);
  bool PrintHeading(int row, const std::string& text, int width);
  /// The columns of the basis pair that tell timesheet rows apart at the worksheet's summary level.
  std::string FirstPairColumn() const;
  std::string SecondPairColumn() const;

  Query TimesheetBasisQry;
  bool by_basis_pair_ = false;  ///< records are found by the current timesheet row's basis pair too
};

}  // namespace excelexp
