#include "services/AnalysisRecordLookup.h"

#include <array>

#include "engine/DefinitionTables.h"
#include "services/BankPayments.h"

namespace excelexp {
namespace {

constexpr std::string_view kBankLookUp = "BankPaymentAmt";

constexpr std::size_t kMostKeys = 9;

}  // namespace

/// One lookup: which keys take part besides the period and the item.
struct AnalysisRecordLookup::Request {
  const PeriodKey& period;
  const std::string& item_id;
  const std::string& item_type;
  BankKey bank = BankKey::kNone;  ///< of an item of the bank grouping, else kNone
  const std::string* basis_a = nullptr;
  const std::string* basis_b = nullptr;
  const std::string* country = nullptr;
};

bool AnalysisRecordLookup::Locate(const PeriodKey& period, const std::string& item_id,
                                  const std::string& item_type, std::string_view grouping) const {
  return Run(
      {period, item_id, item_type, grouping == kBankRecordGrouping ? traits_.plain_bank : BankKey::kNone});
}

bool AnalysisRecordLookup::LocateCSS(const PeriodKey& period, const std::string& item_id,
                                     const std::string& item_type, const std::string& country,
                                     std::string_view grouping) const {
  Request request{period, item_id, item_type,
                  grouping == kBankRecordGrouping ? traits_.country_bank : BankKey::kNone};
  request.country = &country;
  return Run(request);
}

bool AnalysisRecordLookup::LocateBasis(const PeriodKey& period, const std::string& basis_a,
                                       const std::string& basis_b, const std::string& item_id,
                                       const std::string& item_type) const {
  Request request{period, item_id, item_type};
  request.basis_a = &basis_a;
  request.basis_b = &basis_b;
  return Run(request);
}

bool AnalysisRecordLookup::LocateBasisCSS(const PeriodKey& period, const std::string& basis_a,
                                          const std::string& basis_b, const std::string& item_id,
                                          const std::string& item_type, const std::string& country) const {
  Request request{period, item_id, item_type};
  request.basis_a = &basis_a;
  request.basis_b = &basis_b;
  request.country = &country;
  return Run(request);
}

/// Names the fields that are compared, and their values, which stay the caller's.
template <typename Take>
void AnalysisRecordLookup::EachKey(const Request& request, const Take& take) const {
  const auto number = [](int value) { return KeyView{std::int64_t{value}}; };
  take("AnlysItemRecYear", number(request.period.year));
  take("AnlysItemRecPeriodMonth", number(request.period.period_month));
  take("AnlysItemRecSubPeriod", number(request.period.sub_period));
  if (traits_.has_pay_record_basis) take("AnlysPayRecBasis", KeyView{request.period.pay_record_basis});
  if (request.basis_a != nullptr) {
    const bool company = core_->ExcelWkSheetRptSumLvl == summary_level::kCompany;
    take(company ? "Basis1Id" : "Basis2Id", KeyView{*request.basis_a});
    take(company ? "Basis2Id" : "Basis3Id", KeyView{*request.basis_b});
  }
  switch (request.bank) {
    case BankKey::kNone:
      take("AnlysItem1Id", KeyView{request.item_id});
      break;
    case BankKey::kCategory:
      take("AnlysItem5Id", KeyView{request.item_id});
      break;
    case BankKey::kLookUp:
      take("AnlysLookUpId", KeyView{kBankLookUp});
      break;
  }
  take("AnlysItemTypeId", KeyView{request.item_type});
  if (request.country != nullptr) take("SysAttributeCountry", KeyView{*request.country});
}

bool AnalysisRecordLookup::Run(const Request& request) const {
  const ResultSet::Search& search = SearchFor(request);
  std::array<KeyView, kMostKeys> values;
  std::size_t count = 0;
  EachKey(request, [&](std::string_view, const KeyView& value) { values[count++] = value; });
  return records_->Locate(search, std::span(values).first(count));
}

/// The search is the same for every request of a kind on one result.
const ResultSet::Search& AnalysisRecordLookup::SearchFor(const Request& request) const {
  int kind = static_cast<int>(request.bank) | (request.country != nullptr ? 4 : 0);
  if (request.basis_a != nullptr) kind |= core_->ExcelWkSheetRptSumLvl == summary_level::kCompany ? 8 : 16;
  if (kind != kind_ || result_ == nullptr || records_->Result() != result_) {
    result_ = nullptr;
    std::vector<std::string_view> fields;
    fields.reserve(kMostKeys);
    EachKey(request, [&](std::string_view field, const KeyView&) { fields.push_back(field); });
    search_ = records_->SearchBy(fields);  // throws for a field that is missing
    kind_ = kind;
    result_ = records_->Result();
  }
  return search_;
}

}  // namespace excelexp
