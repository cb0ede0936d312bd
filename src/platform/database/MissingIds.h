#pragma once

#include <string>

#include "platform/database/TableShape.h"

namespace excelexp {

class SqliteConnection;

/// "... WHERE a IN (SELECT Id FROM V)" with a list that leaves out the rows without an Id, which an outer
/// join in the view V gives: in a condition NULL is a member as little as it is none. The database then need
/// not go through what the outer join begins with. Only for integer columns, and only if an outer join falls
/// away and everything but the list is done as before (QueryPlan). Everything else stays as it is, byte for
/// byte.
std::string LeaveOutMissingIds(const std::string& sql, const SqliteConnection& connection,
                               const FindTable& find_table);

}  // namespace excelexp
