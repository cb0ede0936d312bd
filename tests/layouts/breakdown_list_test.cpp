// The breakdown listing: columns of every kind, bank payments, "<ALL>", timesheets, limits and failures.

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using testing::HasSubstr;

std::string Sheet() {
  return MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee");
}

std::string Pay(const std::string& employee, const std::string& type, const std::string& item, double amount,
                const std::string& item5 = "") {
  return Record(2024, 1, "Normal", employee, type, item, item + " text", amount, "", "", item5);
}

std::string AllOf(int order, const std::string& grouping, const std::string& component) {
  return ColumnItemSql({.order = order,
                        .item = "<ALL>",
                        .grouping = grouping,
                        .component = component,
                        .title = "never shown"});
}

TEST(BreakdownList, EveryKindOfColumn) {
  Scenario scenario(
      Sheet() + Pay("1", "PayElement", "BASIC", 1000) + Pay("1", "BankRecord", "0071", 900, "ByCheque_2") +
      Pay("1", "PaySystem", "GrossWage", 1100) + Pay("2", "PayElement", "BASIC", 2000) +
      "UPDATE MiniRecords SET AnlysItem3Id = '123-4', AnlysAmount2 = 450.5, AnlysItem4Id = 'USD' "
      "WHERE AnlysDispSectionId = 'BankRecord';" +
      FinancialItemSql({}) + "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Employee', 'EmployeeId');" +
      ColumnItemSql({.order = 1,
                     .type = "SummLvlItem",
                     .grouping = "Employee",
                     .component = "HireDate",
                     .title = "Hired"}) +
      ColumnItemSql({.order = 2, .type = "BlankItem", .title = "Remarks"}) +
      ColumnItemSql({.order = 3,
                     .item = "Cheque2",
                     .grouping = "BankRecord",
                     .component = "PaymentCategory",
                     .title = "Paid"}) +
      ColumnItemSql({.order = 4,
                     .item = "Cheque2",
                     .grouping = "BankRecord",
                     .component = "BankPaymentAmt",
                     .title = "Bank"}) +
      ColumnItemSql({.order = 5,
                     .item = "Cash1",
                     .grouping = "BankRecord",
                     .component = "BankPaymentAmt",
                     .title = "Cash"}) +
      ColumnItemSql(
          {.order = 6, .item = "any", .grouping = "PaySystem", .component = "GrossWage", .title = "Gross"}) +
      ColumnItemSql({.order = 7,
                     .type = "CalculatedItem",
                     .title = "Rest",
                     .formula = "=IF(<Item#6><><Item#4>,<Item#6>-<Item#4>,0)"}));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.formulas = true}), R"(
     | A | B          | C       | D        | E    | F    | G     | H
   1 |
   2 |   | Year 2024
   3 |   | Jan
   4 |
   5 |   | Normal
   6 |   | Hired      | Remarks | Paid     | Bank | Cash | Gross | Rest
   7 |   | 01/02/2019 |         | ByCheque | 900  | 0    | 1100  | =IF(G7<>E7,G7-E7,0) -> 200
   8 |   | 01/03/2020 |         |          | 0    | 0    | 0     | =IF(G8<>E8,G8-E8,0) -> 0
)");
}

TEST(BreakdownList, AllItemsExpandAndReferencesFollow) {
  Scenario scenario(
      Sheet() + Pay("1", "Allowance", "MEAL", 10) + Pay("1", "Allowance", "TRANSPORT", 20) +
      Pay("1", "PayElement", "BASIC", 1000) + FinancialItemSql({}) + AllOf(1, "Allowance", "AllowanceAmt") +
      ColumnItemSql({.order = 2,
                     .item = "BASIC",
                     .grouping = "PayElement",
                     .component = "PayElementAmt",
                     .title = "Basic"}) +
      ColumnItemSql(
          {.order = 3, .type = "CalculatedItem", .title = "Calculated", .formula = "=<Item#1>+<Item#2>"}));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{6, 2, 7, 5}}), R"(
     | B         | C              | D     | E
   6 | MEAL text | TRANSPORT text | Basic | Calculated
   7 | 10        | 20             | 1000  | =C7+D7 -> 1020
)");
  EXPECT_EQ(run.workbook.Get()->FindSheet("Sheet")->Merges().front(), (CellRange{2, 2, 2, 5}));
}

