#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/spreadsheet/CellName.h"

namespace excelexp {

/// What the automation wrapper raises: one sentence that names the sheet and the cell where there is one.
class SpreadsheetError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws `Sheet "Payroll", cell B7: what`.
[[noreturn]] void FailAt(std::string_view sheet, int row, int column, std::string_view what);
[[noreturn]] void FailAt(std::string_view sheet, const CellRange& range, std::string_view what);

}  // namespace excelexp
