#include "demo/DemoPeople.h"

#include <algorithm>

#include "demo/DemoCalendar.h"
#include "demo/DemoPurposes.h"
#include "demo/DemoRandom.h"

namespace excelexp {
namespace {

constexpr std::string_view kCategoryIds[] = {"MGT", "EXE", "STF", "OPR"};
constexpr std::string_view kGrades[] = {"G5", "G4", "G2", "G1"};
constexpr std::string_view kCourses[] = {"Safety at work", "Spreadsheet basics", "Team leadership",
                                         "Forklift licence"};
struct GivenName {
  std::string_view name;
  bool male;
};
constexpr GivenName kGivenNames[] = {{"Aron", true},  {"Bea", false},   {"Carl", true}, {"Dina", false},
                                     {"Edda", false}, {"Finn", true},   {"Gus", true},  {"Hanne", false},
                                     {"Isak", true},  {"Jolie", false}, {"Kuno", true}, {"Lotte", false}};
constexpr std::string_view kOutsiders[] = {"Outerbridge", "Farnaway", "Strangeways", "Beckonridge"};

std::string_view CategoryId(const DemoEmployee& employee) {
  return kCategoryIds[static_cast<int>(employee.category)];
}

/// An address nobody has: example.com is reserved for examples (RFC 2606).
std::string EmailOf(const std::string& name, int sys_id) {
  std::string address;
  for (const char c : name) address += c == ' ' ? '.' : c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return address + std::to_string(sys_id) + "@example.com";
}

std::string FamilyNameOf(const std::string& name) {
  return name.substr(name.find(' ') + 1);
}

/// The tables about people, open for writing.
class PeopleWriter {
 public:
  PeopleWriter(SqliteWriter& writer, std::uint64_t seed) : seed_(seed), writer_(writer) {}

  void WriteEmployee(const DemoEmployee& employee) {
    WritePersonOf(employee);
    WriteEmployment(employee);
    WriteFamily(employee);
    WriteCareer(employee);
    WriteAssignments(employee);
    WriteMovements(employee);
  }

  /// An applicant or a contractor: a person without an employment.
  void WriteOutsider(int sys_id) {
    DemoRandom random(seed_, sys_id, kDrawOutsider);
    const GivenName& given = random.Pick(kGivenNames);
    const std::string name = std::string(given.name) + " " + std::string(random.Pick(kOutsiders));
    personal_.Insert({sys_id, name, "X" + std::to_string(700000 + sys_id), "PAS",
                      sys_id % 2 == 0 ? "APP" : "CON", given.male ? "1" : "0", DrawDay(random, 1970, 2003),
                      given.male ? "MR" : "MS", "S", std::to_string(random.Between(1, 3)), "N", std::nullopt,
                      EmailOf(name, sys_id)});
  }

 private:
  void WritePersonOf(const DemoEmployee& employee) {
    DemoRandom random(seed_, employee.sys_id, kDrawPerson);
    static constexpr std::string_view kBlood[] = {"A", "B", "AB", "O"};
    const bool married = random.Chance(60);
    std::optional<std::string_view> blood;
    if (random.Chance(80)) blood = random.Pick(kBlood);
    personal_.Insert({employee.sys_id, employee.name, "N" + std::to_string(400000 + employee.sys_id), "NID",
                      "EMP", employee.male ? "1" : "0", employee.birth, employee.male ? "MR" : "MS",
                      married ? "M" : "S", std::to_string(random.Between(1, 3)),
                      random.Chance(70) ? "N" : "D", blood, EmailOf(employee.name, employee.sys_id)});
  }

