#include <algorithm>
#include <array>

#include "cli/Console.h"
#include "cli/Databases.h"
#include "cli/Process.h"
#include "cli/Verbs.h"
#include "engine/DefinitionList.h"
#include "platform/host/ProgressLine.h"

namespace excelexp::cli {
namespace {

using Row = std::array<std::string, 7>;

constexpr std::size_t kGap = 2;

std::size_t WidthOf(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;  // UTF-8: every first byte is a character
  }));
}

std::string Aligned(const std::vector<Row>& rows) {
  std::array<std::size_t, std::tuple_size_v<Row>> widths{};
  for (const Row& row : rows)
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], WidthOf(row[i]));
  std::string text;
  for (const Row& row : rows) {
    std::string line = "  ";
    for (std::size_t i = 0; i < row.size(); ++i)
      line += row[i] + std::string(widths[i] - WidthOf(row[i]) + kGap, ' ');
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

std::string LevelText(const WorksheetSummary& worksheet) {
  std::string text = worksheet.summary_level.empty() ? "(none)" : worksheet.summary_level;
  for (std::size_t i = 0; i < worksheet.basis_levels.size(); ++i)
    text += (i == 0 ? " " : ", ") + worksheet.basis_levels[i];
  return text;
}

void AddRows(const WorksheetSummary& worksheet, std::vector<Row>& rows) {
  Row row = {std::to_string(worksheet.order), worksheet.name, LevelText(worksheet)};
  for (const ItemSummary& item : worksheet.items) {
    row[3] = std::to_string(item.ordering);
    row[4] = item.report_type;
    row[5] = item.report_id;
    row[6] = item.layout.empty() ? "(no such report)" : item.layout;
    rows.push_back(row);
    row = {};
  }
  if (worksheet.items.empty()) rows.push_back(row);
}

std::string Text(const SpreadsheetSummary& spreadsheet) {
  std::vector<Row> rows = {{"", "WORKSHEET", "SUMMARY LEVEL", "", "ITEM", "REPORT", "LAYOUT"}};
  for (const WorksheetSummary& worksheet : spreadsheet.worksheets) AddRows(worksheet, rows);
  for (Row& row : rows)
    for (std::string& cell : row) cell = TerminalText(cell);
  const std::string title = spreadsheet.id + "  (file name: " + spreadsheet.file_name + ")";
  return TerminalText(title) + "\n" + (spreadsheet.worksheets.empty() ? "  no worksheets\n" : Aligned(rows));
}

std::string Text(const std::vector<SpreadsheetSummary>& spreadsheets) {
  std::string text;
  for (const SpreadsheetSummary& spreadsheet : spreadsheets)
    text += (text.empty() ? "" : "\n") + Text(spreadsheet);
  return text;
}

}  // namespace

ExitCode RunList(const Settings& settings) {
  SqliteOptions options;
  options.cancelled = &Interrupted;
  const Databases databases(settings, options);
  const std::string text = Text(ListDefinitions(kDefinitionAlias));
  if (text.empty()) ShowLine("'" + settings.database + "' holds no spreadsheet definitions.");
  return Print(text) ? kDone : kFailed;
}

}  // namespace excelexp::cli
