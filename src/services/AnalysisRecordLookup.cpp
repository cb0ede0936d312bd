#include "services/AnalysisRecordLookup.h"

#include <vector>

#include "engine/DefinitionTables.h"
#include "services/BankPayments.h"

namespace excelexp {
namespace {

constexpr std::string_view kBankLookUp = "BankPaymentAmt";

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
  std::string fields = "AnlysItemRecYear;AnlysItemRecPeriodMonth;AnlysItemRecSubPeriod";
  std::vector<KeyValue> values = {std::int64_t{request.period.year},
                                  std::int64_t{request.period.period_month},
                                  std::int64_t{request.period.sub_period}};
  const auto add = [&](std::string_view field, std::string value) {
    fields.append(";").append(field);
    values.emplace_back(std::move(value));
  };
  if (traits_.has_pay_record_basis) add("AnlysPayRecBasis", request.period.pay_record_basis);
  if (request.basis_a != nullptr) {
    const bool company = core_->ExcelWkSheetRptSumLvl == summary_level::kCompany;
    add(company ? "Basis1Id" : "Basis2Id", *request.basis_a);
    add(company ? "Basis2Id" : "Basis3Id", *request.basis_b);
  }
  switch (request.bank) {
    case BankKey::kNone:
      add("AnlysItem1Id", request.item_id);
      break;
    case BankKey::kCategory:
      add("AnlysItem5Id", request.item_id);
      break;
    case BankKey::kLookUp:
      add("AnlysLookUpId", std::string(kBankLookUp));
      break;
  }
  add("AnlysItemTypeId", request.item_type);
  if (request.country != nullptr) add("SysAttributeCountry", *request.country);
  return records_->Locate(fields, values);
}

}  // namespace excelexp
