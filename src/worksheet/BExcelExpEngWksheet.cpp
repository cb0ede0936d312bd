#include "worksheet/BExcelExpEngWksheet.h"

#include <array>

#include "platform/database/SqlText.h"
#include "platform/host/Format.h"
#include "platform/host/Utf8.h"
#include "worksheet/BExcelExpEngProcWksheetItem.h"

namespace excelexp {
namespace {

struct Token {
  std::string_view text;
  std::string_view pattern;
};

constexpr std::array<Token, 3> kTokens = {{
    {"<Date>", "dd/mm/yyyy"},
    {"<Time>", "hh:nn:ss"},
    {"<DateTime>", "dd/mm/yyyy hh:nn:ss"},
}};

constexpr std::string_view kWhere = "BExcelExpEngWksheet::ExecuteOperation";

}  // namespace

/// What the header and the footer do differently.
struct BExcelExpEngWksheet::Block {
  std::string_view operation;
  std::string_view banner;
  std::string_view scheme_column;
  std::string_view content_column;
};

BExcelExpEngWksheet::BExcelExpEngWksheet(BExcelExpEngCore* core)
    : core_(core),
      ExcelWorksheetQry(core->DatabaseName),
      ExcelWorksheetItemQry(core->DatabaseName),
      ColourSchemeQry(core->DatabaseName),
      colour_scheme_(core, &ColourSchemeQry, "BExcelExpEngWksheet") {}

int BExcelExpEngWksheet::ExecuteOperation() {
  const std::string id = std::to_string(core_->ExcelWorksheetSysId);
  if (!core_->OpenOrLog(ExcelWorksheetQry,
                        "SELECT * FROM ExcelWkSheet" + std::string(36, ' ') + "WHERE WkSheetSysId = " + id,
                        kWhere, "ExcelWorksheetQry", Rows::kRequired) ||
      !core_->OpenOrLog(ExcelWorksheetItemQry,
                        "SELECT * FROM ExcelWkSheetItem" + std::string(40, ' ') +
                            "WHERE WkSheetSysId = " + id + " ORDER BY WkSheetItemOrdering",
                        kWhere, "ExcelWorksheetItemQry", Rows::kOptional)) {
    return 0;
  }
  if (ExcelWorksheetItemQry.IsEmpty()) {
    core_->WriteUserEntry("Warning: There are no Excel Worksheet Items under this Excel Worksheet.");
    return 1;
  }
  WorksheetHandle = core_->ExcelAPI->CreateNewTable(core_->ExcelWorkbook, core_->ExcelWorksheetName);
  SetExcelWorksheet(WorksheetHandle);

  const std::string prefix = std::string(kWhere) + " Error: Error in printing the Excel Worksheet ";
  if (ExcelWorksheetQry.FieldByName("WkSheetHasRptHeader").AsInteger() != 0 && PrintWkSheetRptHeader() == 0) {
    core_->WriteErrorEntry(prefix + "Header.");
    return 0;
  }
  if (ExecuteProcExcelWksheetItem() == 0) return 0;
  if (ExcelWorksheetQry.FieldByName("WkSheetHasRptFooter").AsInteger() != 0 && PrintWkSheetRptFooter() == 0) {
    core_->WriteErrorEntry(prefix + "Footer.");
    return 0;
  }
  return 1;
}

int BExcelExpEngWksheet::PrintWkSheetRptHeader() {
  static constexpr Block kHeader = {"BExcelExpEngWksheet::PrintWkSheetRptHeader",
                                    "       WORKSHEET REPORT HEADER PROCESSING       ",
                                    "WkSheetHeadColourSchemeId", "WkSheetRptHeader"};
  return PrintBlock(kHeader, core_->LastPrintedRow, core_->LastPrintedCol);
}

int BExcelExpEngWksheet::PrintWkSheetRptFooter() {
  static constexpr Block kFooter = {"BExcelExpEngWksheet::PrintWkSheetRptFooter",
                                    "       WORKSHEET REPORT FOOTER PROCESSING       ",
                                    "WkSheetFootColourSchemeId", "WkSheetRptFooter"};
  return PrintBlock(kFooter, core_->LastPrintedRow + 1, 1);
}

int BExcelExpEngWksheet::PrintBlock(const Block& block, int row, int column) {
  PrintRow = row;
  PrintCol = column;
  core_->WriteBanner(Memo::kAll, {block.banner});
  const std::string scheme = ExcelWorksheetQry.FieldByName(block.scheme_column).AsString();
  if (!core_->OpenOrLog(ColourSchemeQry,
                        "SELECT * FROM ColourScheme JOIN ColourCodeMapping" + std::string(34, ' ') +
                            "WHERE ColourSchemeId = " + SqlText(scheme),
                        block.operation, "ColourSchemeQry", Rows::kRequired)) {
    return 0;
  }
  ExcelWorksheetQry.FieldByName(block.content_column).SaveToStream(ContentStream);
  ContentLines = SplitContentLines(ContentStream);
  for (const std::string& line : ContentLines) {
    const std::string text = DecodeHeadFootContent(line);
    core_->ExcelAPI->WriteTableCellText(core_->ExcelWorkbook, core_->ExcelWorksheetName, PrintRow, PrintCol,
                                        text);
    CellName = GetCellName(PrintRow, PrintCol);
    if (FormatExcelCell() == 0) return 0;
    ++PrintRow;
  }
  SetLastPrintedCol(PrintCol);
  SetLastPrintedRow(PrintRow);
  return 1;
}

int BExcelExpEngWksheet::FormatExcelCell() {
  return colour_scheme_.FormatExcelCell(CellName);
}

std::string BExcelExpEngWksheet::DecodeHeadFootContent(const std::string& line) {
  core_->WriteBanner(Memo::kInternal, {"      DECODE HEADER/FOOTER CONTENT PROCESS      "});
  std::string text;
  for (std::size_t position = 0; position < line.size();) {
    const std::size_t start = line.find('<', position);
    const std::size_t end = start == std::string::npos ? start : line.find('>', start);
    if (end == std::string::npos) return text + line.substr(position);
    text += line.substr(position, start - position);
    const std::string_view token = std::string_view(line).substr(start, end - start + 1);
    for (const Token& known : kTokens) {
      if (known.text == token) text += FormatDateTime(known.pattern, core_->Host->Now());
    }
    position = end + 1;
  }
  return text;
}

int BExcelExpEngWksheet::ExecuteProcExcelWksheetItem() {
  core_->WriteBanner(Memo::kAll, {"        EXCEL WORKSHEET ITEMS PROCESSING        "});
  BExcelExpEngProcWksheetItem items(core_);
  if (items.ExecuteOperation() != 0) return 1;
  core_->WriteInternalMemo(
      "BExcelExpEngWksheet::ExecuteProcExcelWksheetItem Error: Error in processing Excel Worksheet Items");
  core_->WriteInternalMemo("");
  return 0;
}

std::vector<std::string> SplitContentLines(const std::string& bytes) {
  const std::string text = ToUtf8(bytes);
  std::vector<std::string> lines;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find_first_of("\r\n", start);
    lines.push_back(text.substr(start, end == std::string::npos ? end : end - start));
    if (end == std::string::npos) break;
    start = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
  }
  return lines;
}

}  // namespace excelexp
