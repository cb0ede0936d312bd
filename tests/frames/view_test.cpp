// Nobody outside the user's view appears in a cell or a log, in whatever frame and whatever the definitions
// say.

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/people.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

constexpr char kMarker[] = "Marker";

/// Everybody but Ben (2) and Di (4) is outside the view and carries the marker wherever a text can stand.
std::string MarkedPeople(const std::string& level) {
  return PeopleSql() + SpreadsheetSql("S", level) + R"(
CREATE TABLE Seen (EmployeeSysId integer, PersonalSysId integer);
INSERT INTO Seen VALUES (2, 12), (4, 14);
UPDATE Employee SET EmployeeName = 'Marker', EmployeeId = 'Marker' || EmployeeSysId WHERE EmployeeSysId NOT IN (2, 4);
UPDATE Personal SET PersonalName = 'Marker', IdentityNo = 'Marker' WHERE PersonalSysId NOT IN (12, 14);
UPDATE Family SET FamilyMemberName = 'Marker' WHERE PersonalSysId NOT IN (12, 14);
)";
}

std::string Column(int order, const std::string& table, const std::string& attribute, int main_info,
                   const std::string& report = "I1") {
  return InformationColumnSql({.order = order,
                               .table = table,
                               .attribute = attribute,
                               .title = "T",
                               .main_info = main_info,
                               .report = report});
}

/// Runs with the view and gives the sheet; fails when the marker shows.
std::string GridInView(Scenario& scenario, int result = 1) {
  scenario.UseView("Seen");
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, result) << ScenarioRun::Lines(run.internal_log);
  EXPECT_FALSE(run.Shows(kMarker)) << ScenarioRun::Lines(run.internal_log);
  return run.workbook.IsEmpty() ? "" : run.Grid("Sheet");
}

TEST(View, TheMarkerShowsToThoseWhoMaySeeEverybody) {
  Scenario scenario(MarkedPeople("SumLevelEmpee") + InformationItemSql({}) +
                    Column(1, "Employee", "EmployeeName", 0));
  EXPECT_TRUE(scenario.Run("S").Shows(kMarker));
}

TEST(View, HidesEmployeesWhateverTheFilterGroupingAndSortingAre) {
  for (const std::string filter : {"", "1 = 1 OR 1 = 1", "0 OR Employee.EmployeeSysId > 0"}) {
    for (const std::string grouping : {"", "EmployeeName"}) {
      SCOPED_TRACE(filter + grouping);
      Scenario scenario(
          MarkedPeople("SumLevelEmpee") + InformationItemSql({.filter = filter}) +
          Column(1, "Employee", "EmployeeName", 1) + InformationSortSql(1, "Employee", "EmployeeName") +
          InformationItemSql({.id = "I2", .ordering = 2, .type = "Family", .filter = filter}) +
          Column(1, "Family", "FamilyMemberName", 0, "I2") + Column(2, "Employee", "EmployeeName", 0, "I2") +
          (grouping.empty() ? "" : InformationGroupSql(1, "Employee", grouping, "G", 1)));
      const std::string grid = GridInView(scenario);
      EXPECT_NE(grid.find("Ben Cole"), std::string::npos);
      EXPECT_NE(grid.find("Di Ewing"), std::string::npos);
      EXPECT_NE(grid.find("Cleo"), std::string::npos);
    }
  }
}

TEST(View, HidesPersonsWhateverTheFilterAndGroupingAre) {
  for (const std::string filter : {"", "1 = 1 OR 1 = 1"}) {
    for (const std::string grouping : {"", "PersonalName"}) {
      SCOPED_TRACE(filter + grouping);
      Scenario scenario(
          MarkedPeople("SumLevelEmpee") +
          InformationItemSql({.type = "PersonalFamily", .filter = filter, .employees_only = 0}) +
          Column(1, "Personal", "PersonalName", 1) + Column(2, "Family", "FamilyMemberName", 0) +
          Column(3, "Employee", "EmployeeName", 0) +
          (grouping.empty() ? "" : InformationGroupSql(1, "Personal", grouping, "G", 1)));
      const std::string grid = GridInView(scenario);
      EXPECT_NE(grid.find("Di Ewing"), std::string::npos);
      EXPECT_NE(grid.find("Cleo"), std::string::npos);
    }
  }
}

TEST(View, HidesEmployeesOfAFinancialFrameAtEveryLevelOfItsProject) {
  const std::string name = ColumnItemSql({.order = 1,
                                          .type = "SummLvlItem",
                                          .grouping = "Employee",
                                          .component = "EmployeeName",
                                          .title = "Name",
                                          .main_info = 1});
  const std::string basic = ColumnItemSql({.order = 2,
                                           .item = "BASIC",
                                           .grouping = "PayElement",
                                           .component = "PayElementAmt",
                                           .title = "Basic"});
  std::string records;
  for (int employee = 1; employee <= 5; ++employee) {
    records += Record(2024, 1, "Normal", std::to_string(employee), "PayElement", "BASIC", "Basic pay",
                      employee == 2 || employee == 4 ? 100 : 7654321);
  }
  // The analysis engine confines the records to the view for a project at employee level only.
  for (const std::string level : {"SumLevelEmpee", "SumLevelBasis", ""}) {
    for (const bool grouped : {false, true}) {
      SCOPED_TRACE(level + (grouped ? " grouped" : ""));
      Scenario scenario(MarkedPeople("SumLevelEmpee") + records +
                        FinancialItemSql({.level = level, .grand_total = 1, .employee_count = 1}) + name +
                        basic + "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Employee', 'EmployeeId');" +
                        (grouped ? GroupSql(1, "Employee", "EmployeeName", "G", 1, 1) : "") +
                        InformationItemSql({.ordering = 2}) + Column(1, "Employee", "EmployeeName", 0));
      const std::string grid = GridInView(scenario);
      EXPECT_NE(grid.find("Ben Cole"), std::string::npos) << grid;
      EXPECT_EQ(grid.find("7654321"), std::string::npos) << grid;
      EXPECT_EQ(grid.find("Total Employees:  | 5"), std::string::npos) << grid;
    }
  }
}

TEST(View, HidesTheEmployeeWhoseNumberIsACompanysCode) {
  // Company '001' read as a number is employee 1, who is outside the view.
  Scenario scenario(
      MarkedPeople("SumLevelCompany") +
      Record(2024, 1, "Normal", "001", "PayElement", "BASIC", "Basic pay", 5000) +
      FinancialItemSql({.level = "SumLevelCompany"}) +
      ColumnItemSql(
          {.item = "BASIC", .grouping = "PayElement", .component = "PayElementAmt", .title = "Basic"}) +
      InformationItemSql({.ordering = 2}) + Column(1, "Employee", "EmployeeName", 0) +
      "INSERT INTO Seen VALUES (1, NULL);");
  // In the view while the preparation asks, outside when the layout does.
  scenario.Host().on_progress = [&scenario, calls = 0](const Progress& progress) mutable {
    if (progress.entities > 0 && ++calls == 1) scenario.Execute("DELETE FROM Seen WHERE EmployeeSysId = 1");
    return true;
  };
  EXPECT_GRID(GridInView(scenario), R"(
     | A | B | C
   1 |
   2 |   | Year 2024
   3 |   | Jan
   4 |
   5 |   | Normal
   6 |   | Basic | T
   7 |   | 5000
)");
}

}  // namespace
}  // namespace excelexp
