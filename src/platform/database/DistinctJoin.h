#pragma once

#include <string>

#include "platform/database/TableShape.h"

namespace excelexp {

class SqliteConnection;
class SqliteGuard;

/// "SELECT DISTINCT T.a ... FROM T JOIN ... WHERE T.b = 1 AND ..." as "SELECT DISTINCT T.a ... FROM (SELECT
/// DISTINCT a FROM T WHERE T.b = 1) AS T JOIN ... WHERE ...": rows of T that are alike in what the statement
/// asks of them are then joined once instead of each. The answer is the same, since T is used through those
/// columns only; and so is its order, since it is done only if the database then finds its rows in the very
/// same way (QueryPlan) and gets T's distinct ones from an index, in the order in which it found them before.
/// Everything else stays as it is, byte for byte: so does whatever the rule does not know.
///
/// A held table tells its distinct rows by itself (EachOnce), and the statement only asks it to.
///
/// For a statement with its joins completed (RewriteSql); one that is sorted last (SortWhatIsDistinct) is
/// rewritten inside its parentheses.
std::string JoinWhatIsDistinct(const std::string& sql, const SqliteConnection& connection,
                               const SqliteGuard& guard, const FindTable& find_table);

}  // namespace excelexp
