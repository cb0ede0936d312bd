#pragma once

#include <string>
#include <string_view>

#include "platform/database/TableShape.h"

namespace excelexp {

/// "FROM (SELECT * FROM T UNION SELECT '', '') AS T WHERE T.Id = ?1" asks the database for all rows of the
/// table, makes them distinct, and throws all but one away: once for every entity of a report. This writes
/// the condition into the first half of the union too, where an index answers it.
///
/// Only for conditions of equality between a column of texts and a parameter, which stand alone between ANDs;
/// everything else stays as it is, byte for byte. The condition keeps its place outside as well, so the rows
/// cannot become more, and none that it lets pass is lost.
std::string FilterInsideUnions(std::string_view sql, const FindTable& find_table);

}  // namespace excelexp
