#include <algorithm>

#include "demo/DemoCalendar.h"
#include "demo/DemoPayroll.h"
#include "demo/DemoPurposes.h"

namespace excelexp {
namespace {

constexpr int kAnnualHalves[] = {42, 36, 28, 28};  // by category, in half days
constexpr int kSickHalves = 28;

/// The day, or the Monday after it.
DemoDay WorkingDayFrom(DemoDay day) {
  while (std::chrono::weekday(day).iso_encoding() > 5) day += std::chrono::days(1);
  return day;
}

/// One employee's leave of the year: what is given, and what is taken as long as it lasts.
class LeaveOfYear {
 public:
  LeaveOfYear(SqliteWriter& writer) : writer_(writer) {}

  void Write(const DemoEmployee& employee, DemoRandom& random) {
    if (!employee.EmployedBetween(FirstDay(kDemoYear, 1), LastDay(kDemoYear, 12))) return;
    const bool newcomer = employee.hire >= FirstDay(kDemoYear, 1);
    const int months =
        newcomer
            ? 13 - static_cast<int>(static_cast<unsigned>(std::chrono::year_month_day(employee.hire).month()))
            : 12;
    const int brought = newcomer ? 0 : random.Below(11);
    const int annual = kAnnualHalves[static_cast<int>(employee.category)] * months / 12;
    given_.Insert({kDemoYear, employee.sys_id, "ANNUAL", brought / 2.0, annual / 2.0});
    given_.Insert({kDemoYear, employee.sys_id, "SICK", 0.0, kSickHalves / 2.0});
    annual_left_ = brought + annual;
    sick_left_ = kSickHalves;
    for (int month = 1; month <= 12; ++month) TakeInMonth(employee, month, random);
  }

 private:
  void TakeInMonth(const DemoEmployee& employee, int month, DemoRandom& random) {
    if (random.Chance(40))
      Take(employee, month, random.Between(1, 10), "ANNUAL", "Normal", random.Between(1, 6));
    if (random.Chance(12))
      Take(employee, month, random.Between(13, 22), "ANNUAL", "Adjust", random.Between(1, 2));
    if (random.Chance(15))
      Take(employee, month, random.Between(1, 26), "SICK", "Normal", random.Between(1, 3) * 2);
  }

  void Take(const DemoEmployee& employee, int month, int day, std::string_view type,
            std::string_view pay_rec_type, int halves) {
    int& left = type == "SICK" ? sick_left_ : annual_left_;
    const DemoDay date = WorkingDayFrom(DayOf(kDemoYear, month, day));
    if (halves > left || !employee.EmployedBetween(date, date)) return;
    left -= halves;
    // A single half day is the afternoon.
    const std::string from = IsoDate(date) + (halves == 1 ? " 13:30:00" : " 00:00:00");
    taken_.Insert({employee.sys_id, type, from, halves / 2.0, kDemoYear, month, pay_rec_type});
  }

  SqliteWriter& writer_;
  int annual_left_ = 0;
  int sick_left_ = 0;
  DemoTable given_{writer_,
                   "LeaveEntitlement (LeaveYear, EmployeeSysId, LeaveTypeId, BroughtForward, Entitlement)"};
  DemoTable taken_{
      writer_,
      "LeaveRecord (EmployeeSysId, LeaveTypeId, LeaveFrom, LeaveDays, LeaveYear, LeavePeriod, PayRecType)"};
};

}  // namespace

void WriteDemoLeave(SqliteWriter& writer, std::uint64_t seed, const std::vector<DemoEmployee>& employees) {
  LeaveOfYear leave(writer);
  for (const DemoEmployee& employee : employees) {
    DemoRandom random(seed, employee.sys_id, kDrawLeave);
    leave.Write(employee, random);
  }
}

}  // namespace excelexp
