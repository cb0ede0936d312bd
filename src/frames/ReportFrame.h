#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "engine/BExcelExpEngCore.h"
#include "engine/WkSheetItem.h"

namespace excelexp {

/// Prints all items of one worksheet, entity by entity. Made for one worksheet, used once.
class ReportFrame {
 public:
  ReportFrame() = default;
  ReportFrame(const ReportFrame&) = delete;
  ReportFrame& operator=(const ReportFrame&) = delete;
  virtual ~ReportFrame() = default;

  /// False after a failure, which is in the logs.
  virtual bool ExecuteOperation() = 0;
};

/// The frame for a worksheet whose first item has that type (a value in report_type). `items` outlives it.
std::unique_ptr<ReportFrame> MakeReportFrame(std::string_view report_type, BExcelExpEngCore* core,
                                             std::vector<WkSheetItem>& items);

}  // namespace excelexp
