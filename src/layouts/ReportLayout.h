#pragma once

#include "engine/BExcelExpEngCore.h"

namespace excelexp {

/// The body of one report for one entity: made by a frame, used once, destroyed.
///
/// Before: the context holds the item's id, report and ordering; `StartPrintedRow` and `StartPrintedCol` (=
/// `LastPrintedCol`) are the top left cell of the block; `EmpCoyBasisQry` stands on the entity (Bof for the
/// first one only) and `CurEmpCoyBasisQry` holds its record. Five rows above the first entity's block are
/// free for headings. After: `LastPrintedCol` is one past the last column used, `LastPrintedRow` is raised to
/// the last row used, never lowered.
class ReportLayout {
 public:
  ReportLayout() = default;
  ReportLayout(const ReportLayout&) = delete;
  ReportLayout& operator=(const ReportLayout&) = delete;
  virtual ~ReportLayout() = default;

  /// False after a failure, which is in the logs.
  virtual bool ExecuteOperation() = 0;
};

}  // namespace excelexp
