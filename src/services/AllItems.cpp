#include "services/AllItems.h"

#include <algorithm>
#include <array>

#include "platform/host/Format.h"

namespace excelexp {
namespace {

/// The groupings that are kinds of analysis items; another grouping expands to the items of all kinds.
constexpr std::array<std::string_view, 12> kKinds = {
    "PayElement",   "Allowance",   "Deduction",   "Reimbursement",   "OTRecord",   "ShiftRecord",
    "TsPayElement", "TsAllowance", "TsDeduction", "TsReimbursement", "TsOvertime", "TsShift"};

}  // namespace

std::string AllItemsSql(std::string_view grouping) {
  constexpr std::string_view kSelect =
      "SELECT DISTINCT AnlysItem1Id, AnlysItemDesc, AnlysItemTypeId FROM AnlysItemRecord JOIN "
      "AnlysDispSection JOIN AnlysItemSetup";
  constexpr std::string_view kOrder = " ORDER BY AnlysItem1Id";
  const bool is_kind = std::find(kKinds.begin(), kKinds.end(), grouping) != kKinds.end();
  return is_kind ? Joined({kSelect, " WHERE AnlysItemTypeId = '", grouping, "'", kOrder})
                 : Joined({kSelect, kOrder});
}

}  // namespace excelexp
