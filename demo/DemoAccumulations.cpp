#include "demo/DemoDefinitions.h"

namespace excelexp {
namespace {

constexpr DemoPeriod kOctober = {2024, 10};
constexpr DemoPeriod kNovember = {2024, 11};
constexpr DemoPeriod kDecember = {2024, 12};

DemoFinancialRpt Quarter() {
  const std::vector<DemoLayoutPeriod> normal = {
      {kOctober, "Normal"}, {kNovember, "Normal"}, {kDecember, "Normal"}};
  const std::vector<DemoLayoutPeriod> every_type = {{kNovember, ""}, {kDecember, ""}};
  return {
      .id = "QUARTER",
      .desc = "The fourth quarter, by record type",
      .project = "PAYTYPE",
      .layout = "AccumulateList",
      .columns = {MainField("Employee", "EmployeeId", "Employee"),
                  MainField("Employee", "EmployeeName", "Name", "Name"),
                  Accumulated(Total("PaySystem", "PayHeadCount", "Paid", "Note"), normal, false),
                  Accumulated(Total("PaySystem", "GrossWage", "Gross wage", "AmountWide"), normal),
                  Accumulated(Amount("PayElement", "BASIC", "PayElementAmt", "Basic pay", "AmountWide"),
                              every_type),
                  Accumulated(EveryItem("Allowance", "AllowanceAmt"), {}, false),
                  Accumulated(EveryItem("Deduction", "DeductionAmt", "Deduct"), {}, false),
                  Accumulated(Total("PaySystem", "NetWage", "Net wage of all records", "Total"), {}, false),
                  Formula("=ROUND(<Item#8>/3,2)", "Net a month")},
      .sorts = {{"Employee", "EmployeeName"}},
      .grand_total = true,
      .employee_count = true,
  };
}

DemoFinancialRpt QuarterByRun() {
  return {
      .id = "QUARTERRUN",
      .desc = "The fourth quarter, by record id",
      .project = "PAYRUN",
      .layout = "AccumulateList",
      .columns = {Blank(),
                  Accumulated(Total("PaySystem", "NetWage", "Net wage", "AmountWide"),
                              {{{2024, 12, 1}, ""}, {{2024, 12, 2}, ""}}),
                  Accumulated(Total("PaySystem", "NetWage", "Bonus", "AmountWide"),
                              {{{2024, 12, 2}, "BONUS"}}),
                  Accumulated(Amount("BankRecord", "Bank1", "BankPaymentAmt", "First account"), {}, false)},
  };
}

}  // namespace

DemoFamily DemoAccumulations() {
  return {
      .financial = {Quarter(), QuarterByRun()},
      .sheets = {{.name = "Fourth Quarter",
                  .level = "SumLevelEmpee",
                  .header = "Fourth quarter 2024, accumulated\r\nPrinted <Date>",
                  .items = {{"QUARTER", kOctober, kDecember}, {"QUARTERRUN", kOctober, kDecember}},
                  .title_scheme = "TitleThreeLines"}},
  };
}

}  // namespace excelexp
