// Where the totals of the information frames differ from each other. Their worksheets never ask for sums by
// themselves, so the totals are asked here directly.

#include "frames/FrameTotals.h"
#include "frames/InformationFrame.h"
#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

/// Reports of every layout that a frame could be asked to sum.
std::string Reports() {
  return MiniPayrollSql() + FinancialItemSql({.id = "Breakdown", .ordering = 1}) +
         FinancialItemSql({.id = "Accumulated", .ordering = 2, .layout = "AccumulateList"}) +
         FinancialItemSql({.id = "Leave", .ordering = 3, .layout = "LeaveList"}) +
         FinancialItemSql(
             {.id = "LeaveDay", .ordering = 4, .layout = "LeaveList", .cycle_method = "CycMtdLveAsOfDate"}) +
         FinancialItemSql({.id = "Movement", .ordering = 5, .layout = "MovementList"});
}

/// Two bands of entities in rows 5 and 6, five financial items and one about employees side by side.
class TwinTotals {
 public:
  TwinTotals(Scenario& scenario, const FrameTraits& traits) : totals_(MakeReady(scenario), traits, items_) {}

  /// A subtotal with its count, the grand total of the grouped report with its count, and that of the same
  /// report ungrouped.
  bool PrintAll() {
    std::vector<GrpItem> groups(2);
    groups[0] = {.FinGrpItemTitle = "Unused",
                 .FinGrpItemOrder = 1,
                 .FinGrpHasSubTotal = 1,
                 .FinGrpHasEmpCount = 1,
                 .GrpRowRanges = "<Col5>:<Col5>, <Col6>:<Col6>",
                 .GrpEmpCount = 2};
    groups[1].GrpRowRanges = "<Col5>:<Col6>";
    groups[1].GrpEmpCount = 7;
    return totals_.PrintGrpSubTotalEmpCt(1, groups, 5) && totals_.PrintRptGrandTotalEmpCt(groups, 5) &&
           totals_.PrintRptGrandTotalEmpCt({}, 5);
  }
  std::string Grid() const {
    const Workbook& workbook = *core_.ExcelWorkbook.Get();
    return DumpSheet(workbook, *workbook.FindSheet("Sheet"), {.formulas = true});
  }
  std::vector<std::string> Errors() const {
    ScenarioRun run;
    run.internal_log = log_.Lines();
    return run.Errors();
  }

 private:
  BExcelExpEngCore* MakeReady(Scenario& scenario) {
    scenario.Attach(core_, log_, log_);
    core_.SetExcelAPI(&api_);
    core_.SetExcelWorkbook(api_.CreateWorkbook(1));
    api_.CreateNewTable(core_.ExcelWorkbook, "Sheet");
    core_.SetExcelWorksheetName("Sheet");
    core_.SetExcelWkSheetTitleColourSchemeId("Title");
    core_.SetFirstWSItemHasGrandTot(1);
    core_.SetFirstWSItemHasTotEmpCt(1);
    core_.SetLastPrintedRow(6);
    EXPECT_TRUE(core_.ExecuteEmpCoyBasisSQL("SELECT 1 AS Basis1Id UNION SELECT 2"));
    return &core_;
  }

  MemoryLineSink log_;
  BExcelAPI api_;
  BExcelExpEngCore core_;
  std::vector<WkSheetItem> items_ = {
      {1, 1, "FinancialRpt", "Breakdown", 2, 3},  {2, 2, "FinancialRpt", "Accumulated", 4, 4},
      {3, 3, "FinancialRpt", "Leave", 5, 9},      {4, 4, "FinancialRpt", "LeaveDay", 10, 11},
      {5, 5, "FinancialRpt", "Movement", 12, 12}, {6, 6, "EmployeeRpt", "Breakdown", 13, 13}};
  FrameTotals totals_;
};

