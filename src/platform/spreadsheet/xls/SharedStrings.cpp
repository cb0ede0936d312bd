#include "platform/spreadsheet/xls/SharedStrings.h"

#include <algorithm>

#include "platform/spreadsheet/xls/RecordTypes.h"
#include "platform/spreadsheet/xls/XlsText.h"

namespace excelexp::xls {
namespace {

constexpr std::uint32_t kUnused = UINT32_MAX;

/// Where a bucket of strings begins.
struct Bucket {
  std::size_t position;   ///< in the stream
  std::size_t in_record;  ///< from the start of its record
};

/// Strings in a bucket of EXTSST: at least 8, at most 128 buckets ([MS-XLS] 2.4.107 ExtSST).
std::size_t BucketSize(std::size_t strings) {
  return std::max<std::size_t>(8, strings / 128 + 1);
}

}  // namespace

SharedStrings::SharedStrings(const Workbook& workbook)
    : workbook_(workbook), index_(workbook.TextCount(), kUnused) {
  for (const auto& sheet : workbook.Sheets()) {
    for (int row = 1; row <= sheet->LastRow(); ++row) {
      for (const Cell& cell : sheet->Row(row)) {
        if (cell.type != CellType::kText) continue;
        ++cells_;
        if (index_[cell.text] != kUnused) continue;
        index_[cell.text] = static_cast<std::uint32_t>(used_.size());
        used_.push_back(cell.text);
      }
    }
  }
}

void SharedStrings::Write(RecordStream& stream) const {
  if (used_.empty()) return;
  const std::size_t bucket_size = BucketSize(used_.size());
  std::vector<Bucket> buckets;
  XlsText text;
  {
    Record sst(stream, kSst);
    sst->U32(cells_).U32(static_cast<std::uint32_t>(used_.size()));
    for (std::size_t i = 0; i < used_.size(); ++i) {
      text.Set(workbook_.Text(used_[i]));
      if (stream.Room() < text.HeadBytes()) stream.Continue();
      const std::size_t header = 4;
      const std::size_t in_record = header + RecordStream::kMaxData - stream.Room();
      if (i % bucket_size == 0) buckets.push_back({stream.Position(), in_record});
      text.PutLong(stream);
    }
  }
  Record ext_sst(stream, kExtSst);
  ext_sst->U16(static_cast<std::uint32_t>(bucket_size));
  for (const Bucket& bucket : buckets) {
    ext_sst->U32(static_cast<std::uint32_t>(bucket.position))
        .U16(static_cast<std::uint32_t>(bucket.in_record))
        .U16(0);
  }
}

}  // namespace excelexp::xls
