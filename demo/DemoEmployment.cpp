#include <array>
#include <cstdio>
#include <iterator>

#include "demo/DemoCalendar.h"
#include "demo/DemoPeople.h"
#include "demo/DemoPurposes.h"
#include "demo/DemoRandom.h"

namespace excelexp {
namespace {

using Category = DemoCategory;

// What an employee is by number: every kind is there in the smallest demo, and in the same shares in the
// largest.
struct Role {
  Category category;
  bool hourly;
};
constexpr Role kRoles[] = {{Category::kManagement, false}, {Category::kExecutive, false},
                           {Category::kStaff, false},      {Category::kOperations, false},
                           {Category::kStaff, false},      {Category::kOperations, false},
                           {Category::kExecutive, false},  {Category::kOperations, true}};
constexpr int kRoleCount = static_cast<int>(std::size(kRoles));

// What a category earns and where it works. Rates are in tens of the currency a month.
struct Terms {
  int lowest_rate;
  int highest_rate;
  int probation_months;
  std::string_view positions[2];
};
const Terms& TermsOf(Category category) {
  static constexpr Terms kManagement = {700, 1400, 6, {"DM", "PM"}};
  static constexpr Terms kExecutive = {400, 700, 6, {"SX", "EX"}};
  static constexpr Terms kStaff = {240, 400, 3, {"OF", "AS"}};
  static constexpr Terms kOperations = {180, 280, 3, {"TC", "OP"}};
  switch (category) {
    case Category::kManagement:
      return kManagement;
    case Category::kExecutive:
      return kExecutive;
    case Category::kStaff:
      return kStaff;
    case Category::kOperations:
      break;
  }
  return kOperations;
}

constexpr std::string_view kDepartments[] = {"ADM", "ENG", "FIN", "HRD", "LOG", "PRD", "SAL"};
constexpr std::string_view kPlantDepartments[] = {"PRD", "LOG", "ENG"};

struct Sections {
  std::string_view department;
  std::string_view sections[2];
};
constexpr Sections kSections[] = {{"ADM", {"ADM1", "ADM2"}}, {"ENG", {"ENG1", "ENG2"}},
                                  {"FIN", {"FIN1", "FIN2"}}, {"HRD", {"HRD1", "HRD2"}},
                                  {"LOG", {"LOG1", "LOG2"}}, {"PRD", {"PRD1", "PRD2"}},
                                  {"SAL", {"SAL1", "SAL2"}}};

constexpr std::string_view kWomen[] = {"Adela", "Berit",    "Corinna", "Delia", "Elin",   "Fenna",  "Greta",
                                       "Hedda", "Ilona",    "Jorun",   "Katya", "Lavina", "Mirela", "Nadira",
                                       "Orla",  "Pernille", "Rhona",   "Senta", "Tamsin", "Ylva"};
constexpr std::string_view kMen[] = {"Anselm",  "Bastian", "Caspar",  "Dorian", "Emrik",  "Florin", "Gideon",
                                     "Halvard", "Ivo",     "Joachim", "Kester", "Lorens", "Matteo", "Nils",
                                     "Osmund",  "Piran",   "Ruben",   "Soren",  "Tobias", "Viktor"};
constexpr std::string_view kFamilies[] = {
    "Abernell",       "Brandtow",   "Castellor", "Dunmere",   "Eskelund",     "Farrowby",
    "Grimsen",        "Halloway",   "Ingersund", "Jarlsby",   "Kestrelton",   "Lindqvale",
    "Marchetti-Lowe", "Norrington", "Oakhaven",  "Pellworth", "Quillfeather", "Ravensdal",
    "Silverthorn",    "Thornbury",  "Underhay",  "Vantorre",  "Westergard",   "Yardleigh"};

void DrawPerson(DemoEmployee& employee, std::uint64_t seed) {
  DemoRandom random(seed, employee.sys_id, kDrawName);
  employee.male = random.Chance(50);
  employee.name = employee.male ? random.Pick(kMen) : random.Pick(kWomen);
  employee.name += " ";
  employee.name += random.Pick(kFamilies);
  std::array<char, 16> id{};
  std::snprintf(id.data(), id.size(), "E%05d", employee.sys_id);
  employee.employee_id = id.data();
}

void DrawWorkplace(int number, DemoEmployee& employee, DemoRandom& random) {
  const bool plant = employee.category == Category::kOperations;
  // In turn, so that no department of a small demo is empty.
  employee.department = plant ? kPlantDepartments[number / 2 % std::size(kPlantDepartments)]
                              : kDepartments[(number + number / kRoleCount) % std::size(kDepartments)];
  employee.company = random.Chance(35) ? "002" : "001";
  employee.position = random.Pick(TermsOf(employee.category).positions);
  for (const Sections& sections : kSections) {
    if (sections.department == employee.department) employee.section = random.Pick(sections.sections);
  }
}

// Hourly rates in steps of four cents: half an hour, at once and a half, is a whole number of cents.
constexpr std::int64_t kHourlyStep = 4;

/// Days from hiring to leaving; the year paid sees newcomers, leavers and transfers.
void DrawDates(DemoEmployee& employee, DemoRandom& random) {
  const bool newcomer = employee.category != Category::kManagement && random.Chance(15);
  employee.hire =
      newcomer ? DrawDay(random, kDemoYear, kDemoYear) : DrawDay(random, kDemoYear - 14, kDemoYear - 1);
  const int hire_year = static_cast<int>(std::chrono::year_month_day(employee.hire).year());
  employee.birth = DrawDay(random, hire_year - 42, hire_year - 20);
  if (!newcomer && random.Chance(10)) employee.ceased = DrawDay(random, kDemoYear, kDemoYear);
  employee.probation_months = TermsOf(employee.category).probation_months;
  const DemoDay due = MonthsLater(employee.hire, employee.probation_months);
  if (due <= LastDay(kDemoYear, 12) && (!employee.ceased || due < *employee.ceased)) employee.confirmed = due;
  if (hire_year < kDemoYear - 1 && random.Chance(15)) {
    const DemoDay day = MonthsLater(FirstDay(kDemoYear - 1, 7), random.Below(16));
    const std::string_view former = random.Pick(kDepartments);
    if (former != employee.department && (!employee.ceased || day < *employee.ceased)) {
      employee.transferred = day;
      employee.former_department = former;
    }
  }
}

void DrawRates(DemoEmployee& employee, DemoRandom& random) {
  const Terms& terms = TermsOf(employee.category);
  employee.first_rate = employee.hourly
                            ? random.Between(1100, 1600)
                            : std::int64_t{random.Between(terms.lowest_rate, terms.highest_rate)} * 1000;
  employee.rate = employee.first_rate;
  if (employee.hire < DayOf(kDemoYear - 1, 10, 1) && random.Chance(70)) {
    employee.raised = FirstDay(kDemoYear, 4);
    employee.rate = employee.first_rate * (100 + random.Between(2, 5)) / 100;
  }
  if (employee.hourly) {
    employee.first_rate -= employee.first_rate % kHourlyStep;
    employee.rate -= employee.rate % kHourlyStep;
  }
}

void DrawFixedItems(DemoEmployee& employee, DemoRandom& random) {
  const auto add = [&](std::string_view item, int lowest, int highest) {
    employee.fixed_items.push_back({item, std::int64_t{random.Between(lowest, highest)} * 100});
  };
  const bool office = employee.category == Category::kManagement || employee.category == Category::kExecutive;
  if (employee.category == Category::kManagement) add("HOUSING", 600, 1500);
  if (!office && !employee.hourly) add("MEAL", 60, 120);
  if (employee.category == Category::kManagement || (office && random.Chance(50))) add("PHONE", 40, 90);
  if (office) add("TRANSPORT", 150, 400);
  if (!employee.hourly && random.Chance(15)) add("LOAN", 100, 250);
  if (!office && random.Chance(50)) add("UNION", 9, 9);
}

DemoPayment PaymentOf(int number, const DemoEmployee& employee) {
  const int round = number / kRoleCount;
  if (employee.hourly) return static_cast<DemoPayment>(round % 3);
  return employee.category == Category::kStaff && round % 4 == 1 ? DemoPayment::kCheque : DemoPayment::kBank;
}

DemoEmployee DrawEmployee(std::uint64_t seed, int number) {
  DemoEmployee employee;
  employee.sys_id = number + 1;
  const Role& role = kRoles[number % kRoleCount];
  employee.category = role.category;
  employee.hourly = role.hourly;
  employee.shifts = role.category == Category::kOperations && !role.hourly;
  DrawPerson(employee, seed);
  DemoRandom random(seed, employee.sys_id, kDrawEmployment);
  DrawWorkplace(number, employee, random);
  DrawDates(employee, random);
  DrawRates(employee, random);
  DrawFixedItems(employee, random);
  employee.payment = PaymentOf(number, employee);
  employee.second_account = employee.payment == DemoPayment::kBank && random.Chance(30);
  return employee;
}

}  // namespace

std::vector<DemoEmployee> DrawDemoEmployees(std::uint64_t seed, int count) {
  std::vector<DemoEmployee> employees;
  employees.reserve(static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) employees.push_back(DrawEmployee(seed, number));
  return employees;
}

}  // namespace excelexp
