#pragma once

#include "engine/BExcelExpEngCore.h"

namespace excelexp {

/// Prepares the context's current worksheet item as a financial report: -1 failure (already logged), 0 no
/// data, 1 data.
int PrepareFinancialReport(BExcelExpEngCore* core);

/// The same for an employee information report; 2 when its population is persons.
int PrepareEmployeeReport(BExcelExpEngCore* core);

}  // namespace excelexp
