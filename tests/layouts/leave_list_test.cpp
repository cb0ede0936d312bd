// The leave listings by pay period and as of a date: a row per group with records, alone and beside others.

#include <tuple>

#include "support/failures.h"
#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string Sheet() {
  return MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee") + ListByEmployeeSql();
}

std::string Leave(const std::string& employee, int year, int period, int sub_period,
                  const std::string& pay_record, double days) {
  return Record(year, period, pay_record, employee, "LeaveSystem", "AnlLveBalance", "", days) +
         "UPDATE MiniRecords SET AnlysDoubleValue1 = AnlysAmount1, AnlysItemRecSubPeriod = " +
         std::to_string(sub_period) + " WHERE rowid = last_insert_rowid();";
}

FinancialItem ByPeriod(FinancialItem item = {}) {
  item.layout = "LeaveList";
  item.sub_type = "ProjSubTypeLveSumm";
  return item;
}

FinancialItem AsOfDate(FinancialItem item = {}) {
  item = ByPeriod(item);
  item.cycle_method = "CycMtdLveAsOfDate";
  return item;
}

std::string Balance(int order, const std::string& report = "R1") {
  return ColumnItemSql({.report = report,
                        .order = order,
                        .item = "not asked",
                        .grouping = "LeaveSystem",
                        .component = "AnlLveBalance",
                        .title = "Balance"});
}

std::string Twice(int order, const std::string& report = "R1") {
  return ColumnItemSql({.report = report,
                        .order = order,
                        .type = "CalculatedItem",
                        .title = "Twice",
                        .formula = "=2*<Item#" + std::to_string(order - 1) + ">"});
}

/// Employee 1: three groups of two periods. Employee 2: the second period only. Nobody: the third.
std::string TwoPeriods() {
  return Leave("1", 2024, 1, 0, "Normal", 5) + Leave("1", 2024, 1, 0, "Bonus", 1) +
         Leave("1", 2024, 2, 0, "Normal", 4.5) + Leave("2", 2024, 2, 0, "Normal", 3);
}

std::string TwoPeriodGroups(int item) {
  return ChosenPeriodSql(2024, 1, "Normal", 0, item) + ChosenPeriodSql(2024, 1, "Bonus", 0, item) +
         ChosenPeriodSql(2024, 2, "Normal", 0, item) + ChosenPeriodSql(2024, 3, "Normal", 0, item);
}

/// The day whose leave is taken.
std::string Day(int year, int month, int day) {
  return "UPDATE ExcelWSItemRptOpts SET WSItemFromYear = " + std::to_string(year) +
         ", WSItemFromMthPeriod = " + std::to_string(month) +
         ", WSItemFromSubPeriod = " + std::to_string(day) + " WHERE WkSheetItemSysId = 101;";
}

/// A pay report over records of its own as the item of that ordering: one column of one row per employee.
std::string PayItem(const std::string& id, int ordering) {
  return Record(2024, 1, "Normal", "1", "PayElement", "BASIC", "", 100) +
         Record(2024, 1, "Normal", "2", "PayElement", "BASIC", "", 200) +
         "CREATE TABLE PayRecords AS SELECT * FROM MiniRecords WHERE AnlysDispSectionId = 'PayElement';"
         "DELETE FROM MiniRecords WHERE AnlysDispSectionId = 'PayElement';" +
         FinancialItemSql(
             {.id = id, .ordering = ordering, .layout = "AccumulateList", .setup = "PayRecords"}) +

         ColumnItemSql({.report = id,
                        .order = 2,
                        .item = "BASIC",
                        .grouping = "PayElement",
                        .component = "PayElementAmt",
                        .title = "Pay"});
}

TEST(LeaveListByPeriod, ARowPerGroupWithRecords) {
  Scenario scenario(Sheet() + TwoPeriods() +
                    FinancialItemSql(ByPeriod({.grand_total = 1, .employee_count = 1})) + TwoPeriodGroups(1) +
                    Balance(2) + Twice(3) +
                    ColumnItemSql({.order = 4,
                                   .type = "SummLvlItem",
                                   .grouping = "Employee",
                                   .component = "HireDate",
                                   .title = "Hired"}) +
                    ColumnItemSql({.order = 5, .type = "BlankItem", .title = "Remarks"}));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{1, 1, 20, 9}}), R"(
     | A                | B         | C   | D | E      | F       | G     | H          | I
   1 |
   2 |
   3 |
   4 |
   5 |
   6 | No.              |           |     |   |        | Balance | Twice | Hired      | Remarks
   7 | E01              | Year 2024 | Jan |   | Normal | 5       | 10    | 01/02/2019 |
   8 |                  |           |     |   | Bonus  | 1       | 2     | 01/02/2019 |
   9 |                  | Year 2024 | Feb |   | Normal | 4.5     | 9     | 01/02/2019 |
  10 |
  11 | E02              | Year 2024 | Feb |   | Normal | 3       | 6     | 01/03/2020 |
  12 |
  13 |
  14 | Grand Total      |           |     |   |        | 13.5    | 27    |            |
  15 | Total Employees: | 2         |     |   |        |         |       |            |
)");
}

