// The statistics report through the whole engine: worksheets as grids.

#include "layouts/matrix_reports.h"
#include "platform/database/DatabaseRegistry.h"

namespace excelexp {
namespace {

using ::testing::HasSubstr;

TEST(Statistics, ChosenPeriodsWithColumnItemsAndEveryKindOfRow) {
  Scenario scenario(
      MatrixPayroll() + FinancialItemSql({.layout = "Statistics"}) + ChosenPeriodSql(2024, 1) +
      ChosenPeriodSql(2024, 2) + EmployeeColumn(1, "EmployeeId", "No.", 1) +
      EmployeeColumn(2, "EmployeeName", "Name") +
      ColumnItemSql({.order = 3, .type = "BlankItem", .title = "Signed"}) + BasicRow(1) +
      AllAllowanceRows(2) +
      RowItemSql({.order = 3, .type = "CalculatedItem", .title = "Total", .formula = "=<xxRow1>+<xxRow2>"}) +
      RowItemSql({.order = 4, .type = "BlankItem", .title = "Notes"}) +
      AnalysisRow(5, "PayElement", "BASIC", "Remark", "Remark") +
      AnalysisRow(6, "PaySystem", "not the key", "PayHeadCount", "Heads") +
      AnalysisRow(7, "BankRecord", "Cheque1", "BankPaymentAmt", "Cheque") +
      AnalysisRow(8, "BankRecord", "Cheque1", "PaymentCategory", "Paid"));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_GRID(run.Grid("Sheet"), R"(
       | A   | B        | C      | D         | E         | F         | G
     1 |
     2 |     |          |        |           | Year 2024 | Year 2024 |
     3 |     |          |        |           | Jan       | Feb       |
     4 |
     5 |     |          |        |           | Normal    | Normal    | YTD
     6 | No. | Name     | Signed |           |           |           |
     7 | E01 | Ana Berg |        | Basic     | 1001      | 1002      | 2003
     8 |     |          |        | Meal      | 0         | 0         | 0
     9 |     |          |        | Transport | 0         | 50.5      | 50.5
    10 |     |          |        | Total     | 1001      | 1052.5    |
    11 |     |          |        | Notes     |           |           |
    12 |     |          |        | Remark    | probation |           |
    13 |     |          |        | Heads     | 1         |           |
    14 |     |          |        | Cheque    | 700       | 0         | 700
    15 |     |          |        | Paid      | ByCheque  |           |
    16 | E02 | Ben Cole |        | Basic     | 2010      | 2020      | 4030
    17 |     |          |        | Meal      | 0         | 20        | 20
    18 |     |          |        | Transport | 0         | 0         | 0
    19 |     |          |        | Total     | 2010      | 2020      |
    20 |     |          |        | Notes     |           |           |
    21 |     |          |        | Remark    |           |           |
    22 |     |          |        | Heads     |           |           |
    23 |     |          |        | Cheque    | 0         | 0         | 0
    24 |     |          |        | Paid      |           |           |)");
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{9, 5, 11, 7}}), R"(
       | E               | F                 | G
     9 | 0               | 50.5              | =IF(OR(CELL("format",E9)=",2", CELL("format",E9)=",0"),SUM(E9:F9), "") -> 50.5
    10 | =E7+E9 -> 1001  | =F7+F9 -> 1052.5  | =IF(OR(CELL("format",E10)=",2", CELL("format",E10)=",0"),SUM(E10:F10), "") ->
    11 |                 |                   |)");
  EXPECT_THAT(run.Grid("Sheet", {.formats = true}), HasSubstr(R"(
A7:C7 E10:F10 E11:G11 E12:F13 E15:F15 A16:C16 E19:F19 E20:G20 E21:F22 E24:F24 - Arial 9 colour 1 General
E7:G9 G10 G12:G13 E14:G14 G15 E16:G18 G19 G21:G22 E23:G23 G24 - Arial 9 colour 1 #,0.00;-#,0.00
)"));
}

