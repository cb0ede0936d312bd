// The accumulated listing: sums over chosen periods and over all data, and what must not be summed.

#include <tuple>

#include "platform/database/DatabaseRegistry.h"
#include "platform/database/Query.h"
#include "support/failures.h"
#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using testing::HasSubstr;

std::string Sheet() {
  return MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee");
}

std::string Report(FinancialItem item = {}) {
  item.layout = "AccumulateList";
  return FinancialItemSql(item);
}

std::string Basic(int period, const std::string& pay_record, const std::string& employee, double amount) {
  return Record(2024, period, pay_record, employee, "PayElement", "BASIC", "Basic pay", amount);
}

std::string BasicColumn(int order, const std::string& title, int accumulates_text = 0) {
  return ColumnItemSql({.order = order,
                        .item = "BASIC",
                        .grouping = "PayElement",
                        .component = "PayElementAmt",
                        .title = title,
                        .accumulates_text = accumulates_text});
}

std::string BankColumn(int order, const std::string& component, const std::string& title) {
  return ColumnItemSql(
      {.order = order, .item = "Cheque2", .grouping = "BankRecord", .component = component, .title = title});
}

/// The pay records Run1 and Run2, each of two employees.
std::string PayRuns() {
  return "INSERT INTO PayRun (PayRecId, PayRecType, PayRecSubPeriod) VALUES ('Run1', 'Normal', 1), "
         "('Run2', 'Normal', 2); INSERT INTO PayRecord (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId) "
         "VALUES (2024, 1, 1, 'Run1'), (2024, 1, 1, 'Run2'), (2024, 1, 2, 'Run1'), (2024, 1, 2, 'Run2');";
}

/// The value of a single column for employee 1.
std::string Value(const ScenarioRun& run) {
  const std::string grid = Canonical(run.Grid("Sheet", {.range = CellRange{7, 2, 7, 2}}));
  return grid.substr(grid.rfind('|') + 1);
}

TEST(AccumulatedList, EveryKindOfColumn) {
  Scenario scenario(
      Sheet() + Basic(1, "Normal", "1", 1000) + Basic(2, "Normal", "1", 1100) + Basic(2, "Bonus", "1", 50.5) +
      Basic(3, "Normal", "1", 1200) + Basic(1, "Normal", "2", 2000) +
      Record(2024, 1, "Normal", "1", "BankRecord", "0071", "", 900, "", "", "ByCheque_2") +
      Record(2024, 3, "Normal", "1", "BankRecord", "0072", "", 950, "", "", "ByCheque_2") +
      Report({.grand_total = 1}) + ListByEmployeeSql() +
      ColumnItemSql({.order = 2,
                     .type = "SummLvlItem",
                     .grouping = "Employee",
                     .component = "HireDate",
                     .title = "Hired"}) +
      BasicColumn(3, "Two", 1) + RangeSql(3, 2024, 1, 0, "Normal") + RangeSql(3, 2024, 2, 0, "Normal") +
      BasicColumn(4, "All") +
      ColumnItemSql({.order = 5,
                     .item = "NONE",
                     .grouping = "PayElement",
                     .component = "PayElementAmt",
                     .title = "None"}) +
      BankColumn(6, "BankPaymentAmt", "Bank") + BankColumn(7, "PaymentCategory", "By") +
      ColumnItemSql(
          {.order = 8, .type = "CalculatedItem", .title = "Rest", .formula = "=<Item#4>-<Item#3>"}) +
      ColumnItemSql({.order = 9, .type = "BlankItem", .title = "Remarks"}));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{1, 1, 8, 9}}), R"(
     | A   | B          | C                       | D      | E    | F    | G        | H                | I
   1 |
   2 |
   3 |
   4 |
   5 |
   6 | No. | Hired      | Two(Jan 2024, Feb 2024) | All    | None | Bank | By       | Rest             | Remarks
   7 | E01 | 01/02/2019 | 2100                    | 3350.5 | 0    | 1850 | ByCheque | =D7-C7 -> 1250.5 |
   8 | E02 | 01/03/2020 | 2000                    | 2000   | 0    | 0    |          | =D8-C8 -> 0      |
)");
  // Calculated cells have no amount format, so their column has no total.
  EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{10, 1, 10, 9}}), R"(
     | A           | B | C    | D      | E | F
  10 | Grand Total |   | 4100 | 5350.5 | 0 | 1850
)");
  EXPECT_GRID(run.Grid("Sheet", {.formats = true, .range = CellRange{6, 4, 7, 5}}), R"(
     | D      | E
   6 | All    | None
   7 | 3350.5 | 0
  D6:E6 - Arial 9 colour 5 wrap General
  D7:E7 - Arial 9 colour 1 #,0.00;-#,0.00
  widths D:E=12
  heights 6:7=14
)");
}

