#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/BExcelExpEngCore.h"
#include "platform/database/Query.h"

namespace excelexp {

/// The column group that a cell belongs to.
struct PeriodKey {
  int year = 0;
  int period_month = 0;
  int sub_period = 0;
  std::string pay_record_basis;  ///< not compared by layouts whose records carry none
};

/// How an item of the grouping "BankRecord" is found in the place of its item id.
enum class BankKey {
  kNone,      ///< like any other item
  kCategory,  ///< by its payment category, in AnlysItem5Id
  kLookUp     ///< by AnlysLookUpId "BankPaymentAmt", whatever item id the caller has
};

/// What the layouts' lookups do differently.
struct LookupTraits {
  bool has_pay_record_basis = true;
  BankKey plain_bank = BankKey::kCategory;
  BankKey country_bank = BankKey::kLookUp;
};

/// Moves a layout's analysis record query to the first record that belongs to a cell. Comparison is exact and
/// in memory; false leaves the query where it stood. Throws DatabaseError for a closed query.
class AnalysisRecordLookup {
 public:
  /// Neither is owned; both outlive the object.
  AnalysisRecordLookup(const BExcelExpEngCore* core, Query* records, LookupTraits traits = {})
      : core_(core), records_(records), traits_(traits) {}

  /// `grouping` is that of the column or row item being printed.
  bool Locate(const PeriodKey& period, const std::string& item_id, const std::string& item_type,
              std::string_view grouping) const;
  bool LocateCSS(const PeriodKey& period, const std::string& item_id, const std::string& item_type,
                 const std::string& country, std::string_view grouping) const;

  /// The basis ids are matched against levels 1 and 2 on a worksheet at company level, else against levels 2
  /// and 3.
  bool LocateBasis(const PeriodKey& period, const std::string& basis_a, const std::string& basis_b,
                   const std::string& item_id, const std::string& item_type) const;
  bool LocateBasisCSS(const PeriodKey& period, const std::string& basis_a, const std::string& basis_b,
                      const std::string& item_id, const std::string& item_type,
                      const std::string& country) const;

 private:
  struct Request;
  template <typename Take>
  void EachKey(const Request& request, const Take& take) const;
  bool Run(const Request& request) const;
  const ResultSet::Search& SearchFor(const Request& request) const;

  const BExcelExpEngCore* core_;
  Query* records_;
  LookupTraits traits_;
  mutable std::shared_ptr<const ResultSet> result_;  ///< of the search, which ends with it
  mutable int kind_ = -1;
  mutable ResultSet::Search search_;
};

}  // namespace excelexp
