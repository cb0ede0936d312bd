#include "demo/DemoDefinitions.h"

namespace excelexp {
namespace {

std::vector<DemoProject> Projects() {
  return {
      {.id = "PAYTYPE",
       .desc = "Pay by record type",
       .sub_type = "ProjSubTypePayRec",
       .setup = "SetupPayByType"},
      {.id = "PAYRUN",
       .desc = "Pay by record id",
       .sub_type = "ProjSubTypePayRec",
       .setup = "SetupPayById",
       .group_by = "PeriodGrpSubPeriod",
       .sub_group_by = "SubGrpPayRecId"},
      {.id = "COMPANY",
       .desc = "Pay of the company",
       .sub_type = "ProjSubTypePayRec",
       .setup = "SetupCompanyPay",
       .level = "SumLevelCompany",
       .group_by = "CalenGrpMth"},
      {.id = "CENTREAGE",
       .desc = "Pay by cost centre and age",
       .sub_type = "ProjSubTypePayRec",
       .setup = "SetupCostCentreAgePay",
       .level = "SumLevelBasis",
       .basis1 = "CostCentre",
       .basis2 = "AgeByYear",
       .policy2 = "AGE"},
      {.id = "TSDAILY",
       .desc = "Timesheets by day",
       .sub_type = "ProjSubTypeTsRec",
       .setup = "SetupTimesheets"},
      {.id = "TSJOBS",
       .desc = "Timesheets by job",
       .sub_type = "ProjSubTypeTsSumm",
       .setup = "SetupTimesheetSummary"},
  };
}

DemoFinancialRpt Payroll() {
  return {
      .id = "PAYROLL",
      .desc = "Monthly payroll",
      .project = "PAYTYPE",
      .layout = "BreakdownList",
      .columns = {MainField("Employee", "EmployeeId", "Employee"),
                  MainField("Employee", "EmployeeName", "Name", "Name"),
                  MainField("Employee", "PositionDesc", "Position"),
                  Amount("PayElement", "BASIC", "PayElementAmt", "Basic pay"),
                  EveryItem("Allowance", "AllowanceAmt"), Total("PaySystem", "OvertimePay", "Overtime"),
                  Total("PaySystem", "ShiftPay", "Shift pay"),
                  Total("PaySystem", "GrossWage", "Gross wage", "Total"),
                  EveryItem("Deduction", "DeductionAmt", "Deduct"),
                  Total("PaySystem", "NetWage", "Net wage", "Total"),
                  Formula("=<Item#8>-<Item#10>", "Taken off", "Deduct"), Blank()},
      .groups = {{"Company", "Employee", "CompanyId"}, {"Department", "Employee", "DepartmentDesc"}},
      .sorts = {{"Employee", "EmployeeName"}},
      .grand_total = true,
      .employee_count = true,
  };
}

DemoFinancialRpt CompanyPay() {
  return {
      .id = "COMPANYPAY",
      .desc = "Pay of the company and how it was paid",
      .project = "COMPANY",
      .layout = "BreakdownList",
      .columns = {MainField("Company", "CompanyId", "Company"),
                  MainField("Company", "CompanyName", "Name", "Name"),
                  Total("PaySystem", "PayHeadCount", "Head count", "Note"),
                  Total("PaySystem", "GrossWage", "Gross wage"),
                  Total("PaySystem", "TotalDeduction", "Deductions", "Deduct"),
                  Total("PaySystem", "NetWage", "Net wage", "Total"),
                  Amount("BankRecord", "Bank1", "BankPaymentAmt", "First account"),
                  Amount("BankRecord", "Bank2", "BankPaymentAmt", "Second account"),
                  Amount("BankRecord", "Cheque1", "BankPaymentAmt", "Cheque"),
                  Amount("BankRecord", "Cash1", "BankPaymentAmt", "Cash"),
                  Formula("=ROUND(<Item#6>-<Item#7>-<Item#8>-<Item#9>-<Item#10>,2)", "Unpaid", "Deduct")},
  };
}

DemoFinancialRpt CentrePay() {
  return {
      .id = "CENTREPAY",
      .desc = "Pay by cost centre and age group",
      .project = "CENTREAGE",
      .layout = "BreakdownList",
      .columns = {MainField("CostCentre", "CostCentreId", "Cost centre"),
                  MainField("CostCentre", "CostCentreDesc", "Name", "Name"),
                  MainField("Dummy_BasisAgeByYr", "BasisAgeByYr", "Age group"),
                  Total("PaySystem", "PayHeadCount", "Head count", "Note"),
                  Total("PaySystem", "BasicPay", "Basic pay"),
                  Total("PaySystem", "TotalAllowance", "Allowances"),
                  Total("PaySystem", "OvertimePay", "Overtime"),
                  Total("PaySystem", "GrossWage", "Gross wage", "Total"),
                  Total("PaySystem", "TotalDeduction", "Deductions", "Deduct"),
                  Total("PaySystem", "NetWage", "Net wage", "Total")},
      .sorts = {{"CostCentre", "CostCentreId"}, {"Dummy_BasisAgeByYr", "BasisAgeByYr"}},
      .grand_total = true,
  };
}

DemoFinancialRpt DailyTimesheets() {
  return {
      .id = "TSDAYS",
      .desc = "Timesheets by job and date",
      .project = "TSDAILY",
      .layout = "BreakdownList",
      .columns = {MainField("Employee", "EmployeeId", "Employee"),
                  MainField("Employee", "EmployeeName", "Name", "Name"),
                  Total("TsDetail", "TsHours", "Hours"),
                  Amount("TsPayElement", "TSNORMAL", "TsPayElementAmt", "Normal hours"),
                  EveryItem("TsOvertime", "TsOvertimeAmt"), EveryItem("TsAllowance", "TsAllowanceAmt"),
                  Total("TsDetail", "TsAmount", "Amount", "Total")},
      .sorts = {{"Employee", "EmployeeName"}},
      .grand_total = true,
  };
}

DemoFinancialRpt TimesheetJobs() {
  return {
      .id = "TSJOBSUM",
      .desc = "Timesheets by job",
      .project = "TSJOBS",
      .layout = "BreakdownList",
      .columns = {Blank(), Total("TsDetail", "TsHours", "Hours"),
                  Total("TsDetail", "TsAmount", "Amount", "Total")},
  };
}

DemoFinancialRpt PaySummary() {
  return {
      .id = "PAYSUM",
      .desc = "Pay at a glance",
      .project = "PAYTYPE",
      .layout = "BreakdownList",
      .columns = {MainField("Employee", "EmployeeId", "Employee"),
                  MainField("Employee", "EmployeeName", "Name", "Name"),
                  Total("PaySystem", "GrossWage", "Gross wage"),
                  Total("PaySystem", "TotalDeduction", "Deductions", "Deduct"),
                  Total("PaySystem", "NetWage", "Net wage", "Total"),
                  Amount("BankRecord", "Bank1", "BankAccount", "Account", "Note"),
                  Amount("BankRecord", "Bank1", "BankPaymentAmt", "Paid to it")},
      .sorts = {{"Employee", "EmployeeName"}},
      .grand_total = true,
      .employee_count = true,
  };
}

// No totals here: a sum of rates would read like one of amounts.
DemoFinancialRpt PayRuns() {
  return {
      .id = "PAYRUNS",
      .desc = "Units and rates by pay run",
      .project = "PAYRUN",
      .layout = "BreakdownList",
      .columns = {MainField("Employee", "EmployeeId", "Employee"),
                  MainField("Employee", "EmployeeName", "Name", "Name"),
                  Total("PaySystem", "WorkingDays", "Days"),
                  Amount("OTRecord", "OT15", "OTHours", "Overtime hours"),
                  Amount("OTRecord", "OT15", "FormulaOTRate", "Overtime rate", "Note"),
                  Amount("OTRecord", "OT15", "OTAmt", "Overtime pay"),
                  Amount("ShiftRecord", "NIGHT", "ShiftTimes", "Nights"),
                  Amount("PayElement", "BONUS", "PayElementAmt", "Bonus"),
                  Amount("BankRecord", "Cash1", "PaymentCategory", "Paid in cash", "Note"),
                  Total("PaySystem", "NetWage", "Net wage", "Total"), Blank()},
      .sorts = {{"Employee", "EmployeeName"}},
  };
}

}  // namespace

DemoFamily DemoBreakdowns() {
  constexpr DemoPeriod kOctober = {2024, 10};
  constexpr DemoPeriod kNovember = {2024, 11};
  constexpr DemoPeriod kDecember = {2024, 12};
  return {
      .projects = Projects(),
      .financial = {Payroll(), CompanyPay(), CentrePay(), DailyTimesheets(), TimesheetJobs(), PaySummary(),
                    PayRuns()},
      .sheets = {{"Payroll",
                  "SumLevelEmpee",
                  "Monthly payroll by company and department\r\nOctober to December 2024\r\nPrinted <Date>",
                  {{"PAYROLL",
                    kOctober,
                    kDecember,
                    {{kOctober, "Normal"}, {kNovember, "Normal"}, {kDecember, "Normal"}}}}},
                 {"Company",
                  "SumLevelCompany",
                  "Pay of company 001 and how it was paid\nPrinted <Date>",
                  {{"COMPANYPAY", kOctober, kDecember}}},
                 {.name = "Cost Centres",
                  .level = "SumLevelBasis",
                  .header = "Pay by cost centre and age group\r\nDecember 2024, printed <Date>",
                  .items = {{"CENTREPAY", kDecember, kDecember, {{kDecember, "Normal"}}}},
                  .basis1 = "CostCentre",
                  .basis2 = "AgeByYear"},
                 {"Timesheets",
                  "SumLevelEmpee",
                  "Timesheets of November 2024\r\nBy job and date, and by job\r\nPrinted <Date>",
                  {{"TSDAYS", kNovember, kNovember, {{kNovember, "Normal"}}},
                   {"TSJOBSUM", kNovember, kNovember, {{kNovember, "Normal"}}}}},
                 {"Pay Runs",
                  "SumLevelEmpee",
                  "Units, rates and runs of December, and the pay they led to\r\nPrinted <Date> at <Time>",
                  {{"PAYRUNS", kDecember, kDecember, {{{2024, 12, 1}, "MONTHEND"}, {{2024, 12, 2}, "BONUS"}}},
                   {"PAYSUM", kDecember, kDecember, {{kDecember, "Normal"}}}}}},
  };
}

}  // namespace excelexp
