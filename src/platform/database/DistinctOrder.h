#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// "SELECT DISTINCT a, b AS c FROM ... ORDER BY a, b" as "SELECT * FROM (SELECT DISTINCT ... ) ORDER BY 1,
/// 2": the database then sorts the rows that are left instead of all of them to find these. Only where every
/// column is in the order, so that there is but one order; everything else stays as it is, byte for byte.
std::string SortWhatIsDistinct(std::string_view sql);

}  // namespace excelexp
