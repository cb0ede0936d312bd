#include "dataprep/BExcelExpEngEmpRptInfo.h"
#include "dataprep/BExcelExpEngFinRptInfo.h"
#include "support/people.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using ::testing::ElementsAre;

constexpr char kReports[] = R"(
INSERT INTO EmployeeRpt (EmpInfoRptId, EmpInfoRptType, EmployeeRptHasFilter, EmployeeRptFilterCond,
                         EmployeeRptHasEmpOnly, EmployeeRptHasEmpCt) VALUES
  ('All', 'Employee', 0, '', 1, 1),
  ('Persons', 'Personal', 0, '', 0, 0),
  ('Employed', 'Employee', 0, '', 0, 0),
  ('Sales', 'Employee', 2, 'Employee.DepartmentId = ''SAL''', 1, 3),
  ('Works', 'Employee', 1, 'Employee.DepartmentId = ''WRK''', 1, 0),
  ('OffFilter', 'Employee', 0, 'Employee.DepartmentId = ''SAL''', 1, 0),
  ('EmptyFilter', 'Employee', 1, '', 1, 0),
  ('Nobody', 'Employee', 1, 'Employee.DepartmentId = ''X''', 1, 1),
  ('Or', 'Employee', 1, 'Employee.DepartmentId = ''SAL'' OR Employee.DepartmentId = ''WRK''', 1, 0),
  ('BadFilter', 'Employee', 1, 'NoSuchColumn = 1', 1, 0);
INSERT INTO ExcelWSItemRptOpts VALUES (7, 0, 0, 0, 0, 0, 0);
CREATE TABLE Allowed (EmployeeSysId integer, PersonalSysId integer);
)";

class EmployeePreparation : public testing::Test {
 protected:
  EmployeePreparation() { scenario_.Attach(core_, log_, log_); }

  int Prepare(const std::string& report) {
    core_.SetExcelWSItemRptId(report);
    return BExcelExpEngEmpRptInfo(&core_).ExecuteOperation();
  }
  /// As the only report of a worksheet.
  int PrepareAlone(const std::string& report) {
    core_.SetFirstWkSheetItem(false);
    return Prepare(report);
  }
  int PreparePay() {
    core_.SetExcelWSItemRptId("Pay");
    core_.SetExcelWSItemSysId(7);
    return BExcelExpEngFinRptInfo(&core_).ExecuteOperation();
  }
  /// The people whom the first report's restriction keeps.
  std::string FirstPeople() {
    EXPECT_TRUE(core_.ExecuteSQL("SELECT EmployeeSysId AS Id FROM Employee WHERE EmployeeSysId IN " +
                                 core_.FirstWkSheetItemSQL + " ORDER BY Id"));
    std::string ids;
    for (core_.SQLQry->First(); !core_.SQLQry->Eof(); core_.SQLQry->Next())
      ids += core_.SQLQry->FieldByName("Id").AsString() + " ";
    return ids;
  }

  Scenario scenario_{PeopleSql() + kReports};
  MemoryLineSink log_;
  BExcelExpEngCore core_;
};

TEST_F(EmployeePreparation, TheResultTellsPopulationAndData) {
  const struct {
    const char* report;
    int result;
  } cases[] = {{"All", 1},         {"Persons", 2}, {"Employed", 2}, {"Sales", 1},     {"OffFilter", 1},
               {"EmptyFilter", 1}, {"Nobody", 0},  {"Or", 1},       {"BadFilter", -1}};
  for (const auto& each : cases) {
    EXPECT_EQ(PrepareAlone(each.report), each.result) << each.report;
    EXPECT_EQ(core_.FirstWkSheetItem, each.result > 0) << each.report;
  }
  EXPECT_EQ(ScenarioRun::Lines(log_.Lines()), "");
  EXPECT_EQ(PrepareAlone("All"), 1);
  EXPECT_EQ(FirstPeople(), "1 2 3 4 5 ");
}

TEST_F(EmployeePreparation, TheFirstReportLeavesItsFacts) {
  core_.SetFirstWSItemHasGrandTot(1);
  EXPECT_EQ(Prepare("Sales"), 1);
  EXPECT_EQ(core_.FirstWSItemEmpRptType,
            "Employee JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId ");
  EXPECT_EQ(core_.FirstWSItemEmpHasFilter, 2);
  EXPECT_EQ(core_.FirstWSItemEmpFilter, "Employee.DepartmentId = 'SAL'");
  EXPECT_EQ(core_.FirstWSItemHasGrandTot, 0);
  EXPECT_EQ(core_.FirstWSItemHasTotEmpCt, 3);
  EXPECT_EQ(FirstPeople(), "1 2 3 ");

  EXPECT_EQ(PrepareAlone("OffFilter"), 1);
  EXPECT_EQ(core_.FirstWSItemEmpHasFilter, 0);
  EXPECT_EQ(core_.FirstWSItemEmpFilter, "Employee.DepartmentId = 'SAL'");
  EXPECT_EQ(FirstPeople(), "1 2 3 4 5 ");
}

