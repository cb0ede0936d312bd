#include "support/workbook_json.h"

#include <charconv>

#include "platform/spreadsheet/Palette.h"

namespace excelexp {
namespace {

std::string Number(double number) {
  char digits[32];
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

std::string Quoted(std::string_view text) {
  std::string json = "\"";
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
      json += {'\\', character};
    } else if (code < 0x20) {
      constexpr std::string_view kDigits = "0123456789abcdef";
      json += {'\\', 'u', '0', '0', kDigits[code >> 4], kDigits[code & 15]};
    } else {
      json += character;
    }
  }
  return json + "\"";
}

/// Joins pieces with commas between brackets.
class List {
 public:
  explicit List(const char* brackets) : close_(brackets[1]) { json_ = brackets[0]; }
  void Add(const std::string& piece) {
    if (json_.size() > 1) json_ += ",";
    json_ += piece;
  }
  void Add(const char* key, const std::string& value) { Add(Quoted(key) + ":" + value); }
  std::string Json() const { return json_ + close_; }

 private:
  std::string json_;
  char close_;
};

std::string Flag(bool set) {
  return set ? "true" : "false";
}

std::string UnderlineName(Underline underline) {
  switch (underline) {
    case Underline::kNone:
      return "none";
    case Underline::kSingle:
      return "single";
    case Underline::kDouble:
      return "double";
    case Underline::kSingleAccounting:
      return "singleAccounting";
    case Underline::kDoubleAccounting:
      return "doubleAccounting";
  }
  return "";
}

std::string Colour(int index) {
  if (index == 0) return "automatic";
  std::string digits;
  for (int shift = 20; shift >= 0; shift -= 4)
    digits += "0123456789ABCDEF"[PaletteColour(index) >> shift & 15];
  return digits;
}

std::string FormatJson(const CellFormat& format) {
  List json("{}");
  json.Add("font", Quoted(format.font_name));
  json.Add("size", Number(format.font_size));
  json.Add("colour", Quoted(Colour(format.font_colour)));
  json.Add("bold", Flag(format.bold));
  json.Add("italic", Flag(format.italic));
  json.Add("strikethrough", Flag(format.strikethrough));
  json.Add("script", Quoted(format.superscript ? "superscript" : format.subscript ? "subscript" : "none"));
  json.Add("underline", Quoted(UnderlineName(format.underline)));
  json.Add("number_format", Quoted(format.number_format));
  json.Add("wrap", Flag(format.word_wrap));
  json.Add("centred", Flag(format.centred));
  return json.Json();
}

struct Shown {
  std::string kind;
  std::string value;
};

Shown ResultShown(const FormulaResult& result) {
  switch (result.type) {
    case FormulaResult::Type::kUnknown:
      return {"unknown", "null"};
    case FormulaResult::Type::kNumber:
      return {"number", Number(result.number)};
    case FormulaResult::Type::kText:
      return {"text", Quoted(result.text)};
    case FormulaResult::Type::kBoolean:
      return {"boolean", Flag(result.number != 0.0)};
    case FormulaResult::Type::kError:
      return {"error", Quoted(ErrorText(result.error))};
  }
  return {};
}

Shown CellShown(const Workbook& workbook, const Cell& cell) {
  switch (cell.type) {
    case CellType::kEmpty:
      return {"blank", "null"};
    case CellType::kNumber:
      return {"number", Number(cell.number)};
    case CellType::kText:
      return {"text", Quoted(workbook.Text(cell.text))};
    case CellType::kFormula:
      return ResultShown(workbook.FormulaAt(cell.formula).result);
  }
  return {};
}

std::string CellJson(const Workbook& workbook, int row, int column, const Cell& cell) {
  const Shown shown = CellShown(workbook, cell);
  List json("[]");
  json.Add(std::to_string(row));
  json.Add(std::to_string(column));
  json.Add(Quoted(shown.kind));
  json.Add(shown.value);
  json.Add(cell.type == CellType::kFormula ? Quoted(workbook.FormulaAt(cell.formula).Text()) : "null");
  json.Add(std::to_string(cell.format));
  return json.Json();
}

std::string CellsJson(const Workbook& workbook, const Sheet& sheet) {
  List json("[]");
  for (int row = 1; row <= sheet.LastRow(); ++row) {
    int column = 0;
    for (const Cell& cell : sheet.Row(row)) {
      ++column;
      if (cell.type != CellType::kEmpty || cell.format != 0) json.Add(CellJson(workbook, row, column, cell));
    }
  }
  return json.Json();
}

/// Sizes by number; a hidden column or row has size 0.
template <typename Size, typename Hidden>
std::string SizesJson(int last, const Size& size, const Hidden& hidden) {
  List json("{}");
  for (int number = 1; number <= last; ++number) {
    if (hidden(number) || size(number) > 0.0) json.Add(std::to_string(number).c_str(), Number(size(number)));
  }
  return json.Json();
}

std::string SheetJson(const Workbook& workbook, const Sheet& sheet) {
  List merges("[]");
  for (const CellRange& merge : sheet.Merges()) {
    List range("[]");
    for (const int edge : {merge.first_row, merge.first_col, merge.last_row, merge.last_col}) {
      range.Add(std::to_string(edge));
    }
    merges.Add(range.Json());
  }
  List json("{}");
  json.Add("name", Quoted(sheet.Name()));
  json.Add("cells", CellsJson(workbook, sheet));
  json.Add("merges", merges.Json());
  json.Add("widths", SizesJson(
                         sheet.LastSizedColumn(), [&](int column) { return sheet.ColumnWidth(column); },
                         [&](int column) { return sheet.ColumnHidden(column); }));
  json.Add("heights", SizesJson(
                          sheet.LastSizedRow(), [&](int row) { return sheet.RowHeight(row); },
                          [&](int row) { return sheet.RowHidden(row); }));
  return json.Json();
}

}  // namespace

std::string WorkbookJson(const Workbook& workbook) {
  List formats("[]");
  for (FormatId id = 0; id < workbook.FormatCount(); ++id) formats.Add(FormatJson(workbook.Format(id)));
  List sheets("[]");
  for (const auto& sheet : workbook.Sheets()) sheets.Add(SheetJson(workbook, *sheet));
  List json("{}");
  json.Add("title", Quoted(workbook.title));
  json.Add("created", Number(workbook.created.days));
  json.Add("formats", formats.Json());
  json.Add("sheets", sheets.Json());
  return json.Json();
}

}  // namespace excelexp
