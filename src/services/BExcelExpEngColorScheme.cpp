#include "services/BExcelExpEngColorScheme.h"

#include <algorithm>
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
  BExcelAPI& api = *core_->ExcelAPI;
  const Handle& workbook = core_->ExcelWorkbook;
  const std::string& sheet = core_->ExcelWorksheetName;
  const auto number = [this](std::string_view name) {
    return colour_scheme_query_->FieldByName(name).AsInteger();
  };
  const auto flag = [&number](std::string_view name) { return number(name) != 0; };
  const auto text = [this](std::string_view name) {
    return colour_scheme_query_->FieldByName(name).AsString();
  };

  api.SetFontNameSize(workbook, sheet, range, text("ColourSchFont"), number("ColourSchSize"));
  api.SetFontColour(workbook, sheet, range, number("ColourCodeIndex"));

  const std::string style = text("ColourSchFontStyle");
  const auto* known =
      std::find_if(kFontStyles.begin(), kFontStyles.end(),
                   [&style](const FontStyle& candidate) { return candidate.keyword == style; });
  if (known != kFontStyles.end()) api.SetFontStyle(workbook, sheet, range, known->bold, false, known->italic);

  if (!core_->ExecuteSQL("SELECT ExcelExpKeywordRef FROM ExcelExpKeyword WHERE ExcelExpKeywordId = " +
                         SqlText(text("ColourSchUnderline")))) {
    core_->WriteErrorEntry(message_class_ +
                           "::FormatExcelCell Error: Error in getting Excel Export Keyword Information.");
    return 0;
  }
  if (core_->SQLQry->RowCount() == 0) {
    core_->WriteErrorEntry(message_class_ +
                           "::FormatExcelCell Error: Empty Excel Export Keyword Information.");
    return 0;
  }
  api.SetFontUnderline(workbook, sheet, range, core_->SQLQry->FieldByName("ExcelExpKeywordRef").AsInteger());

  api.SetFontEffects(workbook, sheet, range, flag("ColourSchStrikethrough"), flag("ColourSchSuperscript"),
                     flag("ColourSchSubscript"));
  api.SetColumnWidth(workbook, sheet, range, number("ColourSchCellWidth"));
  api.SetRowHeight(workbook, sheet, range, number("ColourSchCellHeight"));
  return 1;
}

}  // namespace excelexp