TEST(LeaveListByPeriod, GroupsComeFromTheDataWhenNoneAreChosen) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"PeriodGrpPd", "Period 1", "Period 12"},
      {"PeriodGrpSubPeriod", "Period 1", "Period 12"},
      {"CalenGrpMth", "Jan", "Dec"},
      {"CalenGrpYr", "", ""}};
  for (const auto& [group_by, first, last] : rows) {
    Scenario scenario(Sheet() + Leave("1", 2024, 12, 2, "Normal", 1) + Leave("1", 2024, 1, 2, "Normal", 2) +
                      Leave("1", 2024, 1, 1, "Normal", 3) + Leave("1", 2023, 0, 0, "", 4) +
                      FinancialItemSql(ByPeriod({.cycle_group_by = group_by})) + Balance(2));
    EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 2, 11, 6}}),
                "| B | C | D | E | F\n7 | Year 2023 | | | | 4\n8 | Year 2024 |" + first +
                    "| Sub Period 1 | Normal | 3\n9 | Year 2024 |" + first +
                    "| Sub Period 2 | Normal | 2\n10 | Year 2024 |" + last + "| Sub Period 2 | Normal | 1")
        << group_by;
  }
}

TEST(LeaveListByPeriod, ItemsFoundByComponentOrByItem) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"LeaveSystem", "SickLveTaken", "1.5"},
      {"LeaveCareerSystem", "AnlLveEarned", "1.5"},
      {"LeaveRecord", "LeaveDays", "2.5"},
      {"PaySystem", "GrossWage", "2.5"}};
  for (const auto& [grouping, component, shown] : rows) {
    Scenario scenario(
        Sheet() + Record(2024, 1, "Normal", "1", grouping, component, "", 1.5) +
        Record(2024, 1, "Normal", "1", grouping, "ITEM", "", 2.5) +
        "UPDATE MiniRecords SET AnlysDoubleValue1 = AnlysAmount1;" + FinancialItemSql(ByPeriod()) +
        ColumnItemSql({.order = 2, .item = "ITEM", .grouping = grouping, .component = component}));
    EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 6, 7, 6}}), "| F\n7 | " + shown)
        << grouping;
  }
}

TEST(LeaveListByPeriod, MomentsAtMidnightShowTheirDay) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"AnlysTimestamp1", "'2024-02-29 00:00:00'", "29/02/2024"},
      {"AnlysTimestamp1", "'2024-02-29 08:30:01'", "29/02/2024 08:30:01"},
      {"AnlysTimestamp1", "NULL", ""},
      {"AnlysDate1", "'2024-02-29'", "29/02/2024"},
      {"AnlysTime1", "'08:30:00'", "08:30:00"},
      {"AnlysCount1", "12", "12"}};
  for (const auto& [column, value, shown] : rows) {
    Scenario scenario(Sheet() + Leave("1", 2024, 1, 0, "Normal", 1) +
                      ShownColumnSql("AnlLveBalance", column, value) + FinancialItemSql(ByPeriod()) +
                      Balance(2));
    EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 6, 7, 6}}),
                shown.empty() ? "" : "| F\n7 | " + shown)
        << column;
  }
}

