#include "services/AllItems.h"

#include <algorithm>
#include <array>

namespace excelexp {
namespace {

struct Kind {
  std::string_view grouping;
  ItemKinds family;
};

constexpr std::array<Kind, 12> kKinds = {{
    {"PayElement", ItemKinds::kPay},
    {"Allowance", ItemKinds::kPay},
    {"Deduction", ItemKinds::kPay},
    {"Reimbursement", ItemKinds::kPay},
    {"OTRecord", ItemKinds::kPay},
    {"ShiftRecord", ItemKinds::kPay},
    {"TsPayElement", ItemKinds::kTimesheet},
    {"TsAllowance", ItemKinds::kTimesheet},
    {"TsDeduction", ItemKinds::kTimesheet},
    {"TsReimbursement", ItemKinds::kTimesheet},
    {"TsOvertime", ItemKinds::kTimesheet},
    {"TsShift", ItemKinds::kTimesheet},
}};

}  // namespace

std::string AllItemsSql(std::string_view grouping, ItemKinds kinds) {
  std::string sql =
      "SELECT DISTINCT AnlysItem1Id, AnlysItemDesc, AnlysItemTypeId FROM AnlysItemRecord JOIN "
      "AnlysDispSection JOIN "
      "AnlysItemSetup";
  const bool confined = std::any_of(kKinds.begin(), kKinds.end(), [&](const Kind& kind) {
    return kind.grouping == grouping && (kinds == ItemKinds::kPayAndTimesheet || kinds == kind.family);
  });
  if (confined) sql += " WHERE AnlysItemTypeId = '" + std::string(grouping) + "'";
  return sql + " ORDER BY AnlysItem1Id";
}

}  // namespace excelexp
