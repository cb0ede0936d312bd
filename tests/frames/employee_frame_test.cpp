// Worksheets whose first item is an information report about employees: whole worksheets as grids.

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/people.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

std::string Base(const InformationItem& first = {}) {
  return PeopleSql() + SpreadsheetSql("S", "SumLevelEmpee") + InformationItemSql(first);
}

std::string NameColumn(int order, int main_info) {
  return InformationColumnSql(
      {.order = order, .attribute = "EmployeeName", .title = "Name", .main_info = main_info});
}

std::string FamilyItem(int ordering, const std::string& filter = "") {
  return InformationItemSql({.id = "I2", .ordering = ordering, .type = "Family", .filter = filter}) +
         InformationColumnSql(
             {.table = "Family", .attribute = "FamilyMemberName", .title = "Family", .report = "I2"});
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
                    InformationSortSql(1, "Employee", "ServiceYears") + FamilyItem(2) + PayItemSql(3));
  EXPECT_GRID(RunOf(scenario).Grid("Sheet"), R"(
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

TEST(EmployeeFrame, ACountFollowsEveryLevelThatEndsAndAsksForOne) {
  // Both departments have a section East alone: the section's name does not change where it ends, and the
  // department, which does change, prints no count of its own.
  const std::string groups = InformationGroupSql(2, "Employee", "SectionDesc", "Section", 1);
  Scenario scenario(Base({.employee_count = 1}) + NameColumn(1, 1) +
                    InformationSortSql(1, "Employee", "EmployeeId") +
                    InformationColumnSql({.order = 2, .attribute = "EmployeeId", .title = "No."}) + groups +
                    InformationGroupSql(1, "Employee", "DepartmentDesc", "Department", 0) +
                    "UPDATE Employee SET SectionId = 'E' WHERE EmployeeSysId = 3;");
  EXPECT_GRID(RunOf(scenario).Grid("Sheet"), R"(
     | A          | B
   1 |
   2 |
   3 | Department | Sales
   4 | Section    | East
   5 |
   6 |
   7 |
   8 |
   9 |
  10 | Name       | No.
  11 | Ana Berg   | E01
  12 | Ben Cole   | E02
  13 | Cy Dunn    | E03
  14 | Total Employees | 3
  15 |
  16 | Department | Works
  17 | Section    | East
  18 |
  19 |
  20 |
  21 |
  22 |
  23 | Name       | No.
  24 | Di Ewing   | E04
  25 | Ed Frost   | E05
  26 | Total Employees | 2
  27 |
  28 | Total Employees: | 5
)");

  // Headings without any count.
  scenario.Execute(
      "UPDATE EmpGrpItem SET EmpGrpHasEmpCount = 0; DELETE FROM EmpGrpItem WHERE EmpGrpItemOrder = 2");
  const std::string grid = RunOf(scenario).Grid("Sheet");
  EXPECT_EQ(grid.find("Total Employees |"), std::string::npos) << grid;
  EXPECT_NE(grid.find("Works"), std::string::npos) << grid;
}

TEST(EmployeeFrame, GroupsByDateNumberAndNothingKeepTheirPeople) {
  Scenario scenario(Base() + NameColumn(1, 0) + InformationSortSql(1, "Employee", "EmployeeId") +
                    InformationGroupSql(1, "Employee", "BasicRate", "Rate", 1) +
                    InformationGroupSql(2, "Employee", "ConfirmDate", "Confirmed", 1) +
                    "UPDATE Employee SET BasicRate = 0.1 WHERE EmployeeSysId > 2;"
                    "UPDATE Employee SET ConfirmDate = '2024-02-29' WHERE EmployeeSysId = 5;");
  std::string seen;
  for (const std::string& line : RunOf(scenario).user_log) {
    if (line.starts_with("Employee ID") || line.find("SUB TOTAL") != std::string::npos)
      seen += line.substr(0, 16) + "\n";
  }
  EXPECT_EQ(seen,
            "Employee ID: E01\n  REPORT GROUPIN\n"
            "  REPORT GROUPIN\n"
            "Employee ID: E03\nEmployee ID: E04\n  REPORT GROUPIN\n"
            "Employee ID: E05\n  REPORT GROUPIN\n  REPORT GROUPIN\n"
            "Employee ID: E02\n  REPORT GROUPIN\n  REPORT GROUPIN\n");
}

TEST(EmployeeFrame, TheFirstReportsPeopleArePrintedWhateverTheLaterOnesSelect) {
  // The second report would leave Di out and has nothing about Ben: both get a row of blanks there. The third
  // has nobody in common with the first, and the fourth is about persons: neither prints anything.
  Scenario scenario(
      Base({.filter = "Employee.EmployeeSysId IN (1, 2, 4)"}) + NameColumn(1, 1) +
      InformationSortSql(1, "Employee", "EmployeeId") +
      FamilyItem(2, "Employee.DepartmentId = 'SAL' OR 1 = 0") +
      InformationColumnSql({.order = 2, .attribute = "BasicRate", .title = "Rate", .report = "I2"}) +
      InformationItemSql({.id = "I3", .ordering = 3, .filter = "Employee.EmployeeSysId = 5"}) +
      InformationColumnSql({.attribute = "EmployeeId", .title = "Apart", .report = "I3"}) +
      InformationItemSql({.id = "I4", .ordering = 4, .type = "Personal", .employees_only = 0}) +
      InformationColumnSql({.attribute = "EmployeeId", .title = "Person", .report = "I4"}) +
      "UPDATE Employee SET EmployeeSysId = 16 WHERE 0;");
  const ScenarioRun run = RunOf(scenario);
  EXPECT_GRID(run.Grid("Sheet", {.formats = false}), R"(
     | A        | B      | C
   1 |
   2 |
   3 |
   4 |
   5 |
   6 | Name     | Family | Rate
   7 | Ana Berg | Abe    | 0
   8 |          | Amy    | 0
   9 |          | Ann    | 0
  10 | Ben Cole |        | 2500
  11 | Di Ewing |        |
)");
  EXPECT_THAT(run.user_log, Contains("No Data Generated for Financial/Employee Report I3"));
}

TEST(EmployeeFrame, ARowOfBlanksIsARow) {
  // No main information: only the blanks tell that the first employee's row is taken.
  Scenario scenario(
      PeopleSql() + SpreadsheetSql("S", "SumLevelEmpee") +
      InformationItemSql({.filter = "Employee.EmployeeSysId IN (2, 4, 5)"}) +
      InformationSortSql(1, "Employee", "EmployeeId") +
      InformationItemSql({.id = "I2", .ordering = 2, .type = "Family", .filter = "Family.FamilySysId = 4"}) +
      InformationColumnSql({.order = 1,
                            .table = "Family",
                            .attribute = "FamilyMemberName",
                            .title = "Family",
                            .report = "I2"}) +
      InformationColumnSql({.order = 2, .title = "Blank", .report = "I2"}) +
      InformationColumnSql({.order = 3, .attribute = "BasicRate", .title = "Rate", .report = "I2"}));
  const ScenarioRun run = RunOf(scenario);
  EXPECT_GRID(run.Grid("Sheet"), R"(
     | A | B      | C     | D
   1 |
   2 |
   3 |
   4 |
   5 |
   6 |   | Family | Blank | Rate
   7 |
   8 |   | Cleo   |       | 0
)");
  // The amount's blank carries the amount format.
  EXPECT_NE(run.Grid("Sheet", {.formats = true}).find("D7"), std::string::npos);
  EXPECT_THAT(run.user_log, Contains("Warning: Column Items are not set for I1."));
  EXPECT_THAT(run.user_log, Contains("Employee ID: E05"));
}

TEST(EmployeeFrame, LayoutsThatDoNotFitBesideEmployeesPrintNothing) {
  for (const std::string scheme : {"MovementList", "PayReconciliation", "Unheard"}) {
    Scenario scenario(Base() + NameColumn(1, 0) + InformationSortSql(1, "Employee", "EmployeeId") +
                      PayItemSql(2) + "UPDATE FinancialRpt SET LayoutSchemeId = '" + scheme + "';");
    EXPECT_GRID(RunOf(scenario).Grid("Sheet", {.range = CellRange{6, 1, 8, 9}}), R"(
         | A | B
       6 |   | Name
       7 |   | Ana Berg
       8 |   | Ben Cole
    )") << scheme;
  }
}

TEST(EmployeeFrame, AReportOfBlankColumnsFails) {
  Scenario scenario(Base() + InformationColumnSql({.title = "Nothing"}));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 0);
  EXPECT_THAT(
      run.Errors(),
      ElementsAre(
          "BExcelExpEngEmployeeRpt::ExecuteOperation Error: Error in EmpRptInfoQry Query.",
          "BExcelExpEngPrintFirstEmpRpt::ExecuteProcEmployeeRpt Error: Error in printing Employee "
          "Information Report",
          "Error in printing Financial/Employee Report.",
          "BExcelExpEngWksheetItem::ExecutePrintFirstEmpRpt Error: Error in printing Excel Worksheet "
          "Items",
          "BExcelExpEngWksheet::ExecuteProcExcelWksheetItem Error: Error in processing Excel Worksheet "
          "Items",
          "BExcelExpEngine::ExecuteProcExcelWksheet Error: Error in processing Excel Worksheet",
          "Error in Excel Export Engine"));
}

