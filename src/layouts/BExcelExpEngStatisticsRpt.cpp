#include "layouts/BExcelExpEngStatisticsRpt.h"

#include <array>

namespace excelexp {
namespace {

/// The sum of a row, for rows of amounts only: what the first period's cell is formatted as tells.
std::string YearToDate(const std::string& first, const std::string& last) {
  return "=IF(OR(CELL(\"format\"," + first + ")=\",2\", CELL(\"format\"," + first + ")=\",0\"),SUM(" + first +
         ":" + last + "), \"\")";
}

constexpr std::array<std::string_view, 3> kComponentGroupings = {"PaySystem", "LeaveSystem",
                                                                 "LeaveCareerSystem"};

constexpr MatrixTraits kTraits = {
    .financial = {.class_name = "BExcelExpEngStatisticsRpt", .records = EntityRecords::kAllBelowCompany},
    .row_banner = "   PRINT FINANCIAL ROW INFORMATION PROCESSING   ",
    .periods = MatrixPeriods::kChosenOrData,
    .heading_scheme_where = "BExcelExpEngStatisticsRpt::PrintPayPeriodInfo",
    .project_where = "BExcelExpEngStatisticsRpt::PrintPayPeriodInfo",
    .component_groupings = kComponentGroupings,
    .formats_formulas = false,  // a year to date of rates would be a wrong figure: theirs stays empty
    .summary = {.title = "YTD", .formula = YearToDate}};

}  // namespace

BExcelExpEngStatisticsRpt::BExcelExpEngStatisticsRpt(BExcelExpEngCore* core) : MatrixLayout(core, kTraits) {}

}  // namespace excelexp
