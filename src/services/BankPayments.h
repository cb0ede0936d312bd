#pragma once

#include <string>
#include <string_view>

namespace excelexp {

inline constexpr std::string_view kBankRecordGrouping = "BankRecord";

/// The payment category that bank records of an item carry: "Cash1" is "ByCash_1", "Cheque2" is "ByCheque_2",
/// anything else "ByBank_" and its last character.
std::string BankPaymentCategory(std::string_view item);

/// Where a component of a bank payment stands in an analysis record.
struct BankColumn {
  std::string_view component;
  std::string_view column;
  std::string_view type;  ///< "char" or "double"
};

/// nullptr for a component that bank records do not have.
const BankColumn* FindBankColumn(std::string_view component);

/// A category as it is shown: "ByCheque_1" as "ByCheque".
std::string ShownPaymentCategory(const std::string& category);

}  // namespace excelexp
