#pragma once

#include <string>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

struct GridOptions {
  bool formulas = false;  ///< show formula texts beside results
  bool formats = false;   ///< list each cell's format and the merges below the grid
};

/// A sheet as text, for tests and for looking: one line per row, "|" between cells, rows and columns
/// labelled.
std::string DumpSheet(const Workbook& workbook, const Sheet& sheet, GridOptions options = {});

}  // namespace excelexp
