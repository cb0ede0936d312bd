#include "engine/DefinitionList.h"

#include <map>

#include "engine/DefinitionTables.h"
#include "platform/database/Query.h"
#include "platform/database/SqlText.h"

namespace excelexp {
namespace {

/// Calls `row` on every row of the statement.
template <typename Row>
void ForEachRow(const std::string& database_name, const std::string& sql, const Row& row) {
  Query query(database_name);
  query.SetSql(sql);
  query.Open();
  for (query.First(); !query.Eof(); query.Next()) row(query);
}

/// Layouts by report type and report id.
using Layouts = std::map<std::pair<std::string, std::string>, std::string>;

Layouts ReadLayouts(const std::string& database_name) {
  Layouts layouts;
  const auto read = [&](std::string_view type, const std::string& sql) {
    ForEachRow(database_name, sql, [&](const Query& query) {
      layouts[{std::string(type), query.FieldByName("Id").AsString()}] =
          query.FieldByName("Layout").AsString();
    });
  };
  read(report_type::kFinancial, "SELECT FinancialRptId AS Id, LayoutSchemeId AS Layout FROM FinancialRpt");
  read(report_type::kEmployee, "SELECT EmpInfoRptId AS Id, EmpInfoRptType AS Layout FROM EmployeeRpt");
  return layouts;
}

std::vector<ItemSummary> ReadItems(const std::string& database_name, int worksheet_sys_id,
                                   const Layouts& layouts) {
  std::vector<ItemSummary> items;
  ForEachRow(database_name,
             "SELECT * FROM ExcelWkSheetItem WHERE WkSheetSysId = " + std::to_string(worksheet_sys_id) +
                 " ORDER BY WkSheetItemOrdering",
             [&](const Query& query) {
               ItemSummary& item = items.emplace_back();
               item.ordering = query.FieldByName("WkSheetItemOrdering").AsInteger();
               item.report_type = query.FieldByName("WkSheetItemRptType").AsString();
               item.report_id = query.FieldByName("WkSheetItemRptId").AsString();
               const auto layout = layouts.find({item.report_type, item.report_id});
               if (layout != layouts.end()) item.layout = layout->second;
             });
  return items;
}

std::vector<WorksheetSummary> ReadWorksheets(const std::string& database_name, const std::string& id,
                                             const Layouts& layouts) {
  std::vector<WorksheetSummary> worksheets;
  ForEachRow(
      database_name,
      "SELECT * FROM ExcelWkSheet WHERE ExcelSpreadsheetId = " + SqlText(id) + " ORDER BY WkSheetOrder",
      [&](const Query& query) {
        WorksheetSummary& worksheet = worksheets.emplace_back();
        worksheet.order = query.FieldByName("WkSheetOrder").AsInteger();
        worksheet.name = query.FieldByName("WkSheetName").AsString();
        worksheet.summary_level = query.FieldByName("WkSheetRptSumLvl").AsString();
        for (const char* level : {"WkSheetRptBasis1", "WkSheetRptBasis2", "WkSheetRptBasis3"}) {
          const std::string basis = query.FieldByName(level).AsString();
          if (worksheet.summary_level == summary_level::kBasis && !basis.empty())
            worksheet.basis_levels.push_back(basis);
        }
        worksheet.items = ReadItems(database_name, query.FieldByName("WkSheetSysId").AsInteger(), layouts);
      });
  return worksheets;
}

}  // namespace

std::vector<SpreadsheetSummary> ListDefinitions(const std::string& database_name) {
  const Layouts layouts = ReadLayouts(database_name);
  std::vector<SpreadsheetSummary> spreadsheets;
  ForEachRow(database_name, "SELECT * FROM ExcelSpreadsheet ORDER BY ExcelSpreadsheetId",
             [&](const Query& query) {
               SpreadsheetSummary& spreadsheet = spreadsheets.emplace_back();
               spreadsheet.id = query.FieldByName("ExcelSpreadsheetId").AsString();
               spreadsheet.file_name = query.FieldByName("ExcelRptFileName").AsString();
               spreadsheet.worksheets = ReadWorksheets(database_name, spreadsheet.id, layouts);
             });
  return spreadsheets;
}

}  // namespace excelexp
