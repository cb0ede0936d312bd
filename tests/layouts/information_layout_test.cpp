// What the two information layouts say when they cannot print, and what they print by type.

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/people.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

/// A worksheet about one employee, or the person she is, with one column.
std::string OnePerson(bool employees) {
  return PeopleSql() + SpreadsheetSql("S", "SumLevelEmpee") +
         InformationItemSql({.type = employees ? "Employee" : "Personal",
                             .filter = "Personal.PersonalSysId = 12",
                             .employees_only = employees ? 1 : 0}) +
         InformationColumnSql({.attribute = "EmployeeId", .title = "No."}) + "PRAGMA foreign_keys = OFF;";
}

TEST(InformationLayout, AFailureNamesTheLayoutAndThenTheFrame) {
  const struct {
    const char* change;
    const char* entry;
  } cases[] = {
      {"UPDATE EmpColItem SET ColourSchemeId = 'Gone'",
       "PrintEmployeeInfo Error: Unable to locate Colour Scheme Record."},
      {"UPDATE ExcelWkSheet SET WkSheetTitleColourSchemeId = 'Gone'",
       "PrintEmployeeInfo Error: Unable to locate Colour Scheme Record."},
      {"DELETE FROM ColourScheme", "PrintEmployeeInfo Error: Empty ColourSchemeQry Recordset."},
      {"ALTER TABLE ColourScheme RENAME TO Gone", "PrintEmployeeInfo Error: Error in ColourSchemeQry Query."},
      {"UPDATE EmpColItem SET EmpColSysAttributeId = 'Gone'",
       "ExecuteOperation Error: Error in EmpRptInfoQry Query."},
  };
  for (const bool employees : {true, false}) {
    for (const auto& each : cases) {
      SCOPED_TRACE(each.change);
      Scenario scenario(OnePerson(employees) + each.change + ";");
      const ScenarioRun run = scenario.Run("S");
      EXPECT_EQ(run.result, 0);
      ASSERT_GE(run.Errors().size(), 2u);
      EXPECT_EQ(
          run.Errors()[0],
          std::string(employees ? "BExcelExpEngEmployeeRpt::" : "BExcelExpEngPersonalRpt::") + each.entry);
      EXPECT_EQ(run.Errors()[1],
                employees ? "BExcelExpEngPrintFirstEmpRpt::ExecuteProcEmployeeRpt Error: Error in printing "
                            "Employee Information Report"
                          : "BExcelExpEngPrintFirstPerRpt::ExecuteProcPersonalRpt Error: Error in printing "
                            "Employee Information Report");
    }
  }
}

TEST(InformationLayout, AReportWithoutColumnsOnlyWarns) {
  for (const bool employees : {true, false}) {
    Scenario scenario(OnePerson(employees) + "DELETE FROM EmpColItem;" +
                      InformationColumnSql({.attribute = "EmployeeName", .title = "Name", .main_info = 1}));
    const ScenarioRun run = scenario.Run("S");
    EXPECT_EQ(run.result, 1);
    EXPECT_THAT(run.user_log, testing::Contains("Warning: Column Items are not set for I1."));
    EXPECT_TRUE(run.Shows("| Ben Cole")) << run.Grid("Sheet");
  }
}

TEST(InformationLayout, ColumnsOfEveryTypeShowTheirValuesAndBlanks) {
  const std::string columns =
      InformationColumnSql({.order = 2, .table = "Personal", .attribute = "Gender", .title = "Gender"}) +
      InformationColumnSql({.order = 3, .attribute = "ProbationMonths", .title = "Probation"}) +
      InformationColumnSql({.order = 4, .attribute = "IsUnionMember", .title = "Union"}) +
      InformationColumnSql({.order = 5, .attribute = "BasicRate", .title = "Rate"}) +
      InformationColumnSql({.order = 6, .attribute = "HireDate", .title = "Hired"}) +
      InformationColumnSql({.order = 7, .attribute = "WorkStartTime", .title = "From"}) +
      InformationColumnSql({.order = 8, .attribute = "RecordUpdated", .title = "Updated"}) +
      InformationColumnSql({.order = 9, .attribute = "ConfirmDate", .title = "Confirmed"}) +
      "UPDATE Employee SET ProbationMonths = 3, IsUnionMember = 1, WorkStartTime = '08:30', RecordUpdated = "
      "'2024-01-31 23:59:58';";
  for (const bool employees : {true, false}) {
    Scenario scenario(OnePerson(employees) + columns);
    const int row = employees ? 6 : 2;
    const std::string grid = scenario.Run("S").Grid("Sheet", {.range = CellRange{row, 2, row + 1, 12}});
    EXPECT_GRID(grid.substr(grid.find('\n', grid.find("No."))),
                R"(
   )" + std::to_string(row + 1) +
                    R"( | E02 | Male | 3 | Yes | 2500 | 05/09/2020 | 08:30:00 | 31/01/2024 23:59:58 |)");
  }
}

TEST(InformationLayout, EachWorksheetHasItsOwnTitlesOfOneReport) {
  Scenario scenario(OnePerson(true) +
                    "INSERT INTO ColourScheme (ColourSchemeId, ColourCodeId) VALUES ('Other', 'Black');"
                    "INSERT INTO ExcelWkSheet (WkSheetSysId, ExcelSpreadsheetId, WkSheetOrder, WkSheetName, "
                    "WkSheetRptSumLvl, WkSheetTitleColourSchemeId) VALUES (2, 'S', 2, 'Again', "
                    "'SumLevelEmpee', 'Other');"
                    "INSERT INTO ExcelWkSheetItem VALUES (900, 2, 1, 'EmployeeRpt', 'I1');");
  const ScenarioRun run = scenario.Run("S");
  const GridOptions title = {.formats = true, .range = CellRange{6, 2, 6, 2}};
  EXPECT_THAT(run.Grid("Sheet", title), testing::HasSubstr("B6 - Arial 9 colour 5"));
  EXPECT_THAT(run.Grid("Again", title), testing::HasSubstr("B6 - Arial 9 colour 1"));
}

}  // namespace
}  // namespace excelexp
