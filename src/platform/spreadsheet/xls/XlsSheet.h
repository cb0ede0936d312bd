#pragma once

#include "platform/spreadsheet/xls/XlsGlobals.h"

namespace excelexp::xls {

/// Writes one worksheet substream; the first sheet is the selected one.
void WriteSheet(RecordStream& stream, const XlsParts& parts, const Sheet& sheet, bool selected);

}  // namespace excelexp::xls
