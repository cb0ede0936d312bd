#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/xls/SummaryInformation.h"
#include "platform/spreadsheet/xls/XlsContainer.h"
#include "platform/spreadsheet/xls/XlsGlobals.h"
#include "platform/spreadsheet/xls/XlsSheet.h"

namespace excelexp {
namespace {

/// Enough for what most workbooks need: a record for each cell, the texts, the rows.
std::size_t ExpectedSize(const Workbook& workbook) {
  constexpr std::size_t kNumberRecord = 18, kRowRecord = 24, kGlobals = 64 * 1024;
  std::size_t size = kGlobals;
  for (const auto& sheet : workbook.Sheets()) {
    for (int row = 1; row <= sheet->LastRow(); ++row)
      size += kRowRecord + kNumberRecord * sheet->Row(row).size();
  }
  for (std::uint32_t i = 0; i < workbook.TextCount(); ++i) size += 3 + workbook.Text(i).size();
  return size;
}

}  // namespace

std::string SerializeXls(const Workbook& workbook) {
  // [MS-CFB] keeps streams of less than 4,096 bytes in a place that old readers do not look at.
  constexpr std::size_t kLeastStream = 4096;
  const xls::XlsParts parts(workbook);
  xls::XlsContainer container(ExpectedSize(workbook));
  xls::RecordStream stream(
      [&](std::size_t position, std::string_view bytes) { container.Write(position, bytes); });
  const std::vector<std::size_t> sheet_positions = xls::WriteGlobals(stream, parts);
  for (std::size_t i = 0; i < workbook.Sheets().size(); ++i) {
    stream.Patch32(sheet_positions[i], stream.Position());
    xls::WriteSheet(stream, parts, *workbook.Sheets()[i], i == 0);
  }
  if (stream.Position() < kLeastStream) stream.Pad(kLeastStream - stream.Position());
  stream.Finish();
  return container.Finish(xls::SummaryInformation(workbook));
}

}  // namespace excelexp
