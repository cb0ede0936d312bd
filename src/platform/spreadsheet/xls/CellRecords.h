#pragma once

#include <cstdint>
#include <vector>

#include "platform/spreadsheet/xls/XlsGlobals.h"

namespace excelexp::xls {

/// The cells of one row as records: runs of short numbers and of formatted blanks share one record.
class CellRecords {
 public:
  CellRecords(RecordStream& stream, const XlsParts& parts, std::uint32_t row, const std::vector<Cell>& cells)
      : stream_(stream), parts_(parts), row_(row), cells_(cells) {}

  /// Writes the cell of a column (0-based), with the cells that share its record, and returns the column
  /// behind them, at most `end`.
  std::uint32_t Write(std::uint32_t column, std::uint32_t end);

 private:
  std::uint32_t WriteNumbers(std::uint32_t column, std::uint32_t end);
  std::uint32_t WriteBlanks(std::uint32_t column, std::uint32_t end);
  void WriteText(std::uint32_t column);
  void WriteFormula(std::uint32_t column);
  /// The row, the column and the format of a cell begin its record.
  void PutCell(std::uint32_t column) { stream_.U16(row_).U16(column).U16(XfOf(column)); }
  std::uint16_t XfOf(std::uint32_t column) const { return parts_.styles.XfOf(cells_[column].format); }

  RecordStream& stream_;
  const XlsParts& parts_;
  std::uint32_t row_;
  const std::vector<Cell>& cells_;
};

}  // namespace excelexp::xls
