#pragma once

#include <string>
#include <string_view>

#include "platform/database/TableShape.h"

namespace excelexp {

/// Turns a statement of the engine's dialect into SQLite's: a join without ON gets the condition of the one
/// foreign key declared between its two sides, and a text column looked for among the values of an integer
/// column
/// ("Basis1Id IN (SELECT EmployeeSysId FROM ...)") is compared as text, so that its index can be used, and
/// "a IN (SELECT b FROM t WHERE b = a)" asks EXISTS instead.
/// Everything else stays as it was written, byte for byte.
///
/// The condition is USING(columns) where that means the same as ON, because a column that two tables share as
/// their key can then be named without its table; otherwise it is ON with qualified names.
/// Throws DatabaseError, naming the tables, when there is no such key or more than one.
std::string RewriteSql(std::string_view sql, const FindTable& find_table);

}  // namespace excelexp
