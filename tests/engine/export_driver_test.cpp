// The driver, the worksheet processor and the item processor: outcomes, whole logs, headers and footers.

#include "support/grid.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

#include <filesystem>
#include <fstream>

#include "platform/host/Format.h"

namespace excelexp {
namespace {

using testing::HasSubstr;

const std::string kStars(48, '*');
const std::string kBlanks(48, ' ');

std::vector<std::string> Opening(const std::string& id) {
  return {"",      kStars,
          kBlanks, "             EXCEL EXPORT PROCESSING            ",
          kBlanks, kStars,
          "",      "Start Date and Time: 2024-03-05 14:05:09",
          "",      "Excel Spreadsheet ID: " + id,
          ""};
}

std::vector<std::string> operator+(std::vector<std::string> lines, const std::vector<std::string>& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

std::string Colours() {
  return "INSERT INTO ColourScheme (ColourSchemeId, ColourCodeId) VALUES ('Title', 'Blue');";
}

/// One worksheet whose only item has a report without data, so that header and footer stand alone.
std::string SheetWithHeader(const std::string& header) {
  return Colours() + SpreadsheetSql("S", "SumLevelEmpee") +
         "CREATE TABLE NoRecords AS SELECT * FROM AnlysItemRecord WHERE 0;" +
         FinancialItemSql({.setup = "NoRecords"}) +
         "UPDATE ExcelWkSheet SET WkSheetHasRptHeader = 1, WkSheetHeadColourSchemeId = 'Title', "
         "WkSheetRptHeader = " +
         header + ";";
}

TEST(Driver, UnknownSpreadsheetEndsBeforeTheDialog) {
  Scenario scenario;
  for (const std::string id : {"NOPE", "O'Neil", "x' OR '1'='1"}) {
    const ScenarioRun run = scenario.Run(id);
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.outcome, Outcome::kFailed);
    EXPECT_EQ(run.user_log, (Opening(id) + std::vector<std::string>{
                                               "Error in Excel Export Engine : No Spreadsheet found.", ""}));
    EXPECT_EQ(run.internal_log,
              (Opening(id) +
               std::vector<std::string>{
                   "", "BExcelExpEngine::ExecuteOperation Error: Empty ExcelSpreadsheetQry Recordset.", "",
                   "Error in Excel Export Engine : No Spreadsheet found.", ""}));
  }
  EXPECT_TRUE(scenario.Host().proposed.empty());
}

TEST(Driver, AnIdWithAQuoteIsFoundWhenItExists) {
  Scenario scenario("INSERT INTO ExcelSpreadsheet VALUES ('O''Neil', '', 'Own');");
  EXPECT_EQ(scenario.Run("O'Neil").outcome, Outcome::kNoWorksheets);
}

TEST(Driver, FailingDefinitionQueriesAreNamed) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"FROM ExcelSpreadsheet", "ExcelSpreadsheetQry", "No Spreadsheet found."},
      {"FROM ExcelWkSheet ", "ExcelWorksheetQry", "No Worksheet found."}};
  for (const auto& [part, query, user_text] : rows) {
    Scenario scenario(SpreadsheetSql("S", ""));
    scenario.FailStatement(part);
    const ScenarioRun run = scenario.Run("S");
    EXPECT_EQ(run.result, 0);
    EXPECT_THAT(ScenarioRun::Lines(run.internal_log),
                HasSubstr("BExcelExpEngine::ExecuteOperation Error: Error in " + query + " Query.\n"));
    EXPECT_THAT(ScenarioRun::Lines(run.user_log),
                HasSubstr("Error in Excel Export Engine : " + user_text + "\n"));
  }
}

TEST(Driver, CancelledDialog) {
  Scenario scenario(SpreadsheetSql("S", "SumLevelEmpee"));
  scenario.Host().cancel_dialog = true;
  const ScenarioRun run = scenario.Run("S");
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.outcome, Outcome::kDialogCancelled);
  EXPECT_EQ(scenario.Host().proposed, (std::vector<std::string>{"Mini.xls"}));
  EXPECT_EQ(run.user_log,
            (Opening("S") + std::vector<std::string>{"", "Generation of Excel Report is cancelled.", ""}));
}

TEST(Driver, NoWorksheets) {
  Scenario scenario("INSERT INTO ExcelSpreadsheet VALUES ('S', '', 'Mini');");
  const ScenarioRun run = scenario.Run("S", true);
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.outcome, Outcome::kNoWorksheets);
  EXPECT_EQ(run.user_log,
            (Opening("S") +
             std::vector<std::string>{
                 "", "Warning: There are no Excel Worksheets being set up in this Excel Spreadsheet.", "",
                 "Generation of Excel Report is not successful.", ""}));
  EXPECT_FALSE(std::filesystem::exists(scenario.OutputFile()));
}

