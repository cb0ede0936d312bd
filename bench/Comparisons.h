#pragma once

namespace excelexp {

// The comparisons that are made from tables; those of a single function register themselves.

/// Whole exports of a month-end, and libxlsxwriter alone writing the same cells: "Export/...".
void RegisterExports();

/// Every worksheet of the demo printed from records that are there: "Layout/<worksheet>".
void RegisterLayouts();

}  // namespace excelexp
