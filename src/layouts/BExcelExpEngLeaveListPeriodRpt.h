#pragma once

#include <optional>

#include "layouts/LeaveLayout.h"

namespace excelexp {

/// The leave listing by pay period: each row begins with year, period, sub period and pay record basis of its
/// group; a group of the same period as the one before shows its basis only.
class BExcelExpEngLeaveListPeriodRpt final : public LeaveLayout {
 public:
  explicit BExcelExpEngLeaveListPeriodRpt(BExcelExpEngCore* core);

  bool PrintPayPeriodInfo() override;

 protected:
  void TakeGroup() override;

 private:
  bool PrintText(int column, const std::string& text);

  bool new_period_ = false;
  std::optional<PeriodKey> previous_;
};

}  // namespace excelexp
