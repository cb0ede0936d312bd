// The pay reconciliation through the whole engine: worksheets as grids.

#include "layouts/matrix_reports.h"

namespace excelexp {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

std::string StatusColumn(int order, const std::string& status, const std::string& title,
                         const std::string& component = "Normal_1") {
  return ColumnItemSql({.order = order, .item = status, .component = component, .title = title});
}

/// March against February.
std::string Report(const FinancialItem& item = {.layout = "PayReconciliation"}) {
  return MatrixPayroll() + FinancialItemSql(item) + PeriodRangeSql(2024, 2, 2024, 3);
}

std::string ThreeStatuses() {
  return StatusColumn(11, "AnlysMapField", "Now") + StatusColumn(12, "AnlysMapFieldPrev", "Before") +
         StatusColumn(13, "AnlysMapFieldVar", "Change");
}

TEST(PayRecon, CurrentPreviousAndVarianceOfEveryKindOfRow) {
  Scenario scenario(
      Report() + EmployeeColumn(1, "EmployeeId", "No.") +
      ColumnItemSql({.order = 2, .type = "BlankItem", .title = "Checked", .scheme = "DefColourScheme"}) +
      ThreeStatuses() + BasicRow(1) + AllAllowanceRows(2) +
      RowItemSql({.order = 3, .type = "CalculatedItem", .title = "Total", .formula = "=<xxRow1>+<xxRow2>"}) +
      RowItemSql({.order = 4, .type = "BlankItem", .title = "Notes"}) +
      AnalysisRow(5, "BankRecord", "Cheque1", "BankPaymentAmt", "Cheque") +
      AnalysisRow(6, "BankRecord", "Cheque1", "PaymentCategory", "Paid") +
      AnalysisRow(7, "BankRecord", "Cheque1", "ExchangeRateID", "Currency") +
      AnalysisRow(8, "OTRecord", "OT15", "FormulaOTRate", "Rate"));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_GRID(run.Grid("Sheet"), R"(
       | A | B         | C       | D         | E                  | F                     | G
     1 |
     2 |   | Year 2024 |         |           |                    |                       |
     3 |   | Mar       |         |           |                    |                       |
     4 |
     5 |
     6 |   | No.       | Checked |           | Now\nYear 2024 Mar | Before\nYear 2024 Feb | Change\n
     7 |   | E01       |         | Basic     | 1003               | 998                   | 5
     8 |   |           |         | Meal      | 0                  | 0                     | 0
     9 |   |           |         | Transport | 60                 | 55                    | 5
    10 |   |           |         | Total     | 1063               | 1053                  | 10
    11 |   |           |         | Notes     |                    |                       |
    12 |   |           |         | Cheque    | 710                | 705                   | 5
    13 |   |           |         | Paid      | ByCheque           | ByCheque              | ByCheque
    14 |   |           |         | Currency  | SGD                | SGD                   | SGD
    15 |   |           |         | Rate      | 1.5                |                       |
    16 |
    17 |   | E02       |         | Basic     | 2030               | 2025                  | 5
    18 |   |           |         | Meal      | 0                  | 0                     | 0
    19 |   |           |         | Transport | 0                  | 0                     | 0
    20 |   |           |         | Total     | 2030               | 2025                  | 5
    21 |   |           |         | Notes     |                    |                       |
    22 |   |           |         | Cheque    | 0                  | 0                     | 0
    23 |   |           |         | Paid      |                    |                       |
    24 |   |           |         | Currency  |                    |                       |
    25 |   |           |         | Rate      | 0                  |                       |)");
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{10, 5, 10, 7}}), R"(
       | E              | F              | G
    10 | =E7+E9 -> 1063 | =F7+F9 -> 1053 | =G7+G9 -> 10)");
  EXPECT_THAT(run.Grid("Sheet", {.formats = true}), HasSubstr("merged B2:G2 B3:G3 B4:G4 B5:G5\n"));
}