TEST(AccumulatedList, TheTitleNamesTheRangesOfEveryCycle) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"CalenGrpYr", "", "Pay(Yr 2023, Yr 2024)"},
      {"PeriodGrpYr", "", "Pay(Yr 2023, Yr 2024)"},
      {"CalenGrpMth", "", "Pay(Dec 2023, Jan 2024)"},
      {"PeriodGrpPd", "", "Pay(Yr 2023 Pd 12, Yr 2024 Pd 1)"},
      {"PeriodGrpSubPeriod", "", "Pay(Yr 2023 Pd 12 SP 0, Yr 2024 Pd 1 SP 2)"},
      {"CalenGrpYr", "SubGrpPayRecId", "Pay(Yr 2023 ALL, Yr 2024 Bonus)"},
      {"CalenGrpMth", "SubGrpPayRecType", "Pay(Dec 2023 ALL, Jan 2024 Bonus)"},
      {"PeriodGrpPd", "SubGrpPayRecType", "Pay(Yr 2023 Pd 12 ALL, Yr 2024 Pd 1 Bonus)"},
      {"PeriodGrpSubPeriod", "SubGrpPayRecId", "Pay(Yr 2023 Pd 12 SP 0 ALL, Yr 2024 Pd 1 SP 2 Bonus)"},
      {"Another", "SubGrpPayRecType", "Pay( ALL,  Bonus)"},
      {"Another", "", "Pay(, )"}};
  for (const auto& [group_by, sub_group_by, title] : rows) {
    for (const int accumulates_text : {1, 0}) {
      Scenario scenario(Sheet() + PayRuns() + Basic(1, "Normal", "1", 1) +
                        Report({.cycle_group_by = group_by, .cycle_sub_group_by = sub_group_by}) +
                        BasicColumn(1, "Pay", accumulates_text) + RangeSql(1, 2023, 12, 0, "") +
                        RangeSql(1, 2024, 1, 2, "Bonus"));
      const ScenarioRun run = scenario.Run("S");
      EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{6, 2, 6, 2}}),
                  "| B\n6 | " + (accumulates_text != 0 ? title : "Pay"))
          << group_by << " " << sub_group_by;
    }
  }
}

TEST(AccumulatedList, ARangeWithoutPayRecordStandsForAllOfThem) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"SubGrpPayRecType", "110", "11111"}, {"SubGrpPayRecId", "11000", "11111"}, {"", "1", "11111"}};
  for (const auto& [sub_group_by, chosen, all_data] : rows) {
    const std::string sql = Sheet() + Basic(1, "", "1", 1) + Basic(1, "Normal", "1", 10) +
                            Basic(1, "Bonus", "1", 100) + Basic(1, "Run1", "1", 1000) +
                            Basic(1, "Run2", "1", 10000) + PayRuns() +
                            Report({.cycle_sub_group_by = sub_group_by}) + BasicColumn(1, "Pay");
    EXPECT_EQ(Value(Scenario(sql + RangeSql(1, 2024, 1, 0, "")).Run("S")), " " + chosen + "\n")
        << sub_group_by;
    // A pay record that the data leave empty is one of those to sum, not all of them once more.
    EXPECT_EQ(Value(Scenario(sql).Run("S")), " " + all_data + "\n") << sub_group_by;
  }
}