TEST(BreakdownList, AnAllItemWithoutItemsPrintsNoColumn) {
  Scenario scenario(Sheet() + Pay("1", "PayElement", "BASIC", 1000) + FinancialItemSql({}) +
                    AllOf(1, "Deduction", "DeductionAmt") +
                    ColumnItemSql({.order = 2,
                                   .item = "BASIC",
                                   .grouping = "PayElement",
                                   .component = "PayElementAmt",
                                   .title = "Basic"}));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{6, 2, 7, 3}}), R"(
     | B
   6 | Basic
   7 | 1000
)");
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Warning : Empty Formula Code for Deduction.\n"));
}

TEST(BreakdownList, EveryColumnTypeOfARecord) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"AnlysText1", "'Remark'", "Remark"},
      {"AnlysCount1", "12", "12"},
      {"AnlysFlag1", "1", "1"},
      {"AnlysDoubleValue1", "0.125", "0.125"},
      {"AnlysAmount1", "1234.5", "1234.5"},
      {"AnlysDate1", "'2024-02-29'", "29/02/2024"},
      {"AnlysTime1", "'08:30:00'", "08:30:00"},
      {"AnlysTimestamp1", "'2024-02-29 08:30:01'", "29/02/2024 08:30:01"},
      {"AnlysDate1", "NULL", ""}};
  for (const auto& [column, value, shown] : rows) {
    Scenario scenario(Sheet() + Pay("1", "PayElement", "BASIC", 0) +
                      ShownColumnSql("PayElementAmt", column, value) + FinancialItemSql({}) +
                      ColumnItemSql({.order = 1,
                                     .item = "BASIC",
                                     .grouping = "PayElement",
                                     .component = "PayElementAmt",
                                     .title = "Value"}));
    const std::string grid = scenario.Run("S").Grid("Sheet", {.range = CellRange{6, 2, 7, 2}});
    EXPECT_EQ(Canonical(grid), Canonical(shown.empty() ? "| B\n6 | Value" : "| B\n6 | Value\n7 | " + shown))
        << column;
  }
}

TEST(BreakdownList, ARecordThatIsNotThereLeavesABlankOfItsType) {
  Scenario scenario(
      Sheet() + Pay("1", "PayElement", "BASIC", 5) + Pay("2", "PayElement", "OTHER", 6) +
      FinancialItemSql({}) + "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Employee', 'EmployeeId');" +
      ColumnItemSql({.order = 1, .item = "basic", .grouping = "PayElement", .component = "PayElementAmt"}) +
      ColumnItemSql({.order = 2, .item = "BASIC", .grouping = "PayElement", .component = "PayElementAmt"}));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 2, 8, 3}}), R"(
     | B | C
   7 | 0 | 5
   8 | 0 | 0
)");
}

TEST(BreakdownList, ColumnGroupsComeFromTheDataWhenNoneAreChosen) {
  Scenario scenario(Sheet() + Record(2024, 2, "Bonus", "1", "PayElement", "BASIC", "", 3) +
                    Record(2024, 2, "Adjust", "1", "PayElement", "BASIC", "", 2) +
                    Record(2023, 12, "Normal", "1", "PayElement", "BASIC", "", 1) +
                    FinancialItemSql({.cycle_group_by = "PeriodGrpPd"}) +
                    ColumnItemSql({.order = 1,
                                   .item = "BASIC",
                                   .grouping = "PayElement",
                                   .component = "PayElementAmt",
                                   .title = "Basic"}) +
                    "UPDATE MiniRecords SET AnlysItemRecSubPeriod = 2 WHERE AnlysPayRecBasis = 'Bonus';");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{2, 2, 7, 4}}), R"(
     | B         | C         | D
   2 | Year 2023 | Year 2024 | Year 2024
   3 | Period 12 | Period 2  | Period 2
   4 |           |           | Sub Period 2
   5 | Normal    | Adjust    | Bonus
   6 | Basic     | Basic     | Basic
   7 | 1         | 2         | 3
)");
}

