#pragma once

#include <string>
#include <vector>

namespace excelexp {

/// A run that must fail: a statement that cannot be run, or a database that was changed.
struct FailureRow {
  std::string part;  ///< of the statement; "" lets all of them pass
  int nth;
  std::string message;  ///< the innermost entry
  std::string change = "";
};

/// Gives the items of a table that meet the condition a colour scheme of their own, 'Own': the statement that
/// reads it is theirs and nobody else's.
std::string OwnSchemeSql(const std::string& table, const std::string& condition = "1");

/// Runs spreadsheet "S" of the database made from `sql` once per row. Each run must end without a workbook,
/// with the row's message first and then `chain`, the layout's entry in the frame.
void ExpectFailures(const std::string& sql, const std::string& chain, const std::vector<FailureRow>& rows);

}  // namespace excelexp
