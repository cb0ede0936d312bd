#include "platform/spreadsheet/BExcelAPI.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/spreadsheet/FilePublisher.h"
#include "platform/spreadsheet/FormatChange.h"
#include "platform/spreadsheet/Palette.h"
#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/formula/Recalculate.h"
#include "platform/spreadsheet/formula/SharedFormulas.h"

namespace excelexp {
namespace {

constexpr int kAutomaticColour = -4105;  // the application's automation constant

/// What an operation works on.
struct Target {
  Workbook& workbook;
  Sheet& sheet;
  CellRange range;
};

/// One cell, which most operations are about.
struct Place {
  Workbook& workbook;
  Sheet& sheet;
  int row;
  int column;

  CellRange Range() const { return {row, column, row, column}; }
};

Workbook& Open(const Handle& workbook) {
  if (workbook.IsEmpty()) throw SpreadsheetError("There is no open workbook behind the handle.");
  return *workbook.Get();
}

Sheet& SheetOf(Workbook& workbook, const std::string& name) {
  Sheet* const sheet = workbook.FindSheet(name);
  if (sheet == nullptr) throw SpreadsheetError("There is no sheet \"" + name + "\".");
  return *sheet;
}

Target Locate(const Handle& handle, const std::string& sheet_name, const std::string& range_text) {
  Workbook& workbook = Open(handle);
  Sheet& sheet = SheetOf(workbook, sheet_name);
  const std::optional<CellRange> range = ParseRange(range_text);
  if (!range)
    throw SpreadsheetError("Sheet \"" + sheet_name + "\": \"" + range_text + "\" is no range of cells.");
  return {workbook, sheet, *range};
}

[[noreturn]] void FailNoCell(const std::string& sheet_name, int row, int column) {
  throw SpreadsheetError("Sheet \"" + sheet_name + "\": there is no cell in row " + std::to_string(row) +
                         ", column " + std::to_string(column) + ".");
}

Place Locate(const Handle& handle, const std::string& sheet_name, int row, int column) {
  Workbook& workbook = Open(handle);
  Sheet& sheet = SheetOf(workbook, sheet_name);
  if (row < 1 || row > Workbook::kMaxRows || column < 1 || column > Workbook::kMaxColumns)
    FailNoCell(sheet_name, row, column);
  return {workbook, sheet, row, column};
}

template <typename Action>
void ForEachCell(const CellRange& range, const Action& action) {
  for (int row = range.first_row; row <= range.last_row; ++row) {
    for (int column = range.first_col; column <= range.last_col; ++column) action(row, column);
  }
}

void ChangeFormat(const Target& target, const FormatChange& change) {
  // The cells of a block most often have the same format.
  FormatId from = UINT32_MAX;
  FormatId to = 0;
  ForEachCell(target.range, [&](int row, int column) {
    Cell& cell = target.sheet.At(row, column);
    if (cell.format != from) {
      from = cell.format;
      to = target.workbook.ChangedFormat(from, change);
    }
    cell.format = to;
  });
}

void ChangeCellFormat(const Place& place, const FormatChange& change) {
  Cell& cell = place.sheet.At(place.row, place.column);
  cell.format = place.workbook.ChangedFormat(cell.format, change);
}

/// The application's constant for "automatic" is our 0.
double PaletteIndex(double colour) {
  return colour == kAutomaticColour ? 0 : colour;
}

[[noreturn]] void Fail(const Target& target, const std::string& what) {
  FailAt(target.sheet.Name(), target.range, what);
}

[[noreturn]] void Fail(const Place& place, const std::string& what) {
  FailAt(place.sheet.Name(), place.Range(), what);
}

/// A value would disappear in a cell that a merge covers.
void CheckVisible(const Sheet& sheet, int row, int column) {
  if (row > sheet.LastMergedRow()) return;
  const std::optional<std::size_t> index = sheet.FirstOverlap({row, column, row, column});
  if (!index) return;
  const CellRange& merge = sheet.Merges()[*index];
  if (merge.first_row == row && merge.first_col == column) return;
  FailAt(sheet.Name(), row, column, "a merge covers the cell, its value would not be seen.");
}

/// The cell for a new value; its format stays.
Cell& Emptied(const Place& place) {
  Cell& cell = place.sheet.At(place.row, place.column);
  cell.type = CellType::kEmpty;
  return cell;
}

void PutNumber(const Place& place, double number) {
  if (!std::isfinite(number)) Fail(place, "the number is not finite.");
  CheckVisible(place.sheet, place.row, place.column);
  Cell& cell = Emptied(place);
  cell.type = CellType::kNumber;
  cell.number = number == 0.0 ? 0.0 : number;  // no negative zero: readers disagree on showing "-0"
}

void PutText(const Place& place, const std::string& text) {
  if (text.empty()) {
    Emptied(place);
    return;
  }
  CheckVisible(place.sheet, place.row, place.column);
  Cell& cell = Emptied(place);
  cell.type = CellType::kText;
  cell.text = place.workbook.InternText(text);
}

void PutFormula(const Place& place, Formula formula) {
  Cell& cell = Emptied(place);
  cell.formula = place.workbook.AddFormula(std::move(formula));
  cell.type = CellType::kFormula;
}

double NumberOf(const Variant& value, const Target& target, const char* what) {
  if (const int* whole = std::get_if<int>(&value)) return *whole;
  if (const double* number = std::get_if<double>(&value)) return *number;
  Fail(target, std::string("the ") + what + " is no number.");
}

double NumberWithin(const Variant& value, const Target& target, const char* what, double low, double high) {
  const double number = NumberOf(value, target, what);
  if (number >= low && number <= high) return number;
  Fail(target, std::string("the ") + what + " must lie between " + std::to_string(static_cast<int>(low)) +
                   " and " + std::to_string(static_cast<int>(high)) + ".");
}

Formula MakeFormula(const Target& target, const std::string& text) {
  try {
    return target.workbook.MakeFormula(text, target.range.first_row, target.range.first_col);
  } catch (const formula::ParseError& error) {
    Fail(target,
         "the formula cannot be read at character " + std::to_string(error.Position()) + ": " + error.what());
  }
}

Formula MovedFormula(const Formula& formula, int rows, int columns) {
  const formula::Moves moves = {formula.moves.rows + rows, formula.moves.columns + columns};
  const bool stays = rows == 0 && columns == 0;
  if (stays || formula.source->text.CanMove(moves)) return {formula.source, moves};
  std::shared_ptr<const formula::Expression> moved =
      formula::Moved(*formula::ExpressionOf(formula), rows, columns);
  std::string text = "=" + formula::Print(*moved);
  return {std::move(text), std::move(moved)};
}

void Merge(const Target& target) {
  const CellRange& range = target.range;
  if (range.first_row == range.last_row && range.first_col == range.last_col) return;
  if (target.sheet.FirstOverlap(range)) Fail(target, "the merge overlaps an earlier one.");
  ForEachCell(range, [&](int row, int column) {
    if (row == range.first_row && column == range.first_col) return;
    const Cell* const cell = target.sheet.Find(row, column);
    if (cell != nullptr && cell->type != CellType::kEmpty) {
      FailAt(target.sheet.Name(), row, column, "the merge would hide the cell's value.");
    }
  });
  // The covered cells exist from here on, so that every writer gives them a format.
  target.sheet.At(range.last_row, range.last_col);
  target.sheet.AddMerge(range);
}

}  // namespace

struct BExcelAPI::Impl {
  DateTime moment;
  std::function<void()> before_save_step = [] {};
  std::vector<Handle> workbooks;
};

BExcelAPI::BExcelAPI() : impl_(std::make_unique<Impl>()) {}

BExcelAPI::~BExcelAPI() = default;

void BExcelAPI::SetMoment(DateTime moment) {
  impl_->moment = moment;
}

void BExcelAPI::SetBeforeSaveStep(std::function<void()> call) {
  impl_->before_save_step = std::move(call);
}

Handle BExcelAPI::OpenExcelOLE(bool /*visible*/) {
  return {};
}

Handle BExcelAPI::CreateWorkbook(int blank_sheets) {
  if (blank_sheets < 0) throw SpreadsheetError("A workbook cannot have fewer than no sheets.");
  auto workbook = std::make_shared<Workbook>();
  for (int i = 1; i <= blank_sheets; ++i) {
    workbook->Sheets().push_back(std::make_unique<Sheet>("Sheet" + std::to_string(i), true));
  }
  return impl_->workbooks.emplace_back(std::move(workbook));
}

Handle BExcelAPI::CreateNewTable(const Handle& workbook, const std::string& name) {
  Workbook& open = Open(workbook);
  CheckSheetName(name);
  std::erase_if(open.Sheets(), [](const auto& sheet) { return sheet->IsUnusedPlaceholder(); });
  if (open.FindSheet(name) != nullptr) throw SpreadsheetError("There is a sheet \"" + name + "\" already.");
  open.Sheets().push_back(std::make_unique<Sheet>(name));
  return workbook;
}

void BExcelAPI::SaveWorkbook(const Handle& workbook, const std::string& file_name, bool /*ask*/) {
  Workbook& open = Open(workbook);
  const WorkbookFormat& format = WorkbookFormatFor(file_name);
  open.created = impl_->moment;
  impl_->before_save_step();
  formula::Recalculate(open, impl_->moment);
  impl_->before_save_step();
  CheckWorkbook(open, format);
  const std::string bytes = format.serialize(open);
  impl_->before_save_step();
  PublishFile(file_name, bytes);
}

void BExcelAPI::TerminateExcel() {
  impl_->workbooks.clear();
}

void BExcelAPI::WriteTableCell(const Handle& workbook, const std::string& sheet, int row, int column,
                               const Variant& value) {
  const Place place = Locate(workbook, sheet, row, column);
  if (const std::string* text = std::get_if<std::string>(&value)) {
    PutText(place, *text);
  } else if (std::holds_alternative<std::monostate>(value)) {
    Emptied(place);
  } else {
    PutNumber(place, NumberOf(value, {place.workbook, place.sheet, place.Range()}, "value"));
  }
}

void BExcelAPI::WriteTableCellText(const Handle& workbook, const std::string& sheet, int row, int column,
                                   const std::string& text) {
  PutText(Locate(workbook, sheet, row, column), text);
}

void BExcelAPI::WriteTableCellNumber(const Handle& workbook, const std::string& sheet, int row, int column,
                                     double number) {
  PutNumber(Locate(workbook, sheet, row, column), number);
}

void BExcelAPI::FormulaOnRange(const Handle& workbook, const std::string& sheet, const std::string& range,
                               const std::string& formula) {
  const Target target = Locate(workbook, sheet, range);
  const Formula made = MakeFormula(target, formula);
  ForEachCell(target.range, [&](int row, int column) { CheckVisible(target.sheet, row, column); });
  ForEachCell(target.range, [&](int row, int column) {
    PutFormula({target.workbook, target.sheet, row, column},
               MovedFormula(made, row - target.range.first_row, column - target.range.first_col));
  });
}

void BExcelAPI::FillRight(const Handle& workbook, const std::string& sheet, int row, int column) {
  const Place place = Locate(workbook, sheet, row, column);
  const Cell* const left = place.sheet.Find(row, column - 1);
  if (left == nullptr || left->type != CellType::kFormula)
    Fail(place, "the cell to the left has no formula.");
  CheckVisible(place.sheet, row, column);
  PutFormula(place, MovedFormula(place.workbook.FormulaAt(left->formula), 0, 1));
}

void BExcelAPI::NumberFormatOnRange(const Handle& workbook, const std::string& sheet,
                                    const std::string& range, const std::string& format) {
  const Target target = Locate(workbook, sheet, range);
  ChangeFormat(target, FormatChange::Number(target.workbook.InternName(format)));
}

void BExcelAPI::MergeRangeCells(const Handle& workbook, const std::string& sheet, const std::string& range,
                                bool across, bool centre) {
  const Target target = Locate(workbook, sheet, range);
  if (across) {
    for (int row = target.range.first_row; row <= target.range.last_row; ++row) {
      Merge({target.workbook, target.sheet, {row, target.range.first_col, row, target.range.last_col}});
    }
  } else {
    Merge(target);
  }
  if (centre) ChangeFormat(target, FormatChange::Centred(true));
}

void BExcelAPI::SetWordWrap(const Handle& workbook, const std::string& sheet, const std::string& range,
                            bool wrap) {
  ChangeFormat(Locate(workbook, sheet, range), FormatChange::WordWrap(wrap));
}

void BExcelAPI::SetFontNameSize(const Handle& workbook, const std::string& sheet, const std::string& range,
                                const std::string& name, double points) {
  const Target target = Locate(workbook, sheet, range);
  const double size = NumberWithin(points, target, "font size", kMinFontSize, kMaxFontSize);
  ChangeFormat(target, FormatChange::Font(target.workbook.InternName(name), size));
}

void BExcelAPI::SetFontColour(const Handle& workbook, const std::string& sheet, const std::string& range,
                              const Variant& colour) {
  const Target target = Locate(workbook, sheet, range);
  const double index = PaletteIndex(NumberOf(colour, target, "font colour"));
  if (!(index >= 0 && index <= kPaletteColours) || index != std::floor(index)) {
    Fail(target, "the font colour must be a palette index from 1 to 56, or 0 for automatic.");
  }
  ChangeFormat(target, FormatChange::Colour(static_cast<int>(index)));
}

void BExcelAPI::SetFontStyle(const Handle& workbook, const std::string& sheet, const std::string& range,
                             bool bold, bool underline, bool italic) {
  ChangeFormat(Locate(workbook, sheet, range), FormatChange::Style(bold, underline, italic));
}

void BExcelAPI::SetFontUnderline(const Handle& workbook, const std::string& sheet, const std::string& range,
                                 int kind) {
  const Target target = Locate(workbook, sheet, range);
  const auto underline = static_cast<Underline>(kind);
  if (!IsUnderline(underline)) Fail(target, "there is no underline kind " + std::to_string(kind) + ".");
  ChangeFormat(target, FormatChange::Underlined(underline));
}

void BExcelAPI::SetFontEffects(const Handle& workbook, const std::string& sheet, const std::string& range,
                               bool strikethrough, bool superscript, bool subscript) {
  ChangeFormat(Locate(workbook, sheet, range), FormatChange::Effects(strikethrough, superscript, subscript));
}

void BExcelAPI::SetColumnWidth(const Handle& workbook, const std::string& sheet, const std::string& range,
                               const Variant& width) {
  const Target target = Locate(workbook, sheet, range);
  const double characters = NumberWithin(width, target, "column width", 0, kMaxColumnWidth);
  for (int column = target.range.first_col; column <= target.range.last_col; ++column) {
    target.sheet.SetColumnWidth(column, characters);
  }
}

void BExcelAPI::SetRowHeight(const Handle& workbook, const std::string& sheet, const std::string& range,
                             const Variant& height) {
  const Target target = Locate(workbook, sheet, range);
  const double points = NumberWithin(height, target, "row height", 0, kMaxRowHeight);
  for (int row = target.range.first_row; row <= target.range.last_row; ++row)
    target.sheet.SetRowHeight(row, points);
}

PreparedStyle BExcelAPI::PrepareStyle(const Handle& workbook, const CellStyle& style) {
  Workbook& open = Open(workbook);
  std::vector<FormatChange> changes = {
      FormatChange::Font(open.InternName(style.font_name), style.font_size),
      FormatChange::Colour(static_cast<int>(PaletteIndex(style.font_colour)))};
  if (style.font_style)
    changes.push_back(FormatChange::Style(style.font_style->bold, false, style.font_style->italic));
  changes.push_back(FormatChange::Underlined(style.underline));
  changes.push_back(FormatChange::Effects(style.strikethrough, style.superscript, style.subscript));
  return {open.AddChanges(std::move(changes)), style.column_width, style.row_height};
}

void BExcelAPI::ApplyStyle(const Handle& workbook, const std::string& sheet, int row, int column,
                           const PreparedStyle& style) {
  const Place place = Locate(workbook, sheet, row, column);
  ChangeCellFormat(place, FormatChange::All(style.changes));
  place.sheet.SetColumnWidth(column, style.column_width);
  place.sheet.SetRowHeight(row, style.row_height);
}

void BExcelAPI::WriteTableCellAmount(const Handle& workbook, const std::string& sheet, int row, int column,
                                     double amount, const std::string& number_format) {
  const Place place = Locate(workbook, sheet, row, column);
  PutNumber(place, amount);
  ChangeCellFormat(place, FormatChange::Number(place.workbook.InternName(number_format)));
}

void BExcelAPI::NumberFormatOnCell(const Handle& workbook, const std::string& sheet, int row, int column,
                                   const std::string& format) {
  const Place place = Locate(workbook, sheet, row, column);
  ChangeCellFormat(place, FormatChange::Number(place.workbook.InternName(format)));
}

}  // namespace excelexp
