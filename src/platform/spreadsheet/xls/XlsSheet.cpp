#include "platform/spreadsheet/xls/XlsSheet.h"

#include <algorithm>

#include "platform/spreadsheet/ColumnWidth.h"
#include "platform/spreadsheet/xls/CellTable.h"
#include "platform/spreadsheet/xls/RecordTypes.h"

namespace excelexp::xls {
namespace {

/// INDEX without the positions, which are known only when everything behind it is written.
class IndexRecord {
 public:
  IndexRecord(RecordStream& stream, const CellTable& table) : stream_(stream) {
    Record record(stream, kIndex);
    record->U32(0).U32(table.FirstRow()).U32(table.EndRow());
    patch_at_ = stream.Position();
    record->Zeros(4 * (1 + table.Blocks()));
  }

  /// The positions in the order of the record: DEFCOLWIDTH, then each DBCELL.
  void Add(std::size_t position) {
    stream_.Patch32(patch_at_, position);
    patch_at_ += 4;
  }

 private:
  RecordStream& stream_;
  std::size_t patch_at_ = 0;
};

void WriteCalculationSettings(RecordStream& stream) {
  WriteFlag(stream, kCalcMode, 1);     // automatic
  WriteFlag(stream, kCalcCount, 100);  // iterations, if they were on
  WriteFlag(stream, kRefMode, 1);      // A1
  WriteFlag(stream, kIteration, 0);
  Record(stream, kDelta)->F64(0.001);
  WriteFlag(stream, kSaveRecalc, 1);
}

void WriteViewSettings(RecordStream& stream) {
  constexpr std::uint32_t kSumsBelowAndRight =
      0x04C1;  // [MS-XLS] 2.4.351 WsBool, with page breaks and outlines
  WriteFlag(stream, kPrintHeaders, 0);
  WriteFlag(stream, kPrintGridLines, 0);
  WriteFlag(stream, kGridSet, 1);
  Record(stream, kGuts)->Zeros(8);
  Record(stream, kDefaultRowHeight)->U16(0).U16(XlsStyles::kDefaultHeight);
  WriteFlag(stream, kWsBool, kSumsBelowAndRight);
}

/// A4 upright at full size, margins of half an inch for header and footer.
void WritePageSettings(RecordStream& stream) {
  constexpr std::uint32_t kA4 = 9, kPercent = 100, kPortrait = 0x0002, kDotsPerInch = 600;
  WriteEmpty(stream, kHeader);
  WriteEmpty(stream, kFooter);
  WriteFlag(stream, kHCenter, 0);
  WriteFlag(stream, kVCenter, 0);
  Record record(stream, kSetup);
  record->U16(kA4).U16(kPercent).U16(1).U16(1).U16(1).U16(kPortrait).U16(kDotsPerInch).U16(kDotsPerInch);
  record->F64(0.5).F64(0.5).U16(1);
}

void WriteColumns(RecordStream& stream, const Sheet& sheet) {
  constexpr std::uint32_t kDefaultWidth = 8, kHidden = 0x0001, kOwnWidth = 0x0002;
  WriteFlag(stream, kDefColWidth, kDefaultWidth);
  const auto same = [&](int a, int b) {
    return sheet.ColumnWidth(a) == sheet.ColumnWidth(b) && sheet.ColumnHidden(a) == sheet.ColumnHidden(b);
  };
  for (int first = 1; first <= sheet.LastSizedColumn();) {
    int last = first;
    while (last < sheet.LastSizedColumn() && same(first, last + 1)) ++last;
    const bool hidden = sheet.ColumnHidden(first);
    if (hidden || sheet.ColumnWidth(first) > 0) {
      Record record(stream, kColInfo);
      record->U16(static_cast<std::uint32_t>(first - 1)).U16(static_cast<std::uint32_t>(last - 1));
      record->U16(static_cast<std::uint32_t>(StoredColumnWidth(sheet.ColumnWidth(first))))
          .U16(XlsStyles::kDefaultXf);
      record->U16(kOwnWidth | (hidden ? kHidden : 0)).U16(0);
    }
    first = last + 1;
  }
}

void WriteDimensions(RecordStream& stream, const CellTable& table) {
  Record record(stream, kDimensions);
  record->U32(table.FirstRow()).U32(table.EndRow()).U16(table.FirstColumn()).U16(table.EndColumn()).U16(0);
}

void WriteWindow2(RecordStream& stream, bool selected) {
  // [MS-XLS] 2.4.346 Window2: grid, headers, zeros, automatic colour, outline symbols; selected and shown.
  constexpr std::uint32_t kShown = 0x00B6, kSelected = 0x0600, kAutomaticColour = 0x40, kUpperLeftPane = 3;
  Record(stream, kWindow2)
      ->U16(kShown | (selected ? kSelected : 0))
      .U16(0)
      .U16(0)
      .U32(kAutomaticColour)
      .U16(0)
      .U16(0)
      .U32(0);
  Record(stream, kSelection)->U8(kUpperLeftPane).U16(0).U16(0).U16(0).U16(1).U16(0).U16(0).U8(0).U8(0);
}

void WriteMerges(RecordStream& stream, const std::vector<CellRange>& merges) {
  constexpr std::size_t kMaxInRecord = 1026;  // [MS-XLS] 2.4.168 MergeCells
  for (std::size_t first = 0; first < merges.size(); first += kMaxInRecord) {
    const std::size_t last = std::min(merges.size(), first + kMaxInRecord);
    Record record(stream, kMergedCells);
    record->U16(static_cast<std::uint32_t>(last - first));
    for (std::size_t i = first; i < last; ++i) {
      for (const int edge :
           {merges[i].first_row, merges[i].last_row, merges[i].first_col, merges[i].last_col}) {
        record->U16(static_cast<std::uint32_t>(edge - 1));
      }
    }
  }
}

}  // namespace

void WriteSheet(RecordStream& stream, const XlsParts& parts, const Sheet& sheet, bool selected) {
  CellTable table(parts, sheet);
  WriteBof(stream, Substream::kSheet);
  if (parts.links.NeedsRecalculation()) WriteFlag(stream, kUncalced, 0);
  IndexRecord index(stream, table);
  WriteCalculationSettings(stream);
  WriteViewSettings(stream);
  WritePageSettings(stream);
  index.Add(stream.Position());
  WriteColumns(stream, sheet);
  WriteDimensions(stream, table);
  for (std::uint32_t block = 0; block < table.Blocks(); ++block) index.Add(table.WriteBlock(stream, block));
  WriteWindow2(stream, selected);
  WriteMerges(stream, sheet.Merges());
  WriteEmpty(stream, kEof);
}

}  // namespace excelexp::xls
