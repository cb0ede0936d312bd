#pragma once

#include "layouts/LeaveLayout.h"

namespace excelexp {

/// The leave listing as of a date: the column groups' year, period and sub period are year, month and day.
/// The first group's day heads the block, each row begins with its group's pay record basis.
class BExcelExpEngLeaveListDateRpt final : public LeaveLayout {
 public:
  explicit BExcelExpEngLeaveListDateRpt(BExcelExpEngCore* core);

  bool PrintPayPeriodInfo() override;
  bool PrintAsOfDateInfo();

 protected:
  bool PrintBlockHeading() override;
};

}  // namespace excelexp