/// Timesheets of employees 1 and 2: job code and date; employee 2 has none in the first period.
std::string Timesheets(const std::string& sub_type) {
  return Sheet() + Record(2024, 1, "Normal", "1", "TsPayElement", "HOURS", "Hours", 8, "J1", "2024-01-05") +
         Record(2024, 1, "Normal", "1", "TsPayElement", "HOURS", "Hours", 4, "J2", "2024-01-06") +
         Record(2024, 2, "Normal", "1", "TsPayElement", "HOURS", "Hours", 7, "J1", "2024-02-05") +
         Record(2024, 2, "Normal", "2", "TsPayElement", "HOURS", "Hours", 6, "J3", "2024-02-07") +
         FinancialItemSql({.sub_type = sub_type}) +
         "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Employee', 'EmployeeId');" +
         ColumnItemSql(
             {.order = 1, .item = "<ALL>", .grouping = "TsPayElement", .component = "TsPayElementAmt"});
}

TEST(BreakdownList, TimesheetsPrintARowPerJobCodeAndDate) {
  Scenario scenario(Timesheets("ProjSubTypeTsRec"));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{5, 2, 10, 7}}), R"(
     | B        | C          | D     | E        | F          | G
   5 | Normal   |            |       | Normal   |            |
   6 | Job Code | Date       | Hours | Job Code | Date       | Hours
   7 | J1       | 2024-01-05 | 8     | J1       | 2024-02-05 | 7
   8 | J2       | 2024-01-06 | 4     |          |            |
   9 |          |            | 0     | J3       | 2024-02-07 | 6
)");
}

TEST(BreakdownList, ATimesheetRowOfBlanksIsNotOverwritten) {
  Scenario scenario(Timesheets("ProjSubTypeTsSumm") +
                    "DELETE FROM MiniRecords WHERE AnlysItemRecPeriodMonth = 2 AND Basis1Id = '1';"
                    "INSERT INTO ExcelWSItemRptLayout VALUES (101, 1, 2024, 2, 0, 'Normal');");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{6, 2, 9, 3}}), R"(
     | B        | C
   6 | Job Code | Hours
   7 |          | 0
   8 | J3       | 6
   9 |
)");
}

TEST(BreakdownList, MoreThan256ColumnsStopBeforeAMerge) {
  std::string columns;
  for (int i = 1; i <= 256; ++i) {
    columns += ColumnItemSql({.order = i, .type = "BlankItem"});
  }
  Scenario scenario(Sheet() + Pay("1", "PayElement", "BASIC", 1) + FinancialItemSql({}) + columns);
  const ScenarioRun run = scenario.Run("S", true);
  EXPECT_EQ(run.result, 0);
  EXPECT_THAT(
      ScenarioRun::Lines(run.internal_log),
      HasSubstr(
          "BExcelExpEngBreakdownRpt::PrintColFinancialData Error: Excel worksheet is limited to 256 "
          "columns.\n"
          "BExcelExpEngPrintFirstFinRpt::ExecuteProcBreakdownListRpt Error: Error in printing Breakdown "
          "Listing Report\nError in printing Financial/Employee Report.\n"));
  EXPECT_FALSE(std::filesystem::exists(scenario.OutputFile()));
}

TEST(BreakdownList, WithoutColumnItemsItWarnsAndSucceeds) {
  Scenario scenario(Sheet() + Pay("1", "PayElement", "BASIC", 1) + FinancialItemSql({}));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Warning: Column Items are not set for R1.\n"));
}

