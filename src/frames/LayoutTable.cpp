#include "frames/LayoutTable.h"

#include <array>

#include "engine/DefinitionTables.h"
#include "layouts/BExcelExpEngAccumulatedListRpt.h"
#include "layouts/BExcelExpEngBreakdownListRpt.h"
#include "layouts/BExcelExpEngLeaveListDateRpt.h"
#include "layouts/BExcelExpEngLeaveListPeriodRpt.h"
#include "layouts/BExcelExpEngMovementListRpt.h"
#include "layouts/BExcelExpEngPayReconRpt.h"
#include "layouts/BExcelExpEngStatisticsRpt.h"
#include "layouts/BExcelExpEngVarianceRpt.h"
#include "layouts/InformationLayout.h"

namespace excelexp {
namespace {

template <typename Layout>
std::unique_ptr<ReportLayout> Make(BExcelExpEngCore* core) {
  return std::make_unique<Layout>(core);
}

constexpr LayoutRow kBreakdown = {"BreakdownList",
                                  AsOfDate::kAny,
                                  "ExecuteProcBreakdownListRpt",
                                  "       BREAKDOWN LISTING REPORT PROCESSING      ",
                                  "Breakdown Listing Report",
                                  Make<BExcelExpEngBreakdownListRpt>};
constexpr LayoutRow kAccumulated = {"AccumulateList",
                                    AsOfDate::kAny,
                                    "ExecuteProcAccumulatedListRpt",
                                    "       ACCUMULATED LISTING REPORT PROCESSING    ",
                                    "Accumulated Listing Report",
                                    Make<BExcelExpEngAccumulatedListRpt>};
constexpr LayoutRow kStatistics = {"Statistics",
                                   AsOfDate::kAny,
                                   "ExecuteProcStatisticsRpt",
                                   "           STATISTICS REPORT PROCESSING         ",
                                   "Statistics Report",
                                   Make<BExcelExpEngStatisticsRpt>};
constexpr LayoutRow kVariance = {"Variance",
                                 AsOfDate::kAny,
                                 "ExecuteProcVarianceRpt",
                                 "            VARIANCE REPORT PROCESSING          ",
                                 "Variance Report",
                                 Make<BExcelExpEngVarianceRpt>};
constexpr LayoutRow kMovement = {"MovementList",
                                 AsOfDate::kAny,
                                 "ExecuteProcMovementListRpt",
                                 "    STAFF MOVEMENT LISTING REPORT PROCESSING    ",
                                 "Staff Movement Listing Report",
                                 Make<BExcelExpEngMovementListRpt>};
constexpr LayoutRow kPayReconciliation = {
    "PayReconciliation",         AsOfDate::kAny,
    "ExecuteProcPayReconRpt",    "       PAY RECONCILIATION REPORT PROCESSING     ",
    "Pay Reconciliation Report", Make<BExcelExpEngPayReconRpt>};

// The leave listings' title has 44 characters.
constexpr std::string_view kLeaveBanner = "       LEAVE LISTING REPORT PROCESSING      ";
constexpr LayoutRow kLeavePeriod = {"LeaveList",
                                    AsOfDate::kNo,
                                    "ExecuteProcLeaveListPeriodRpt",
                                    kLeaveBanner,
                                    "Leave Listing Report (Pay Period)",
                                    Make<BExcelExpEngLeaveListPeriodRpt>};
constexpr LayoutRow LeaveDate(std::string_view report) {
  return {"LeaveList",  AsOfDate::kYes, "ExecuteProcLeaveListDateRpt",
          kLeaveBanner, report,         Make<BExcelExpEngLeaveListDateRpt>};
}

constexpr std::array<LayoutRow, 8> kFinancialFrame = {kBreakdown,
                                                      kAccumulated,
                                                      kStatistics,
                                                      kVariance,
                                                      kMovement,
                                                      kLeavePeriod,
                                                      LeaveDate("Leave Listing Report (As Of Date)"),
                                                      kPayReconciliation};

constexpr std::array<LayoutRow, 6> kEmployeeFrame = {
    kBreakdown, kAccumulated, kStatistics, kVariance, kLeavePeriod, LeaveDate("Leave Listing Report (Date)")};

constexpr std::array<LayoutRow, 1> kEmployeeItems = {
    {{report_type::kEmployee, AsOfDate::kAny, "ExecuteProcEmployeeRpt",
      "     EMPLOYEE INFORMATION REPORT PROCESSING     ", "Employee Information Report",
      Make<BExcelExpEngEmployeeRpt>}}};

constexpr std::array<LayoutRow, 1> kPersonalItems = {
    {{report_type::kPersonal, AsOfDate::kAny, "ExecuteProcPersonalRpt",
      "     PERSONAL INFORMATION REPORT PROCESSING     ", "Employee Information Report",
      Make<BExcelExpEngPersonalRpt>}}};

}  // namespace

std::span<const LayoutRow> FinancialFrameLayouts() {
  return kFinancialFrame;
}

std::span<const LayoutRow> EmployeeFrameLayouts() {
  return kEmployeeFrame;
}

std::span<const LayoutRow> InformationLayouts(std::string_view report_type) {
  if (report_type == report_type::kEmployee) return kEmployeeItems;
  if (report_type == report_type::kPersonal) return kPersonalItems;
  return {};
}

}  // namespace excelexp
