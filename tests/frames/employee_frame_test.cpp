// Worksheets whose first item is an employee information report: whole worksheets as grids.

#include "frames/InformationFrame.h"
#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/people.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

std::string Base(const InformationItem& first = {}) {
  return PeopleSql() + SpreadsheetSql("S", "SumLevelEmpee") + InformationItemSql(first);
}

std::string NameColumn(int order, int main_info = 0, const std::string& report = "I1") {
  return InformationColumnSql({.order = order,
                               .attribute = "EmployeeName",
                               .title = "Name",
                               .main_info = main_info,
                               .report = report});
}

std::string PayItem(int ordering) {
  return "INSERT INTO ExcelWkSheetItem VALUES (300, 1, " + std::to_string(ordering) +
         ", 'FinancialRpt', 'Pay'); INSERT INTO ExcelWSItemRptOpts (WkSheetItemSysId) VALUES (300);";
}

/// Runs and expects success.
ScenarioRun RunOf(Scenario& scenario) {
  ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  return run;
}

TEST(EmployeeFrame, EmployeesInOrderOfACalculatedFieldWithFamilyRowsBesidePay) {
  Scenario scenario(Base({.employee_count = 1}) + NameColumn(1, 1) +
                    InformationColumnSql({.order = 2, .attribute = "ServiceYears", .title = "Years"}) +
                    InformationColumnSql({.order = 3, .title = "Remarks"}) +
                    InformationColumnSql({.order = 4, .attribute = "DepartmentDesc", .title = "Department"}) +
                    InformationSortSql(1, "Employee", "ServiceYears") +
                    InformationItemSql({.id = "I2", .ordering = 2, .type = "Family"}) +
                    InformationColumnSql({.order = 1,
                                          .table = "Family",
                                          .attribute = "FamilyMemberName",
                                          .title = "Family",
                                          .report = "I2"}) +
                    PayItem(3));
  const ScenarioRun run = RunOf(scenario);
  EXPECT_GRID(run.Grid("Sheet"), R"(
     | A        | B     | C       | D          | E      | F
   1 |
   2 |          |       |         |            |        | Year 2024
   3 |          |       |         |            |        | Period 6
   4 |
   5 |          |       |         |            |        | Normal
   6 | Name     | Years | Remarks | Department | Family | Basic
   7 | Ed Frost | 0.75  |         | Works      |        | 0
   8 | Di Ewing | 1.83  |         | Works      | Cleo   | 2600
   9 | Cy Dunn  | 2.92  |         | Sales      |        | 0
  10 | Ben Cole | 5     |         | Sales      |        | 0
  11 | Ana Berg | 5.08  |         | Sales      | Abe    | 3100
  12 |          |       |         |            | Amy    |
  13 |          |       |         |            | Ann    |
  14 |
  15 | Total Employees: | 5
)");
}

}  // namespace
}  // namespace excelexp
