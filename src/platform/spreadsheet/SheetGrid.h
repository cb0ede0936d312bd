#pragma once

#include <optional>
#include <string>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

struct GridOptions {
  bool formulas = false;                          ///< show formula texts before their results: "=A1+B2 -> 12"
  bool formats = false;                           ///< list formats, merges, widths and heights below the grid
  std::optional<CellRange> range = std::nullopt;  ///< this block only; the whole sheet where absent
};

/// A sheet as text, for tests and for looking: one line per row, "|" between cells, rows and columns
/// labelled, without the blank rows and columns at the end.
///
/// Numbers show with the fewest digits that read back as the same number, texts as they are (line feeds as
/// \n, other control characters as \xNN), booleans as TRUE and FALSE, a result that was not computed as ?.
/// A text that would read as a number, a formula or another text shows after an apostrophe, as one would type
/// it: '12.
std::string DumpSheet(const Workbook& workbook, const Sheet& sheet, GridOptions options = {});

}  // namespace excelexp