TEST_F(EmployeePreparation, LaterReportsNeedPeopleOfTheFirst) {
  EXPECT_EQ(Prepare("Nobody"), 0);
  EXPECT_EQ(Prepare("Sales"), 1);
  const std::string restriction = core_.FirstWkSheetItemSQL;
  EXPECT_EQ(Prepare("All"), 1);
  EXPECT_EQ(Prepare("Works"), 0);
  EXPECT_EQ(core_.FirstWkSheetItemSQL, restriction);
  EXPECT_EQ(core_.FirstWSItemHasTotEmpCt, 3);

  // After a financial report: its entities, here employees 1 and 4.
  core_.SetFirstWkSheetItem(false);
  EXPECT_EQ(PreparePay(), 1);
  EXPECT_EQ(Prepare("Works"), 1);
  scenario_.Execute("UPDATE Figures SET Basis1Id = '2' WHERE Basis1Id = '4'");
  EXPECT_EQ(PreparePay(), 1);
  EXPECT_EQ(Prepare("Works"), 0);
  scenario_.Execute("UPDATE Figures SET Basis1Id = '4' WHERE Basis1Id = '2'");

  // At basis level people are compared with the first ids alone.
  scenario_.Execute("UPDATE AnlysProject SET SummaryLevel = 'SumLevelBasis'");
  core_.SetFirstWkSheetItem(false);
  EXPECT_EQ(PreparePay(), 1);
  EXPECT_EQ(Prepare("Works"), 1);
  EXPECT_EQ(Prepare("Nobody"), 0);

  // And the other way round: pay figures of people whom the employee report has.
  EXPECT_EQ(PrepareAlone("Sales"), 1);
  EXPECT_EQ(PreparePay(), 1);
  scenario_.Execute("DELETE FROM Figures WHERE Basis1Id = '1'");
  EXPECT_EQ(PreparePay(), 0);
  EXPECT_EQ(ScenarioRun::Lines(log_.Lines()), "");
}

TEST_F(EmployeePreparation, NobodyOutsideTheViewCounts) {
  scenario_.UseView("Allowed");
  EXPECT_EQ(PrepareAlone("All"), 0);
  EXPECT_EQ(PrepareAlone("Persons"), 0);
  scenario_.Execute("INSERT INTO Allowed VALUES (4, 14), (NULL, 16)");
  EXPECT_EQ(PrepareAlone("Sales"), 0);
  EXPECT_EQ(PrepareAlone("Persons"), 2);
  EXPECT_EQ(PrepareAlone("Or"), 1);  // the filter's OR does not reach past the view
  EXPECT_EQ(FirstPeople(), "4 ");
}

TEST_F(EmployeePreparation, ADefinitionThatCannotBeReadIsAFailure) {
  const struct {
    const char* change;
    const char* entry;
  } cases[] = {
      {"DELETE FROM ExcelEmpRpt", "Empty ExcelEmpRptDetailQry Recordset."},
      {"ALTER TABLE ExcelEmpRpt RENAME TO Gone1", "Error in ExcelEmpRptDetailQry Query."},
      {"DELETE FROM EmployeeRpt", "Empty EmployeeRptDetailQry Recordset."},
      {"ALTER TABLE EmployeeRpt RENAME TO Gone2", "Error in EmployeeRptDetailQry Query."},
  };
  for (const auto& each : cases) {
    scenario_.Execute(std::string("PRAGMA foreign_keys = OFF;") + each.change);
    EXPECT_EQ(Prepare("All"), -1);
    const std::vector<std::string> lines(log_.Lines().end() - 3, log_.Lines().end());
    EXPECT_THAT(
        lines,
        ElementsAre("", std::string("BExcelExpEngEmpRptInfo::ExecuteOperation Error: ") + each.entry, ""));
  }
}

TEST(EmployeePreparationDatabases, DefinitionsComeFromThePayrollDatabaseAndPeopleFromTheContexts) {
  Scenario scenario(kReports, PeopleSql());
  BExcelExpEngCore core;
  MemoryLineSink log;
  scenario.Attach(core, log, log);
  core.SetExcelWSItemRptId("Sales");
  EXPECT_EQ(BExcelExpEngEmpRptInfo(&core).ExecuteOperation(), 1);
}

}  // namespace
}  // namespace excelexp
