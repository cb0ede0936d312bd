#pragma once

#include <stdexcept>
#include <string>

namespace excelexp {

/// What the automation wrapper raises: one sentence that names the sheet and the cell where there is one.
class SpreadsheetError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace excelexp