TEST(BreakdownList, EachFailingQueryLeavesItsEntryAndTheChain) {
  struct Row {
    std::string part;
    int nth;
    std::string message;
  };
  const std::string layout = "BExcelExpEngBreakdownListRpt::";
  const std::string frame = "BExcelExpEngPrintFirstFinRpt::";
  const std::vector<Row> rows = {
      {"FROM FinancialRpt WHERE FinancialRptId", 1,
       layout + "ExecuteOperation Error: Error in getting Financial Report Information."},
      {"FROM AnlysProject WHERE", 2,
       layout + "ExecuteOperation Error: Error in getting Analysis Project Information."},
      {"AnlysItemRecord JOIN AnlysDispSection", 1,
       layout + "PrintPayRecInfo Error: Error in AnlysItemRecQry Query."},
      {"FROM ExcelWSItemRptLayout", 1, layout + "ExecuteOperation Error: Error in ExcelRptLayoutQry Query."},
      {"FinColIsRptMainInfo = 0", 1, layout + "ExecuteOperation Error: Error in FinanceColItemQry Query."},
      {"FROM AnlysProject WHERE", 3,
       layout + "PrintPayPeriodInfo Error: Unable to get Analysis Project Details."},
      {"FROM ColourScheme JOIN", 1, layout + "PrintPayPeriodInfo Error: Error in ColourSchemeQry Query."},
      {"ColourSchemeId IN", 1, layout + "PrintFinancialData Error: Error in ColourSchemeQry Query."},
      {"FROM AnItemLookup", 1, layout + "PrintFinancialData Error: Unable to get Analysis Item Details."},
      {"WHERE AnlysItemTypeId = 'Allowance' ORDER", 1,
       layout + "GetNoOfMergeCells Error: Unable to get Formula Details."},
      {"WHERE AnlysItemTypeId = 'Allowance' ORDER", 2,
       layout + "PrintFinancialData Error: Error in AllFormulaQry Query"},
      {"SELECT LayoutSchemeId, CycleMethod  FROM", 1,
       frame + "PrintFinancialRpt Error: Error in getting the financial report layout scheme."},
      {"FROM FinanceSortItem", 1, frame + "GetFinEmpCoyBasisInfo Error: Error in ExcelRptSortingQry Query."},
      {"SELECT DISTINCT Basis1Id, '' AS", 1,
       frame + "GetFinEmpCoyBasisInfo Error: Error in getting Employee/Company/Basis Information."},
      {"FROM Employee Join Personal", 1,
       frame + "GetIndividualEmpCoyBasisInfo Error: Error in ExcelRptEmpCoyBasisQry Query.\n" + frame +
           "PrintNonGroupingRpt Error: Error in getting individual Employee/Company/Basis Information."},
      {"FinColIsRptMainInfo = 1", 1,
       frame + "PrintNonGroupingRpt Error: Error in ExcelRptSummLvlItemQry Query."}};
  const std::string end =
      "Error in printing Financial/Employee Report.\nBExcelExpEngWksheetItem::ExecutePrintFirstFinRpt Error: "
      "Error in "
      "printing Excel Worksheet Items\n";
  for (const Row& row : rows) {
    Scenario scenario(Sheet() + Pay("1", "Allowance", "MEAL", 1) + FinancialItemSql({}) +
                      AllOf(1, "Allowance", "AllowanceAmt"));
    scenario.FailStatement(row.part, row.nth);
    const ScenarioRun run = scenario.Run("S");
    const std::string log = ScenarioRun::Lines(run.internal_log);
    EXPECT_EQ(run.result, 0) << row.part;
    EXPECT_THAT(log, HasSubstr(row.message + "\n")) << row.part;
    EXPECT_THAT(log, HasSubstr(end)) << row.part;
  }
}

TEST(BreakdownList, ASchemeWithoutAColourIsAnError) {
  Scenario scenario(Sheet() + Pay("1", "PayElement", "BASIC", 1) + FinancialItemSql({}) +
                    ColumnItemSql({.order = 1, .type = "BlankItem"}) +
                    "UPDATE ColourScheme SET ColourCodeId = NULL WHERE ColourSchemeId = 'Body';");
  EXPECT_THAT(ScenarioRun::Lines(scenario.Run("S").internal_log),
              HasSubstr("BExcelExpEngBreakdownListRpt::PrintFinancialData Error: Unable to locate Colour "
                        "Scheme Record.\n"));
}

}  // namespace
}  // namespace excelexp