TEST(EmployeeFrame, EveryFailingStatementIsNamedFromTheInnermostOperationOutwards) {
  const std::string frame = "BExcelExpEngPrintFirstEmpRpt::";
  const std::string layout = "BExcelExpEngEmployeeRpt::";
  const struct {
    const char* statement;
    std::string entry;
  } cases[] = {
      {"FROM EmpGrpItem WHERE EmpInfoRptId = 'I1'  ",
       frame + "GetEmpGrpInfo Error: Error in ExcelRptGroupingQry Query."},
      {"SELECT DISTINCT FGetCodeDescription",
       frame + "GetEmpGrpInfo Error: Error in ExcelRptGrpInfoQry Query."},
      {"FROM EmpSortItem", frame + "GetEmpInfo Error: Error in ExcelRptSortingQry Query."},
      {"AS Basis1Id", frame + "GetEmpInfo Error: Error in getting Employee Information."},
      {"EmpColIsRptMainInfo = 1",
       frame + "PrintNonGroupingRpt Error: Error in ExcelRptSummLvlItemQry Query."},
      {"SELECT *, ", frame + "GetIndividualEmpCoyBasisInfo Error: Error in ExcelRptEmpCoyBasisQry Query."},
      {"FROM DUMMY", frame + "PrintGroupingRpt Error: Error in PrevGrpInfoQry query."},
      {"FROM EmployeeRpt WHERE EmpInfoRptId",
       layout + "ExecuteOperation Error: Error in EmployeeRptQry Query."},
      {"EmpColIsRptMainInfo = 0", layout + "ExecuteOperation Error: Error in EmployeeColItemQry Query."},
      {"SELECT DISTINCT Employee.EmployeeId FROM",
       layout + "ExecuteOperation Error: Error in EmpRptInfoQry Query."},
  };
  Scenario scenario(Base({.employee_count = 1}) + NameColumn(1, 1) +
                    InformationColumnSql({.order = 2, .attribute = "EmployeeId", .title = "No."}) +
                    InformationGroupSql(1, "Employee", "DepartmentDesc", "Department", 1));
  RunOf(scenario);
  for (const auto& each : cases) {
    // The preparation's statement is another one: with blanks behind WHERE.
    scenario.FailStatement(each.statement);
    const ScenarioRun run = scenario.Run("S");
    EXPECT_EQ(run.result, 0) << each.statement;
    EXPECT_EQ(run.Errors().at(0), each.entry);
    EXPECT_TRUE(run.workbook.IsEmpty());
  }
}

