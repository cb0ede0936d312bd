// The staff movement listing: the heading's period and width, counts as whole numbers, totals over them.

#include "layouts/BExcelExpEngMovementListRpt.h"
#include "support/failures.h"
#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using testing::HasSubstr;

/// The one period that is printed.
std::string Options(int year, int period, int ordering = 1) {
  return PeriodRangeSql(year, period, year, period, ordering);
}

std::string Report(FinancialItem item = {}) {
  item.layout = "MovementList";
  return FinancialItemSql(item);
}

std::string Moved(const std::string& department, const std::string& component, int count) {
  return Record(2005, 3, "", department, "Movement", component, "", count) +
         "UPDATE MiniRecords SET AnlysCount1 = AnlysAmount1 WHERE AnlysDispSectionId = 'Movement';";
}

std::string Column(int order, const std::string& component, const std::string& title,
                   const std::string& report = "R1") {
  return ColumnItemSql({.report = report,
                        .order = order,
                        .item = "not asked",
                        .grouping = "Movement",
                        .component = component,
                        .title = title});
}

/// A worksheet of the departments Sales and Works in March 2005; Sales has hired nobody.
std::string Departments() {
  return MiniPayrollSql() + SpreadsheetSql("S", "SumLevelBasis") +
         "UPDATE ExcelWkSheet SET WkSheetRptBasis1 = 'Department';" + Moved("SAL", "MovementOpening", 12) +
         Moved("WRK", "MovementOpening", 1200) + Moved("WRK", "MovementHired", 3) +
         "INSERT INTO FinanceSortItem VALUES (1, 'R1', 1, 'Department', 'DepartmentDesc');" +
         ColumnItemSql({.order = 1,
                        .type = "SummLvlItem",
                        .grouping = "Department",
                        .component = "DepartmentDesc",
                        .title = "Department",
                        .main_info = 1});
}

FinancialItem ByDepartment(FinancialItem item = {}) {
  item.level = "SumLevelBasis";
  return item;
}

TEST(MovementList, CountsUnderOneHeading) {
  Scenario scenario(
      Departments() + Report(ByDepartment({.grand_total = 1})) + Options(2005, 3) +
      Column(2, "MovementOpening", "Opening") + Column(3, "MovementHired", "Hired") +
      ColumnItemSql({.order = 4, .type = "BlankItem", .title = "Remarks"}) +
      ColumnItemSql(
          {.order = 5, .type = "CalculatedItem", .title = "Closing", .formula = "=<Item#2>+<Item#3>"}));
  const ScenarioRun run = scenario.Run("S");
  ASSERT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  EXPECT_GRID(run.Grid("Sheet", {.formulas = true, .range = CellRange{1, 1, 8, 5}}), R"(
     | A          | B | C | D | E
   1 |
   2 |            | Staff Movement Report for Month March 2005
   3 |
   4 |
   5 |
   6 | Department | Opening | Hired | Remarks | Closing
   7 | Sales      | 12      |       |         | =B7+C7 -> 12
   8 | Works      | 1200    | 3     |         | =B8+C8 -> 1203
)");
  // The first department has no such record: its blank cell has the format that totals ask for.
  EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{10, 1, 10, 5}}), R"(
     | A           | B    | C | D | E
  10 | Grand Total | 1212 | 3 |   | 1215
)");
  EXPECT_EQ(run.workbook.Get()->FindSheet("Sheet")->Merges(), (std::vector<CellRange>{{2, 2, 5, 5}}));
  EXPECT_THAT(run.Grid("Sheet", {.formats = true, .range = CellRange{7, 2, 8, 3}}), HasSubstr("#,0;-#,0"));
}

