#include "platform/spreadsheet/SheetGrid.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <vector>

namespace excelexp {
namespace {

constexpr std::size_t kLabelWidth = 4;

std::string NumberText(double number) {
  char digits[32];
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

bool ReadsAsNumber(std::string_view text) {
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

std::string TextShown(std::string_view text) {
  std::string shown;
  if (text.starts_with('=') || text.starts_with('\'') || ReadsAsNumber(text)) shown = "'";
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (character == '\n') {
      shown += "\\n";
    } else if (code < 0x20 || code == 0x7F) {
      constexpr std::string_view kDigits = "0123456789ABCDEF";
      shown += {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
    } else {
      shown += character;
    }
  }
  return shown;
}

std::string ResultShown(const FormulaResult& result) {
  switch (result.type) {
    case FormulaResult::Type::kUnknown:
      return "?";
    case FormulaResult::Type::kNumber:
      return NumberText(result.number);
    case FormulaResult::Type::kText:
      return TextShown(result.text);
    case FormulaResult::Type::kBoolean:
      return result.number != 0.0 ? "TRUE" : "FALSE";
    case FormulaResult::Type::kError:
      return std::string(ErrorText(result.error));
  }
  return "";
}

std::string CellShown(const Workbook& workbook, const Cell* cell, bool formulas) {
  if (cell == nullptr) return "";
  switch (cell->type) {
    case CellType::kEmpty:
      return "";
    case CellType::kNumber:
      return NumberText(cell->number);
    case CellType::kText:
      return TextShown(workbook.Text(cell->text));
    case CellType::kFormula: {
      const Formula& formula = workbook.FormulaAt(cell->formula);
      return formulas ? formula.Text() + " -> " + ResultShown(formula.result) : ResultShown(formula.result);
    }
  }
  return "";
}

/// Characters, near enough to the columns of a terminal: bytes that do not continue a UTF-8 sequence.
std::size_t Width(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::string Padding(std::string_view text, std::size_t width) {
  return std::string(width - std::min(width, Width(text)), ' ');
}

using Line = std::vector<std::string>;

std::string GridText(const std::vector<Line>& lines, std::size_t columns) {
  std::vector<std::size_t> widths(columns, 1);
  widths[0] = kLabelWidth;
  for (const Line& line : lines) {
    for (std::size_t i = 0; i < columns; ++i) widths[i] = std::max(widths[i], Width(line[i]));
  }
  std::string grid;
  for (const Line& line : lines) {
    grid += Padding(line[0], widths[0]) + line[0] + " |";
    for (std::size_t i = 1; i < columns; ++i) grid += " " + line[i] + Padding(line[i], widths[i]) + " |";
    grid += "\n";
  }
  return grid;
}

std::string CellGrid(const Workbook& workbook, const Sheet& sheet, const CellRange& range, bool formulas) {
  std::vector<Line> lines(1, Line(1));
  for (int column = range.first_col; column <= range.last_col; ++column) {
    lines[0].push_back(ColumnLetters(column));
  }
  std::size_t rows_shown = 1;
  std::size_t columns_shown = 1;
  for (int row = range.first_row; row <= range.last_row; ++row) {
    Line& line = lines.emplace_back(1, std::to_string(row));
    for (int column = range.first_col; column <= range.last_col; ++column) {
      line.push_back(CellShown(workbook, sheet.Find(row, column), formulas));
      if (line.back().empty()) continue;
      rows_shown = lines.size();
      columns_shown = std::max(columns_shown, line.size());
    }
  }
  lines.resize(rows_shown);
  return GridText(lines, columns_shown);
}

std::string UnderlineName(Underline underline) {
  switch (underline) {
    case Underline::kNone:
      return "";
    case Underline::kSingle:
      return " underline";
    case Underline::kDouble:
      return " double-underline";
    case Underline::kSingleAccounting:
      return " accounting-underline";
    case Underline::kDoubleAccounting:
      return " double-accounting-underline";
  }
  return "";
}

std::string FormatShown(const CellFormat& format) {
  std::string shown = format.font_name + " " + NumberText(format.font_size);
  if (format.font_colour != 0) shown += " colour " + std::to_string(format.font_colour);
  const std::pair<bool, const char*> flags[] = {
      {format.bold, " bold"},
      {format.italic, " italic"},
      {format.strikethrough, " strikethrough"},
      {format.superscript, " superscript"},
      {format.subscript, " subscript"},
      {format.word_wrap, " wrap"},
      {format.centred, " centred"},
  };
  for (const auto& [set, name] : flags) {
    if (set) shown += name;
  }
  return shown + UnderlineName(format.underline) + " " + format.number_format;
}

std::string RangeShown(const CellRange& range) {
  const std::string first = ColumnLetters(range.first_col) + std::to_string(range.first_row);
  const std::string last = ColumnLetters(range.last_col) + std::to_string(range.last_row);
  return first == last ? first : first + ":" + last;
}

/// Adds a stretch of one row to the blocks, growing the block above it where the two are equally wide.
void AddStretch(std::vector<CellRange>& blocks, const CellRange& stretch) {
  for (CellRange& block : blocks) {
    if (block.first_col == stretch.first_col && block.last_col == stretch.last_col &&
        block.last_row + 1 == stretch.first_row) {
      block.last_row = stretch.last_row;
      return;
    }
  }
  blocks.push_back(stretch);
}

/// The blocks of every format but the default, in reading order.
std::vector<std::pair<FormatId, std::vector<CellRange>>> FormatBlocks(const Sheet& sheet,
                                                                      const CellRange& range) {
  std::vector<std::pair<FormatId, std::vector<CellRange>>> formats;
  std::map<FormatId, std::size_t> index;
  const auto format_at = [&](int row, int column) {
    const Cell* cell = sheet.Find(row, column);
    return cell == nullptr ? FormatId{0} : cell->format;
  };
  for (int row = range.first_row; row <= range.last_row; ++row) {
    for (int column = range.first_col; column <= range.last_col;) {
      const int first = column;
      const FormatId format = format_at(row, first);
      while (column <= range.last_col && format_at(row, column) == format) ++column;
      if (format == 0) continue;
      const auto [entry, added] = index.try_emplace(format, formats.size());
      if (added) formats.emplace_back(format, std::vector<CellRange>());
      AddStretch(formats[entry->second].second, {row, first, row, column - 1});
    }
  }
  return formats;
}

std::string FormatList(const Workbook& workbook, const Sheet& sheet, const CellRange& range) {
  std::string list;
  for (const auto& [format, blocks] : FormatBlocks(sheet, range)) {
    for (const CellRange& block : blocks) list += RangeShown(block) + " ";
    list += "- " + FormatShown(workbook.Format(format)) + "\n";
  }
  return list;
}

bool Touch(const CellRange& a, const CellRange& b) {
  return a.first_row <= b.last_row && b.first_row <= a.last_row && a.first_col <= b.last_col &&
         b.first_col <= a.last_col;
}

std::string MergeList(const Sheet& sheet, const CellRange& range) {
  std::string list;
  for (const CellRange& merge : sheet.Merges()) {
    if (Touch(merge, range)) list += " " + RangeShown(merge);
  }
  return list.empty() ? "" : "merged" + list + "\n";
}

/// "widths A:C=20 E=hidden": stretches of equal sizes; what was never set is left out.
template <typename Label, typename Shown>
std::string SizeList(const char* title, int first, int last, const Label& label, const Shown& shown) {
  std::string list;
  for (int number = first; number <= last;) {
    const int begin = number;
    const std::string size = shown(begin);
    while (number <= last && shown(number) == size) ++number;
    if (size.empty()) continue;
    list += " " + label(begin) + (number - 1 > begin ? ":" + label(number - 1) : "") + "=" + size;
  }
  return list.empty() ? "" : title + list + "\n";
}

std::string SizeShown(bool hidden, double size) {
  return hidden ? "hidden" : size == 0.0 ? "" : NumberText(size);
}

}  // namespace

std::string DumpSheet(const Workbook& workbook, const Sheet& sheet, GridOptions options) {
  const CellRange whole{1, 1, std::max(sheet.LastRow(), sheet.LastSizedRow()),
                        std::max(sheet.LastColumn(), sheet.LastSizedColumn())};
  const CellRange range = options.range.value_or(whole);
  std::string text = CellGrid(workbook, sheet, range, options.formulas);
  if (!options.formats) return text;
  text += FormatList(workbook, sheet, range);
  text += MergeList(sheet, range);
  text += SizeList("widths", range.first_col, range.last_col, ColumnLetters, [&](int column) {
    return SizeShown(sheet.ColumnHidden(column), sheet.ColumnWidth(column));
  });
  text += SizeList(
      "heights", range.first_row, range.last_row, [](int row) { return std::to_string(row); },
      [&](int row) { return SizeShown(sheet.RowHidden(row), sheet.RowHeight(row)); });
  return text;
}

}  // namespace excelexp