TEST(LeaveListByPeriod, AloneAnEntityWithoutRecordsPrintsNothing) {
  Scenario scenario(Sheet() + Leave("1", 2023, 1, 0, "Normal", 9) + Leave("2", 2024, 1, 0, "Normal", 3) +
                    Leave("3", 2024, 1, 0, "Normal", 4) + FinancialItemSql(ByPeriod({.grand_total = 1})) +
                    ChosenPeriodSql(2024, 1, "Normal") + Balance(2) + Twice(3));
  // Titles stand above the first row printed. The total is there although the first row has no figures.
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{6, 1, 15, 7}}), R"(
     | A           | B         | C   | D | E      | F       | G
   6 | No.         |           |     |   |        |         |
   7 | E01         |           |     |   |        | Balance | Twice
   8 | E02         | Year 2024 | Jan |   | Normal | 3       | 6
   9 |
  10 | E03         | Year 2024 | Jan |   | Normal | 4       | 8
  11 |
  12 |
  13 | Grand Total |           |     |   |        | 7       | 14
)");
}

TEST(LeaveListByPeriod, BesideAnotherReportABlankRowKeepsTheWidth) {
  Scenario scenario(Sheet() + TwoPeriods() + FinancialItemSql(ByPeriod({.grand_total = 1})) +
                    ChosenPeriodSql(2024, 1, "Normal") + ChosenPeriodSql(2024, 1, "Bonus") + Balance(2) +
                    Twice(3) + PayItem("R2", 2));
  // The titles of a blank row stand above it for every entity; no printed row is lost to them.
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{6, 1, 14, 8}}), R"(
     | A           | B         | C   | D | E      | F       | G     | H
   6 | No.         |           |     |   |        | Balance | Twice | Pay
   7 | E01         | Year 2024 | Jan |   | Normal | 5       | 10    | 100
   8 |             |           |     |   | Bonus  | 1       | 2     |
   9 |             |           |     |   |        | Balance | Twice |
  10 | E02         |           |     |   |        | 0       | 0     | 200
  11 |
  12 |
  13 | Grand Total |           |     |   |        | 6       | 12    | 300
)");
}

TEST(LeaveListByPeriod, ABlankRowIsFollowedByTheGroupsWithRecords) {
  Scenario scenario(Sheet() + TwoPeriods() + PayItem("R2", 1) + FinancialItemSql(ByPeriod({.ordering = 2})) +
                    TwoPeriodGroups(2) + Balance(2) +
                    "UPDATE FinanceColItem SET FinancialRptId = 'R2' WHERE FinColIsRptMainInfo = 1;"
                    "UPDATE FinanceSortItem SET FinancialRptId = 'R2';");
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{6, 1, 13, 7}}), R"(
     | A   | B   | C         | D   | E | F      | G
   6 | No. | Pay |           |     |   |        | Balance
   7 | E01 | 100 | Year 2024 | Jan |   | Normal | 5
   8 |     |     |           |     |   | Bonus  | 1
   9 |     |     | Year 2024 | Feb |   | Normal | 4.5
  10 |     |     |           |     |   |        | Balance
  11 | E02 | 200 |           |     |   |        | 0
  12 |     |     | Year 2024 | Feb |   | Normal | 3
)");
}

TEST(LeaveListByPeriod, TitlesStandOnceWhateverIsPrintedBeside) {
  for (const bool leave_first : {true, false}) {
    const int leave = leave_first ? 1 : 2;
    Scenario scenario(
        Sheet() + TwoPeriods() + FinancialItemSql(ByPeriod({.id = "Leave", .ordering = leave})) +
        ChosenPeriodSql(2024, 2, "Normal", 0, leave) + Balance(2, "Leave") + PayItem("Pay", 3 - leave) +
        "UPDATE FinanceColItem SET FinancialRptId = '" + (leave_first ? "Leave" : "Pay") +
        "' WHERE FinColIsRptMainInfo = 1; UPDATE FinanceSortItem SET FinancialRptId = '" +
        (leave_first ? "Leave" : "Pay") + "';");
    const std::string grid = scenario.Run("S").Grid("Sheet");
    EXPECT_THAT(grid, HasSubstr("Balance"));
    EXPECT_EQ(grid.find("Balance"), grid.rfind("Balance")) << grid;
  }
}

TEST(LeaveListAsOfDate, TheDayHeadsTheBlockOnce) {
  Scenario scenario(Sheet() + Leave("1", 2024, 2, 29, "Normal", 5) + Leave("1", 2024, 2, 29, "Bonus", 1) +
                    Leave("2", 2024, 2, 29, "Bonus", 3) + FinancialItemSql(AsOfDate({.grand_total = 1})) +
                    Day(2024, 2, 29) + ChosenPeriodSql(2024, 2, "Normal", 29) +
                    ChosenPeriodSql(2024, 2, "Bonus", 29) + Balance(2) + Twice(3));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet"), R"(
     | A           | B                         | C       | D
   1 |
   2 |             | As Of Date 1 : 29/02/2024
   3 |
   4 |
   5 |
   6 | No.         |                           | Balance | Twice
   7 | E01         | Normal                    | 5       | 10
   8 |             | Bonus                     | 1       | 2
   9 |
  10 | E02         | Bonus                     | 3       | 6
  11 |
  12 |
  13 | Grand Total |                           | 9       | 18
)");
}