TEST(Driver, WorksheetsWithoutSettingsAreSkippedAndTheRestKeepTheirOrder) {
  Scenario scenario(SpreadsheetSql("S", "") +
                    "UPDATE ExcelWkSheet SET WkSheetOrder = 3;"
                    "INSERT INTO ExcelWkSheet (WkSheetSysId, ExcelSpreadsheetId, WkSheetOrder, WkSheetName, "
                    "WkSheetRptSumLvl) VALUES (2, 'S', 2, 'Bases', 'SumLevelBasis'), (3, 'S', 1, 'Empty', "
                    "'SumLevelEmpee');");
  const ScenarioRun run = scenario.Run("S", true);
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.outcome, Outcome::kWritten);
  const auto sheet = [](int order, const std::string& name) {
    return std::vector<std::string>{
        kStars, kBlanks, "           EXCEL WORKSHEET PROCESSING           ", kBlanks,
        kStars, "",      "Excel Worksheet Order: " + std::to_string(order),  "Excel Worksheet Name: " + name,
        ""};
  };
  EXPECT_EQ(run.user_log,
            (Opening("S") + sheet(1, "Empty") +
             std::vector<std::string>{
                 "", "Warning: There are no Excel Worksheet Items under this Excel Worksheet.", ""} +
             sheet(2, "Bases") +
             std::vector<std::string>{
                 "", "Warning: The Excel Worksheet Report Basis Levels are not selected.", ""} +
             sheet(3, "Sheet") +
             std::vector<std::string>{
                 "", "Warning: The Excel Worksheet Report Summary Level is not selected.", "", kStars,
                 kBlanks, "           SAVING REPORT IN PROGRESS            ", kBlanks, kStars, "",
                 "File has been successfully generated to " + scenario.OutputFile(),
                 "End Date and Time: 2024-03-05 14:05:09", ""}));
  EXPECT_TRUE(std::filesystem::exists(scenario.OutputFile()));
}

TEST(Driver, AnExistingFileIsRemindedOfOnce) {
  Scenario scenario(SpreadsheetSql("S", ""));
  EXPECT_EQ(scenario.Run("S", true).result, 1);
  EXPECT_TRUE(scenario.Host().shown.empty());
  EXPECT_EQ(scenario.Run("S", true).result, 1);
  EXPECT_EQ(scenario.Host().shown,
            (std::vector<std::string>{"Please remember to close the file if it is opened."}));
}

TEST(Driver, TheShortDateFormatComesBackAfterSuccessAndFailure) {
  SetShortDateFormat("d.m.yy");
  Scenario scenario(SpreadsheetSql("S", ""));
  for (const std::string id : {"S", "NOPE"}) {
    scenario.Run(id);
    EXPECT_EQ(ShortDateFormat(), "d.m.yy");
  }
  SetShortDateFormat("dd/mm/yyyy");
}

TEST(Driver, ACancelledRunSavesNothingAndSaysSo) {
  Scenario scenario(MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee"));
  scenario.Host().on_progress = [](const Progress& progress) { return progress.worksheet < 1; };
  const ScenarioRun run = scenario.Run("S", true);
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.outcome, Outcome::kCancelledWhileRunning);
  EXPECT_FALSE(std::filesystem::exists(scenario.OutputFile()));
  EXPECT_THAT(ScenarioRun::Lines(run.user_log),
              HasSubstr("Error in Excel Export Engine\nGeneration of Excel Report is cancelled.\n"));
}

TEST(Driver, ACancelAtAnyMomentLeavesTheOldFile) {
  Scenario scenario(MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee"));
  int calls = 0;
  scenario.Host().on_progress = [&](const Progress&) { return ++calls > 0; };
  ASSERT_EQ(scenario.Run("S", true).outcome, Outcome::kWritten);
  const int calls_of_a_whole_run = calls;
  ASSERT_GE(calls_of_a_whole_run, 4);  // the worksheet, and before each step of the save
  for (int cancelled_at = 1; cancelled_at <= calls_of_a_whole_run; ++cancelled_at) {
    std::ofstream(scenario.OutputFile()) << "old";
    calls = 0;
    scenario.Host().on_progress = [&](const Progress&) { return ++calls < cancelled_at; };
    EXPECT_EQ(scenario.Run("S", true).outcome, Outcome::kCancelledWhileRunning) << cancelled_at;
    std::string content;
    std::ifstream(scenario.OutputFile()) >> content;
    EXPECT_EQ(content, "old") << cancelled_at;
  }
}

TEST(Driver, TheAmountFormatFollowsTheCountry) {
  for (const auto& [country, format] : std::map<std::string, std::string>{
           {"Indonesia", "#,0;-#,0"}, {"indonesia", "#,0.00;-#,0.00"}, {"", "#,0.00;-#,0.00"}}) {
    Scenario scenario("UPDATE SystemParameter SET ParameterValue = '" + country +
                      "' WHERE ParameterId = 'Country';");
    EXPECT_EQ(BExcelExpEngCore().NumberFormat, format) << country;
  }
}

TEST(Worksheet, HeaderTokensAndLineEnds) {
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      {"tokens", "'Report<Date> <Time>|<DateTime>'", "| Report05/03/2024 14:05:09|05/03/2024 14:05:09 "},
      {"other case and unknown tokens go", "'a<date>b<Page>c<>d'", "| abcd "},
      {"a token that is not closed is text", "'a <Date> b < c'", "| a 05/03/2024 b < c "},
      {"a greater-than sign alone is text", "'a > b'", "| a > b "},
      {"UTF-8", "'Gaji \xC5\x81\xC3\xB3\xC5\xBA'", "| Gaji \xC5\x81\xC3\xB3\xC5\xBA "},
      {"8-bit text", "CAST(X'4B6166E920809C' AS BLOB)", "| Kaf\xC3\xA9 \xE2\x82\xAC\xC5\x93 "}};
  for (const auto& [name, header, cell] : rows) {
    Scenario scenario(SheetWithHeader(header));
    EXPECT_THAT(scenario.Run("S").Grid("Sheet"), HasSubstr(cell)) << name;
  }
}

