#pragma once

#include <vector>

#include "platform/spreadsheet/xls/FormulaLinks.h"
#include "platform/spreadsheet/xls/RecordStream.h"
#include "platform/spreadsheet/xls/SharedStrings.h"
#include "platform/spreadsheet/xls/XlsStyles.h"

namespace excelexp::xls {

/// What the substreams of one workbook share.
struct XlsParts {
  explicit XlsParts(const Workbook& book) : workbook(book), styles(book), strings(book), links(book) {}

  const Workbook& workbook;
  XlsStyles styles;
  SharedStrings strings;
  FormulaLinks links;
};

/// What kind of substream begins ([MS-XLS] 2.4.21 BOF, field dt).
enum class Substream : std::uint16_t { kGlobals = 0x0005, kSheet = 0x0010 };
void WriteBof(RecordStream& stream, Substream substream);

/// Writes the workbook globals. Returns, per sheet, where its position in the stream has to be patched in.
std::vector<std::size_t> WriteGlobals(RecordStream& stream, const XlsParts& parts);

}  // namespace excelexp::xls
