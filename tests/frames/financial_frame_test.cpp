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

/// One basic-pay column in January, grouped as the test says.
std::string Grouped(const std::string& groups) {
  return Base() + FinancialItemSql({.grand_total = 1, .employee_count = 1}) + MainInfo() + SortByEmployee() +
         BasicColumn(3) + groups + "INSERT INTO ExcelWSItemRptLayout VALUES (101, 1, 2024, 1, 0, 'Normal');";
}

TEST(FinancialFrame, TwoLevelsCloseFromTheInside) {
  Scenario scenario(Grouped(GroupSql(1, "Employee", "DepartmentDesc", "Department", 1, 1) +
                            GroupSql(2, "Employee", "SectionDesc", "Section", 1, 0)));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet"), R"(
     | A                     | B        | C
   1 |
   2 |
   3 | Department            | Sales
   4 | Section               | East
   5 |
   6 |                       |          | Year 2024
   7 |                       |          | Jan
   8 |
   9 |                       |          | Normal
  10 | No.                   | Name     | Basic
  11 | E01                   | Ana Berg | 1001
  12 | E02                   | Ben Cole | 2001
  13 | Sub Total(Section)    |          | 3002
  14 |
  15 | Department            | Sales
  16 | Section               | West
  17 |
  18 |                       |          | Year 2024
  19 |                       |          | Jan
  20 |
  21 |                       |          | Normal
  22 | No.                   | Name     | Basic
  23 | E03                   | Cy Dunn  | 3001
  24 | Sub Total(Section)    |          | 3001
  25 | Sub Total(Department) |          | 6003
  26 | Total Employees       | 3
  27 |
  28 | Department            | Works
  29 | Section               | East
  30 |
  31 |                       |          | Year 2024
  32 |                       |          | Jan
  33 |
  34 |                       |          | Normal
  35 | No.                   | Name     | Basic
  36 | E04                   | Di Ewing | 4001
  37 | E05                   | Ed Frost | 5001
  38 | Sub Total(Section)    |          | 9002
  39 | Sub Total(Department) |          | 9002
  40 | Total Employees       | 2
  41 |
  42 | Grand Total           |          | 15005
  43 | Total Employees:      | 5
)");
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{42, 3, 42, 3}}), R"(
     | C
  42 | =IF(OR(CELL("format",C36)=",2", CELL("format",C36)=",0"),SUM(C11:C12, C23:C23, C36:C37), "") -> 15005
)");
}

TEST(FinancialFrame, AnOuterChangeClosesInnerLevelsWhoseValueStays) {
  Scenario scenario(Grouped(GroupSql(1, "Employee", "DepartmentDesc", "Department", 0, 0) +
                            GroupSql(2, "Employee", "SectionDesc", "Section", 1, 1)) +
                    "DELETE FROM MiniRecords WHERE Basis1Id = '3';");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{10, 1, 30, 3}}), R"(
     | A                  | B        | C
  10 | No.                | Name     | Basic
  11 | E01                | Ana Berg | 1001
  12 | E02                | Ben Cole | 2001
  13 | Sub Total(Section) |          | 3002
  14 | Total Employees    | 2
  15 |
  16 | Department         | Works
  17 | Section            | East
  18 |
  19 |                    |          | Year 2024
  20 |                    |          | Jan
  21 |
  22 |                    |          | Normal
  23 | No.                | Name     | Basic
  24 | E04                | Di Ewing | 4001
  25 | E05                | Ed Frost | 5001
  26 | Sub Total(Section) |          | 9002
  27 | Total Employees    | 2
  28 |
  29 | Grand Total        |          | 12004
  30 | Total Employees:   | 4
)");
}

TEST(FinancialFrame, ThreeLevelsWithAChangeAtTheOutermost) {
  Scenario scenario(Grouped(GroupSql(1, "Employee", "CompanyId", "Company", 1, 0) +
                            GroupSql(2, "Employee", "DepartmentDesc", "Department", 0, 1) +
                            GroupSql(3, "Employee", "SectionDesc", "Section", 1, 0)) +
                    "INSERT INTO Company (CompanyId, CompanyName) VALUES ('002', 'Hill Works');"
                    "UPDATE Employee SET CompanyId = '002' WHERE EmployeeSysId = 5;");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{37, 1, 59, 3}}), R"(
     | A                  | B        | C
  37 | No.                | Name     | Basic
  38 | E04                | Di Ewing | 4001
  39 | Sub Total(Section) |          | 4001
  40 | Total Employees    | 1
  41 | Sub Total(Company) |          | 10004
  42 |
  43 | Company            | '002
  44 | Department         | Works
  45 | Section            | East
  46 |
  47 |                    |          | Year 2024
  48 |                    |          | Jan
  49 |
  50 |                    |          | Normal
  51 | No.                | Name     | Basic
  52 | E05                | Ed Frost | 5001
  53 | Sub Total(Section) |          | 5001
  54 | Total Employees    | 1
  55 | Sub Total(Company) |          | 5001
  56 |
  57 | Grand Total        |          | 15005
  58 | Total Employees:   | 5
)");
}

