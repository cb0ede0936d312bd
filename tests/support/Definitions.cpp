#include "support/Definitions.h"

#include <fstream>
#include <iterator>

#include "platform/database/SqlText.h"

namespace excelexp::test {
namespace {

std::string Endless(std::string_view columns) {
  return "WITH RECURSIVE Counter(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM Counter) SELECT " +
         std::string(columns) + " FROM Counter WHERE N < 0";
}

std::string Numbers(int count, std::string_view columns) {
  return "WITH RECURSIVE Counter(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM Counter WHERE N < " +
         std::to_string(count) + ") SELECT " + std::string(columns) +
         " FROM Counter WHERE N <= " + std::to_string(count);
}

constexpr std::string_view kRecord =
    "2025 AS AnlysItemRecYear, 1 AS AnlysItemRecPeriodMonth, 0 AS AnlysItemRecSubPeriod, CAST(N AS TEXT) AS "
    "Basis1Id";

}  // namespace

std::string PayrollScript(const std::string& rows) {
  std::ifstream stream(EXCELEXP_SOURCE_DIR "/demo/schema.sql");
  return "BEGIN;\n" + std::string(std::istreambuf_iterator<char>(stream), {}) + rows + "COMMIT;\n";
}

std::string Spreadsheet(std::string_view id, std::string_view file_name) {
  return "INSERT INTO ExcelSpreadsheet (ExcelSpreadsheetId, ExcelRptFileName) VALUES (" + SqlText(id) + ", " +
         SqlText(file_name) + ");\n";
}

std::string Worksheet(int sys_id, std::string_view spreadsheet, std::string_view name,
                      std::string_view summary_level) {
  const std::string id = std::to_string(sys_id);
  return "INSERT INTO ExcelWkSheet (WkSheetSysId, ExcelSpreadsheetId, WkSheetOrder, WkSheetName, "
         "WkSheetRptSumLvl) VALUES (" +
         id + ", " + SqlText(spreadsheet) + ", " + id + ", " + SqlText(name) + ", " + SqlText(summary_level) +
         ");\n";
}

std::string FinancialItem(int sys_id, int worksheet, int ordering, std::string_view report,
                          std::string_view setup) {
  const std::string id = std::to_string(sys_id);
  return "INSERT INTO AnlysProject (AnlysProjectId, AnlysSetupId, SummaryLevel) VALUES (" + SqlText(report) +
         ", " + SqlText(setup) +
         ", 'SumLevelCompany');\n"
         "INSERT INTO FinancialRpt (FinancialRptId, FinancialAnalysProjId, LayoutSchemeId) VALUES (" +
         SqlText(report) + ", " + SqlText(report) +
         ", 'SomeLayout');\n"
         "INSERT INTO ExcelWkSheetItem (WkSheetItemSysId, WkSheetSysId, WkSheetItemOrdering, "
         "WkSheetItemRptType, WkSheetItemRptId) VALUES (" +
         id + ", " + std::to_string(worksheet) + ", " + std::to_string(ordering) + ", 'FinancialRpt', " +
         SqlText(report) +
         ");\n"
         "INSERT INTO ExcelWSItemRptOpts (WkSheetItemSysId) VALUES (" +
         id + ");\n";
}

std::string SetupView(std::string_view name, int records) {
  return "CREATE VIEW " + std::string(name) + " AS " + Numbers(records, kRecord) + ";\n";
}

std::string EndlessSetupView(std::string_view name) {
  return "CREATE VIEW " + std::string(name) + " AS " + Endless(kRecord) + ";\n";
}

std::string EndlessOptions(int item_sys_id) {
  return "ALTER TABLE ExcelWSItemRptOpts RENAME TO StoredOptions;\n"
         "CREATE VIEW ExcelWSItemRptOpts AS SELECT * FROM StoredOptions WHERE WkSheetItemSysId <> " +
         std::to_string(item_sys_id) + " OR (SELECT COUNT(*) FROM (" + Endless("N") + ")) > 0;\n";
}

}  // namespace excelexp::test