TEST(MovementList, TheHeadingOfEveryMonth) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"February 2004", "January 2005"},  {"March 2004", "February 2005"},
      {"April 2004", "March 2005"},       {"May 2004", "April 2005"},
      {"June 2004", "May 2005"},          {"July 2004", "June 2005"},
      {"August 2004", "July 2005"},       {"September 2004", "August 2005"},
      {"October 2004", "September 2005"}, {"November 2004", "October 2005"},
      {"December 2004", "November 2005"}, {"January 2005", "December 2005"}};
  const auto heading = [](const std::string& group_by, int period) {
    Scenario scenario(MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee") +
                      Record(2005, period, "", "1", "Movement", "MovementHired", "", 1) +
                      Report({.cycle_group_by = group_by}) + Options(2005, period) +
                      Column(1, "MovementHired", "Hired"));
    return Canonical(scenario.Run("S").Grid("Sheet", {.range = CellRange{2, 2, 2, 2}}));
  };
  for (int month = 1; month <= 12; ++month) {
    const auto& [from, to] = rows[static_cast<std::size_t>(month - 1)];
    EXPECT_EQ(heading("CalenGrpYr", month),
              Canonical("| B\n2 | Staff Movement Report for Year, from " + from + " to " + to));
    EXPECT_EQ(heading("CalenGrpMth", month), Canonical("| B\n2 | Staff Movement Report for Month " + to));
  }
  EXPECT_EQ(heading("PeriodGrpPd", 1), "");
}

/// A second report of movements beside the first, after an "<ALL>" item.
std::string BesideAllItems(const std::string& grouping, const std::string& component) {
  return Departments() + Record(2005, 3, "Any", "WRK", "Allowance", "MEAL", "Meals", 10) +
         Record(2005, 3, "Any", "WRK", "Allowance", "TRAVEL", "Travel", 20) + Report(ByDepartment()) +
         Options(2005, 3) +
         ColumnItemSql({.order = 2, .item = "<ALL>", .grouping = grouping, .component = component}) +
         Column(3, "MovementOpening", "Opening") +
         Report(ByDepartment({.id = "R2", .ordering = 2, .cycle_group_by = "CalenGrpYr"})) +
         Options(2005, 3, 2) + Column(1, "MovementHired", "Hired", "R2");
}

TEST(MovementList, TheHeadingIsAsWideAsTheReportHasItems) {
  Scenario scenario(BesideAllItems("Allowance", "AllowanceAmt"));
  const ScenarioRun run = scenario.Run("S");
  ASSERT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{6, 1, 8, 5}}), R"(
     | A          | B     | C      | D       | E
   6 | Department | Meals | Travel | Opening | Hired
   7 | Sales      | 0     | 0      | 12      |
   8 | Works      | 10    | 20     | 1200    | 3
)");
  EXPECT_THAT(run.Grid("Sheet", {.range = CellRange{2, 5, 2, 5}}),
              HasSubstr("Staff Movement Report for Year, from April 2004 to March 2005"));
  EXPECT_EQ(run.workbook.Get()->FindSheet("Sheet")->Merges(),
            (std::vector<CellRange>{{2, 2, 5, 3}, {2, 5, 5, 5}}));
}

TEST(MovementList, AnAllItemWithoutItemsLeavesTheNextReportBesideTheHeading) {
  Scenario scenario(BesideAllItems("Deduction", "DeductionAmt"));
  const ScenarioRun run = scenario.Run("S");
  ASSERT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  EXPECT_GRID(run.Grid("Sheet", {.range = CellRange{6, 1, 8, 5}}), R"(
     | A          | B       | C | D
   6 | Department | Opening |   | Hired
   7 | Sales      | 12      |   |
   8 | Works      | 1200    |   | 3
)");
  EXPECT_EQ(run.workbook.Get()->FindSheet("Sheet")->Merges(),
            (std::vector<CellRange>{{2, 2, 5, 3}, {2, 4, 5, 4}}));
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Warning : Empty Formula Code for Deduction.\n"));
}