  void WriteEmployment(const DemoEmployee& employee) {
    DemoRandom random(seed_, employee.sys_id, kDrawWorkDetails);
    static constexpr std::string_view kBranches[] = {"HQ", "NTH", "STH"};
    static constexpr std::string_view kLocations[] = {"QUAY", "HILL", "DEPOT"};
    static constexpr std::string_view kReasons[] = {"RES", "RES", "EOC"};
    const auto code = [&random](int percent, std::string_view id) {
      return random.Chance(percent) ? std::optional(id) : std::nullopt;
    };
    const std::optional<std::string_view> reason =
        employee.ceased ? std::optional(random.Pick(kReasons)) : std::nullopt;
    const std::string updated = IsoDate(LastDay(kDemoYear, random.Between(10, 12)));
    employee_.Insert({employee.sys_id,
                      employee.sys_id,
                      employee.employee_id,
                      employee.name,
                      employee.company,
                      random.Pick(kBranches),
                      employee.department,
                      employee.section,
                      employee.position,
                      CategoryId(employee),
                      employee.hourly ? "CAS" : "PERM",
                      kGrades[static_cast<int>(employee.category)],
                      random.Pick(kLocations),
                      random.Chance(90) ? "LOC" : "EXP",
                      employee.shifts ? "SHF" : "DAY",
                      code(40, "SAV"),
                      code(30, "BUS"),
                      code(10, "AID"),
                      reason,
                      employee.hire,
                      employee.probation_months,
                      employee.confirmed,
                      employee.ceased,
                      random.Chance(20) ? random.Between(1, 10) / 2.0 : 0.0,
                      employee.hourly ? "Hourly" : "Monthly",
                      DemoAmount(employee.rate),
                      random.Between(-1, 1),
                      employee.category == DemoCategory::kOperations ? 1 : 0,
                      employee.shifts ? "07:00:00" : "08:30:00",
                      random.Chance(50) ? updated + " 17:05:00" : updated + " 00:00:00"});
  }

  void WriteFamily(const DemoEmployee& employee) {
    DemoRandom random(seed_, employee.sys_id, kDrawFamily);
    const std::string family_name = " " + FamilyNameOf(employee.name);
    const int birth_year = static_cast<int>(std::chrono::year_month_day(employee.birth).year());
    if (random.Chance(35)) return;
    family_.Insert({++family_count_, employee.sys_id, (employee.male ? "Vera" : "Hugo") + family_name,
                    "Spouse", DrawDay(random, birth_year - 4, birth_year + 4), employee.male ? "0" : "1"});
    const int last_year = std::min(birth_year + 36, kDemoYear);
    if (birth_year + 24 > last_year) return;
    for (int child = random.Below(4); child > 0; --child) {
      const GivenName& given = random.Pick(kGivenNames);
      family_.Insert({++family_count_, employee.sys_id, std::string(given.name) + family_name, "Child",
                      DrawDay(random, birth_year + 24, last_year), given.male ? "1" : "0"});
    }
  }

  void WriteCareer(const DemoEmployee& employee) {
    career_.Insert({employee.sys_id, employee.hire, employee.raised ? 0 : 1, employee.position,
                    DemoAmount(employee.first_rate)});
    if (employee.raised) {
      career_.Insert({employee.sys_id, *employee.raised, 1, employee.position, DemoAmount(employee.rate)});
    }
    for (const DemoFixedItem& fixed : employee.fixed_items) {
      fixed_items_.Insert({employee.sys_id, fixed.item, DemoAmount(fixed.cents)});
    }
  }

  void WriteAssignments(const DemoEmployee& employee) {
    DemoRandom random(seed_, employee.sys_id, kDrawAssignments);
    static constexpr std::string_view kCentres[] = {"CC100", "CC200", "CC300", "CC400"};
    if (!random.Chance(15)) {
      const int centre = random.Below(3);
      const bool shared = random.Chance(25);
      centres_.Insert({employee.sys_id, kCentres[centre], shared ? 70.0 : 100.0});
      if (shared) centres_.Insert({employee.sys_id, kCentres[centre + 1], 30.0});
    }
    static constexpr std::string_view kTeams[] = {"A", "B", "C"};
    if (employee.shifts) teams_.Insert({employee.sys_id, employee.hire, random.Pick(kTeams)});
    for (int year = kDemoYear - 2; year <= kDemoYear; ++year) {
      if (employee.hire < FirstDay(year, 1))
        wage_parts_.Insert({employee.sys_id, year, random.Between(1, 5) / 2.0});
    }
    if (random.Chance(40)) {
      const bool percentage = random.Chance(50);
      training_.Insert({employee.sys_id, DrawDay(random, kDemoYear, kDemoYear), random.Pick(kCourses),
                        random.Between(2, 20) * 50.0, percentage ? 0 : 1, percentage ? 80.0 : 250.0,
                        random.Below(2), random.Between(1, 5) * 10.0});
    }
  }

