#pragma once

#include <string>
#include <vector>

#include "engine/BExcelExpEngCore.h"
#include "services/BExcelExpEngColorScheme.h"

namespace excelexp {

/// Generates one worksheet: header lines, items, footer lines. The driver makes one object per worksheet,
/// after it has put the worksheet's settings into the context and reset the position counters.
class BExcelExpEngWksheet {
 public:
  explicit BExcelExpEngWksheet(BExcelExpEngCore* core);

  /// 1 on success, also for a worksheet without items (a warning; no sheet is created); 0 on failure.
  int ExecuteOperation();
  /// Prints from the context's position; leaves the row after the last line.
  int PrintWkSheetRptHeader();
  /// Prints from column 1 on the row after the last printed one.
  int PrintWkSheetRptFooter();
  int ExecuteProcExcelWksheetItem();

  /// Replaces <Date>, <Time> and <DateTime>; other tokens are dropped. A "<" that no ">" follows is text.
  std::string DecodeHeadFootContent(const std::string& line);

  /// Formats the cell written last with the current row of the header's or footer's scheme.
  int FormatExcelCell();

  void SetExcelWorksheet(const Handle& worksheet) { core_->SetExcelWorksheet(worksheet); }
  void SetLastPrintedCol(int column) { core_->SetLastPrintedCol(column); }
  void SetLastPrintedRow(int row) { core_->SetLastPrintedRow(row); }

 private:
  struct Block;
  int PrintBlock(const Block& block, int row, int column);

  BExcelExpEngCore* core_;
  Handle WorksheetHandle;
  Query ExcelWorksheetQry;
  Query ExcelWorksheetItemQry;
  Query ColourSchemeQry;
  BExcelExpEngColorScheme colour_scheme_;
  std::string ContentStream;
  std::vector<std::string> ContentLines;
  std::string CellName;
  int PrintCol = 1;
  int PrintRow = 1;
};

/// The lines of a stored content as UTF-8: CR LF, LF or CR end a line, an empty line is a line, the end of
/// the content after a line end is none. Bytes that are not UTF-8 are read as Windows-1252; a byte order mark
/// is dropped.
std::vector<std::string> SplitContentLines(const std::string& bytes);

}  // namespace excelexp
