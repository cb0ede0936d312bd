#include "services/AnalysisRecordLookup.h"

#include <array>

#include "engine/DefinitionTables.h"
#include "services/BankPayments.h"

namespace excelexp {
namespace {

constexpr std::string_view kBankLookUp = "BankPaymentAmt";

/// The fields that are compared and their values, which stay the caller's.
struct Keys {
  void Add(std::string_view field, KeyView value) {
    fields[count] = field;
    values[count++] = value;
  }
  void Add(std::string_view field, int value) { Add(field, KeyView{std::int64_t{value}}); }

  std::array<std::string_view, 9> fields;
  std::array<KeyView, 9> values;
  std::size_t count = 0;
};

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

bool AnalysisRecordLookup::Run(const Request& request) const {
  Keys keys;
  keys.Add("AnlysItemRecYear", request.period.year);
  keys.Add("AnlysItemRecPeriodMonth", request.period.period_month);
  keys.Add("AnlysItemRecSubPeriod", request.period.sub_period);
  if (traits_.has_pay_record_basis) keys.Add("AnlysPayRecBasis", request.period.pay_record_basis);
  if (request.basis_a != nullptr) {
    const bool company = core_->ExcelWkSheetRptSumLvl == summary_level::kCompany;
    keys.Add(company ? "Basis1Id" : "Basis2Id", *request.basis_a);
    keys.Add(company ? "Basis2Id" : "Basis3Id", *request.basis_b);
  }
  switch (request.bank) {
    case BankKey::kNone:
      keys.Add("AnlysItem1Id", request.item_id);
      break;
    case BankKey::kCategory:
      keys.Add("AnlysItem5Id", request.item_id);
      break;
    case BankKey::kLookUp:
      keys.Add("AnlysLookUpId", kBankLookUp);
      break;
  }
  keys.Add("AnlysItemTypeId", request.item_type);
  if (request.country != nullptr) keys.Add("SysAttributeCountry", *request.country);
  return records_->Locate(ColumnsOf(std::span(keys.fields).first(keys.count), request),
                          std::span(keys.values).first(keys.count));
}

/// The columns of the fields, which are the same for every request of a kind on one result.
std::span<const int> AnalysisRecordLookup::ColumnsOf(std::span<const std::string_view> fields,
                                                     const Request& request) const {
  const bool company = core_->ExcelWkSheetRptSumLvl == summary_level::kCompany;
  const int kind = static_cast<int>(request.bank) | (request.basis_a != nullptr ? 4 : 0) |
                   (request.country != nullptr ? 8 : 0) | (company ? 16 : 0);
  if (kind != kind_ || records_->Columns() != columns_of_) {
    columns_ = records_->ColumnsOf(fields);  // throws for one that is missing: nothing is known then
    kind_ = kind;
    columns_of_ = records_->Columns();
  }
  return columns_;
}

}  // namespace excelexp