TEST(LeaveListAsOfDate, BesideAnotherReportABlankRowKeepsTheWidth) {
  Scenario scenario(Sheet() + Leave("1", 2024, 12, 31, "Normal", 5) +
                    FinancialItemSql(AsOfDate({.grand_total = 1})) + ChosenPeriodSql(2024, 12, "Normal", 31) +
                    Balance(2) + Twice(3) + PayItem("R2", 2) + Leave("2", 2024, 12, 31, "Bonus", 7) +
                    Day(2024, 12, 31));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{2, 1, 14, 5}}), R"(
     | A           | B                         | C       | D     | E
   2 |             | As Of Date 1 : 31/12/2024 |         |       |
   3 |
   4 |
   5 |
   6 | No.         |                           | Balance | Twice | Pay
   7 | E01         | Normal                    | 5       | 10    | 100
   8 |             |                           | Balance | Twice |
   9 | E02         |                           | 0       | 0     | 200
  10 |
  11 |
  12 | Grand Total |                           | 5       | 10    | 300
)");
}

TEST(LeaveListAsOfDate, BankItemsAreFoundByLookUp) {
  Scenario scenario(
      Sheet() + Record(2024, 1, "Normal", "1", "BankRecord", "0071", "", 2) +
      "UPDATE MiniRecords SET AnlysLookUpId = 'BankPaymentAmt', AnlysItemRecSubPeriod = 31;" +
      FinancialItemSql(AsOfDate()) + Day(2024, 1, 31) + ChosenPeriodSql(2024, 1, "Normal", 31) +
      ColumnItemSql({.order = 2, .item = "Cash1", .grouping = "BankRecord", .component = "BankPaymentAmt"}));
  EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 2, 7, 3}}), "| B | C\n7 | Normal | 2");
}

TEST(LeaveLists, TotalsOfGroupedReportsBeginAfterTheDescriptiveColumns) {
  const std::string people = Sheet() + Leave("1", 2024, 1, 31, "Normal", 5) +
                             Leave("2", 2024, 1, 31, "Normal", 1) + Leave("4", 2024, 1, 31, "Normal", 3) +
                             GroupSql(1, "Employee", "DepartmentDesc", "Department", 1, 0) +
                             ChosenPeriodSql(2024, 1, "Normal", 31) + Balance(2);
  const auto totals = [&](const FinancialItem& item) {
    const ScenarioRun run = Scenario(people + FinancialItemSql(item) + Day(2024, 1, 31)).Run("S");
    std::string rows;
    for (const std::string_view label : {"Sub Total(Department)", "Grand Total"}) {
      const std::string grid = Canonical(run.Grid("Sheet"));
      for (std::size_t at = grid.find(label); at != std::string::npos; at = grid.find(label, at + 1)) {
        rows += grid.substr(at, grid.find('\n', at) - at) + "\n";
      }
    }
    return rows;
  };
  EXPECT_EQ(totals(ByPeriod({.grand_total = 1})),
            "Sub Total(Department) |  |  |  |  | 6\nSub Total(Department) |  |  |  |  | 3\n"
            "Grand Total |  |  |  |  | 9\n");
  EXPECT_EQ(totals(AsOfDate({.grand_total = 1})),
            "Sub Total(Department) |  | 6\nSub Total(Department) |  | 3\nGrand Total |  | 9\n");
}

TEST(LeaveLists, WithoutColumnItemsTheyWarnAndSucceed) {
  for (const FinancialItem& item : {ByPeriod(), AsOfDate()}) {
    const ScenarioRun run = Scenario(Sheet() + TwoPeriods() + FinancialItemSql(item) + TwoPeriodGroups(1) +
                                     Leave("1", 2024, 1, 31, "Normal", 1) + Day(2024, 1, 31))
                                .Run("S");
    EXPECT_EQ(run.result, 1);
    EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Warning: Column Items are not set for R1.\n"));
  }
}

