#pragma once

#include <string>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// What a reader must find in a file of the workbook, as JSON: per sheet the cells as [row, column, kind,
/// value, formula or null, format], merges, sizes; and the formats that the cells name.
/// Kinds are "number", "text", "boolean", "error", "blank" and "unknown" (a result to be computed).
std::string WorkbookJson(const Workbook& workbook);

}  // namespace excelexp