TEST(PayRecon, LabelsFollowTheCycleAndBasisEndsAtTheUnderscore) {
  Scenario scenario(Report({.layout = "PayReconciliation", .cycle_group_by = "PeriodGrpPd"}) +
                    StatusColumn(1, "AnlysMapField", "Now", "Normal_1_2") +
                    StatusColumn(2, "AnlysMapFieldPrev", "Before", "Normal") +
                    StatusColumn(3, "AnlysMapField", "Bonus", "Bonus_") + BasicRow(1) +
                    Record(2024, 3, "", "1", "PayElement", "BASIC", "Basic pay", 0) +
                    Record(2024, 3, "Bonus", "2", "PayElement", "BASIC", "Basic pay", 333) +
                    "UPDATE MiniRecords SET AnlysFAmount1 = 77 WHERE AnlysPayRecBasis = '';\n");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet"), R"(
      | A | B         | C                       | D                          | E
    1 |
    2 |   | Year 2024 |
    3 |   | Period 3  |
    4 |
    5 |
    6 |   |           | Now\nYear 2024 Period 3 | Before\nYear 2024 Period 2 | Bonus\nYear 2024 Period 3
    7 |   | Basic     | 1003                    | 77                         | 0
    8 |
    9 |   | Basic     | 2030                    | 0                          | 333)");
}

// A report of whole years, and a project whose cycle has no period names.
TEST(PayRecon, WithoutPeriodNamesTheLabelsAreEmpty) {
  for (const std::string change : {"UPDATE ExcelWSItemRptOpts SET WSItemToMthPeriod = 0",
                                   "UPDATE AnlysProject SET CycleGroupBy = 'Other'"}) {
    Scenario scenario(Report() + change + ";\n" + ThreeStatuses() + BasicRow(1));
    EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{2, 2, 6, 5}}), R"(
        | B         | C     | D        | E
      2 | Year 2024 |
      3 |
      4 |
      5 |
      6 |           | Now\n | Before\n | Change\n)");
  }
}

// The block keeps its width for every entity, so that the item to its right stays below its headings.
TEST(PayRecon, AnEmptyExpansionPrintsNoRowAndKeepsTheBlocksWidth) {
  Scenario scenario(Report() + ThreeStatuses() +
                    AnalysisRow(1, "Deduction", "<ALL>", "DeductionAmt", "Deductions") +
                    FinancialItemSql({.id = "R2", .ordering = 2}) +
                    ColumnItemSql({.report = "R2",
                                   .order = 1,
                                   .item = "BASIC",
                                   .grouping = "PayElement",
                                   .component = "PayElementAmt",
                                   .title = "Basic"}) +
                    ChosenPeriodSql(2024, 1, "Normal", 0, 2));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet"), R"(
      | A | B         | C                  | D                     | E        | F | G
    1 |
    2 |   | Year 2024 |                    |                       |          |   | Year 2024
    3 |   | Mar       |                    |                       |          |   | Jan
    4 |
    5 |   |           |                    |                       |          |   | Normal
    6 |   |           | Now\nYear 2024 Mar | Before\nYear 2024 Feb | Change\n |   | Basic
    7 |   |           |                    |                       |          |   | 1001
    8 |   |           |                    |                       |          |   | 2010)");
  EXPECT_THAT(run.user_log, Contains("Warning : Empty Formula Code for Deduction."));
}

TEST(PayRecon, MissingStatusItemsFailAndMissingRowsWarn) {
  Scenario without_rows(Report() + ThreeStatuses());
  const ScenarioRun warned = without_rows.Run("S");
  EXPECT_EQ(warned.result, 1);
  EXPECT_GRID(warned.Grid("Sheet"), "|");
  EXPECT_THAT(warned.user_log, Contains("Warning: Row Items are not set for R1."));

  Scenario without_status(Report() + EmployeeColumn(1, "EmployeeId", "No.") + BasicRow(1));
  const ScenarioRun failed = without_status.Run("S");
  EXPECT_EQ(failed.result, 0);
  EXPECT_THAT(failed.user_log, Contains("Error: Pay Reconciliation Col Items are not selected for R1."));
}

TEST(PayRecon, ABlockBeyondColumn256IsRefused) {
  std::string statuses;
  for (int order = 1; order <= 255; ++order) statuses += StatusColumn(order, "AnlysMapField", "Now");
  Scenario scenario(Report() + statuses + BasicRow(1));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 0);
  EXPECT_THAT(
      run.internal_log,
      Contains(
          "BExcelExpEngPayReconRpt::PrintPayPeriodInfo Error: Excel worksheet is limited to 256 columns."));
}

}  // namespace
}  // namespace excelexp