/// The failures that both listings have; `inner` is the class that messages below ExecuteOperation name.
std::vector<FailureRow> CommonFailures(const std::string& layout, const std::string& inner) {
  const std::string execute = layout + "::ExecuteOperation Error: ";
  const std::string texts = inner + "::PrintPayPeriodInfo Error: ";
  const std::string print = inner + "::PrintFinancialData Error: ";
  return {{"FROM FinancialRpt WHERE FinancialRptId", 1,
           execute + "Error in getting Financial Report Information."},
          {"FROM AnlysProject WHERE", 2, execute + "Error in getting Analysis Project Information."},
          {"AnlysItemRecord JOIN AnlysDispSection", 1,
           layout + "::PrintPayRecInfo Error: Error in AnlysItemRecQry Query."},
          {"FROM ExcelWSItemRptLayout", 1, execute + "Error in ExcelRptLayoutQry Query."},
          {"FinColIsRptMainInfo = 0", 1, execute + "Error in FinanceColItemQry Query."},
          {"AND AnlysItemRecYear = ", 1,
           layout + "::CheckRowDataExist Error: Error in checking Record Exist in AnlysItemRecord Table."},
          {"ColourSchemeId = 'Title'", 1, texts + "Error in ColourSchemeQry Query."},
          {"FROM AnlysProject WHERE", 3, texts + "Unable to get Analysis Project Details."},
          {"'Own'", 1, print + "Error in ColourSchemeQry Query.",
           OwnSchemeSql("FinanceColItem", "FinColItemOrder = 2")},
          {"FROM AnItemLookup", 1, print + "Unable to get Analysis Item Details."},
          {"", 0, print + "Empty Analysis Item Details.", "DELETE FROM AnItemLookup;"},
          {"", 0, print + "Unable to locate Colour Scheme Record.",
           "INSERT INTO ColourScheme (ColourSchemeId) VALUES ('None'); UPDATE FinanceColItem SET "
           "ColourSchemeId = "
           "'None' WHERE FinColItemOrder = 2;"}};
}

TEST(LeaveListByPeriod, EachFailureLeavesItsEntryAndTheChain) {
  const std::string layout = "BExcelExpEngLeaveListPeriodRpt";
  std::vector<FailureRow> rows = CommonFailures(layout, layout);
  rows.push_back({"AS WSRptLayoutYear", 1,
                  layout + "::ExecuteOperation Error: Error in ExcelRptLayoutQry Query.",
                  "DELETE FROM ExcelWSItemRptLayout;"});
  ExpectFailures(
      Sheet() + TwoPeriods() + FinancialItemSql(ByPeriod()) + TwoPeriodGroups(1) + Balance(2),
      "BExcelExpEngPrintFirstFinRpt::ExecuteProcLeaveListPeriodRpt Error: Error in printing Leave Listing "
      "Report (Pay Period)",
      rows);
}

TEST(LeaveListAsOfDate, EachFailureLeavesItsEntryAndTheChain) {
  const std::string layout = "BExcelExpEngLeaveListDateRpt";
  const std::string inner = "BExcelExpEngLeaveSumRpt";
  std::vector<FailureRow> rows = CommonFailures(layout, inner);
  rows.push_back({"", 0, layout + "::ExecuteOperation Error: Empty ExcelRptLayoutQry RecordSet.",
                  "DELETE FROM ExcelWSItemRptLayout;"});
  const std::vector<std::pair<std::string, std::string>> days = {
      {"2023, 2, 29", "2023-2-29"}, {"2024, 13, 1", "2024-13-1"}, {"2024, 0, 0", "2024-0-0"}};
  for (const auto& [values, day] : days) {
    rows.push_back(
        {"", 0, inner + "::PrintPayPeriodInfo Error: The As Of Date is wrong: there is no date " + day + ".",
         "DELETE FROM ExcelWSItemRptLayout; INSERT INTO ExcelWSItemRptLayout VALUES (101, 1, " + values +
             ", 'Normal');"});
  }
  ExpectFailures(
      Sheet() + Leave("1", 2024, 1, 31, "Normal", 5) + FinancialItemSql(AsOfDate()) + Day(2024, 1, 31) +
          ChosenPeriodSql(2024, 1, "Normal", 31) + Balance(2),
      "BExcelExpEngPrintFirstFinRpt::ExecuteProcLeaveListDateRpt Error: Error in printing Leave Listing "
      "Report (As Of Date)",
      rows);
}

}  // namespace
}  // namespace excelexp
