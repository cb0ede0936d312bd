#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// One file format: the next format is one row of this table and one file.
struct WorkbookFormat {
  std::string_view extension;  ///< with the dot, lower case
  int max_rows;
  int max_columns;
  /// The finished file for a checked workbook whose formulas have results. Throws SpreadsheetError.
  /// `folder` is where the file will stand, for writers that need scratch space.
  std::string (*serialize)(const Workbook& workbook, const std::string& folder);
};

/// The known formats, the default first.
const std::vector<WorkbookFormat>& WorkbookFormats();

/// By the extension of a file name, in any letter case. Throws SpreadsheetError, listing the known ones, for
/// any other.
const WorkbookFormat& WorkbookFormatFor(std::string_view file_name);

std::string SerializeXls(const Workbook& workbook, const std::string& folder);
std::string SerializeXlsx(const Workbook& workbook, const std::string& folder);

/// Throws SpreadsheetError, naming sheet and cell, for the first thing that the format cannot hold: sheet
/// names, rows, columns, text lengths, format and font counts, invalid UTF-8, numbers that are not finite,
/// overlapping merges.
void CheckWorkbook(const Workbook& workbook, const WorkbookFormat& format);

}  // namespace excelexp
