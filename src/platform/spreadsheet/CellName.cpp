#include "platform/spreadsheet/CellName.h"

#include <algorithm>
#include <charconv>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {
namespace {

constexpr int kLetters = 26;

/// Takes "B7" with optional `$` from the front of `text`.
bool TakeCell(std::string_view& text, int& row, int& column) {
  std::size_t i = 0;
  const auto take_dollar = [&] { i += i < text.size() && text[i] == '$'; };
  take_dollar();
  column = 0;
  for (; i < text.size() && column <= Workbook::kMaxColumns; ++i) {
    const char letter = static_cast<char>(text[i] & ~0x20);
    if (letter < 'A' || letter > 'Z') break;
    column = column * kLetters + (letter - 'A' + 1);
  }
  if (column == 0 || column > Workbook::kMaxColumns) return false;
  take_dollar();
  if (i >= text.size() || text[i] < '1' || text[i] > '9') return false;
  for (row = 0; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    row = row * 10 + (text[i] - '0');
    if (row > Workbook::kMaxRows) return false;
  }
  text.remove_prefix(i);
  return true;
}

/// Writes the letters before `end` and returns where they begin.
char* PutLetters(char* end, int column) {
  for (; column > 0; column = (column - 1) / kLetters) {
    *--end = static_cast<char>('A' + (column - 1) % kLetters);
  }
  return end;
}

}  // namespace

std::string ColumnLetters(int column) {
  char buffer[8];
  char* const end = buffer + sizeof buffer;
  return std::string(PutLetters(end, column), end);
}

char* WriteColumnLetters(char* at, int column) {
  char buffer[8];
  char* const end = buffer + sizeof buffer;
  return std::copy(PutLetters(end, column), end, at);
}

std::string GetCellName(int row, int column) {
  if (row < 1 || row > Workbook::kMaxRows || column < 1 || column > kLastNamedColumn) return {};
  char buffer[16];
  char* const middle = buffer + 4;
  const char* const begin = PutLetters(middle, column);
  const char* const end = std::to_chars(middle, buffer + sizeof buffer, row).ptr;
  return std::string(begin, end);
}

std::optional<CellRange> ParseRange(std::string_view range) {
  CellRange cells;
  if (!TakeCell(range, cells.first_row, cells.first_col)) return std::nullopt;
  if (range.empty()) {
    cells.last_row = cells.first_row;
    cells.last_col = cells.first_col;
    return cells;
  }
  if (range.front() != ':') return std::nullopt;
  range.remove_prefix(1);
  if (!TakeCell(range, cells.last_row, cells.last_col) || !range.empty()) return std::nullopt;
  if (cells.first_row > cells.last_row) std::swap(cells.first_row, cells.last_row);
  if (cells.first_col > cells.last_col) std::swap(cells.first_col, cells.last_col);
  return cells;
}

}  // namespace excelexp
