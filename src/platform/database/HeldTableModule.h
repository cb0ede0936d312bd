#pragma once

#include <string>
#include <string_view>

namespace excelexp {

class HeldTables;
class SqliteConnection;

/// The name of the module in CREATE VIRTUAL TABLE.
inline constexpr char kHeldTableModule[] = "excelexp_held";

/// The name under which a held table gives of rows alike, in all columns that a statement sees, the first;
/// for the rest it is the table itself, and found in the same way.
inline constexpr std::string_view kEachOnce = " each once";
inline std::string EachOnce(const std::string& table) {
  return table + std::string(kEachOnce);
}

/// Makes the module known to a connection; the tables it serves are those of `tables`, which lives as long.
void RegisterHeldTableModule(const SqliteConnection& connection, HeldTables& tables);

}  // namespace excelexp
