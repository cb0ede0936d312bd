#include "demo/DemoDefinitions.h"

namespace excelexp {
namespace {

/// A column of a reconciliation: which of the three values, and the pay record basis before the "_".
DemoItem Status(std::string_view value, std::string_view title, std::string_view scheme = "Amount") {
  return {"AnlysItem", value, "", "Normal_1", title, scheme};
}

/// The rows that the matrices have in common. The formula is one that may be summed over the year.
std::vector<DemoItem> PayRows() {
  return {Total("PaySystem", "PayHeadCount", "Head count", "Note"),
          Total("PaySystem", "BasicPay", "Basic pay"),
          EveryItem("Allowance", "AllowanceAmt"),
          Total("PaySystem", "OvertimePay", "Overtime"),
          Total("PaySystem", "GrossWage", "Gross wage", "Total"),
          EveryItem("Deduction", "DeductionAmt", "Deduct"),
          Total("PaySystem", "NetWage", "Net wage", "Total"),
          Formula("=<Item#5>-<Item#7>", "Taken off", "Deduct"),
          Blank()};
}

DemoFinancialRpt DepartmentMatrix(std::string_view id, std::string_view desc, std::string_view layout) {
  return {
      .id = id,
      .desc = desc,
      .project = "DEPTPAY",
      .layout = layout,
      .columns = {MainField("Department", "DepartmentDesc", "Department", "Name"),
                  Field("Department", "DepartmentId", "Code", "Note"), Blank()},
      .rows = PayRows(),
      .sorts = {{"Department", "DepartmentDesc"}},
  };
}

DemoFinancialRpt CompanyYear() {
  return {
      .id = "COMPANYYEAR",
      .desc = "The company's year, month by month",
      .project = "COMPANY",
      .layout = "Statistics",
      .columns = {MainField("Company", "CompanyName", "Company", "Name")},
      .rows = PayRows(),
  };
}

DemoFinancialRpt Reconciliation() {
  return {
      .id = "RECON",
      .desc = "Management pay, April against March",
      .project = "MGTRECON",
      .layout = "PayReconciliation",
      .columns = {MainField("Employee", "EmployeeId", "Employee"),
                  MainField("Employee", "EmployeeName", "Name", "Name"),
                  Field("Employee", "DepartmentDesc", "Department"), Status("AnlysMapFieldPrev", "Previous"),
                  Status("AnlysMapField", "Current"), Status("AnlysMapFieldVar", "Variance", "Total")},
      .rows = {Total("PaySystem", "BasicPay", "Basic pay"), EveryItem("Allowance", "AllowanceAmt"),
               Total("PaySystem", "GrossWage", "Gross wage", "Total"),
               EveryItem("Deduction", "DeductionAmt", "Deduct"),
               Total("PaySystem", "NetWage", "Net wage", "Total"),
               Amount("BankRecord", "Bank1", "BankPaymentAmt", "First account"),
               Amount("BankRecord", "Bank2", "BankPaymentAmt", "Second account"),
               Formula("=ROUND(<Item#5>-<Item#6>-<Item#7>,2)", "Unpaid", "Deduct"), Blank()},
      .sorts = {{"Employee", "EmployeeName"}},
  };
}

}  // namespace

DemoFamily DemoMatrices() {
  constexpr DemoPeriod kMarch = {2024, 3};
  constexpr DemoPeriod kApril = {2024, 4};
  constexpr DemoPeriod kOctober = {2024, 10};
  constexpr DemoPeriod kNovember = {2024, 11};
  constexpr DemoPeriod kDecember = {2024, 12};
  return {
      .projects = {{.id = "DEPTPAY",
                    .desc = "Pay by department",
                    .sub_type = "ProjSubTypePayRec",
                    .setup = "SetupDepartmentPay",
                    .level = "SumLevelBasis",
                    .basis1 = "Department"},
                   {.id = "MGTRECON",
                    .desc = "Management pay against the month before",
                    .sub_type = "ProjSubTypePayRec",
                    .setup = "SetupManagementRecon"}},
      .financial = {DepartmentMatrix("DEPTSTAT", "Pay by department, month by month", "Statistics"),
                    CompanyYear(), DepartmentMatrix("DEPTVAR", "Pay by department, what changed", "Variance"),
                    Reconciliation()},
      .sheets = {{.name = "Statistics",
                  .level = "SumLevelBasis",
                  .header = "Pay by department\r\nFourth quarter 2024, printed <Date>",
                  .items = {{"DEPTSTAT",
                             kOctober,
                             kDecember,
                             {{kOctober, "Normal"}, {kNovember, "Normal"}, {kDecember, "Normal"}}}},
                  .basis1 = "Department"},
                 {"Company Year",
                  "SumLevelCompany",
                  "Company 001, month by month\r\nPrinted <Date>",
                  {{"COMPANYYEAR", {2024, 1}, kDecember}}},
                 {.name = "Variance",
                  .level = "SumLevelBasis",
                  .header = "Pay by department: what changed since March\r\nPrinted <Date>",
                  .items = {{"DEPTVAR",
                             kMarch,
                             kDecember,
                             {{kMarch, "Normal"}, {kApril, "Normal"}, {kDecember, "Normal"}}}},
                  .basis1 = "Department"},
                 {.name = "Reconciliation",
                  .level = "SumLevelEmpee",
                  .header = "Management pay: April against March 2024\r\nPrinted <Date>",
                  .items = {{"RECON", kMarch, kApril}},
                  .title_scheme = "TitleThreeLines"}},
  };
}

}  // namespace excelexp