TEST(TwinTotals, BesideEmployeesAmountsWithDecimalsAreSummed) {
  // Layouts are asked for in "varndb": the context's database knows none of these reports.
  Scenario scenario(Reports(), MiniPayrollSql());
  TwinTotals totals(scenario, BExcelExpEngPrintFirstEmpRpt::Traits());
  EXPECT_TRUE(totals.PrintAll());
  EXPECT_GRID(totals.Grid(), R"(
     | A | B | C | D | E | F | G | H | I | J | K
   1 |
   2 |
   3 |
   4 |
   5 |
   6 |
   7 | Sub Total | =IF(CELL("format",B5)=",2",SUM(B5:B5, B6:B6), "") -> ? | =IF(CELL("format",C5)=",2",SUM(C5:C5, C6:C6), "") -> ? | =IF(CELL("format",D5)=",2",SUM(D5:D5, D6:D6), "") -> ? | | | | | =IF(CELL("format",I5)=",2",SUM(I5:I5, I6:I6), "") -> ? | | =IF(CELL("format",K5)=",2",SUM(K5:K5, K6:K6), "") -> ?
   8 | Total Employees | 2
   9 |
  10 | Grand Total | =IF(CELL("format",B5)=",2",SUM(B5:B6), "") -> ? | =IF(CELL("format",C5)=",2",SUM(C5:C6), "") -> ? | =IF(CELL("format",D5)=",2",SUM(D5:D6), "") -> ? | | | | | =IF(CELL("format",I5)=",2",SUM(I5:I6), "") -> ? | | =IF(CELL("format",K5)=",2",SUM(K5:K6), "") -> ?
  11 | Total Employees:  | 7
  12 |
  13 | Grand Total | =IF(CELL("format",B5)=",2",SUM(B5:B11), "") -> ? | =IF(CELL("format",C5)=",2",SUM(C5:C11), "") -> ? | =IF(CELL("format",D5)=",2",SUM(D5:D11), "") -> ? | | | | | =IF(CELL("format",I5)=",2",SUM(I5:I11), "") -> ? | | =IF(CELL("format",K5)=",2",SUM(K5:K11), "") -> ?
  14 | Total Employees:  | 2
)");
}

TEST(TwinTotals, BesidePersonsTwoListingsAreSummedAlways) {
  // Layouts are asked for in the context's database, and without the report's project.
  Scenario scenario(MiniPayrollSql(), Reports() + "DELETE FROM AnlysProject;");
  TwinTotals totals(scenario, BExcelExpEngPrintFirstPerRpt::Traits());
  EXPECT_TRUE(totals.PrintAll());
  EXPECT_GRID(totals.Grid(), R"(
     | A | B | C | D
   1 |
   2 |
   3 |
   4 |
   5 |
   6 |
   7 | Sub Total | =SUM(B5:B5, B6:B6) -> ? | =SUM(C5:C5, C6:C6) -> ? | =SUM(D5:D5, D6:D6) -> ?
   8 | Total Employees | 2
   9 |
  10 | Grand Total | =SUM(B5:B6) -> ? | =SUM(C5:C6) -> ? | =SUM(D5:D6) -> ?
  11 | Total Employees:  | 7
  12 |
  13 | Grand Total | =SUM(B5:B11) -> ? | =SUM(C5:C11) -> ? | =SUM(D5:D11) -> ?
  14 | Total Employees:  | 2
)");
}

TEST(TwinTotals, FailuresNameTheFrame) {
  const struct {
    const char* sql;
    const FrameTraits& traits;
    const char* entry;
  } cases[] = {
      {"DELETE FROM FinancialRpt;", BExcelExpEngPrintFirstEmpRpt::Traits(),
       "BExcelExpEngPrintFirstEmpRpt::PrintGrpSubTotalEmpCt Error: Empty financial report layout scheme "
       "information."},
      {"ALTER TABLE FinancialRpt RENAME TO Gone;", BExcelExpEngPrintFirstPerRpt::Traits(),
       "BExcelExpEngPrintFirstPerRpt::PrintGrpSubTotalEmpCt Error: Error in getting the financial report "
       "layout scheme."},
      {"DELETE FROM ColourScheme;", BExcelExpEngPrintFirstEmpRpt::Traits(),
       "BExcelExpEngPrintFirstEmpRpt::PrintGrpSubTotalEmpCt Error: Empty ColourSchemeQry Recordset."},
  };
  for (const auto& each : cases) {
    Scenario scenario(Reports() + "PRAGMA foreign_keys = OFF;" + each.sql);
    TwinTotals totals(scenario, each.traits);
    EXPECT_FALSE(totals.PrintAll());
    EXPECT_THAT(totals.Errors(), testing::ElementsAre(each.entry));
  }
}

}  // namespace
}  // namespace excelexp
