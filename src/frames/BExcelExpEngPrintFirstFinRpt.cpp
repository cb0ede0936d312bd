#include "frames/BExcelExpEngPrintFirstFinRpt.h"

#include <algorithm>

#include "engine/DefinitionTables.h"
#include "frames/LayoutTable.h"
#include "platform/database/SqlText.h"
#include "platform/host/Format.h"
#include "services/BExcelExpEngCalcFields.h"
#include "services/Population.h"

namespace excelexp {
namespace {

constexpr std::array<SummingLayout, 5> kSumming = {{
    {"BreakdownList", AsOfDate::kAny, 0},
    {"AccumulateList", AsOfDate::kAny, 0},
    {"MovementList", AsOfDate::kAny, 0},
    {"LeaveList", AsOfDate::kNo, 4},
    {"LeaveList", AsOfDate::kYes, 1},
}};

const FrameTraits& Traits() {
  static const FrameTraits traits = {.class_name = "BExcelExpEngPrintFirstFinRpt",
                                     .database = "",
                                     .by_employee = 1,
                                     .first_band_gap = 6,
                                     .groups_operation = "GetFinEmpCoyBasisGrpInfo",
                                     .groups_banner = {"        EMPLOYEE/COMPANY/BASIS GROUPING         ",
                                                       "            INFORMATION PROCESSING              "},
                                     .entities_operation = "GetFinEmpCoyBasisInfo",
                                     .entities_banner = {"         LIST OF EMPLOYEE/COMPANY/BASIS         ",
                                                         "             INFORMATION PROCESSING             "},
                                     .entities_name = "Employee/Company/Basis Information.",
                                     .names = {.report_key = "FinancialRptId",
                                               .group_table = "FinanceGrpItem",
                                               .group_sys_id = "FinGrpItemSysId",
                                               .group_order = "FinGrpItemOrder",
                                               .group_field_table = "FinGrpGrouping",
                                               .group_field = "FinGrpComponent",
                                               .group_title = "FinGrpItemTitle",
                                               .group_level_title = "FinGrpItemTitle",
                                               .group_has_sub_total = "FinGrpHasSubTotal",
                                               .group_has_emp_count = "FinGrpHasEmpCount",
                                               .sort_table = "FinanceSortItem",
                                               .sort_order = "FinSortItemOrder",
                                               .sort_field_table = "FinSortGrouping",
                                               .sort_field = "FinSortComponent",
                                               .column_table = "FinanceColItem",
                                               .column_order = "FinColItemOrder",
                                               .column_is_main_info = "FinColIsRptMainInfo",
                                               .columns = kFinancialReportColumns},
                                     .layouts = FinancialFrameLayouts(),
                                     .item_layouts = InformationLayouts(report_type::kEmployee),
                                     .totals = {.label_names_level = true,
                                                .rule = SumRule::kAmounts,
                                                .asks_cycle_method = true,
                                                .layout_database = "",
                                                .summing = kSumming}};
  return traits;
}

/// Keywords whose values are the ranges of a policy rather than rows of a table.
constexpr std::array<std::string_view, 10> kPolicyRanges = {
    "Dummy_BasisAgeByMth",  "Dummy_BasisAgeByYr", "Dummy_BasisSrvcYrByMth", "Dummy_BasisSrvcYrByYr",
    "Dummy_BasisTotalWage", "BasisAgeByMth",      "BasisAgeByYr",           "BasisSrvcYrByMth",
    "BasisSrvcYrByYr",      "BasisTotalWage"};

/// The keyword whose values are the basic rate types among the keywords.
constexpr std::string_view kSalaryType = "Dummy_BasisSalaryType";

const std::string kGap(16, ' ');

std::string OrderBy(const std::string& list) {
  return list.empty() ? "" : " ORDER BY " + list;
}

std::string AlsoSelect(const std::string& list) {
  return list.empty() ? "" : ", " + list;
}

}  // namespace

BExcelExpEngPrintFirstFinRpt::BExcelExpEngPrintFirstFinRpt(BExcelExpEngCore* core,
                                                           std::vector<WkSheetItem>& items)
    : BandedFrame(core, items, Traits()), ExcelRptBasisQry(core->DatabaseName) {}

std::vector<BExcelExpEngPrintFirstFinRpt::Basis> BExcelExpEngPrintFirstFinRpt::ChosenBases() const {
  std::vector<Basis> bases;
  int level = 0;
  for (const std::string* keyword :
       {&core_->ExcelWkSheetRptBasis1, &core_->ExcelWkSheetRptBasis2, &core_->ExcelWkSheetRptBasis3}) {
    const std::string number = std::to_string(++level);
    if (!keyword->empty()) bases.push_back({*keyword, "Basis" + number + "Id", "BasisPolicyId" + number});
  }
  return bases;
}

bool BExcelExpEngPrintFirstFinRpt::AnlysKeywordRecLocate(const std::string& keyword_id) {
  return ExcelRptBasisQry.Locate("AnlysKeywordId", keyword_id);
}

bool BExcelExpEngPrintFirstFinRpt::LocateBasis(const Basis& basis, std::string_view operation) {
  return AnlysKeywordRecLocate(basis.keyword_id) ||
         Fail(operation, "Unable to locate Analysis Keyword Record.");
}

std::string BExcelExpEngPrintFirstFinRpt::BasisKey() const {
  return ExcelRptBasisQry.FieldByName("AnlysKeywordRef").AsString() + "." +
         ExcelRptBasisQry.FieldByName("AnlysKeywordTableId").AsString();
}

bool BExcelExpEngPrintFirstFinRpt::PrepareEntities() {
  if (core_->ExcelWkSheetRptSumLvl != summary_level::kBasis) return true;
  constexpr std::string_view kOperation = "PrintWksheetItems";
  std::string list;
  for (const Basis& basis : ChosenBases()) list += (list.empty() ? "" : ", ") + SqlText(basis.keyword_id);
  if (!core_->OpenOrLog(ExcelRptBasisQry, "SELECT * FROM AnlysKeyword WHERE AnlysKeywordId IN (" + list + ")",
                        Where(kOperation), "ExcelRptBasisQry", Rows::kOptional)) {
    return false;
  }
  if (ExcelRptBasisQry.IsEmpty()) return Fail(kOperation, "Empty ExcelRptBasisQry ResultSet.");

  basis_tables_.clear();
  for (const Basis& basis : ChosenBases()) {
    if (!LocateBasis(basis, kOperation)) return false;
    const std::string reference = ExcelRptBasisQry.FieldByName("AnlysKeywordRef").AsString();
    if (!basis_tables_.empty()) basis_tables_ += ", ";
    const bool policy =
        std::find(kPolicyRanges.begin(), kPolicyRanges.end(), reference) != kPolicyRanges.end();
    basis_tables_ += policy ? PopulateBasisTableBasisSQL(reference, basis.policy_column)
                            : PopulateBasisTableUnionSQL(reference, basis.keyword_id);
  }
  return true;
}

/// All rows of the basis table and one blank row, so that entities without a basis value still join.
std::string BExcelExpEngPrintFirstFinRpt::PopulateBasisTableUnionSQL(const std::string& reference,
                                                                     const std::string& /*keyword_id*/) {
  const bool salary_type = reference == kSalaryType;
  const std::string table = salary_type ? "Keyword" : reference;
  if (!core_->ExecuteSQL(
          "SELECT Count(Column_Name) as NoOfColumn FROM SysTable Join SysColumn WHERE table_name=" +
          SqlText(table))) {
    Fail("PopulateBasisTableUnionSQL", "Error populate union blank SQL.");
    return "";
  }
  std::string blanks;
  for (int i = core_->SQLQry->FieldByName("NoOfColumn").AsInteger(); i > 0; --i) {
    blanks += blanks.empty() ? "''" : ",''";
  }
  const std::string rows = salary_type ? "SELECT * FROM Keyword WHERE KeywordCategory='Basic Rate Type'"
                                       : "SELECT * FROM " + reference;
  return "(" + rows + " UNION SELECT " + blanks + ") AS " + reference;
}

/// The range codes of the report's policy for that basis.
std::string BExcelExpEngPrintFirstFinRpt::PopulateBasisTableBasisSQL(const std::string& reference,
                                                                     const std::string& policy_column) {
  const std::string gap(10, ' ');
  if (!core_->ExecuteSQL("SELECT " + policy_column + " AS BasisPolicyId FROM FinancialRpt JOIN" + gap +
                         "AnlysProject ON FinancialAnalysProjId = AnlysProjectId" + gap +
                         "WHERE FinancialRptId = " + SqlText(FirstReportId()))) {
    Fail("PopulateBasisTableBasisSQL", "Error populate basis policy SQL.");
    return "";
  }
  const std::string policy =
      core_->SQLQry->IsEmpty() ? "" : core_->SQLQry->FieldByName("BasisPolicyId").AsString();
  return "(SELECT AnlysPolicyRangeCode AS " + ExcelRptBasisQry.FieldByName("AnlysKeywordTableId").AsString() +
         " FROM AnlysPolicyRange WHERE AnlysBasisPolicyId = " + SqlText(policy) + ")" + std::string(13, ' ') +
         "AS " + reference;
}

bool BExcelExpEngPrintFirstFinRpt::BasisFilter(std::string_view operation, std::string& filter) {
  for (const Basis& basis : ChosenBases()) {
    if (!LocateBasis(basis, operation)) return false;
    filter += " AND " + basis.entity_column + " = " + BasisKey();
  }
  return true;
}

std::string BExcelExpEngPrintFirstFinRpt::DataCondition(std::string_view gap, std::string_view equals) const {
  return " WHERE AnlysProjectId = " + SqlText(core_->FirstWSItemAnalysProj) + std::string(gap) +
         "AND AnlysIPAddress " + std::string(equals) +
         SqlText(core_->DataKey(items_.front().WkSheetItemOrdering));
}

bool BExcelExpEngPrintFirstFinRpt::EntityListSql(std::string& sql) {
  const std::string& level = core_->ExcelWkSheetRptSumLvl;
  if (level == summary_level::kBasis) return BasisEntityListSql(sql);
  const std::string condition = group_condition_.empty() ? "" : " WHERE " + group_condition_;
  if (level == summary_level::kCompany) {
    sql = "SELECT DISTINCT '001' AS Basis1Id, '' AS Basis2Id, '' AS Basis3Id" + AlsoSelect(sort_select_) +
          " FROM AnlysItemRecord JOIN Company" + kGap + "ON Basis1Id = CompanyId" + DataCondition(" ", "=");
    if (Grouped()) sql += " AND Basis1Id IN (SELECT DISTINCT CompanyId FROM Company" + condition + ")";
    sql += OrderBy(sort_select_);
  } else {
    sql =
        "SELECT DISTINCT Basis1Id, '' AS Basis2Id, '' AS Basis3Id" + AlsoSelect(sort_select_) +
        " FROM AnlysItemRecord JOIN (Employee JOIN Personal)" + kGap + "ON Basis1Id = EmployeeSysId" +
        DataCondition(kGap, "=") + " AND " +
        (Grouped() ? InViewOneByOne(core_, kEmployees, "Employee.EmployeeSysId") : InView(core_, kEmployees));
    if (Grouped()) {
      sql += " AND Basis1Id IN (SELECT DISTINCT EmployeeSysId FROM Employee JOIN Personal" + condition + ")";
    }
    sql += OrderBy(sort_names_);
  }
  return true;
}

bool BExcelExpEngPrintFirstFinRpt::BasisEntityListSql(std::string& sql) {
  constexpr std::string_view kOperation = "GetFinEmpCoyBasisInfo";
  std::string filter;
  if (!BasisFilter(kOperation, filter)) return false;
  sql = "SELECT DISTINCT Basis1Id, Basis2Id, Basis3Id" + AlsoSelect(sort_select_) + " FROM AnlysItemRecord" +
        AlsoSelect(basis_tables_) + DataCondition(" ", "=");
  if (!filter.empty()) sql += " " + filter;
  if (Grouped()) {
    const std::string condition = group_condition_.empty() ? "" : " WHERE " + group_condition_;
    for (const Basis& basis : ChosenBases()) {
      if (!LocateBasis(basis, kOperation)) return false;
      sql += " AND " + basis.entity_column + " IN (SELECT DISTINCT " + BasisKey() + " FROM " + basis_tables_ +
             condition + ")";
    }
  }
  sql += OrderBy(sort_select_);
  return true;
}

bool BExcelExpEngPrintFirstFinRpt::GroupListSql(std::string& sql) {
  const std::string& level = core_->ExcelWkSheetRptSumLvl;
  sql = "SELECT DISTINCT " + group_select_ + " FROM AnlysItemRecord";
  if (level == summary_level::kBasis) {
    std::string filter;
    if (!BasisFilter("GetFinEmpCoyBasisGrpInfo", filter)) return false;
    sql += AlsoSelect(basis_tables_) + DataCondition(" ", "= ");
    if (!filter.empty()) sql += " " + filter;
    sql += OrderBy(group_select_);
  } else if (level == summary_level::kCompany) {
    sql += " JOIN Company" + std::string(15, ' ') + "ON CompanyId = '001'" + DataCondition(" ", "= ") +
           OrderBy(group_select_);
  } else {
    sql += " JOIN (Employee JOIN Personal)" + kGap + "ON Basis1Id = EmployeeSysId" +
           DataCondition(kGap, "= ") + " AND " + InView(core_, kEmployees) + OrderBy(group_names_);
  }
  return true;
}

bool BExcelExpEngPrintFirstFinRpt::EntitySql(std::string& sql) {
  const auto basis_id = [this](std::string_view column) {
    return core_->EmpCoyBasisQry->FieldByName(column).AsString();
  };
  const std::string& level = core_->ExcelWkSheetRptSumLvl;
  if (level == summary_level::kCompany) {
    sql = "SELECT * FROM Company WHERE CompanyId = " + SqlText(basis_id("Basis1Id"));
    return true;
  }
  if (level != summary_level::kBasis) {
    sql = Joined({"SELECT *, ", core_->CalcFields->GetAllSelectList(1),
                  " FROM Employee Join Personal WHERE EmployeeSysId = ", basis_id("Basis1Id")});
    return true;
  }
  std::string conditions;
  for (const Basis& basis : ChosenBases()) {
    if (!LocateBasis(basis, "GetIndividualEmpCoyBasisInfo")) return false;
    conditions +=
        (conditions.empty() ? "" : " AND ") + BasisKey() + " = " + SqlText(basis_id(basis.entity_column));
  }
  sql = "SELECT * FROM " + basis_tables_ + " WHERE " + conditions;
  return true;
}

bool BExcelExpEngPrintFirstFinRpt::LogEntity() {
  const auto log = [this](std::string_view title, std::string_view column) {
    core_->WriteAllMemo(std::string(title) + ": " + core_->CurEmpCoyBasisQry->FieldByName(column).AsString());
  };
  if (core_->ExcelWkSheetRptSumLvl == summary_level::kBasis) {
    for (const Basis& basis : ChosenBases()) {
      if (!LogBasis(basis)) return false;
    }
  } else if (core_->ExcelWkSheetRptSumLvl == summary_level::kCompany) {
    core_->WriteAllMemo("");
    log("Company ID", "CompanyId");
    log("Company Name", "CompanyName");
  } else {
    core_->WriteAllMemo("");
    log("Employee ID", "EmployeeId");
    log("Employee Name", "EmployeeName");
  }
  core_->WriteAllMemo("");
  return true;
}

bool BExcelExpEngPrintFirstFinRpt::LogBasis(const Basis& basis) {
  constexpr std::string_view kOperation = "PrintNonGroupingRpt";
  if (!LocateBasis(basis, kOperation)) return false;
  const auto keyword = [this](std::string_view column) {
    return SqlText(ExcelRptBasisQry.FieldByName(column).AsString());
  };
  Query SystemAttributeQry(core_->DatabaseName);
  if (!core_->OpenOrLog(SystemAttributeQry,
                        "SELECT * FROM SystemAttribute WHERE SysTableId = " + keyword("AnlysKeywordRef") +
                            std::string(52, ' ') + "AND SysAttributeId = " + keyword("AnlysKeywordTableId"),
                        Where(kOperation), "SystemAttributeQry", Rows::kRequired)) {
    return false;
  }
  core_->WriteAllMemo(SystemAttributeQry.FieldByName("SysUserdefinedName").AsString() + ": " +
                      core_->EmpCoyBasisQry->FieldByName(basis.entity_column).AsString());
  return true;
}

}  // namespace excelexp
