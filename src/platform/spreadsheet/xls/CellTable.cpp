#include "platform/spreadsheet/xls/CellTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "platform/spreadsheet/Utf8.h"
#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/xls/CellRecords.h"
#include "platform/spreadsheet/xls/RecordTypes.h"

namespace excelexp::xls {
namespace {

constexpr std::uint32_t kRowsInBlock = 32;
constexpr std::size_t kRowRecordSize = 20;
constexpr std::uint32_t kTwipsPerPoint = 20;
constexpr double kDefaultColumnWidth = 8.43;  // characters

bool HasRecord(const Cell& cell) {
  return cell.type != CellType::kEmpty || cell.format != 0;
}

/// The distances between the first cells of a block's rows; one that needs more than 16 bits leaves readers
/// to look for the cells themselves.
class RowOffsets {
 public:
  explicit RowOffsets(std::size_t second_row) : previous_(second_row) {}

  void Add(std::size_t first_cell) {
    fit_ = fit_ && first_cell - previous_ <= 0xFFFF;
    offsets_[count_++] = static_cast<std::uint16_t>(first_cell - previous_);
    previous_ = first_cell;
  }

  void Write(RecordStream& stream, std::size_t block_start) const {
    const std::size_t position = stream.Position();
    Record record(stream, kDbCell);
    record->U32(static_cast<std::uint32_t>(position - block_start));
    if (!fit_) return;
    for (std::size_t i = 0; i < count_; ++i) record->U16(offsets_[i]);
  }

 private:
  std::array<std::uint16_t, kRowsInBlock> offsets_{};
  std::size_t count_ = 0;
  std::size_t previous_;
  bool fit_ = true;
};

}  // namespace

void CellTable::Extent::Include(const Extent& other) {
  if (other.IsEmpty()) return;
  first = IsEmpty() ? other.first : std::min(first, other.first);
  end = std::max(end, other.end);
}

CellTable::CellTable(const XlsParts& parts, const Sheet& sheet) : parts_(parts), sheet_(sheet) {
  const auto last = static_cast<std::uint32_t>(std::max(sheet.LastRow(), sheet.LastSizedRow()));
  for (std::uint32_t row = 0; row < last; ++row) {
    const Extent extent = RowExtent(row);
    columns_.Include(extent);
    if (HasRow(row, extent)) rows_.Include({row, row + 1});
  }
}

std::uint32_t CellTable::Blocks() const {
  return (rows_.end - rows_.first + kRowsInBlock - 1) / kRowsInBlock;
}

CellTable::Extent CellTable::RowExtent(std::uint32_t row) const {
  const int number = static_cast<int>(row) + 1;
  if (number > sheet_.LastRow()) return {};
  const std::vector<Cell>& cells = sheet_.Row(number);
  const auto first = std::find_if(cells.begin(), cells.end(), HasRecord);
  if (first == cells.end()) return {};
  const auto last = std::find_if(cells.rbegin(), cells.rend(), HasRecord);
  return {static_cast<std::uint32_t>(first - cells.begin()),
          static_cast<std::uint32_t>(last.base() - cells.begin())};
}

bool CellTable::HasRow(std::uint32_t row, const Extent& extent) const {
  const int number = static_cast<int>(row) + 1;
  return !extent.IsEmpty() || sheet_.RowHeight(number) > 0 || sheet_.RowHidden(number);
}

std::size_t CellTable::WriteBlock(RecordStream& stream, std::uint32_t block) const {
  std::array<Extent, kRowsInBlock> extents;
  const std::uint32_t first = rows_.first + block * kRowsInBlock;
  const std::uint32_t count = std::min(kRowsInBlock, rows_.end - first);
  const std::size_t block_start = stream.Position();
  for (std::uint32_t i = 0; i < count; ++i) {
    extents[i] = RowExtent(first + i);
    if (HasRow(first + i, extents[i])) WriteRow(stream, first + i, extents[i]);
  }
  RowOffsets offsets(block_start + kRowRecordSize);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (extents[i].IsEmpty()) continue;
    offsets.Add(stream.Position());
    WriteCells(stream, first + i, extents[i]);
  }
  const std::size_t position = stream.Position();
  offsets.Write(stream, block_start);
  return position;
}

void CellTable::WriteRow(RecordStream& stream, std::uint32_t row, const Extent& extent) const {
  // [MS-XLS] 2.4.221 Row: fDyZero, fUnsynced, a bit that is always set, the default format.
  constexpr std::uint32_t kHidden = 0x20, kOwnHeight = 0x40, kAlways = 0x100;
  constexpr std::uint32_t kFormat = std::uint32_t{XlsStyles::kDefaultXf} << 16;
  const int number = static_cast<int>(row) + 1;
  const double points = sheet_.RowHeight(number);
  const bool hidden = sheet_.RowHidden(number);
  const auto twips = points > 0 ? static_cast<std::uint32_t>(std::lround(points * kTwipsPerPoint))
                                : std::uint32_t{FittingHeight(row, extent)};
  const std::uint32_t flags =
      kAlways | kFormat | (hidden ? kHidden : 0) | (points > 0 || hidden ? kOwnHeight : 0);
  Record(stream, kRow)->U16(row).U16(extent.first).U16(extent.end).U16(twips).U16(0).U16(0).U32(flags);
}

std::uint16_t CellTable::FittingHeight(std::uint32_t row, const Extent& extent) const {
  std::uint32_t height = XlsStyles::kDefaultHeight;
  for (std::uint32_t column = extent.first; column < extent.end; ++column) {
    const Cell& cell = sheet_.Row(static_cast<int>(row) + 1)[column];
    height = std::max(height, Lines(cell, column) * parts_.styles.FittingHeight(cell.format));
  }
  constexpr std::uint32_t kMaxHeight = static_cast<std::uint32_t>(kMaxRowHeight) * kTwipsPerPoint;
  return static_cast<std::uint16_t>(std::min(height, kMaxHeight));
}

std::uint32_t CellTable::Lines(const Cell& cell, std::uint32_t column) const {
  if (cell.type != CellType::kText || !parts_.workbook.Format(cell.format).word_wrap) return 1;
  const int number = static_cast<int>(column) + 1;
  const double width = sheet_.ColumnWidth(number) > 0 ? sheet_.ColumnWidth(number) : kDefaultColumnWidth;
  std::string_view text = parts_.workbook.Text(cell.text);
  std::uint32_t lines = 0;
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = text.find('\n');
    const auto units = static_cast<double>(MeasureUtf16(text.substr(0, end)).units);
    lines += std::max(1U, static_cast<std::uint32_t>(std::ceil(units / width)));
    if (end != std::string_view::npos) text.remove_prefix(end + 1);
  }
  return lines;
}

void CellTable::WriteCells(RecordStream& stream, std::uint32_t row, const Extent& extent) const {
  const std::vector<Cell>& cells = sheet_.Row(static_cast<int>(row) + 1);
  CellRecords records(stream, parts_, row, cells);
  for (std::uint32_t column = extent.first; column < extent.end;) column = records.Write(column, extent.end);
}

}  // namespace excelexp::xls
