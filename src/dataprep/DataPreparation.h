#pragma once

#include "engine/BExcelExpEngCore.h"

namespace excelexp {

/// Prepares the context's current worksheet item as an employee information report: -1 failure (already
/// logged), 0 no data, 1 data, 2 data whose population is persons.
int PrepareEmployeeReport(BExcelExpEngCore* core);

}  // namespace excelexp