  void WriteMovements(const DemoEmployee& employee) {
    const std::string_view first = employee.transferred ? employee.former_department : employee.department;
    const auto department_on = [&](DemoDay day) {
      return employee.transferred && day >= *employee.transferred ? employee.department : first;
    };
    movements_.Insert({employee.sys_id, employee.hire, "HIRE", std::nullopt, first});
    if (employee.confirmed) {
      const std::string_view department = department_on(*employee.confirmed);
      movements_.Insert({employee.sys_id, *employee.confirmed, "CONFIRM", std::nullopt, department});
    }
    if (employee.transferred) {
      movements_.Insert({employee.sys_id, *employee.transferred, "TRANSFER", first, employee.department});
    }
    if (employee.ceased) {
      movements_.Insert({employee.sys_id, *employee.ceased, "CEASE", employee.department, std::nullopt});
    }
  }

  std::uint64_t seed_;
  SqliteWriter& writer_;
  int family_count_ = 0;
  DemoTable personal_{
      writer_,
      "Personal (PersonalSysId, PersonalName, IdentityNo, IdentityTypeId, PersonalTypeId, Gender, "
      "DateOfBirth, TitleId, MaritalStatusId, RaceId, ReligionId, BloodGroupId, PersonalEmail)"};
  DemoTable employee_{
      writer_,
      "Employee (EmployeeSysId, PersonalSysId, EmployeeId, EmployeeName, CompanyId, BranchId, DepartmentId, "
      "SectionId, PositionId, CategoryId, ClassificationId, SalaryGradeId, EmpLocation1Id, EmpCode1Id, "
      "EmpCode2Id, "
      "EmpCode3Id, EmpCode4Id, EmpCode5Id, CessationCodeId, HireDate, ProbationMonths, ConfirmDate, "
      "CessationDate, "
      "PreviousSvcYear, BasicRateType, BasicRate, CPFMAWOption, IsUnionMember, WorkStartTime, "
      "RecordUpdated)"};
  DemoTable family_{
      writer_,
      "Family (FamilySysId, PersonalSysId, FamilyMemberName, FamilyRelation, FamilyBirthDate, Gender)"};
  DemoTable career_{writer_,
                    "EmployeeCareer (EmployeeSysId, CareerEffectiveDate, CareerCurrent, CareerPositionId, "
                    "CareerBasicRate)"};
  DemoTable fixed_items_{writer_, "EmployeePayItem (EmployeeSysId, PayItemId, MonthlyAmount)"};
  DemoTable centres_{writer_, "EmployeeCostCentre (EmployeeSysId, CostCentreId, CostCentrePercent)"};
  DemoTable teams_{writer_, "EmployeeShiftTeam (EmployeeSysId, ShiftTeamFrom, ShiftTeamId)"};
  DemoTable wage_parts_{writer_, "EmployeeMVC (EmployeeSysId, MVCYear, MVCPercent)"};
  DemoTable training_{
      writer_,
      "EmployeeTraining (EmployeeSysId, TrainingDate, TrainingCourse, TrainingFee, SponsorType, "
      "SponsorValue, GovGrantType, GovGrantValue)"};
  DemoTable movements_{
      writer_,
      "StaffMovement (EmployeeSysId, MovementDate, MovementTypeId, FromDepartmentId, ToDepartmentId)"};
};

}  // namespace

void WriteDemoPeople(SqliteWriter& writer, std::uint64_t seed, const std::vector<DemoEmployee>& employees) {
  PeopleWriter people(writer, seed);
  for (const DemoEmployee& employee : employees) people.WriteEmployee(employee);
  const int count = static_cast<int>(employees.size());
  for (int outsider = 1; outsider <= count / 6 + 1; ++outsider) people.WriteOutsider(count + outsider);
}

}  // namespace excelexp