TEST(FinancialFrame, GroupsOfEmployeesWithoutAValueAndWithAQuoteInIt) {
  Scenario scenario(Grouped(GroupSql(1, "Employee", "ConfirmDate", "Confirmed", 0, 1) +
                            GroupSql(2, "Employee", "DepartmentDesc", "Department", 1, 0)) +
                    "UPDATE Department SET DepartmentDesc = 'Women''s Wear' WHERE DepartmentId = 'WRK';"
                    "UPDATE Employee SET ConfirmDate = '2024-02-29' WHERE EmployeeSysId IN (4, 5);");
  const std::string grid = scenario.Run("S").Grid("Sheet");
  EXPECT_THAT(grid, testing::HasSubstr("29/02/2024"));
  EXPECT_THAT(grid, testing::HasSubstr("Women's Wear"));
  EXPECT_THAT(grid, testing::HasSubstr("15005"));
}

TEST(FinancialFrame, CompanyLevelPrintsOneBand) {
  std::string records;
  for (const int period : {1, 2}) {
    records += Record(2024, period, "Normal", "001", "PayElement", "BASIC", "Basic pay", 5000 + period);
  }
  Scenario scenario(MiniPayrollSql() + records + SpreadsheetSql("S", "SumLevelCompany") +
                    FinancialItemSql({.level = "SumLevelCompany", .grand_total = 1}) + BasicColumn(1) +
                    ColumnItemSql({.order = 2,
                                   .type = "SummLvlItem",
                                   .grouping = "Company",
                                   .component = "CompanyName",
                                   .title = "Company",
                                   .main_info = 1}));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet"), R"(
     | A             | B         | C
   1 |
   2 |               | Year 2024 | Year 2024
   3 |               | Jan       | Feb
   4 |
   5 |               | Normal    | Normal
   6 | Company       | Basic     | Basic
   7 | Harbour Works | 5001      | 5002
   8 |
   9 | Grand Total   | 5001      | 5002
)");
  EXPECT_THAT(ScenarioRun::Lines(run.user_log),
              testing::HasSubstr("Company ID: 001\nCompany Name: Harbour Works\n"));
}

TEST(FinancialFrame, BasisLevelWithBasesOneAndThreeAndAnEmptyValue) {
  std::string records;
  for (const auto& [department, section, amount] : std::vector<std::tuple<std::string, std::string, double>>{
           {"SAL", "E", 10}, {"SAL", "", 20}, {"", "W", 30}}) {
    records += Record(2024, 1, "Normal", department, "PayElement", "BASIC", "Basic pay", amount, "", section);
  }
  Scenario scenario(MiniPayrollSql() + records + SpreadsheetSql("S", "SumLevelBasis") +
                    FinancialItemSql({.level = "SumLevelBasis", .grand_total = 1, .employee_count = 1}) +
                    BasicColumn(3) +
                    "UPDATE ExcelWkSheet SET WkSheetRptBasis1 = 'Department', WkSheetRptBasis3 = 'Section';" +
                    ColumnItemSql({.order = 1,
                                   .type = "SummLvlItem",
                                   .grouping = "Department",
                                   .component = "DepartmentDesc",
                                   .title = "Department",
                                   .main_info = 1}) +
                    ColumnItemSql({.order = 2,
                                   .type = "SummLvlItem",
                                   .grouping = "Section",
                                   .component = "SectionDesc",
                                   .title = "Section",
                                   .main_info = 1}) +
                    "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Department', 'DepartmentDesc'), "
                    "(2, 'R1', 2, 'Section', 'SectionDesc');");
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{6, 1, 13, 3}}), R"(
     | A                | B       | C
   6 | Department       | Section | Basic
   7 |                  | West    | 30
   8 | Sales            |         | 20
   9 | Sales            | East    | 10
  10 |
  11 | Grand Total      |         | 60
  12 | Total Employees: | 3
)");
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), testing::HasSubstr("Department: SAL\nSection: E\n"));
}

TEST(FinancialFrame, ASecondReportThatSharesNobodyIsLeftOut) {
  Scenario scenario(Base() + FinancialItemSql({}) + SortByEmployee() + BasicColumn(1) +
                    "CREATE TABLE OtherRecords AS SELECT * FROM MiniRecords WHERE Basis1Id = '99';"
                    "INSERT INTO OtherRecords SELECT * FROM MiniRecords WHERE Basis1Id = '1';"
                    "UPDATE OtherRecords SET Basis1Id = '9';" +
                    FinancialItemSql({.id = "R2", .ordering = 2, .setup = "OtherRecords"}) +
                    BasicColumn(1, "R2"));
  scenario.Execute(
      "INSERT INTO Employee SELECT 9, 15, 'E09', 'No Body', CompanyId, NULL, NULL, NULL, NULL, NULL, NULL, "
      "NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, HireDate, 0, NULL, NULL, 0, NULL, 0, 0, 0, NULL, NULL "
      "FROM Employee WHERE EmployeeSysId = 5;");
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_THAT(ScenarioRun::Lines(run.user_log),
              testing::HasSubstr("No Data Generated for Financial/Employee Report R2\n"));
  EXPECT_THAT(run.Grid("Sheet"), testing::Not(testing::HasSubstr("| D")));
  // Every item's records are asked to be deleted, also those of the item left out.
  ASSERT_EQ(scenario.Host().requests.size(), 4U);
  EXPECT_EQ(scenario.Host().requests[3].AnlysIPAddress, "10.1.2.3_2");
  EXPECT_EQ(scenario.Host().requests[3].AnlysProjectId, "R2");
}

}  // namespace
}  // namespace excelexp
