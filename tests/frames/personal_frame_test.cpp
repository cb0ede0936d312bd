// Worksheets whose first item is an information report about persons.

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/people.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

std::string Base() {
  return PeopleSql() + SpreadsheetSql("S", "SumLevelEmpee") +
         InformationItemSql({.type = "Personal", .employees_only = 0, .employee_count = 1}) +
         InformationColumnSql({.order = 1,
                               .table = "Personal",
                               .attribute = "PersonalName",
                               .title = "Name",
                               .main_info = 1}) +
         InformationSortSql(1, "Personal", "IdentityNo");
}

std::string Column(int order, const std::string& table, const std::string& attribute,
                   const std::string& report = "I1") {
  return InformationColumnSql(
      {.order = order, .table = table, .attribute = attribute, .title = attribute, .report = report});
}

ScenarioRun RunOf(Scenario& scenario) {
  ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  return run;
}

TEST(PersonalFrame, PersonsWithAndWithoutEmploymentStandTwoRowsBelow) {
  // Items of the other types print nothing: neither the pay report nor the one about employees.
  Scenario scenario(Base() + Column(2, "Employee", "EmployeeId") + Column(3, "Employee", "DepartmentDesc") +
                    Column(4, "Personal", "PerRaceDesc") + Column(5, "Employee", "ServiceYears") +
                    Column(6, "Employee", "HireDate") + PayItemSql(2) +
                    InformationItemSql({.id = "I2",
                                        .ordering = 3,
                                        .type = "PersonalFamily",
                                        .filter = "Family.FamilySysId < 3",
                                        .employees_only = 0}) +
                    Column(1, "Family", "FamilyMemberName", "I2"));
  const ScenarioRun run = RunOf(scenario);
  EXPECT_GRID(run.Grid("Sheet"), R"(
     | A        | B          | C              | D           | E            | F          | G
   1 |
   2 | Name     | EmployeeId | DepartmentDesc | PerRaceDesc | ServiceYears | HireDate   | FamilyMemberName
   3 | Ana Berg | E01        | Sales          | First       | 5.08         | 01/02/2019 | Abe
   4 |          |            |                |             |              |            | Amy
   5 | Ben Cole | E02        | Sales          |             | 5            | 05/09/2020 |
   6 | Cy Dunn  | E03        | Sales          |             | 2.92         | 01/04/2021 |
   7 | Di Ewing | E04        | Works          |             | 1.83         | 01/05/2022 |
   8 | Ed Frost | E05        | Works          |             | 0.75         | 01/06/2023 |
   9 | Flo Gray |            |                | First       | 0            |            |
  10 |
  11 | Total Employees:  | 6
)");
  EXPECT_THAT(run.user_log, Contains("Identity No: P16"));
  EXPECT_THAT(run.user_log, Contains("Personal Name: Flo Gray"));
  // A code description is the person's, not that of an employee with the same number.
  EXPECT_FALSE(run.Shows("FGetCodeDescription("));
}

TEST(PersonalFrame, GroupsByACodeOfThePersonAndByANullOfTheEmployee) {
  Scenario scenario(Base() + Column(2, "Personal", "IdentityNo") +
                    InformationGroupSql(1, "Personal", "PerRaceDesc", "Race", 1) +
                    InformationGroupSql(2, "Employee", "DepartmentId", "Department", 0));
  EXPECT_GRID(RunOf(scenario).Grid("Sheet"), R"(
     | A          | B
   1 |
   2 |
   3 | Race       |
   4 | Department | SAL
   5 |
   6 | Name       | IdentityNo
   7 | Ben Cole   | P12
   8 | Cy Dunn    | P13
   9 |
  10 | Race       |
  11 | Department | WRK
  12 |
  13 | Name       | IdentityNo
  14 | Di Ewing   | P14
  15 | Ed Frost   | P15
  16 | Total Employees | 4
  17 |
  18 | Race       | First
  19 | Department |
  20 |
  21 | Name       | IdentityNo
  22 | Flo Gray   | P16
  23 |
  24 | Race       | First
  25 | Department | SAL
  26 |
  27 | Name       | IdentityNo
  28 | Ana Berg   | P11
  29 | Total Employees | 2
  30 |
  31 | Total Employees:  | 6
)");
}

TEST(PersonalFrame, AnInnerJoinLeavesPersonsWithoutEmploymentARowOfBlanks) {
  Scenario scenario(Base() +
                    InformationItemSql({.id = "I2", .ordering = 2, .type = "Employee", .employees_only = 0}) +
                    Column(1, "Employee", "EmployeeId", "I2") + Column(2, "Employee", "BasicRate", "I2") +
                    "UPDATE EmployeeRpt SET EmployeeRptHasFilter = 1, EmployeeRptFilterCond = "
                    "'Personal.PersonalSysId > 14' WHERE EmpInfoRptId = 'I1';");
  EXPECT_GRID(RunOf(scenario).Grid("Sheet"), R"(
     | A        | B          | C
   1 |
   2 | Name     | EmployeeId | BasicRate
   3 | Ed Frost | E05        | 0
   4 | Flo Gray |            |
   5 |
   6 | Total Employees:  | 2
)");
}

TEST(PersonalFrame, EverythingComesFromTheContextsDatabase) {
  // Only the preparation reads its definitions from "varndb".
  const std::string payroll_only =
      "DELETE FROM EmpColItem; DELETE FROM EmpSortItem; DELETE FROM Employee; DELETE FROM Family;"
      "DELETE FROM Personal; DELETE FROM ColourScheme WHERE ColourSchemeId = 'Body';";
  Scenario scenario("PRAGMA foreign_keys = OFF;" + Base() + payroll_only,
                    Base() + Column(2, "Employee", "EmployeeId"));
  EXPECT_GRID(RunOf(scenario).Grid("Sheet", {.range = CellRange{2, 1, 4, 2}}), R"(
       | A        | B
     2 | Name     | EmployeeId
     3 | Ana Berg | E01
     4 | Ben Cole | E02
  )");
}

TEST(PersonalFrame, FailuresNameThePersonalClasses) {
  const struct {
    const char* statement;
    const char* first;
    const char* second;
  } cases[] = {
      {"SELECT DISTINCT Personal.PersonalSysId, ",
       "BExcelExpEngPrintFirstPerRpt::GetEmpInfo Error: Error in getting Employee Information.",
       "Error in printing Financial/Employee Report."},
      {"SELECT DISTINCT Personal.IdentityNo FROM",
       "BExcelExpEngPersonalRpt::ExecuteOperation Error: Error in EmpRptInfoQry Query.",
       "BExcelExpEngPrintFirstPerRpt::ExecuteProcPersonalRpt Error: Error in printing Employee Information "
       "Report"},
  };
  Scenario scenario(Base() + Column(2, "Personal", "IdentityNo"));
  for (const auto& each : cases) {
    scenario.FailStatement(each.statement);
    const ScenarioRun run = scenario.Run("S");
    EXPECT_EQ(run.result, 0);
    const std::vector<std::string> errors = run.Errors();
    ASSERT_GE(errors.size(), 2u);
    EXPECT_EQ(errors[0], each.first);
    EXPECT_EQ(errors[1], each.second);
    EXPECT_THAT(errors, Contains("BExcelExpEngWksheetItem::ExecutePrintFirstPerRpt Error: Error in printing "
                                 "Excel Worksheet Items"));
  }
}

}  // namespace
}  // namespace excelexp