TEST(MovementList, ItemsFoundByComponentByItemAndByLookUp) {
  struct Row {
    std::string grouping;
    std::string component;
    bool by_component;
  };
  const std::vector<Row> rows = {{"PaySystem", "GrossWage", true},
                                 {"LeaveSystem", "AnlLveTaken", true},
                                 {"LeaveCareerSystem", "AnlLveEarned", true},
                                 {"PayElement", "PayElementAmt", false},
                                 {"Allowance", "AllowanceAmt", false}};
  for (const Row& row : rows) {
    Scenario scenario(
        MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee") +
        Record(2005, 3, "Any", "1", row.grouping, row.component, "", 1.5) +
        Record(2005, 3, "Any", "1", row.grouping, "ITEM", "", 2.5) +
        "UPDATE MiniRecords SET AnlysDoubleValue1 = AnlysAmount1;" + Report() + Options(2005, 3) +
        ColumnItemSql({.order = 1, .item = "ITEM", .grouping = row.grouping, .component = row.component}));
    EXPECT_GRID(scenario.Run("S").Grid("Sheet", {.range = CellRange{7, 2, 7, 2}}),
                std::string("| B\n7 | ") + (row.by_component ? "1.5" : "2.5"));
  }
  Scenario bank(
      MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee") +
      Record(2005, 3, "Any", "1", "BankRecord", "BankPaymentAmt", "", 1) +
      Record(2005, 3, "Any", "1", "BankRecord", "0071", "", 2, "", "", "ByCash_1") +
      "UPDATE MiniRecords SET AnlysLookUpId = 'BankPaymentAmt' WHERE AnlysItem1Id = '0071';" + Report() +
      Options(2005, 3) +
      ColumnItemSql({.order = 1, .item = "Cash1", .grouping = "BankRecord", .component = "BankPaymentAmt"}));
  EXPECT_GRID(bank.Run("S").Grid("Sheet", {.range = CellRange{7, 2, 7, 2}}), "| B\n7 | 2");
}

/// The layout alone, at row 10 and column 2, for entity WRK of records that are in place already: without
/// report options no run comes as far.
class MovementAlone {
 public:
  explicit MovementAlone(Scenario& scenario) {
    scenario.Attach(core_, log_, log_);
    core_.SetExcelAPI(&api_);
    core_.SetExcelWorkbook(api_.CreateWorkbook(1));
    api_.CreateNewTable(core_.ExcelWorkbook, "Sheet");
    core_.SetExcelWorksheetName("Sheet");
    core_.SetExcelWkSheetTitleColourSchemeId("Title");
    core_.SetExcelWSItemRptId("R1");
    core_.SetExcelWSItemOrdering(1);
    core_.SetStartPrintedRow(10);
    core_.SetLastPrintedCol(2);
    EXPECT_TRUE(core_.ExecuteEmpCoyBasisSQL("SELECT 'WRK' AS Basis1Id, '' AS Basis2Id, '' AS Basis3Id"));
  }
  bool Print() { return BExcelExpEngMovementListRpt(&core_).ExecuteOperation(); }
  const BExcelExpEngCore& Core() const { return core_; }
  std::string Grid() const {
    const Workbook& workbook = *core_.ExcelWorkbook.Get();
    return DumpSheet(workbook, *workbook.FindSheet("Sheet"), {.range = CellRange{5, 2, 10, 2}});
  }
  std::vector<std::string> Errors() const {
    ScenarioRun run;
    run.internal_log = log_.Lines();
    return run.Errors();
  }

 private:
  MemoryLineSink log_;
  BExcelAPI api_;
  BExcelExpEngCore core_;
};

TEST(MovementList, WithoutOptionsTheFiguresAreThoseOfTheHeadingsPeriod) {
  const std::string sql = Departments() + Report(ByDepartment()) + Column(2, "MovementHired", "Hired");
  Scenario scenario(sql + Record(2005, 4, "", "WRK", "Movement", "MovementHired", "", 8) +
                    "UPDATE MiniRecords SET AnlysCount1 = AnlysAmount1, AnlysIPAddress = '10.1.2.3_1', "
                    "AnlysProjectId = 'R1'; INSERT INTO AnlysItemRecord SELECT * FROM MiniRecords;");
  MovementAlone layout(scenario);
  EXPECT_TRUE(layout.Print());
  EXPECT_GRID(layout.Grid(), R"(
     | B
   5 | Staff Movement Report for Month March 2005
   6 |
   7 |
   8 |
   9 | Hired
  10 | 3
)");
  EXPECT_EQ(layout.Core().LastPrintedCol, 3);
  EXPECT_EQ(layout.Core().LastPrintedRow, 10);

  Scenario empty(sql);
  MovementAlone without(empty);
  EXPECT_FALSE(without.Print());
  EXPECT_THAT(without.Errors(),
              testing::ElementsAre(
                  "BExcelExpEngMovementListRpt::ExecuteOperation Error: Empty ExcelRptLayoutQry RecordSet."));
}

