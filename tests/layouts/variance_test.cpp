// The variance report through the whole engine: worksheets as grids.

#include "layouts/matrix_reports.h"
#include "platform/database/DatabaseRegistry.h"

namespace excelexp {
namespace {

using ::testing::HasSubstr;

std::string Report() {
  return MatrixPayroll() + FinancialItemSql({.layout = "Variance", .cycle_group_by = "PeriodGrpSubPeriod"}) +
         BasicRow(1) + AnalysisRow(2, "Allowance", "TRANSPORT", "AllowanceAmt", "Transport") +
         AnalysisRow(3, "PayElement", "BASIC", "Remark", "Remark") +
         RowItemSql({.order = 4, .type = "CalculatedItem", .title = "Half", .formula = "=<xxRow1>/2"});
}

TEST(Variance, ThreePeriodsTheMiddleOneWithoutInfluence) {
  Scenario scenario(Report() + ChosenPeriodSql(2024, 1) + ChosenPeriodSql(2024, 2) +
                    ChosenPeriodSql(2024, 3));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet"), R"(
       | A | B         | C         | D         | E         | F
     1 |
     2 |   |           | Year 2024 | Year 2024 | Year 2024 |
     3 |   |           | Period 1  | Period 2  | Period 3  |
     4 |
     5 |   |           | Normal    | Normal    | Normal    | Variance
     6 |
     7 |   | Basic     | 1001      | 1002      | 1003      | 2
     8 |   | Transport | 0         | 50.5      | 60        | 60
     9 |   | Remark    | probation |           |           |
    10 |   | Half      | 500.5     | 501       | 501.5     | 1
    11 |   | Basic     | 2010      | 2020      | 2030      | 20
    12 |   | Transport | 0         | 0         | 0         | 0
    13 |   | Remark    |           |           |           |
    14 |   | Half      | 1005      | 1010      | 1015      | 10)");
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{8, 6, 8, 6}}), R"(
      | F
    8 | =IF(OR(CELL("format",E8)=",2", CELL("format",E8)=",0"),E8-C8, "") -> 60)");
}

// The order of the periods is the worksheet item's, not the calendar's.
TEST(Variance, TwoPeriodsInTheChosenOrder) {
  Scenario scenario(Report() + ChosenPeriodSql(2024, 3) + ChosenPeriodSql(2024, 1));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 2, 10, 5}}), R"(
       | B         | C     | D         | E
     7 | Basic     | 1003  | 1001      | -2
     8 | Transport | 60    | 0         | -60
     9 | Remark    |       | probation |
    10 | Half      | 501.5 | 500.5     | -1)");
}

TEST(Variance, OnePeriodHasNoVariance) {
  Scenario scenario(Report() + ChosenPeriodSql(2024, 2, "Normal"));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{5, 2, 10, 4}}), R"(
       | B         | C      | D
     5 |           | Normal | Variance
     6 |
     7 | Basic     | 1002   | 0
     8 | Transport | 50.5   | 0
     9 | Remark    |        |
    10 | Half      | 501    | 0)");
}

TEST(Variance, WithoutChosenPeriodsWarnsForEveryEntityAndPrintsNothing) {
  Scenario scenario(Report());
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_GRID(run.Grid("Sheet"), "|");
  const std::string warning =
      "Warning: The pay periods to be printed for the variance report is not selected.\n";
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Employee Name: Ana Berg\n" + warning));
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Employee Name: Ben Cole\n" + warning));
}

TEST(Variance, IsTheDifferenceOfTheRecords) {
  Scenario scenario(Report() + ChosenPeriodSql(2024, 1) + ChosenPeriodSql(2024, 3) +
                    "UPDATE MiniRecords SET AnlysAmount1 = AnlysAmount1 + 0.1 * AnlysItemRecPeriodMonth;\n");
  const ScenarioRun run = scenario.Run("S");
  const auto differences = DatabaseRegistry::Find("varndb")->Select(
      "SELECT SUM(CASE AnlysItemRecPeriodMonth WHEN 3 THEN AnlysAmount1 WHEN 1 THEN -AnlysAmount1 END) "
      "FROM MiniRecords WHERE AnlysItem1Id = 'BASIC' GROUP BY Basis1Id ORDER BY Basis1Id");
  ASSERT_EQ(differences->RowCount(), 2);
  EXPECT_NEAR(run.Result("Sheet", 7, 5), differences->AsFloat(0, 0), 1e-9);
  EXPECT_NEAR(run.Result("Sheet", 11, 5), differences->AsFloat(1, 0), 1e-9);
}

// Leave is found by its item here, by its component in the statistics.
TEST(Variance, LeaveIsFoundByItem) {
  Scenario scenario(MatrixPayroll() + FinancialItemSql({.layout = "Variance"}) + ChosenPeriodSql(2024, 1) +
                    Record(2024, 1, "Normal", "1", "LeaveSystem", "ANL", "Annual", 0) +
                    "UPDATE MiniRecords SET AnlysDoubleValue1 = 7 WHERE AnlysItem1Id = 'ANL';\n" +
                    AnalysisRow(1, "LeaveSystem", "ANL", "AnlLveTaken", "Leave"));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 2, 8, 4}}), R"(
      | B     | C | D
    7 | Leave | 7 | 0
    8 | Leave | 0 | 0)");
}

}  // namespace
}  // namespace excelexp