TEST(AccumulatedList, RatesAndBalancesShowTheFirstRecordFound) {
  struct Row {
    std::string grouping;
    std::string component;
    std::string column;
    std::string shown;
  };
  const std::vector<Row> rows = {{"OTRecord", "FormulaOTRate", "AnlysDoubleValue3", "7"},
                                 {"ShiftRecord", "FormulaShiftRate", "AnlysDoubleValue3", "7"},
                                 {"LeaveSystem", "AnlLveBroughtForward", "AnlysDoubleValue1", "7"},
                                 {"LeaveSystem", "AnlCurrLveEntitlement", "AnlysDoubleValue1", "7"},
                                 {"LeaveSystem", "SickLveBroughtForward", "AnlysDoubleValue1", "7"},
                                 {"LeaveSystem", "SickCurrLveEntitlement", "AnlysDoubleValue1", "7"},
                                 {"PaySystem", "PayHeadCount", "AnlysCount1", "7"},
                                 {"OTRecord", "OTHours", "AnlysAmount2", "16"},
                                 {"LeaveSystem", "AnlLveTaken", "AnlysDoubleValue1", "16"}};
  for (const Row& row : rows) {
    // Items of the pay system are found by component, all others by item.
    const std::string item = row.grouping == "PaySystem" ? row.component : "ITEM";
    const std::string sql =
        Sheet() + Record(2024, 1, "Normal", "1", row.grouping, "OTHER", "", 1) +
        Record(2024, 2, "Normal", "1", row.grouping, item, "", 7) +
        Record(2024, 3, "Bonus", "1", row.grouping, item, "", 9) + "UPDATE MiniRecords SET " + row.column +
        " = AnlysAmount1;" + Report({.cycle_sub_group_by = "SubGrpPayRecType"}) +
        ColumnItemSql({.order = 1, .item = "ITEM", .grouping = row.grouping, .component = row.component});
    const std::string ranges = RangeSql(1, 2024, 1, 0, "Normal") + RangeSql(1, 2024, 2, 0, "Normal") +
                               RangeSql(1, 2024, 3, 0, "Bonus");
    EXPECT_EQ(Value(Scenario(sql + ranges).Run("S")), " " + row.shown + "\n") << row.component;
    // Ranges that stand for all pay records add them up.
    EXPECT_EQ(Value(Scenario(sql + RangeSql(1, 2024, 2, 0, "") + RangeSql(1, 2024, 3, 0, "")).Run("S")),
              " 16\n")
        << row.component;
    // No record in any range.
    EXPECT_EQ(Value(Scenario(sql + RangeSql(1, 2023, 1, 0, "Normal")).Run("S")), " 0\n") << row.component;
  }
}

TEST(AccumulatedList, TextsAndMomentsAreThoseOfTheLastRecordFound) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"AnlysText1", "'Remark'", " Remark\n"},
      {"AnlysItem5Id", "'Whole text'", " Whole text\n"},
      {"AnlysDate1", "'2024-02-29'", " 29/02/2024\n"},
      {"AnlysTime1", "'08:30:00'", " 08:30:00\n"},
      {"AnlysTimestamp1", "'2024-02-29 00:00:00'", " 29/02/2024 00:00:00\n"},
      {"AnlysTimestamp1", "NULL", ""}};
  for (const auto& [column, value, shown] : rows) {
    Scenario scenario(Sheet() + Basic(1, "Normal", "1", 1) + Basic(2, "Normal", "1", 2) +
                      Record(2024, 3, "Normal", "1", "PayElement", "OTHER", "", 3) +
                      ShownColumnSql("PayElementAmt", column, value, "AnlysAmount1 = 2") + Report() +
                      BasicColumn(1, "Value"));
    EXPECT_EQ(Value(scenario.Run("S")), shown) << column;
  }
}

TEST(AccumulatedList, AllItemsExpandAndAnEmptyOneOnlyWarns) {
  Scenario scenario(
      Sheet() + Record(2024, 1, "Normal", "1", "Allowance", "MEAL", "Meals", 10) +
      Record(2024, 2, "Normal", "1", "Allowance", "MEAL", "Meals", 15) +
      Record(2024, 1, "Normal", "1", "Allowance", "TRAVEL", "Travel", 20) + Report() +
      ColumnItemSql({.order = 1,
                     .item = "<ALL>",
                     .grouping = "Allowance",
                     .component = "AllowanceAmt",
                     .accumulates_text = 1}) +
      RangeSql(1, 2024, 1, 0, "Normal") + RangeSql(1, 2024, 2, 0, "Normal") +
      ColumnItemSql({.order = 2,
                     .item = "<ALL>",
                     .grouping = "Deduction",
                     .component = "DeductionAmt",
                     .title = "never shown"}) +
      ColumnItemSql({.order = 3, .type = "CalculatedItem", .title = "Sum", .formula = "=<Item#1>"}));
  const ScenarioRun run = scenario.Run("S");
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{6, 2, 7, 5}}), R"(
     | B                         | C                          | D
   6 | Meals(Jan 2024, Feb 2024) | Travel(Jan 2024, Feb 2024) | Sum
   7 | 25                        | 20                         | =C7 -> 20
)");
  EXPECT_THAT(ScenarioRun::Lines(run.user_log),
              HasSubstr("Warning Acc: Empty Formula Code for Deduction.\n"));
}

