#include "demo/DemoDefinitions.h"

namespace excelexp {
namespace {

std::vector<DemoItem> EmployeeColumns(std::vector<DemoItem> others) {
  std::vector<DemoItem> columns = {MainField("Employee", "EmployeeId", "Employee"),
                                   MainField("Employee", "EmployeeName", "Name", "Name")};
  columns.insert(columns.end(), others.begin(), others.end());
  return columns;
}

DemoEmployeeRpt StaffList() {
  return {
      .id = "STAFFLIST",
      .desc = "Staff by department",
      .type = "Employee",
      .columns = EmployeeColumns(
          {Field("Employee", "PositionDesc", "Position"), Field("Employee", "SectionDesc", "Section"),
           Field("Personal", "Gender", "Gender", "Note"), Field("Employee", "HireDate", "Hired"),
           Field("Employee", "ConfirmDueDate", "Probation ends"),
           Field("Employee", "ConfirmDate", "Confirmed"), Blank(),
           Field("Employee", "BasicRate", "Basic rate", "Amount"),
           Field("Employee", "TotalWage", "Total wage", "Total"),
           Field("Employee", "KeyCostCentre", "Cost centre"),
           Field("Employee", "IsShiftWorker", "Shifts", "Note"),
           Field("Employee", "IsUnionMember", "Union", "Note"),
           Field("Employee", "WorkStartTime", "Starts at"),
           Field("Employee", "RecordUpdated", "Updated", "Name")}),
      .groups = {{"Department", "Employee", "DepartmentDesc"}},
      .sorts = {{"Employee", "PositionDesc"}, {"Employee", "EmployeeName"}},
      .filter = "Employee.CessationDate IS NULL",
      .employee_count = true,
  };
}

DemoEmployeeRpt Families() {
  return {
      .id = "FAMILIES",
      .desc = "Employees and their families",
      .type = "Family",
      .columns = EmployeeColumns({Field("Family", "FamilyMemberName", "Family member", "Name"),
                                  Field("Family", "FamilyRelation", "Relation"),
                                  Field("Family", "FamilyBirthDate", "Born"),
                                  Field("Family", "Gender", "Gender", "Note")}),
      .sorts = {{"Employee", "EmployeeName"}},
      .employee_count = true,
  };
}

DemoEmployeeRpt Persons() {
  return {
      .id = "PERSONS",
      .desc = "Everybody on record",
      .type = "Personal",
      .columns = {MainField("Personal", "IdentityNo", "Identity"),
                  MainField("Personal", "PersonalName", "Name", "Name"),
                  Field("Personal", "PerTitleDesc", "Title", "Note"),
                  Field("Personal", "DateOfBirth", "Born"),
                  Field("Personal", "PerMaritalStatusDesc", "Marital status"),
                  Field("Personal", "BloodGroupDesc", "Blood group"),
                  Field("Personal", "PersonalEmail", "Address", "Name"),
                  Field("Employee", "EmployeeId", "Employee"),
                  Field("Employee", "DepartmentDesc", "Department"), Field("Employee", "HireDate", "Hired")},
      .groups = {{"Kind of person", "Personal", "PersonalTypeDesc"}},
      .sorts = {{"Personal", "PersonalName"}},
      .employees_only = false,
      .employee_count = true,
  };
}

DemoEmployeeRpt Facts() {
  return {
      .id = "FACTS",
      .desc = "Where an employee works",
      .type = "Employee",
      .columns = EmployeeColumns({Blank(), Field("Employee", "DepartmentDesc", "Department"),
                                  Field("Employee", "SectionDesc", "Section"),
                                  Field("Employee", "KeyShiftTeam", "Shift team", "Note"),
                                  Field("Employee", "CessationDesc", "Left by", "Note"),
                                  Field("Employee", "CessationDate", "Left on")}),
  };
}

DemoEmployeeRpt Training() {
  return {
      .id = "TRAINING",
      .desc = "Courses of the year",
      .type = "Training",
      .columns = EmployeeColumns({Field("EmployeeTraining", "TrainingDate", "Date"),
                                  Field("EmployeeTraining", "TrainingCourse", "Course", "Name"),
                                  Field("EmployeeTraining", "TrainingFee", "Fee", "Amount"),
                                  Field("EmployeeTraining", "SponsorType", "Sponsored by"),
                                  Field("EmployeeTraining", "SponsorValue", "Sponsored", "Amount"),
                                  Field("EmployeeTraining", "GovGrantType", "Granted by"),
                                  Field("EmployeeTraining", "GovGrantValue", "Granted", "Amount")}),
      .sorts = {{"Employee", "EmployeeName"}},
      .employee_count = true,
  };
}

DemoEmployeeRpt Careers() {
  return {
      .id = "CAREERS",
      .desc = "Careers",
      .type = "Career",
      .columns = EmployeeColumns({Field("EmployeeCareer", "CareerEffectiveDate", "From"),
                                  Field("EmployeeCareer", "CareerPositionId", "Position", "Note"),
                                  Field("EmployeeCareer", "CareerBasicRate", "Basic rate", "Amount"),
                                  Field("EmployeeCareer", "CareerCurrent", "Current", "Note"),
                                  Field("Employee", "CPFMAWOption", "Wage option", "Name")}),
      .sorts = {{"Employee", "EmployeeName"}},
      .employee_count = true,
  };
}

}  // namespace

DemoFamily DemoStaff() {
  constexpr DemoPeriod kDecember = {2024, 12};
  const DemoSheetItem pay = {"PAYSUM", kDecember, kDecember, {{kDecember, "Normal"}}};
  return {
      .employee = {StaffList(), Families(), Persons(), Facts(), Training(), Careers()},
      .sheets =
          {{"Staff", "SumLevelEmpee", "Staff in service by department\r\nPrinted <Date>", {{"STAFFLIST"}}},
           {"Families",
            "SumLevelEmpee",
            "Families, and December's pay beside them\r\nPrinted <Date>",
            {{"FAMILIES"}, pay}},
           {"Persons", "SumLevelEmpee", "Everybody on record\r\nPrinted <Date>", {{"PERSONS"}}},
           {"Pay and Place",
            "SumLevelEmpee",
            "December's pay and where it is earned\r\nPrinted <Date>",
            {pay, {"FACTS"}}},
           {.name = "Training",
            .level = "SumLevelEmpee",
            .header = "Courses of the year\r\nPrinted <Date>",
            .items = {{"TRAINING"}},
            .spreadsheet = "STAFF"},
           {.name = "Careers",
            .level = "SumLevelEmpee",
            .header = "Careers\r\nPrinted <Date>",
            .items = {{"CAREERS"}},
            .spreadsheet = "STAFF"}},
  };
}

}  // namespace excelexp
