#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp {
namespace {

std::string CellText(int row, int column) {
  return ColumnLetters(column) + std::to_string(row);
}

[[noreturn]] void Fail(std::string_view sheet, std::string_view place, std::string_view what) {
  std::string sentence = "Sheet \"";
  sentence.append(sheet).append("\", ").append(place).append(": ").append(what);
  throw SpreadsheetError(sentence);
}

}  // namespace

void FailAt(std::string_view sheet, int row, int column, std::string_view what) {
  Fail(sheet, "cell " + CellText(row, column), what);
}

void FailAt(std::string_view sheet, const CellRange& range, std::string_view what) {
  if (range.first_row == range.last_row && range.first_col == range.last_col) {
    FailAt(sheet, range.first_row, range.first_col, what);
  }
  Fail(sheet,
       "cells " + CellText(range.first_row, range.first_col) + ":" + CellText(range.last_row, range.last_col),
       what);
}

}  // namespace excelexp