// Headings go with the first row that prints, and every entity has the columns of the first.
TEST(Statistics, PeriodsOfTheDataBehindAnEmptyExpansion) {
  Scenario scenario(MatrixPayroll() +
                    FinancialItemSql({.layout = "Statistics", .cycle_group_by = "PeriodGrpPd"}) +
                    "UPDATE MiniRecords SET AnlysItemRecSubPeriod = 2 WHERE AnlysItemRecPeriodMonth = 2;\n"
                    "DELETE FROM MiniRecords WHERE AnlysItemRecPeriodMonth = 3 AND Basis1Id = '2';\n" +
                    AnalysisRow(1, "Deduction", "<ALL>", "DeductionAmt", "Deductions") + BasicRow(2));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet"), R"(
      | A | B | C         | D            | E         | F
    1 |
    2 |   |   | Year 2024 | Year 2024    | Year 2024 |
    3 |   |   | Period 1  | Period 2     | Period 3  |
    4 |   |   |           | Sub Period 2 |           |
    5 |   |   | Normal    | Normal       | Normal    | YTD
    6 |
    7 |   | Basic | 1001  | 1002         | 1003      | 3006
    8 |   | Basic | 2010  | 2020         | 0         | 4030)");
  const std::string warning = "Warning : Empty Formula Code for Deduction.\n";
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Employee Name: Ana Berg\n" + warning));
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Employee Name: Ben Cole\n" + warning));
}

// Column items hold their row when no row item prints one.
TEST(Statistics, ColumnItemsWithoutRowsKeepTheirRow) {
  Scenario scenario(MatrixPayroll() + FinancialItemSql({.layout = "Statistics"}) +
                    EmployeeColumn(1, "EmployeeName", "Name") +
                    AnalysisRow(1, "Deduction", "<ALL>", "DeductionAmt", "Deductions"));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet"), R"(
      | A | B
    1 |
    2 |
    3 |
    4 |
    5 |
    6 |   | Name
    7 |   | Ana Berg
    8 |   | Ben Cole)");
}

TEST(Statistics, WithoutRowItemsWarnsAndPrintsNothing) {
  Scenario scenario(MatrixPayroll() + FinancialItemSql({.layout = "Statistics"}) +
                    EmployeeColumn(1, "EmployeeName", "Name"));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_GRID(run.Grid("Sheet"), "|");
  EXPECT_THAT(ScenarioRun::Lines(run.user_log),
              HasSubstr("Employee Name: Ana Berg\nWarning: Row Items are not set for R1.\n"));
}

// What a reader sees without recalculating is what the database says.
TEST(Statistics, YearToDateIsTheSumOfTheRecords) {
  Scenario scenario(MatrixPayroll() +
                    "UPDATE MiniRecords SET AnlysAmount1 = AnlysAmount1 + 0.1 * AnlysItemRecPeriodMonth;\n" +
                    FinancialItemSql({.layout = "Statistics"}) + BasicRow(1));
  const ScenarioRun run = scenario.Run("S");
  const auto sums = DatabaseRegistry::Find("varndb")->Select(
      "SELECT SUM(AnlysAmount1) FROM MiniRecords WHERE AnlysItem1Id = 'BASIC' GROUP BY Basis1Id ORDER BY "
      "Basis1Id");
  ASSERT_EQ(sums->RowCount(), 2);
  for (int row = 0; row < 2; ++row) EXPECT_NEAR(run.Result("Sheet", 7 + row, 6), sums->AsFloat(row, 0), 1e-9);
}

// At company level every record of the item counts; nothing asks for the entity's ids.
TEST(Statistics, CompanyLevelAndLeaveFoundByComponent) {
  Scenario scenario(MatrixPayroll() + FinancialItemSql({.layout = "Statistics", .level = "SumLevelCompany"}) +
                    "UPDATE ExcelWkSheet SET WkSheetRptSumLvl = 'SumLevelCompany';\n"
                    "DELETE FROM FinanceSortItem; DELETE FROM MiniRecords;\n" +
                    Record(2024, 1, "Normal", "001", "LeaveSystem", "AnlLveTaken", "Taken", 0) +
                    Record(2024, 1, "Normal", "001", "PayElement", "BASIC", "Basic pay", 12) +
                    "UPDATE MiniRecords SET AnlysDoubleValue1 = 2.5, Basis2Id = 'any';\n" +
                    AnalysisRow(1, "LeaveSystem", "ANL", "AnlLveTaken", "Leave") + BasicRow(2));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet"), R"(
      | A | B     | C         | D
    1 |
    2 |   |       | Year 2024 |
    3 |   |       | Jan       |
    4 |
    5 |   |       | Normal    | YTD
    6 |
    7 |   | Leave | 2.5       | 2.5
    8 |   | Basic | 12        | 12)");
}

}  // namespace
}  // namespace excelexp