TEST(MovementList, WithoutColumnItemsItWarnsAndSucceeds) {
  const ScenarioRun run = Scenario(Departments() + Report(ByDepartment()) + Options(2005, 3)).Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_THAT(ScenarioRun::Lines(run.user_log), HasSubstr("Warning: Column Items are not set for R1.\n"));
}

TEST(MovementList, EachFailureLeavesItsEntryAndTheChain) {
  std::string many_columns;
  for (int i = 0; i < 256; ++i) many_columns += ColumnItemSql({.order = 10 + i, .type = "BlankItem"});
  const std::string layout = "BExcelExpEngMovementListRpt::";
  const std::string execute = layout + "ExecuteOperation Error: ";
  const std::string heading = layout + "PrintPayPeriodInfo Error: ";
  const std::string print = layout + "PrintFinancialData Error: ";
  ExpectFailures(
      Departments() + Record(2005, 3, "", "SAL", "Allowance", "MEAL", "", 1) + Report(ByDepartment()) +
          Options(2005, 3) +
          ColumnItemSql({.order = 2, .item = "<ALL>", .grouping = "Allowance", .component = "AllowanceAmt"}),
      "BExcelExpEngPrintFirstFinRpt::ExecuteProcMovementListRpt Error: Error in printing Staff Movement "
      "Listing "
      "Report",
      {{"FROM FinancialRpt WHERE FinancialRptId", 1,
        execute + "Error in getting Financial Report Information."},
       {"FROM AnlysProject WHERE", 2, execute + "Error in getting Analysis Project Information."},
       {"AnlysItemRecord JOIN AnlysDispSection", 1,
        layout + "PrintPayRecInfo Error: Error in AnlysItemRecQry Query."},
       {"FROM ExcelWSItemRptOpts", 2, execute + "Error in ExcelRptLayoutQry Query."},
       {"FinColIsRptMainInfo = 0", 1, execute + "Error in FinanceColItemQry Query."},
       {"ColourSchemeId = 'Title'", 1, heading + "Error in ColourSchemeQry Query."},
       {"FROM AnlysProject WHERE", 3, heading + "Unable to get Analysis Project Details."},
       {"", 0, heading + "The reporting period is wrong: there is no date 2005-13-1.",
        "UPDATE MiniRecords SET AnlysItemRecPeriodMonth = 13;" + Options(2005, 13)},
       {"", 0, layout + "PrintColFinancialData Error: Excel worksheet is limited to 256 columns.",
        many_columns},
       {"'Own'", 1, print + "Error in ColourSchemeQry Query.",
        OwnSchemeSql("FinanceColItem", "FinColItemOrder = 2")},
       {"FROM AnItemLookup", 1, print + "Unable to get Analysis Item Details."},
       {"", 0, print + "Empty Analysis Item Details.", "DELETE FROM AnItemLookup;"},
       {"WHERE AnlysItemTypeId = 'Allowance' ORDER", 1, print + "Error in AllFormulaQry Query"},
       {"", 0, print + "Unable to locate Colour Scheme Record.",
        "INSERT INTO ColourScheme (ColourSchemeId) VALUES ('None'); UPDATE FinanceColItem SET ColourSchemeId "
        "= "
        "'None' WHERE FinColItemOrder = 2;"}});
}

}  // namespace
}  // namespace excelexp
