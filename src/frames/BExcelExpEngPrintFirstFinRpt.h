#pragma once

#include <array>
#include <string>
#include <vector>

#include "frames/BandedFrame.h"

namespace excelexp {

/// The frame of worksheets whose first item is a financial report: entities are employees, the company, or
/// combinations of basis values, as the worksheet's summary level says. All lists are built under the first
/// item's analysis project and data key.
class BExcelExpEngPrintFirstFinRpt final : public BandedFrame {
 public:
  BExcelExpEngPrintFirstFinRpt(BExcelExpEngCore* core, std::vector<WkSheetItem>& items);

 protected:
  bool PrepareEntities() override;
  bool EntityListSql(std::string& sql) override;
  bool GroupListSql(std::string& sql) override;
  bool EntitySql(std::string& sql) override;
  bool LogEntity() override;

 private:
  /// One basis level that the worksheet has chosen.
  struct Basis {
    std::string keyword_id;
    std::string entity_column;  ///< "Basis1Id" to "Basis3Id"
    std::string policy_column;  ///< "BasisPolicyId1" to "BasisPolicyId3"
  };

  std::vector<Basis> ChosenBases() const;
  bool AnlysKeywordRecLocate(const std::string& keyword_id);
  /// Locates the basis's keyword row, or writes `operation`'s entry.
  bool LocateBasis(const Basis& basis, std::string_view operation);
  /// "ref.key" of the keyword row.
  std::string BasisKey() const;
  std::string PopulateBasisTableUnionSQL(const std::string& reference, const std::string& keyword_id);
  std::string PopulateBasisTableBasisSQL(const std::string& reference, const std::string& policy_column);
  /// " AND Basis1Id = ref.key" for every chosen basis.
  bool BasisFilter(std::string_view operation, std::string& filter);
  bool BasisEntityListSql(std::string& sql);
  bool LogBasis(const Basis& basis);
  std::string DataCondition(std::string_view gap, std::string_view equals) const;

  Query ExcelRptBasisQry;
  std::string basis_tables_;
};

}  // namespace excelexp
