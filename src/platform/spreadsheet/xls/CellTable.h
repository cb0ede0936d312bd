#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/spreadsheet/xls/XlsGlobals.h"

namespace excelexp::xls {

/// The rows and cells of one sheet as records, in blocks of 32 rows. Rows and columns are 0-based here, as in
/// the file; "end" is one past the last.
class CellTable {
 public:
  CellTable(const XlsParts& parts, const Sheet& sheet);

  std::uint32_t FirstRow() const { return rows_.first; }
  std::uint32_t EndRow() const { return rows_.end; }
  std::uint32_t FirstColumn() const { return columns_.first; }
  std::uint32_t EndColumn() const { return columns_.end; }
  std::uint32_t Blocks() const;

  /// Writes the block's ROW records, its cells and its DBCELL record, and returns where DBCELL stands.
  std::size_t WriteBlock(RecordStream& stream, std::uint32_t block) const;

 private:
  struct Extent {
    std::uint32_t first = 0;
    std::uint32_t end = 0;
    bool IsEmpty() const { return first == end; }
    void Include(const Extent& other);
  };

  /// The columns of a row that have a record.
  Extent RowExtent(std::uint32_t row) const;
  bool HasRow(std::uint32_t row, const Extent& extent) const;
  void WriteRow(RecordStream& stream, std::uint32_t row, const Extent& extent) const;
  /// Twips for the highest cell of a row that was given no height: the application does not fit rows of .xls
  /// files when it loads them.
  std::uint16_t FittingHeight(std::uint32_t row, const Extent& extent) const;
  /// How many lines a wrapped text takes, at one digit's width a character.
  std::uint32_t Lines(const Cell& cell, std::uint32_t column) const;
  void WriteCells(RecordStream& stream, std::uint32_t row, const Extent& extent) const;

  const XlsParts& parts_;
  const Sheet& sheet_;
  Extent rows_;
  Extent columns_;
};

}  // namespace excelexp::xls
