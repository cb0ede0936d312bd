#include "services/BExcelExpEngColorScheme.h"

#include <array>

#include "platform/database/SqlText.h"

namespace excelexp {
namespace {

struct FontStyle {
  std::string_view keyword;
  bool bold;
  bool italic;
};

constexpr std::array<FontStyle, 4> kFontStyles = {{
    {"FontRegular", false, false},
    {"FontBold", true, false},
    {"FontItalic", false, true},
    {"FontBoldItalic", true, true},
}};

}  // namespace

BExcelExpEngColorScheme::BExcelExpEngColorScheme(BExcelExpEngCore* core, Query* colour_scheme_query,
                                                 std::string_view message_class)
    : core_(core), colour_scheme_query_(colour_scheme_query), message_class_(message_class) {}

bool BExcelExpEngColorScheme::ColourSchRecLocate(const std::string& colour_scheme_id) {
  return colour_scheme_query_->Locate("ColourSchemeId", colour_scheme_id);
}

int BExcelExpEngColorScheme::FormatExcelCell(const std::string& range) {
  const std::optional<CellStyle> style = StyleOfRow();
  if (!style) return 0;
  BExcelAPI& api = *core_->ExcelAPI;
  const Handle& workbook = core_->ExcelWorkbook;
  const std::string& sheet = core_->ExcelWorksheetName;
  api.SetFontNameSize(workbook, sheet, range, style->font_name, style->font_size);
  api.SetFontColour(workbook, sheet, range, style->font_colour);
  if (style->font_style)
    api.SetFontStyle(workbook, sheet, range, style->font_style->bold, false, style->font_style->italic);
  api.SetFontUnderline(workbook, sheet, range, static_cast<int>(style->underline));
  api.SetFontEffects(workbook, sheet, range, style->strikethrough, style->superscript, style->subscript);
  api.SetColumnWidth(workbook, sheet, range, style->column_width);
  api.SetRowHeight(workbook, sheet, range, style->row_height);
  return 1;
}

std::optional<CellStyle> BExcelExpEngColorScheme::StyleOfRow() {
  const auto number = [this](std::string_view name) {
    return colour_scheme_query_->FieldByName(name).AsInteger();
  };
  const auto flag = [&number](std::string_view name) { return number(name) != 0; };
  const auto text = [this](std::string_view name) {
    return colour_scheme_query_->FieldByName(name).AsString();
  };
  CellStyle style;
  style.font_name = text("ColourSchFont");
  style.font_size = number("ColourSchSize");
  style.font_colour = number("ColourCodeIndex");
  const std::string font_style = text("ColourSchFontStyle");
  for (const FontStyle& known : kFontStyles) {
    if (known.keyword == font_style) style.font_style = {known.bold, known.italic};
  }
  if (!core_->ExecuteSQL("SELECT ExcelExpKeywordRef FROM ExcelExpKeyword WHERE ExcelExpKeywordId = " +
                         SqlText(text("ColourSchUnderline")))) {
    core_->WriteErrorEntry(message_class_ +
                           "::FormatExcelCell Error: Error in getting Excel Export Keyword Information.");
    return std::nullopt;
  }
  if (core_->SQLQry->IsEmpty()) {
    core_->WriteErrorEntry(message_class_ +
                           "::FormatExcelCell Error: Empty Excel Export Keyword Information.");
    return std::nullopt;
  }
  style.underline = static_cast<Underline>(core_->SQLQry->FieldByName("ExcelExpKeywordRef").AsInteger());
  style.strikethrough = flag("ColourSchStrikethrough");
  style.superscript = flag("ColourSchSuperscript");
  style.subscript = flag("ColourSchSubscript");
  style.column_width = number("ColourSchCellWidth");
  style.row_height = number("ColourSchCellHeight");
  return style;
}

}  // namespace excelexp
