#pragma once

#include <string>
#include <vector>

#include "engine/BExcelExpEngCore.h"
#include "engine/WkSheetItem.h"
#include "frames/FrameTraits.h"
#include "frames/GrpItem.h"
#include "services/BExcelExpEngDecodeFormula.h"
#include "services/CellPrinter.h"

namespace excelexp {

/// Prints group subtotals, grand totals and counts below what a frame has printed. Totals are formulas over
/// the rows that the frame collected in `GrpRowRanges`.
class FrameTotals {
 public:
  /// Everything handed in outlives the object.
  FrameTotals(BExcelExpEngCore* core, const FrameTraits& traits, std::vector<WkSheetItem>& items);

  /// Prints the rows due at the level of that order and at every level inside it that is not handled yet,
  /// innermost first. `first_data_row` is the first entity's row of the last group.
  bool PrintGrpSubTotalEmpCt(int level_order, std::vector<GrpItem>& groups, int first_data_row);

  /// `groups` is empty for an ungrouped report.
  bool PrintRptGrandTotalEmpCt(const std::vector<GrpItem>& groups, int first_data_row);

 private:
  bool PrintLevel(GrpItem& level, int first_data_row);
  /// Puts a total under every summing column. `ranges_of(column)` gives what to sum in the first; the others
  /// repeat it, each with `note_total()` for the log.
  template <typename RangesOf, typename NoteTotal>
  bool PrintSums(int row, int first_data_row, std::string_view operation, int gap, const RangesOf& ranges_of,
                 const NoteTotal& note_total);
  bool ReadFirstSummingColumn(const WkSheetItem& item, std::string_view operation, int gap, int& column);
  bool PrintLabel(int row, const std::string& text, std::string_view operation);
  OperationName Where(std::string_view operation) const;

  BExcelExpEngCore* core_;
  const FrameTraits& traits_;
  std::vector<WkSheetItem>& items_;
  Query ColourSchemeQry;
  CellPrinter cells_;
  BExcelExpEngDecodeFormula formulas_;
  std::string current_cell_;
};

/// The formula of one total: `first_cell` is the column's first data cell.
std::string SummingFormula(SumRule rule, const std::string& first_cell, const std::string& ranges);

}  // namespace excelexp
