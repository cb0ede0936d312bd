// The financial frame with the breakdown listing: whole worksheets as grids.

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

/// Two periods of basic pay and an allowance for every employee; amounts tell employee, period and item.
std::string PayRecords() {
  std::string sql;
  for (int employee = 1; employee <= 5; ++employee) {
    for (int period = 1; period <= 2; ++period) {
      sql += Record(2024, period, "Normal", std::to_string(employee), "PayElement", "BASIC", "Basic pay",
                    employee * 1000 + period);
      if (employee != 3) {
        sql += Record(2024, period, "Normal", std::to_string(employee), "Allowance", "TRANSPORT", "Transport",
                      employee * 10 + period);
      }
    }
  }
  return sql;
}

std::string BasicColumn(int order, const std::string& report = "R1") {
  return ColumnItemSql({.report = report,
                        .order = order,
                        .item = "BASIC",
                        .grouping = "PayElement",
                        .component = "PayElementAmt",
                        .title = "Basic"});
}

std::string MainInfo() {
  return ColumnItemSql({.order = 1,
                        .type = "SummLvlItem",
                        .grouping = "Employee",
                        .component = "EmployeeId",
                        .title = "No.",
                        .main_info = 1}) +
         ColumnItemSql({.order = 2,
                        .type = "SummLvlItem",
                        .grouping = "Employee",
                        .component = "EmployeeName",
                        .title = "Name",
                        .main_info = 1});
}

std::string SortByEmployee() {
  return "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Employee', 'EmployeeId');\n";
}

std::string Base() {
  return MiniPayrollSql() + PayRecords() + SpreadsheetSql("S", "SumLevelEmpee");
}

TEST(FinancialFrame, BandsOfTwoItemsStandSideBySide) {
  Scenario scenario(
      Base() + FinancialItemSql({.grand_total = 1, .employee_count = 1}) + MainInfo() + SortByEmployee() +
      BasicColumn(3) +
      ColumnItemSql({.order = 4, .item = "<ALL>", .grouping = "Allowance", .component = "AllowanceAmt"}) +
      ColumnItemSql({.order = 5, .type = "CalculatedItem", .title = "Sum", .formula = "=<Item#3>+<Item#4>"}) +
      FinancialItemSql({.id = "R2", .ordering = 2}) + BasicColumn(1, "R2") +
      "INSERT INTO ExcelWSItemRptLayout VALUES (101, 1, 2024, 2, 0, 'Normal'), (102, 1, 2024, 1, 0, "
      "'Normal');");
  const ScenarioRun run = scenario.Run("S");
  ASSERT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true}), R"(
     | A                 | B        | C         | D         | E              | F
   1 |
   2 |                   |          | Year 2024 |           |                | Year 2024
   3 |                   |          | Feb       |           |                | Jan
   4 |                   |          |           |           |                |
   5 |                   |          | Normal    |           |                | Normal
   6 | No.               | Name     | Basic     | Transport | Sum            | Basic
   7 | E01               | Ana Berg | 1002      | 12        | =C7+D7 -> 1014 | 1001
   8 | E02               | Ben Cole | 2002      | 22        | =C8+D8 -> 2024 | 2001
   9 | E03               | Cy Dunn  | 3002      | 0         | =C9+D9 -> 3002 | 3001
  10 | E04               | Di Ewing | 4002      | 42        | =C10+D10 -> 4044 | 4001
  11 | E05               | Ed Frost | 5002      | 52        | =C11+D11 -> 5054 | 5001
  12 |
  13 | Grand Total | | =IF(OR(CELL("format",C7)=",2", CELL("format",C7)=",0"),SUM(C7:C11), "") -> 15010 | =IF(OR(CELL("format",D7)=",2", CELL("format",D7)=",0"),SUM(D7:D11), "") -> 128 | =IF(OR(CELL("format",E7)=",2", CELL("format",E7)=",0"),SUM(E7:E11), "") -> 15138 | =IF(OR(CELL("format",F7)=",2", CELL("format",F7)=",0"),SUM(F7:F11), "") -> 15005
  14 | Total Employees:  | 5
)");
}

TEST(FinancialFrame, WithoutMainInformationBandsBeginInColumnTwo) {
  Scenario scenario(Base() + FinancialItemSql({}) + SortByEmployee() + BasicColumn(1) +
                    "INSERT INTO ExcelWSItemRptLayout VALUES (101, 1, 2024, 1, 0, 'Normal');");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet"), R"(
     | A | B
   1 |
   2 |   | Year 2024
   3 |   | Jan
   4 |
   5 |   | Normal
   6 |   | Basic
   7 |   | 1001
   8 |   | 2001
   9 |   | 3001
  10 |   | 4001
  11 |   | 5001
)");
}

}  // namespace
}  // namespace excelexp
