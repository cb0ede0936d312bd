#include "platform/spreadsheet/xls/XlsGlobals.h"

#include "platform/spreadsheet/xls/RecordTypes.h"
#include "platform/spreadsheet/xls/XlsText.h"

namespace excelexp::xls {
namespace {

constexpr std::uint32_t kUtf16CodePage = 1200;

/// The name of who opened the file last; nobody. 112 bytes, filled up with blanks ([MS-XLS] 2.4.349).
void WriteWriteAccess(RecordStream& stream) {
  constexpr std::size_t kSize = 112, kEmptyName = 3;
  Record record(stream, kWriteAccess);
  record->U16(0).U8(0).Bytes(std::string(kSize - kEmptyName, ' '));
}

void WriteInterface(RecordStream& stream) {
  WriteFlag(stream, kInterfaceHdr, kUtf16CodePage);
  WriteFlag(stream, kMms, 0);
  WriteEmpty(stream, kInterfaceEnd);
  WriteWriteAccess(stream);
  WriteFlag(stream, kCodePage, kUtf16CodePage);
  WriteFlag(stream, kDsf, 0);
}

void WriteTabIds(RecordStream& stream, std::size_t sheets) {
  Record record(stream, kTabId);
  for (std::uint32_t i = 1; i <= sheets; ++i) record->U16(i);
}

void WriteProtection(RecordStream& stream) {
  constexpr std::uint32_t kFunctionGroups =
      14;  // the built-in groups only ([MS-XLS] 2.4.43 BuiltInFnGroupCount)
  WriteFlag(stream, kFnGroupCount, kFunctionGroups);
  for (const std::uint16_t type : {kWindowProtect, kProtect, kPassword, kProt4Rev, kProt4RevPass}) {
    WriteFlag(stream, type, 0);
  }
}

/// A window of 16,800 by 9,000 twips with scroll bars and sheet tabs; the first sheet is active and selected.
void WriteWindow1(RecordStream& stream) {
  constexpr std::uint32_t kScrollBarsAndTabs = 0x0038;
  constexpr std::uint32_t kTabsWidth = 600;  // thousandths of the window
  Record record(stream, kWindow1);
  record->U16(0).U16(0).U16(16800).U16(9000).U16(kScrollBarsAndTabs);
  record->U16(0).U16(0).U16(1).U16(kTabsWidth);
}

void WriteBookSettings(RecordStream& stream) {
  WriteFlag(stream, kBackup, 0);
  WriteFlag(stream, kHideObj, 0);
  WriteFlag(stream, kDateMode, 0);   // day 1 is 1900-01-01
  WriteFlag(stream, kPrecision, 1);  // calculate with full precision
  WriteFlag(stream, kRefreshAll, 0);
  WriteFlag(stream, kBookBool, 0);
}

std::vector<std::size_t> WriteBoundSheets(RecordStream& stream, const Workbook& workbook) {
  std::vector<std::size_t> positions;
  for (const auto& sheet : workbook.Sheets()) {
    Record record(stream, kBoundSheet);
    positions.push_back(stream.Position());
    record->U32(0).U8(0).U8(0);  // position unknown yet; visible; a worksheet
    XlsText(sheet->Name()).PutShort(stream);
  }
  return positions;
}

/// An engine id of 0 is older than any: the application recalculates on load ([MS-XLS] 2.4.213 RecalcId).
void WriteRecalcId(RecordStream& stream) {
  Record(stream, kRecalcId)->U16(kRecalcId).U16(0).U32(0);
}

}  // namespace

void WriteBof(RecordStream& stream, Substream substream) {
  // [MS-XLS] 2.4.21: BIFF8 (0x0600), build and year of the format's first application, lowest reader
  // version 6.
  constexpr std::uint32_t kBiff8 = 0x0600, kBuild = 0x0DBB, kYear = 1996, kLowestVersion = 6;
  Record record(stream, kBof);
  record->U16(kBiff8).U16(static_cast<std::uint32_t>(substream)).U16(kBuild).U16(kYear);
  record->U32(0).U32(kLowestVersion);
}

std::vector<std::size_t> WriteGlobals(RecordStream& stream, const XlsParts& parts) {
  WriteBof(stream, Substream::kGlobals);
  WriteInterface(stream);
  WriteTabIds(stream, parts.workbook.Sheets().size());
  WriteProtection(stream);
  WriteWindow1(stream);
  WriteBookSettings(stream);
  parts.styles.Write(stream);
  WriteFlag(stream, kUseSelfs, 0);
  std::vector<std::size_t> positions = WriteBoundSheets(stream, parts.workbook);
  Record(stream, kCountry)->U16(1).U16(1);
  parts.links.WriteLinks(stream);
  parts.links.WriteNames(stream);
  if (parts.links.NeedsRecalculation()) WriteRecalcId(stream);
  parts.strings.Write(stream);
  WriteEmpty(stream, kEof);
  return positions;
}

}  // namespace excelexp::xls
