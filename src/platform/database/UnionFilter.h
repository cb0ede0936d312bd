#pragma once

#include <string>

namespace excelexp {

class SqliteConnection;

/// "SELECT ... FROM (SELECT * FROM T UNION SELECT ...) AS U WHERE U.a = 1" with the condition inside as well,
/// "... FROM (SELECT * FROM T WHERE T.a = 1 UNION SELECT ...) AS U WHERE U.a = 1": the database then searches
/// T instead of uniting all of it. What is left out the condition outside would have left out, and the rows
/// of a UNION are sorted whatever they are; the tables are joined in the same order (QueryPlan), or nothing
/// is rewritten. Everything else stays as it is, byte for byte.
///
/// A union that adds but a row of empty texts adds nothing where the value is another: if a is unique, that
/// case is a select from T alone, and the union one that is united with it.
std::string FilterWhatIsUnited(const std::string& sql, const SqliteConnection& connection);

}  // namespace excelexp
