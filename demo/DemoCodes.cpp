#include "demo/DemoCodes.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "demo/DemoCalendar.h"
#include "demo/DemoTable.h"

namespace excelexp {
namespace {

struct Code {
  std::string_view id;
  std::string_view desc;
};

struct CodeTable {
  std::string_view table;
  std::vector<Code> codes;
};

const std::vector<CodeTable> kCodeTables = {
    {"Branch (BranchId, BranchDesc)",
     {{"HQ", "Head Office"}, {"NTH", "North Branch"}, {"STH", "South Branch"}}},
    {"Category (CategoryId, CategoryDesc)",
     {{"MGT", "Management"}, {"EXE", "Executive"}, {"STF", "Staff"}, {"OPR", "Operations"}}},
    {"CessationCode (CessationCodeId, CessationDesc)",
     {{"RES", "Resigned"}, {"RET", "Retired"}, {"EOC", "End of contract"}}},
    {"Classification (ClassificationId, ClassificationDesc)",
     {{"PERM", "Permanent"}, {"CONT", "Contract"}, {"CAS", "Casual"}}},
    {"Department (DepartmentId, DepartmentDesc)",
     {{"ADM", "Administration"},
      {"ENG", "Engineering"},
      {"FIN", "Finance"},
      {"HRD", "Human Resources"},
      {"LOG", "Logistics"},
      {"PRD", "Production"},
      {"SAL", "Sales"}}},
    {"Section (SectionId, SectionDesc)",
     {{"ADM1", "Office Services"},
      {"ADM2", "Legal"},
      {"ENG1", "Maintenance"},
      {"ENG2", "Projects"},
      {"FIN1", "Accounts"},
      {"FIN2", "Treasury"},
      {"HRD1", "Recruitment"},
      {"HRD2", "Payroll"},
      {"LOG1", "Warehouse"},
      {"LOG2", "Transport"},
      {"PRD1", "Line One"},
      {"PRD2", "Line Two"},
      {"SAL1", "Domestic Accounts"},
      {"SAL2", "Export"}}},
    {"Position (PositionId, PositionDesc)",
     {{"DM", "Department Manager"},
      {"PM", "Project Manager"},
      {"SX", "Senior Executive"},
      {"EX", "Executive"},
      {"OF", "Officer"},
      {"AS", "Assistant"},
      {"TC", "Technician"},
      {"OP", "Operator"}}},
    {"SalaryGrade (SalaryGradeId, SalaryGradeDesc)",
     {{"G1", "Grade 1"}, {"G2", "Grade 2"}, {"G3", "Grade 3"}, {"G4", "Grade 4"}, {"G5", "Grade 5"}}},
    {"EmpLocation1 (EmpLocation1Id, EmpLocation1Desc)",
     {{"QUAY", "Quayside"}, {"HILL", "Hill Street"}, {"DEPOT", "Depot Road"}}},
    {"EmpCode1 (EmpCode1Id, EmpCode1Desc)", {{"LOC", "Local"}, {"EXP", "Expatriate"}}},
    {"EmpCode2 (EmpCode2Id, EmpCode2Desc)", {{"DAY", "Day work"}, {"SHF", "Shift work"}}},
    {"EmpCode3 (EmpCode3Id, EmpCode3Desc)", {{"SAV", "Savings plan"}}},
    {"EmpCode4 (EmpCode4Id, EmpCode4Desc)", {{"BUS", "Company bus"}, {"PRK", "Car park"}}},
    {"EmpCode5 (EmpCode5Id, EmpCode5Desc)", {{"AID", "First aider"}, {"FIRE", "Fire warden"}}},
    {"MaritalStatus (MaritalStatusId, MaritalStatusDesc)",
     {{"S", "Single"}, {"M", "Married"}, {"W", "Widowed"}}},
    {"Race (RaceId, RaceDesc)", {{"1", "Coastal"}, {"2", "Highland"}, {"3", "Islander"}}},
    {"Religion (ReligionId, ReligionDesc)", {{"N", "Not declared"}, {"D", "Declared"}}},
    {"Title (TitleId, TitleDesc)", {{"MR", "Mr"}, {"MS", "Ms"}, {"DR", "Dr"}}},
    {"BloodGroup (BloodGroupId, BloodGroupDesc)",
     {{"A", "Group A"}, {"B", "Group B"}, {"AB", "Group AB"}, {"O", "Group O"}}},
    {"IdentityType (IdentityTypeId, IdentityTypeDesc)", {{"NID", "National identity"}, {"PAS", "Passport"}}},
    {"PersonalType (PersonalTypeId, PersonalTypeDesc)",
     {{"EMP", "Employee"}, {"APP", "Applicant"}, {"CON", "Contractor"}}},
    {"CostCentre (CostCentreId, CostCentreDesc)",
     {{"CC100", "Overheads"}, {"CC200", "Plant"}, {"CC300", "Distribution"}, {"CC400", "Marketing"}}},
    {"ShiftTeam (ShiftTeamId, ShiftTeamDesc)", {{"A", "Team A"}, {"B", "Team B"}, {"C", "Team C"}}},
    {"JobCode (JobCodeId, JobCodeDesc)",
     {{"J100", "Packing"}, {"J200", "Loading"}, {"J300", "Machine cleaning"}, {"J400", "Stock count"}}},
    {"LeaveType (LeaveTypeId, LeaveTypeDesc)", {{"ANNUAL", "Annual leave"}, {"SICK", "Sick leave"}}},
    {"MovementType (MovementTypeId, MovementTypeDesc)",
     {{"HIRE", "Hired"}, {"CONFIRM", "Confirmed"}, {"TRANSFER", "Transferred"}, {"CEASE", "Ceased"}}},
};

const std::vector<DemoPayItem> kPayItems = {
    {"BASIC", "PayElement", "Basic pay"},
    {"BACKPAY", "PayElement", "Back pay"},
    {"BONUS", "PayElement", "Annual bonus"},
    {"HOUSING", "Allowance", "Housing"},
    {"MEAL", "Allowance", "Meal"},
    {"PHONE", "Allowance", "Telephone"},
    {"TRANSPORT", "Allowance", "Transport"},
    {"OT15", "OTRecord", "Overtime 1.5"},
    {"OT20", "OTRecord", "Overtime 2.0"},
    {"NIGHT", "ShiftRecord", "Night shift"},
    {"MEDICAL", "Reimbursement", "Medical claim"},
    {"LOAN", "Deduction", "Staff loan"},
    {"PENSION", "Deduction", "Pension"},
    {"TAX", "Deduction", "Tax"},
    {"UNION", "Deduction", "Union fee"},
    {"TSNORMAL", "TsPayElement", "Normal hours"},
    {"TSOVER", "TsOvertime", "Overtime hours"},
    {"TSMEAL", "TsAllowance", "Meal"},
};

struct AgeRange {
  std::string_view code;
  double from;
  double to;
};
constexpr AgeRange kAgeRanges[] = {
    {"18 to 29", 0, 30}, {"30 to 39", 30, 40}, {"40 to 49", 40, 50}, {"50 and over", 50, 200}};

void WritePayPeriods(SqliteWriter& writer) {
  DemoTable periods(
      writer, "PayPeriod (PayYear, PayPeriodNo, PeriodStart, PeriodEnd, PreviousYear, PreviousPeriodNo)");
  for (int year = kDemoYear - 1; year <= kDemoYear; ++year) {
    for (int month = 1; month <= 12; ++month) {
      periods.Insert({year, month, FirstDay(year, month), LastDay(year, month), month == 1 ? year - 1 : year,
                      month == 1 ? 12 : month - 1});
    }
  }
}

}  // namespace

const DemoPayItem& DemoPayItemOf(std::string_view id) {
  const auto found = std::find_if(kPayItems.begin(), kPayItems.end(),
                                  [id](const DemoPayItem& item) { return item.id == id; });
  if (found == kPayItems.end()) throw std::logic_error("no pay item " + std::string(id));
  return *found;
}

void WriteDemoCodes(SqliteWriter& writer) {
  DemoTable companies(writer, "Company (CompanyId, CompanyName, CompanyRegistrationNo)");
  companies.Insert({"001", "Harbourlight Foods", "H-2001-0417"});
  companies.Insert({"002", "Harbourlight Transport", "H-2009-1188"});
  for (const CodeTable& table : kCodeTables) {
    DemoTable rows(writer, table.table);
    for (const Code& code : table.codes) rows.Insert({code.id, code.desc});
  }
  DemoTable items(writer, "PayItem (PayItemId, PayItemKind, PayItemDesc)");
  for (const DemoPayItem& item : kPayItems) items.Insert({item.id, item.kind, item.desc});
  DemoTable runs(writer, "PayRun (PayRecId, PayRecType, PayRecSubPeriod, PayRunDesc)");
  runs.Insert({"MONTHEND", "Normal", 1, "Month-end pay"});
  runs.Insert({"BONUS", "Bonus", 2, "Annual bonus"});
  runs.Insert({"CORRECT", "Adjust", 1, "Corrections"});
  DemoTable(writer, "AnlysBasisPolicy (AnlysBasisPolicyId, AnlysBasisPolicyDesc)")
      .Insert({"AGE", "Age groups"});
  DemoTable ranges(writer,
                   "AnlysPolicyRange (AnlysBasisPolicyId, AnlysPolicyRangeCode, AnlysPolicyRangeFrom, "
                   "AnlysPolicyRangeTo)");
  for (const AgeRange& range : kAgeRanges) ranges.Insert({"AGE", range.code, range.from, range.to});
  WritePayPeriods(writer);
}

}  // namespace excelexp
