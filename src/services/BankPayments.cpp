#include "services/BankPayments.h"

#include <algorithm>
#include <array>

namespace excelexp {
namespace {

constexpr std::array<BankColumn, 7> kColumns = {{
    {"BankBranchCode", "AnlysItem1Id", "char"},
    {"BankCode", "AnlysItem2Id", "char"},
    {"BankAccount", "AnlysItem3Id", "char"},
    {"ExchangeRateID", "AnlysItem4Id", "char"},
    {"PaymentCategory", "AnlysItem5Id", "char"},
    {"BankPaymentAmt", "AnlysAmount1", "double"},
    {"BankPaymentValue", "AnlysAmount2", "double"},
}};

}  // namespace

std::string BankPaymentCategory(std::string_view item) {
  const std::string_view kind = item.starts_with("Cash")     ? "ByCash_"
                                : item.starts_with("Cheque") ? "ByCheque_"
                                                             : "ByBank_";
  return std::string(kind) + std::string(item.substr(item.empty() ? 0 : item.size() - 1));
}

const BankColumn* FindBankColumn(std::string_view component) {
  const auto* found = std::find_if(kColumns.begin(), kColumns.end(),
                                   [&](const BankColumn& column) { return column.component == component; });
  return found == kColumns.end() ? nullptr : found;
}

std::string ShownPaymentCategory(const std::string& category) {
  return category.substr(0, category.size() < 2 ? 0 : category.size() - 2);
}

}  // namespace excelexp
