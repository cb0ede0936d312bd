#include "layouts/BExcelExpEngVarianceRpt.h"

#include <array>

namespace excelexp {
namespace {

/// What changed from the first period to the last, for rows of amounts only: what the last period's cell is
/// formatted as tells.
std::string Variance(const std::string& first, const std::string& last) {
  return "=IF(OR(CELL(\"format\"," + last + ")=\",2\", CELL(\"format\"," + last + ")=\",0\")," + last + "-" +
         first + ", \"\")";
}

constexpr std::array<std::string_view, 1> kComponentGroupings = {"PaySystem"};

constexpr MatrixTraits kTraits = {
    .financial = {.class_name = "BExcelExpEngVarianceRpt", .records = EntityRecords::kAllBelowCompany},
    .periods = MatrixPeriods::kChosen,
    .no_periods_warning = "Warning: The pay periods to be printed for the variance report is not selected.",
    .project_where = "ExcelExpEngVarianceRpt",
    .component_groupings = kComponentGroupings,
    .summary = {.title = "Variance", .formula = Variance}};

}  // namespace

BExcelExpEngVarianceRpt::BExcelExpEngVarianceRpt(BExcelExpEngCore* core) : MatrixLayout(core, kTraits) {}

}  // namespace excelexp
