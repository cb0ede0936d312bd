#include "frames/ReportFrame.h"

#include <stdexcept>
#include <string>

namespace excelexp {

std::unique_ptr<ReportFrame> MakeReportFrame(std::string_view report_type, BExcelExpEngCore* /*core*/,
                                             std::vector<WkSheetItem>& /*items*/) {
  throw std::logic_error("there is no report frame for items of type " + std::string(report_type));
}

}  // namespace excelexp
