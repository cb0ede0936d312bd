#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace excelexp {

/// A rectangle of cells, 1-based and inclusive.
struct CellRange {
  int first_row = 1;
  int first_col = 1;
  int last_row = 1;
  int last_col = 1;

  friend bool operator==(const CellRange&, const CellRange&) = default;
};

/// The last column that a cell name exists for: the layouts promise worksheets that every .xls reader can
/// hold.
inline constexpr int kLastNamedColumn = 256;

/// The spreadsheet's name of a cell, "A1" to "IV1048576", the last row of an .xlsx file: whether a file can
/// hold the row its writer checks. "" for a row or column below 1 or beyond these.
std::string GetCellName(int row, int column);

/// The letters of a column, "A" for 1; for any column from 1 to 16,384.
std::string ColumnLetters(int column);
/// Writes them at `at` and returns where they end.
char* WriteColumnLetters(char* at, int column);

/// Reads "B7" or "B7:D9" (in any corner order, `$` allowed); nothing for any other text.
std::optional<CellRange> ParseRange(std::string_view range);

}  // namespace excelexp