TEST(Worksheet, EveryLineIsACellWhateverItsEnd) {
  for (const std::string header : {"'one' || char(13, 10) || 'two' || char(13, 10, 13, 10)",
                                   "'one' || char(10) || 'two' || char(10, 10)"}) {
    Scenario scenario(SheetWithHeader(header) +
                      "UPDATE ExcelWkSheet SET WkSheetHasRptFooter = 1, WkSheetFootColourSchemeId = 'Title', "
                      "WkSheetRptFooter = 'foot';");
    const ScenarioRun run = scenario.Run("S");
    EXPECT_GRID(run.Grid("Sheet"), R"(
     | A
   1 | one
   2 | two
   3 |
   4 |
   5 | foot
)");
    EXPECT_THAT(ScenarioRun::Lines(run.user_log),
                HasSubstr("Financial Report ID: R1\nNo Data Generated for Financial/Employee Report R1\n"
                          "There are no Financial/Employee Reports to be printed.\n"));
  }
}

TEST(Worksheet, AHeaderFlagOffPrintsNone) {
  Scenario scenario(SheetWithHeader("'text'") + "UPDATE ExcelWkSheet SET WkSheetHasRptHeader = 0;");
  EXPECT_THAT(scenario.Run("S").Grid("Sheet"), testing::Not(HasSubstr("text")));
}

TEST(Worksheet, WhatFailsTheHeaderLeavesTheWholeChain) {
  const std::string title = "BExcelExpEngWksheet::";
  const std::string chain =
      title +
      "ExecuteOperation Error: Error in printing the Excel Worksheet Header.\n"
      "BExcelExpEngine::ExecuteProcExcelWksheet Error: Error in processing Excel Worksheet\n"
      "Error in Excel Export Engine\n";
  struct Row {
    std::string change;
    std::string failing;
    std::string message;
  };
  const std::vector<Row> rows = {
      {"UPDATE ColourScheme SET ColourCodeId = NULL;", "",
       title + "PrintWkSheetRptHeader Error: Empty ColourSchemeQry Recordset.\n"},
      {"", "FROM ColourScheme", title + "PrintWkSheetRptHeader Error: Error in ColourSchemeQry Query.\n"},
      {"PRAGMA foreign_keys = 0; UPDATE ColourScheme SET ColourSchUnderline = 'Wavy';", "",
       title + "FormatExcelCell Error: Empty Excel Export Keyword Information.\n"},
      {"", "FROM ExcelExpKeyword",
       title + "FormatExcelCell Error: Error in getting Excel Export Keyword Information.\n"}};
  for (const Row& row : rows) {
    Scenario scenario(SheetWithHeader("'text'"));
    if (!row.change.empty()) scenario.Execute(row.change);
    if (!row.failing.empty()) scenario.FailStatement(row.failing);
    const ScenarioRun run = scenario.Run("S", true);
    EXPECT_EQ(run.result, 0);
    EXPECT_THAT(ScenarioRun::Lines(run.internal_log), HasSubstr(row.message + chain));
    EXPECT_FALSE(std::filesystem::exists(scenario.OutputFile()));
  }
}

TEST(Worksheet, ItemQueriesThatFailAreNamed) {
  struct Row {
    std::string part;
    int nth;
    std::string message;
  };
  const std::vector<Row> rows = {
      {"FROM ExcelWkSheet     ", 2,
       "BExcelExpEngWksheet::ExecuteOperation Error: Error in ExcelWorksheetQry Query."},
      {"FROM ExcelWkSheetItem", 1,
       "BExcelExpEngWksheet::ExecuteOperation Error: Error in ExcelWorksheetItemQry Query."},
      {"FROM ExcelWkSheetItem", 2,
       "BExcelExpEngWksheetItem::ExecuteOperation Error: Error in ExcelWorksheetItemQry Query."},
      {"FROM FinancialRpt", 1,
       "BExcelExpEngWksheetItem::ExecuteProcFinancialRptInfo() Error: Error in processing Financial Report "
       "Data"}};
  for (const Row& row : rows) {
    Scenario scenario(SheetWithHeader("'text'"));
    scenario.FailStatement(row.part, row.nth);
    const ScenarioRun run = scenario.Run("S");
    EXPECT_EQ(run.result, 0);
    EXPECT_THAT(ScenarioRun::Lines(run.internal_log), HasSubstr(row.message + "\n"));
  }
}

}  // namespace
}  // namespace excelexp
