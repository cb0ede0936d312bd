#include "demo/DemoDefinitions.h"

namespace excelexp {
namespace {

std::vector<DemoItem> LeaveColumns() {
  return {MainField("Employee", "EmployeeId", "Employee"),
          MainField("Employee", "EmployeeName", "Name", "Name"),
          Total("LeaveSystem", "AnlLveBroughtForward", "Annual b/f"),
          Total("LeaveSystem", "AnlCurrLveEntitlement", "Annual entitled"),
          Total("LeaveCareerSystem", "AnlLveEarned", "Annual earned"),
          Total("LeaveSystem", "AnlLveTaken", "Annual taken", "Deduct"),
          Total("LeaveSystem", "AnlLveBalance", "Annual balance", "Total"),
          Total("LeaveSystem", "SickLveTaken", "Sick taken", "Deduct"),
          Total("LeaveSystem", "SickLveBalance", "Sick balance", "Total"),
          Amount("LeaveRecord", "ANNUAL", "LastLeaveFrom", "Last annual leave", "Body")};
}

DemoFinancialRpt Leave(std::string_view id, std::string_view desc, std::string_view project) {
  return {
      .id = id,
      .desc = desc,
      .project = project,
      .layout = "LeaveList",
      .columns = LeaveColumns(),
      .sorts = {{"Employee", "EmployeeName"}},
      .grand_total = true,
      .employee_count = true,
  };
}

}  // namespace

DemoFamily DemoLeaves() {
  constexpr DemoPeriod kOctober = {2024, 10};
  constexpr DemoPeriod kNovember = {2024, 11};
  constexpr DemoPeriod kDecember = {2024, 12};
  constexpr DemoPeriod kYearEnd = {2024, 12, 31};
  return {
      .projects = {{.id = "LEAVEPD",
                    .desc = "Leave by pay period",
                    .sub_type = "ProjSubTypeLveSumm",
                    .setup = "SetupLeavePeriods"},
                   {.id = "LEAVEASOF",
                    .desc = "Leave as of a date",
                    .sub_type = "ProjSubTypeLveSumm",
                    .setup = "SetupLeaveAsOf",
                    .cycle_method = "CycMtdLveAsOfDate"}},
      .financial = {Leave("LEAVEBYPD", "Leave by pay period", "LEAVEPD"),
                    Leave("LEAVEBAL", "Leave balances as of a date", "LEAVEASOF")},
      .sheets = {{"Leave by Period",
                  "SumLevelEmpee",
                  "Leave taken in the fourth quarter of 2024\r\nPrinted <Date>",
                  {{"LEAVEBYPD",
                    kOctober,
                    kDecember,
                    {{kOctober, "Normal"},
                     {kOctober, "Adjust"},
                     {kNovember, "Normal"},
                     {kNovember, "Adjust"},
                     {kDecember, "Normal"},
                     {kDecember, "Adjust"}}}}},
                 {"Leave Balances",
                  "SumLevelEmpee",
                  "Leave balances at the end of 2024, and December's pay\r\nPrinted <Date>",
                  {{"LEAVEBAL", kYearEnd, kYearEnd, {{kYearEnd, "Balance"}}},
                   {"PAYSUM", kDecember, kDecember, {{kDecember, "Normal"}}}}}},
  };
}

}  // namespace excelexp
