#include "frames/LayoutTable.h"

#include <array>

#include "layouts/BExcelExpEngBreakdownListRpt.h"

namespace excelexp {
namespace {

template <typename Layout>
std::unique_ptr<ReportLayout> Make(BExcelExpEngCore* core) {
  return std::make_unique<Layout>(core);
}

constexpr std::array<LayoutRow, 1> kFinancial = {{
    {"BreakdownList", AsOfDate::kAny, "ExecuteProcBreakdownListRpt",
     "       BREAKDOWN LISTING REPORT PROCESSING      ", "Breakdown Listing Report",
     Make<BExcelExpEngBreakdownListRpt>},
}};

}  // namespace

std::span<const LayoutRow> FinancialFrameLayouts() {
  return kFinancial;
}

std::span<const LayoutRow> InformationLayouts(std::string_view /*report_type*/) {
  return {};
}

}  // namespace excelexp
