#pragma once

#include <string>

namespace excelexp {

/// One grouping level of a report, or (the extra last element of a frame's list) the report as a whole.
/// Element 0 is the innermost level.
struct GrpItem {
  int FinGrpItemSysId = 0;
  std::string FinGrpItemTitle;
  int FinGrpItemOrder = 0;  ///< lower is outer; 0 for the whole report
  int FinGrpHasSubTotal = 0;
  int FinGrpHasEmpCount = 0;
  bool GrpBreakPrinted = false;  ///< handled in the current group change
  std::string GrpRowRanges;      ///< rows since the last subtotal: "<Col12>:<Col20>, <Col27>:<Col31>"
  int GrpEmpCount = 0;           ///< entities since the last count
};

}  // namespace excelexp