TEST(AccumulatedList, StandsBesideAnotherReport) {
  Scenario scenario(Sheet() + Basic(1, "Normal", "1", 10) + Basic(2, "Normal", "1", 20) +
                    Basic(2, "Normal", "2", 30) + FinancialItemSql({.grand_total = 1}) + ListByEmployeeSql() +
                    BasicColumn(2, "Basic") + Report({.id = "R2", .ordering = 2}) +
                    ColumnItemSql({.report = "R2",
                                   .order = 1,
                                   .item = "BASIC",
                                   .grouping = "PayElement",
                                   .component = "PayElementAmt",
                                   .title = "Year to date"}) +
                    "UPDATE FinancialRpt SET FinancialHasGrandTot = 1;");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet"), R"(
     | A           | B         | C         | D
   1 |
   2 |             | Year 2024 | Year 2024 |
   3 |             | Jan       | Feb       |
   4 |
   5 |             | Normal    | Normal    |
   6 | No.         | Basic     | Basic     | Year to date
   7 | E01         | 10        | 20        | 30
   8 | E02         | 0         | 30        | 30
   9 |
  10 | Grand Total | 10        | 50        | 60
)");
}

TEST(AccumulatedList, BelowCompanyLevelTheRecordsAreTheEntitysAlone) {
  const std::string records = Record(2024, 1, "Normal", "SAL", "PayElement", "BASIC", "", 10, "", "E") +
                              Record(2024, 1, "Normal", "SAL", "PayElement", "BASIC", "", 20, "", "W") +
                              Record(2024, 2, "Normal", "WRK", "PayElement", "BASIC", "", 30, "", "E");
  Scenario scenario(MiniPayrollSql() + records + SpreadsheetSql("S", "SumLevelBasis") +
                    Report({.level = "SumLevelBasis"}) + BasicColumn(1, "Basic") +
                    "UPDATE ExcelWkSheet SET WkSheetRptBasis1 = 'Department', WkSheetRptBasis3 = 'Section';"
                    "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Department', 'DepartmentDesc'), "
                    "(2, 'R1', 2, 'Section', 'SectionDesc');");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{6, 2, 10, 2}}), R"(
     | B
   6 | Basic
   7 | 10
   8 | 20
   9 | 30
)");
}

TEST(AccumulatedList, SumsEqualTheDatabasesOwn) {
  std::string records;
  for (int i = 0; i < 600; ++i) {
    records += Record(2024, 1 + i % 12, i % 7 == 0 ? "Bonus" : "Normal", std::to_string(1 + i / 12 % 5),
                      "PayElement", "ITEM" + std::to_string(i / 60), "", (i * 7919 % 100000) / 100.0);
  }
  std::string columns;
  for (int item = 0; item < 10; ++item) {
    columns += ColumnItemSql({.order = 2 + item,
                              .item = "ITEM" + std::to_string(item),
                              .grouping = "PayElement",
                              .component = "PayElementAmt"});
    if (item % 2 == 0) {
      for (int period = 1; period <= 1 + item; ++period) columns += RangeSql(2 + item, 2024, period, 0, "");
    }
  }
  Scenario scenario(Sheet() + records + Report({.cycle_sub_group_by = "SubGrpPayRecType"}) +
                    ListByEmployeeSql() + columns);
  const ScenarioRun run = scenario.Run("S");
  ASSERT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  const auto& sheet = *run.workbook.Get()->FindSheet("Sheet");
  for (int employee = 1; employee <= 5; ++employee) {
    for (int item = 0; item < 10; ++item) {
      Query sum{std::string(kPayrollDatabaseName)};
      sum.SetSql("SELECT SUM(AnlysAmount1) AS Total FROM MiniRecords WHERE Basis1Id = '" +
                 std::to_string(employee) + "' AND AnlysItem1Id = 'ITEM" + std::to_string(item) +
                 "' AND AnlysItemRecPeriodMonth <= " + std::to_string(item % 2 == 0 ? 1 + item : 12));
      sum.Open();
      EXPECT_NEAR(sheet.Find(6 + employee, 2 + item)->number, sum.FieldByName("Total").AsFloat(), 1e-6)
          << employee << " " << item;
    }
  }
}

