#include <cmath>
#include <string>
#include <vector>

#include "platform/spreadsheet/FormatCensus.h"
#include "platform/spreadsheet/NumberFormatCode.h"
#include "platform/spreadsheet/Palette.h"
#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/Utf8.h"
#include "platform/spreadsheet/WorkbookFile.h"

namespace excelexp {
namespace {

/// The first check that fails speaks; each takes the workbook in the order in which it is written.
class WorkbookCheck {
 public:
  WorkbookCheck(const Workbook& workbook, const WorkbookFormat& format)
      : workbook_(workbook), format_(format), census_(workbook), checked_texts_(workbook.TextCount()) {}

  void Run() {
    if (workbook_.Sheets().empty()) throw SpreadsheetError("The workbook has no sheet.");
    CheckSheetNames();
    for (const auto& sheet : workbook_.Sheets()) {
      sheet_ = sheet.get();
      CheckExtent();
      CheckSizes();
      CheckMerges();
      CheckCells();
    }
  }

 private:
  void CheckSheetNames() const {
    const auto& sheets = workbook_.Sheets();
    for (std::size_t i = 0; i < sheets.size(); ++i) {
      CheckSheetName(sheets[i]->Name());
      for (std::size_t j = 0; j < i; ++j) {
        if (!SameSheetName(sheets[i]->Name(), sheets[j]->Name())) continue;
        throw SpreadsheetError("Two sheets have the name \"" + sheets[i]->Name() + "\".");
      }
    }
  }

  void CheckExtent() const {
    for (int row = 1; row <= sheet_->LastRow(); ++row) {
      const int columns = static_cast<int>(sheet_->Row(row).size());
      if (columns > 0) CheckWithin(row, columns);
    }
    CheckWithin(std::max(1, sheet_->LastSizedRow()), std::max(1, sheet_->LastSizedColumn()));
    for (const CellRange& merge : sheet_->Merges()) CheckWithin(merge.last_row, merge.last_col);
  }

  void CheckWithin(int row, int column) const {
    if (row <= format_.max_rows && column <= format_.max_columns) return;
    FailAt(sheet_->Name(), row, column,
           "the file format " + std::string(format_.extension) + " ends with row " +
               std::to_string(format_.max_rows) + " and column " + ColumnLetters(format_.max_columns) + ".");
  }

  void CheckSizes() const {
    for (int column = 1; column <= sheet_->LastSizedColumn(); ++column) {
      if (!(sheet_->ColumnWidth(column) <= kMaxColumnWidth)) Fail(1, column, "the column is too wide.");
    }
    for (int row = 1; row <= sheet_->LastSizedRow(); ++row) {
      if (!(sheet_->RowHeight(row) <= kMaxRowHeight)) Fail(row, 1, "the row is too high.");
    }
  }

  void CheckMerges() const {
    const std::vector<CellRange>& merges = sheet_->Merges();
    for (std::size_t i = 0; i < merges.size(); ++i) {
      if (sheet_->FirstOverlap(merges[i], i))
        FailAt(sheet_->Name(), merges[i], "the merge overlaps an earlier one.");
    }
  }

  void CheckCells() {
    for (row_ = 1; row_ <= sheet_->LastRow(); ++row_) {
      column_ = 0;
      for (const Cell& cell : sheet_->Row(row_)) {
        ++column_;
        if (census_.Add(cell.format)) CheckFormat(workbook_.Format(cell.format));
        CheckValue(cell);
      }
    }
  }

  void CheckValue(const Cell& cell) {
    switch (cell.type) {
      case CellType::kEmpty:
        return;
      case CellType::kNumber:
        if (!std::isfinite(cell.number)) Fail("the number is not finite.");
        return;
      case CellType::kText:
        if (checked_texts_[cell.text]) return;
        checked_texts_[cell.text] = true;
        CheckText(workbook_.Text(cell.text), "text", kMaxTextUnits);
        return;
      case CellType::kFormula:
        CheckResult(workbook_.FormulaAt(cell.formula).result);
        return;
    }
  }

  void CheckResult(const FormulaResult& result) const {
    if (result.type == FormulaResult::Type::kText) CheckText(result.text, "formula's result", kMaxTextUnits);
    if (result.type == FormulaResult::Type::kNumber && !std::isfinite(result.number)) {
      Fail("the formula's result is not finite.");
    }
  }

  void CheckText(std::string_view text, const std::string& what, std::size_t max_units) const {
    if (const char* problem = TextProblem(text)) Fail("the " + what + " " + problem + ".");
    // A UTF-16 unit takes at least one byte, so that a short text needs no counting.
    if (text.size() <= max_units || MeasureUtf16(text).units <= max_units) return;
    Fail("the " + what + " is longer than " + std::to_string(max_units) + " characters.");
  }

  void CheckFormat(const CellFormat& format) const {
    CheckText(format.font_name, "font name", kMaxFontNameUnits);
    CheckText(format.number_format, "number format", kMaxNumberFormatUnits);
    if (format.font_name.empty()) Fail("the font name is empty.");
    if (const char* problem = NumberFormatProblem(format.number_format)) {
      Fail(std::string("the number format ") + problem + ".");
    }
    if (!(format.font_size >= kMinFontSize && format.font_size <= kMaxFontSize))
      Fail("the font size is out of range.");
    if (format.font_colour < 0 || format.font_colour > kPaletteColours)
      Fail("the font colour is not in the palette.");
    if (!IsUnderline(format.underline)) Fail("there is no such underline kind.");
    CheckCount(census_.Entries().size(), format_.max_cell_formats, "cell formats");
    CheckCount(census_.Fonts().Size(), format_.max_fonts, "fonts");
    CheckCount(census_.NumberFormats().Size(), format_.max_number_formats, "number formats");
  }

  void CheckCount(std::size_t count, std::size_t limit, const char* what) const {
    if (count <= limit) return;
    Fail("the workbook has more than " + std::to_string(limit) + " " + what + ", the limit of " +
         std::string(format_.extension) + ".");
  }

  [[noreturn]] void Fail(int row, int column, std::string_view what) const {
    FailAt(sheet_->Name(), row, column, what);
  }
  [[noreturn]] void Fail(std::string_view what) const { Fail(row_, column_, what); }

  const Workbook& workbook_;
  const WorkbookFormat& format_;
  FormatCensus census_;
  std::vector<bool> checked_texts_;
  const Sheet* sheet_ = nullptr;
  int row_ = 0;
  int column_ = 0;
};

/// What is wrong with a sheet name, as the end of a sentence; nullptr for a good one.
const char* SheetNameProblem(std::string_view name) {
  if (name.empty()) return "is empty";
  if (const char* problem = TextProblem(name)) return problem;
  if (MeasureUtf16(name).units > kMaxSheetNameUnits) return "is longer than 31 characters";
  if (name.find_first_of("[]:*?/\\") != std::string_view::npos) return "holds one of []:*?/\\";
  if (name.find_first_of("\t\n\r") != std::string_view::npos) return "holds a control character";
  if (name.front() == '\'' || name.back() == '\'') return "begins or ends with an apostrophe";
  if (SameSheetName(name, "History")) return "is one that the application keeps for itself";
  return nullptr;
}

}  // namespace

void CheckSheetName(std::string_view name) {
  if (const char* problem = SheetNameProblem(name)) {
    throw SpreadsheetError("The sheet name \"" + std::string(name) + "\" " + problem + ".");
  }
}

void CheckWorkbook(const Workbook& workbook, const WorkbookFormat& format) {
  WorkbookCheck(workbook, format).Run();
}

}  // namespace excelexp
