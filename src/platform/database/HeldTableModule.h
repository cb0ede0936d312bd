#pragma once

namespace excelexp {

class HeldTables;
class SqliteConnection;

/// The name of the module in CREATE VIRTUAL TABLE.
inline constexpr char kHeldTableModule[] = "excelexp_held";

/// Makes the module known to a connection; the tables it serves are those of `tables`, which lives as long.
void RegisterHeldTableModule(const SqliteConnection& connection, HeldTables& tables);

}  // namespace excelexp