TEST(AccumulatedList, WithoutColumnItemsItWarnsAndSucceeds) {
  const ScenarioRun run = Scenario(Sheet() + Basic(1, "Normal", "1", 1) + Report()).Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Warning: Column Items are not set for R1.\n"));
}

TEST(AccumulatedList, ATitleWhoseCycleCannotBeReadSaysSoInTheLog) {
  const std::string sql = Sheet() + Basic(1, "Normal", "1", 1) + Report() + BasicColumn(1, "Pay", 1);
  Scenario failing(sql);
  failing.FailStatement("FROM AnlysProject WHERE", 3);
  const ScenarioRun run = failing.Run("S");
  EXPECT_THAT(run.Errors(),
              testing::ElementsAre("BExcelExpEngAccumulatedListRpt::GetAccumulatedRange Error: Unable "
                                   "to get Analysis Project Details."));
  EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{6, 2, 7, 2}}), "| B\n6 | Pay()\n7 | 1");

  const ScenarioRun thirteenth = Scenario(sql + RangeSql(1, 2024, 13, 0, "Normal")).Run("S");
  EXPECT_EQ(thirteenth.result, 0);
  EXPECT_TRUE(thirteenth.Shows("13"));
}

TEST(AccumulatedList, EachFailureLeavesItsEntryAndTheChain) {
  const std::string layout = "BExcelExpEngAccumulatedListRpt::";
  const std::string print = layout + "PrintFinancialData Error: ";
  const std::string by_id = "UPDATE AnlysProject SET CycleSubGroupBy = 'SubGrpPayRecId';";
  ExpectFailures(
      Sheet() + Record(2024, 1, "Normal", "1", "Allowance", "MEAL", "", 1) +
          Report({.cycle_sub_group_by = "SubGrpPayRecType"}) + RangeSql(1, 2024, 1, 0, "") +
          ColumnItemSql({.order = 1, .item = "<ALL>", .grouping = "Allowance", .component = "AllowanceAmt"}),
      "BExcelExpEngPrintFirstFinRpt::ExecuteProcAccumulatedListRpt Error: Error in printing Accumulated "
      "Listing "
      "Report",
      {{"FROM FinancialRpt WHERE FinancialRptId", 1,
        layout + "ExecuteOperation Error: Error in getting Financial Report Information."},
       {"FROM AnlysProject WHERE", 2,
        layout + "ExecuteOperation Error: Error in getting Analysis Project Information."},
       {"AnlysItemRecord JOIN AnlysDispSection", 1,
        layout + "ExecuteOperation Error: Error in AnlysItemRecQry Query."},
       {"FinColIsRptMainInfo = 0", 1, layout + "ExecuteOperation Error: Error in FinanceColItemQry Query."},
       {"ColourSchemeId IN", 1, print + "Error in ColourSchemeQry Query."},
       {"", 0, print + "Empty ColourSchemeQry Recordset.",
        "PRAGMA foreign_keys = OFF; DELETE FROM ColourScheme;"},
       {"", 0, print + "Unable to locate Colour Scheme Record.",
        "UPDATE ColourScheme SET ColourCodeId = NULL WHERE ColourSchemeId = 'Body';"},
       {"FROM FinColAccumulated", 1, print + "Error in FinColAccuRangeQry Query."},
       {"AS FinColAccuYear", 1, print + "Error in FinColAccuRangeQry Query.",
        "DELETE FROM FinColAccumulated;"},
       {"FROM AnItemLookup", 1, print + "Unable to get Analysis Item Details."},
       {"", 0, print + "Empty Analysis Item Details.", "DELETE FROM AnItemLookup;"},
       {"WHERE AnlysItemTypeId = 'Allowance' ORDER", 1, print + "Error in AllFormulaQry Query"},
       {"FROM KeyWord", 1, print + "Error in getting Keyword Information."},
       {"", 0, print + "Empty Keyword Information.", "UPDATE KeyWord SET KeywordCategory = 'Other';"},
       {"DISTINCT PayRecId", 1, print + "Error in getting Pay Record ID Information.", by_id},
       {"", 0, print + "Empty Pay Record ID Information.", by_id}});
}

}  // namespace
}  // namespace excelexp
