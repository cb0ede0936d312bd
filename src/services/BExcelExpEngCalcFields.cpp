#include "services/BExcelExpEngCalcFields.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/database/SqlText.h"
#include "platform/host/CommonLibrary.h"
#include "platform/host/Format.h"

namespace excelexp {
namespace {

struct CalculatedField {
  std::string_view attribute;
  std::string_view expression;
  std::string_view type;
};

constexpr std::array<CalculatedField, 8> kEmployeeCalculated = {{
    {"ConfirmDueDate", "FGetConfirmationDue(Employee.EmployeeSysId)", "date"},
    {"RetireDueDate", "FGetRetirementDue(Employee.EmployeeSysId)", "date"},
    {"ServiceYears", "ROUND(CAST(MONTHS(Employee.HireDate, NOW())AS Double)/12 + PreviousSvcYear, 2)",
     "double"},
    {"TotalWage", "FGetEmployeeCurrentTotalWage(Employee.EmployeeSysId)", "double"},
    {"CurAccMVCPercent", "FGetMVCCurrentAccPercent(Employee.EmployeeSysId)", "double"},
    {"IsShiftWorker",
     "(CASE WHEN FGetEmployeeKeyShiftTeam(Employee.EmployeeSysId) IS NULL THEN 'No' ELSE 'Yes' END)", "char"},
    {"KeyShiftTeam", "FGetEmployeeKeyShiftTeam(Employee.EmployeeSysId)", "char"},
    {"KeyCostCentre", "FGetEmployeeKeyCostCentre(Employee.EmployeeSysId)", "char"},
}};

constexpr std::array<std::string_view, 18> kEmployeeCodes = {
    "BranchDesc",       "CategoryDesc",         "CessationDesc", "ClassificationDesc", "DepartmentDesc",
    "EmpCode1Desc",     "EmpCode2Desc",         "EmpCode3Desc",  "EmpCode4Desc",       "EmpCode5Desc",
    "EmpLocation1Desc", "EmpMaritalStatusDesc", "PositionDesc",  "EmpRaceDesc",        "EmpReligionDesc",
    "SalaryGradeDesc",  "SectionDesc",          "EmpTitleDesc"};

constexpr std::array<std::string_view, 7> kPersonalCodes = {
    "BloodGroupDesc", "IdentityTypeDesc", "PersonalTypeDesc", "PerMaritalStatusDesc",
    "PerRaceDesc",    "PerReligionDesc",  "PerTitleDesc"};

constexpr std::array<std::string_view, 6> kBasisTables = {"Dummy_BasisAgeByMth",    "Dummy_BasisAgeByYr",
                                                          "Dummy_BasisSrvcYrByMth", "Dummy_BasisSrvcYrByYr",
                                                          "Dummy_BasisTotalWage",   "Dummy_BasisSalaryType"};

bool Contains(const auto& list, std::string_view name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

/// The field's value as SQL for a comparison with a column of that type; "" for a type that cannot be
/// compared.
std::string SqlValueOf(const std::string& type, const Field& field) {
  if (type == "char") return SqlText(field.AsString());
  if (type == "integer" || type == "smallint") return std::to_string(field.AsInteger());
  if (type == "double" || type == "decimal") return FloatToText(field.AsFloat());
  if (type == "date" || type == "timestamp") return SqlText(FormatDateTime("yyyy-mm-dd", field.AsDateTime()));
  if (type == "time") return SqlText(FormatDateTime("hh:nn:ss", field.AsDateTime()));
  return "";
}

/// A row without a value belongs to the group without a value, which no equality finds.
std::string Condition(const std::string& expression, std::string_view equals, const std::string& type,
                      const Field& field) {
  if (field.IsNull()) return expression + " IS NULL";
  const std::string value = SqlValueOf(type, field);
  return value.empty() ? "" : expression + std::string(equals) + value;
}

}  // namespace

/// What the employee's and the person's searches do differently.
struct BExcelExpEngCalcFields::Rules {
  std::string_view code_description;  ///< the call that describes a code, up to the attribute's name
  bool knows_basis_tables;
};

void BExcelExpEngCalcFields::Search(const std::string& table, const std::string& attribute, int by_employee,
                                    const Query* value_query) {
  by_employee != 0 ? SearchByEmp(table, attribute, value_query) : SearchByPer(table, attribute, value_query);
}

void BExcelExpEngCalcFields::SearchByEmp(const std::string& table, const std::string& attribute,
                                         const Query* value_query) {
  static constexpr Rules kRules = {"FGetCodeDescription(Employee.EmployeeSysId, '", true};
  SearchBy(kRules, table, attribute, value_query);
}

void BExcelExpEngCalcFields::SearchByPer(const std::string& table, const std::string& attribute,
                                         const Query* value_query) {
  static constexpr Rules kRules = {"FGetCodeDescriptionByPersonal(Personal.PersonalSysId, '", false};
  SearchBy(kRules, table, attribute, value_query);
}

void BExcelExpEngCalcFields::SearchBy(const Rules& rules, const std::string& table,
                                      const std::string& attribute, const Query* value_query) {
  std::string expression;
  std::string_view equals = " = ";
  const auto* calculated =
      std::find_if(kEmployeeCalculated.begin(), kEmployeeCalculated.end(),
                   [&](const CalculatedField& field) { return field.attribute == attribute; });
  if (table == "Employee" && calculated != kEmployeeCalculated.end()) {
    expression = calculated->expression;
    field_type_ = calculated->type;
  } else if ((table == "Employee" && Contains(kEmployeeCodes, attribute)) ||
             (table == "Personal" && Contains(kPersonalCodes, attribute))) {
    expression = std::string(rules.code_description) + attribute + "')";
    field_type_ = "char";
  } else if (rules.knows_basis_tables && Contains(kBasisTables, table)) {
    SetColumn(table, attribute, "char");
    equals = "= ";
  } else if (rules.knows_basis_tables && table == "LeaveRecordSum") {
    SetColumn(table, attribute, "double");
  } else {
    SetColumn(table, attribute, FGetSystemColumnType(table, attribute));
  }
  if (!expression.empty()) {
    field_name_ = attribute;
    select_list_ = expression + " AS " + attribute;
  }
  if (value_query == nullptr) return;
  const std::string condition = Condition(expression.empty() ? field_name_ : expression, equals, field_type_,
                                          value_query->FieldByName(attribute));
  if (!condition.empty()) condition_ = condition;
}

void BExcelExpEngCalcFields::SetColumn(const std::string& table, const std::string& attribute,
                                       std::string type) {
  field_name_ = table + "." + attribute;
  select_list_ = field_name_;
  field_type_ = std::move(type);
}

std::string BExcelExpEngCalcFields::GetSelectList(const std::string& table, const std::string& attribute,
                                                  int by_employee) {
  Search(table, attribute, by_employee, nullptr);
  return select_list_;
}

const std::string& BExcelExpEngCalcFields::GetAllSelectList(int by_employee) {
  std::string& all = all_select_lists_[by_employee != 0 ? 1 : 0];
  if (!all.empty()) return all;
  const auto append = [&](const std::string& table, std::string_view attribute) {
    if (!all.empty()) all += ", ";
    all += GetSelectList(table, std::string(attribute), by_employee);
  };
  for (const CalculatedField& field : kEmployeeCalculated) append("Employee", field.attribute);
  for (const std::string_view attribute : kEmployeeCodes) append("Employee", attribute);
  for (const std::string_view attribute : kPersonalCodes) append("Personal", attribute);
  return all;
}

}  // namespace excelexp
