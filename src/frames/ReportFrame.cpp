#include "frames/ReportFrame.h"

#include <stdexcept>
#include <string>

#include "engine/DefinitionTables.h"
#include "frames/BExcelExpEngPrintFirstFinRpt.h"
#include "frames/InformationFrame.h"

namespace excelexp {

std::unique_ptr<ReportFrame> MakeReportFrame(std::string_view report_type, BExcelExpEngCore* core,
                                             std::vector<WkSheetItem>& items) {
  if (report_type == report_type::kFinancial)
    return std::make_unique<BExcelExpEngPrintFirstFinRpt>(core, items);
  if (report_type == report_type::kEmployee)
    return std::make_unique<BExcelExpEngPrintFirstEmpRpt>(core, items);
  if (report_type == report_type::kPersonal)
    return std::make_unique<BExcelExpEngPrintFirstPerRpt>(core, items);
  throw std::logic_error("there is no report frame for items of type " + std::string(report_type));
}

}  // namespace excelexp
