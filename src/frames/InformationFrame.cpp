#include "frames/InformationFrame.h"

#include <array>

#include "engine/DefinitionTables.h"
#include "frames/LayoutTable.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/host/Format.h"
#include "services/BExcelExpEngCalcFields.h"

namespace excelexp {
namespace {

constexpr DefinitionNames kNames = {.report_key = "EmpInfoRptId",
                                    .group_table = "EmpGrpItem",
                                    .group_sys_id = "EmpGrpItemSysId",
                                    .group_order = "EmpGrpItemOrder",
                                    .group_field_table = "EmpGrpSysTableId",
                                    .group_field = "EmpGrpSysAttributeId",
                                    .group_title = "EmpGrpItemTitle",
                                    .group_level_title = "",
                                    .group_has_sub_total = "",
                                    .group_has_emp_count = "EmpGrpHasEmpCount",
                                    .sort_table = "EmpSortItem",
                                    .sort_order = "EmpSortItemOrder",
                                    .sort_field_table = "EmpSortSysTableId",
                                    .sort_field = "EmpSortSysAttributeId",
                                    .column_table = "EmpColItem",
                                    .column_order = "EmpColItemOrder",
                                    .column_is_main_info = "EmpColIsRptMainInfo",
                                    .columns = kEmployeeReportColumns};

constexpr std::array<SummingLayout, 4> kSummingBesideEmployees = {{
    {"BreakdownList", AsOfDate::kAny, 0},
    {"AccumulateList", AsOfDate::kAny, 0},
    {"LeaveList", AsOfDate::kNo, 4},
    {"LeaveList", AsOfDate::kYes, 1},
}};

constexpr std::array<SummingLayout, 2> kSummingBesidePersons = {{
    {"BreakdownList", AsOfDate::kAny, 0},
    {"AccumulateList", AsOfDate::kAny, 0},
}};

/// What both frames share; each states its own traits over this.
FrameTraits CommonTraits() {
  FrameTraits traits{};
  traits.groups_operation = "GetEmpGrpInfo";
  traits.groups_banner[0] = "    EMPLOYEE GROUPING INFORMATION PROCESSING    ";
  traits.entities_operation = "GetEmpInfo";
  traits.entities_banner[0] = "    LIST OF EMPLOYEE INFORMATION PROCESSING     ";
  traits.entities_name = "Employee Information.";
  traits.names = kNames;
  traits.totals.label_names_level = false;
  return traits;
}

FrameTraits MakeEmployeeTraits() {
  FrameTraits traits = CommonTraits();
  traits.class_name = "BExcelExpEngPrintFirstEmpRpt";
  traits.database = kPayrollDatabaseName;
  traits.by_employee = kEmployees.by_employee;
  traits.first_band_gap = 6;
  traits.layouts = EmployeeFrameLayouts();
  traits.item_layouts = InformationLayouts(report_type::kEmployee);
  traits.totals.rule = SumRule::kTwoDecimals;
  traits.totals.asks_cycle_method = true;
  traits.totals.layout_database = kPayrollDatabaseName;
  traits.totals.summing = kSummingBesideEmployees;
  return traits;
}

FrameTraits MakePersonalTraits() {
  FrameTraits traits = CommonTraits();
  traits.class_name = "BExcelExpEngPrintFirstPerRpt";
  traits.database = "";
  traits.by_employee = kPersons.by_employee;
  traits.first_band_gap = 2;
  traits.layouts = {};
  traits.item_layouts = InformationLayouts(report_type::kPersonal);
  traits.totals.rule = SumRule::kAlways;
  traits.totals.asks_cycle_method = false;
  traits.totals.layout_database = "";
  traits.totals.summing = kSummingBesidePersons;
  return traits;
}

const InformationFrameTraits& EmployeePeople() {
  static const InformationFrameTraits people = {
      .frame = BExcelExpEngPrintFirstEmpRpt::Traits(),
      .population = kEmployees,
      .entity_columns = "Employee.EmployeeSysId AS Basis1Id, '' AS Basis2Id, '' AS Basis3Id",
      .entity_id = "Basis1Id",
      .group_members = "EmployeeSysId FROM Employee JOIN Personal",
      .record = "Employee Join Personal WHERE EmployeeSysId",
      .log = {{"Employee ID", "EmployeeId"}, {"Employee Name", "EmployeeName"}}};
  return people;
}

const InformationFrameTraits& PersonalPeople() {
  static const InformationFrameTraits people = {
      .frame = BExcelExpEngPrintFirstPerRpt::Traits(),
      .population = kPersons,
      .entity_columns = "Personal.PersonalSysId",
      .entity_id = "PersonalSysId",
      .group_members = "Personal.PersonalSysId FROM Personal LEFT OUTER JOIN Employee",
      .record = "Personal LEFT OUTER JOIN Employee WHERE Personal.PersonalSysId",
      .log = {{"Identity No", "IdentityNo"}, {"Personal Name", "PersonalName"}}};
  return people;
}

}  // namespace

const FrameTraits& BExcelExpEngPrintFirstEmpRpt::Traits() {
  static const FrameTraits traits = MakeEmployeeTraits();
  return traits;
}

const FrameTraits& BExcelExpEngPrintFirstPerRpt::Traits() {
  static const FrameTraits traits = MakePersonalTraits();
  return traits;
}

BExcelExpEngPrintFirstEmpRpt::BExcelExpEngPrintFirstEmpRpt(BExcelExpEngCore* core,
                                                           std::vector<WkSheetItem>& items)
    : InformationFrame(core, items, EmployeePeople()) {}

BExcelExpEngPrintFirstPerRpt::BExcelExpEngPrintFirstPerRpt(BExcelExpEngCore* core,
                                                           std::vector<WkSheetItem>& items)
    : InformationFrame(core, items, PersonalPeople()) {}

InformationFrame::InformationFrame(BExcelExpEngCore* core, std::vector<WkSheetItem>& items,
                                   const InformationFrameTraits& traits)
    : BandedFrame(core, items, traits.frame), people_(traits) {}

std::string InformationFrame::SelectedPeople(const std::string& in_view) const {
  const std::string filter = FilterCondition(core_->FirstWSItemEmpHasFilter, core_->FirstWSItemEmpFilter);
  return " FROM " + core_->FirstWSItemEmpRptType + " WHERE " + (filter.empty() ? "" : filter + " AND ") +
         in_view;
}

bool InformationFrame::GroupListSql(std::string& sql) {
  sql = "SELECT DISTINCT " + group_select_ + SelectedPeople(InView(core_, people_.population));
  if (!group_names_.empty()) sql += " ORDER BY " + group_names_;
  return true;
}

bool InformationFrame::EntityListSql(std::string& sql) {
  const std::string id = QualifiedId(people_.population);
  sql = "SELECT DISTINCT " + std::string(people_.entity_columns);
  if (!sort_select_.empty()) sql += ", " + sort_select_;
  if (Grouped()) {
    // A group is small: reading the whole view for each would cost more than everything else.
    sql += SelectedPeople(InViewOneByOne(core_, people_.population, id)) + " AND " + id +
           " IN (SELECT DISTINCT " + std::string(people_.group_members);
    if (!group_condition_.empty()) sql += " WHERE " + group_condition_;
    sql += ")";
  } else {
    sql += SelectedPeople(InView(core_, people_.population));
  }
  if (!sort_names_.empty()) sql += " ORDER BY " + sort_names_;
  return true;
}

bool InformationFrame::EntitySql(std::string& sql) {
  sql = Joined({"SELECT *, ", core_->CalcFields->GetAllSelectList(people_.population.by_employee), " FROM ",
                people_.record, " = ", core_->EmpCoyBasisQry->FieldByName(people_.entity_id).AsString()});
  return true;
}

bool InformationFrame::LogEntity() {
  core_->WriteAllMemo("");
  for (const EntityLogLine& line : people_.log) {
    core_->WriteAllMemo(
        Joined({line.title, ": ", core_->CurEmpCoyBasisQry->FieldByName(line.field).AsString()}));
  }
  core_->WriteAllMemo("");
  return true;
}

}  // namespace excelexp
