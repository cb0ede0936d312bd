#include "frames/LayoutTable.h"

#include <array>

#include "layouts/BExcelExpEngBreakdownListRpt.h"
#include "layouts/BExcelExpEngPayReconRpt.h"
#include "layouts/BExcelExpEngStatisticsRpt.h"
#include "layouts/BExcelExpEngVarianceRpt.h"

namespace excelexp {
namespace {

template <typename Layout>
std::unique_ptr<ReportLayout> Make(BExcelExpEngCore* core) {
  return std::make_unique<Layout>(core);
}

constexpr std::array<LayoutRow, 4> kFinancial = {{
    {"BreakdownList", AsOfDate::kAny, "ExecuteProcBreakdownListRpt",
     "       BREAKDOWN LISTING REPORT PROCESSING      ", "Breakdown Listing Report",
     Make<BExcelExpEngBreakdownListRpt>},
    {"Statistics", AsOfDate::kAny, "ExecuteProcStatisticsRpt",
     "           STATISTICS REPORT PROCESSING         ", "Statistics Report",
     Make<BExcelExpEngStatisticsRpt>},
    {"Variance", AsOfDate::kAny, "ExecuteProcVarianceRpt", "            VARIANCE REPORT PROCESSING          ",
     "Variance Report", Make<BExcelExpEngVarianceRpt>},
    {"PayReconciliation", AsOfDate::kAny, "ExecuteProcPayReconRpt",
     "       PAY RECONCILIATION REPORT PROCESSING     ", "Pay Reconciliation Report",
     Make<BExcelExpEngPayReconRpt>},
}};

}  // namespace

std::span<const LayoutRow> FinancialFrameLayouts() {
  return kFinancial;
}

std::span<const LayoutRow> InformationLayouts(std::string_view /*report_type*/) {
  return {};
}

}  // namespace excelexp
