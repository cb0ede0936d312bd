#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

inline constexpr std::size_t kMaxTextUnits = 32767;        ///< UTF-16 units in a cell
inline constexpr std::size_t kMaxSheetNameUnits = 31;      ///< UTF-16 units
inline constexpr std::size_t kMaxFontNameUnits = 31;       ///< UTF-16 units; [MS-XLS] 2.4.122 Font
inline constexpr std::size_t kMaxNumberFormatUnits = 255;  ///< UTF-16 units; [MS-XLS] 2.4.126 Format
inline constexpr double kMinFontSize = 1;                  ///< points
inline constexpr double kMaxFontSize = 409;                ///< points
inline constexpr double kMaxColumnWidth = 255;             ///< characters
inline constexpr double kMaxRowHeight = 409;               ///< points

/// One file format: the next format is one row of this table and one file.
struct WorkbookFormat {
  std::string_view extension;  ///< with the dot, lower case
  int max_rows;
  int max_columns;
  std::size_t max_cell_formats;    ///< distinct formats that cells use, the default one included
  std::size_t max_fonts;           ///< distinct fonts, the four that every file begins with included
  std::size_t max_number_formats;  ///< beyond the built-in ones
  /// The finished file for a checked workbook whose formulas have results. Throws SpreadsheetError.
  std::string (*serialize)(const Workbook& workbook);
};

/// The known formats, the default first.
const std::vector<WorkbookFormat>& WorkbookFormats();

/// By the extension of a file name, in any letter case. Throws SpreadsheetError, listing the known ones, for
/// any other.
const WorkbookFormat& WorkbookFormatFor(std::string_view file_name);

std::string SerializeXls(const Workbook& workbook);
std::string SerializeXlsx(const Workbook& workbook);

/// Throws SpreadsheetError for a sheet name that the application refuses: empty, longer than 31 UTF-16 units,
/// one of []:*?/\ or a control character in it, an apostrophe at an end, or "History", which the application
/// keeps for itself.
void CheckSheetName(std::string_view name);

/// Throws SpreadsheetError, naming sheet and cell, for the first thing that the format cannot hold: no sheet,
/// sheet names (also two that differ in case only), rows, columns, text lengths, invalid UTF-8, numbers that
/// are not finite, format and font counts, format properties out of range, sizes of columns and rows,
/// overlapping merges.
void CheckWorkbook(const Workbook& workbook, const WorkbookFormat& format);

}  // namespace excelexp
