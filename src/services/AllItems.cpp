#include "services/AllItems.h"

#include <algorithm>
#include <array>

namespace excelexp {
namespace {

/// The groupings that are kinds of analysis items; another grouping expands to the items of all kinds.
constexpr std::array<std::string_view, 12> kKinds = {
    "PayElement",   "Allowance",   "Deduction",   "Reimbursement",   "OTRecord",   "ShiftRecord",
    "TsPayElement", "TsAllowance", "TsDeduction", "TsReimbursement", "TsOvertime", "TsShift"};

}  // namespace

std::string AllItemsSql(std::string_view grouping) {
  std::string sql =
      "SELECT DISTINCT AnlysItem1Id, AnlysItemDesc, AnlysItemTypeId FROM AnlysItemRecord JOIN "
      "AnlysDispSection JOIN "
      "AnlysItemSetup";
  if (std::find(kKinds.begin(), kKinds.end(), grouping) != kKinds.end()) {
    sql += " WHERE AnlysItemTypeId = '" + std::string(grouping) + "'";
  }
  return sql + " ORDER BY AnlysItem1Id";
}

}  // namespace excelexp