TEST(EmployeeFrame, FixedNamesGoToThePayrollDatabaseAndAllElseToTheContexts) {
  // Definitions of employee reports and the layout's data come from "varndb", who is printed and the entity's
  // record from the context's database: the names differ between the two.
  const std::string spreadsheet = SpreadsheetSql("S", "SumLevelEmpee");
  const std::string report = InformationItemSql({.employee_count = 1});
  const std::string columns =
      NameColumn(1, 1) + InformationColumnSql({.order = 2, .attribute = "EmployeeName", .title = "Layout"}) +
      InformationSortSql(1, "Employee", "EmployeeId");
  Scenario scenario(
      PeopleSql() + spreadsheet + report + columns +
          "UPDATE Employee SET EmployeeName = 'Payroll ' || EmployeeId; DELETE FROM ExcelWkSheetItem;"
          "DELETE FROM ExcelWkSheet; INSERT INTO EmpGrpItem SELECT 1, 'I1', 1, 'Employee', 'DepartmentId', "
          "'Department', 1, 'Body' WHERE 0;",
      PeopleSql() + spreadsheet + report +
          "UPDATE EmployeeRpt SET EmpInfoRptType = 'None', EmployeeRptHasFilter = 1, EmployeeRptFilterCond = "
          "'0';"
          "UPDATE Employee SET EmployeeName = 'Context ' || EmployeeId; DELETE FROM Employee WHERE "
          "EmployeeSysId > 2;");
  EXPECT_GRID(RunOf(scenario).Grid("Sheet", {.range = CellRange{6, 1, 12, 3}}), R"(
       | A           | B
     6 | Name        | Layout
     7 | Context E01 | Payroll E01
     8 | Context E02 | Payroll E02
     9 |
    10 | Total Employees: | 2
  )");
}

}  // namespace
}  // namespace excelexp
