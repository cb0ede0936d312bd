#include <algorithm>

#include "demo/DemoCalendar.h"
#include "demo/DemoPayroll.h"
#include "demo/DemoPurposes.h"

namespace excelexp {
namespace {

constexpr std::string_view kJobs[] = {"J100", "J200", "J300", "J400"};

/// Writes the days of one employee and month.
class TimesheetWriter {
 public:
  explicit TimesheetWriter(SqliteWriter& writer) : writer_(writer) {}

  void Write(const DemoEmployee& employee, int month, const DemoWorkDay& day) {
    const std::int64_t rate = employee.RateOn(day.date);
    const std::int64_t normal = day.normal_halves * rate / 2;
    const std::int64_t over = day.over_halves * DemoOvertimeRate(rate) / 2;
    const std::int64_t total = normal + over + (day.meal ? kDemoMealCents : 0);
    days_.Insert({kDemoYear, month, employee.sys_id, day.job, day.date,
                  (day.normal_halves + day.over_halves) / 2.0, DemoAmount(total)});
    const auto item = [&](std::string_view id, double quantity, std::int64_t item_rate, std::int64_t cents) {
      items_.Insert({kDemoYear, month, employee.sys_id, day.job, day.date, id, quantity,
                     DemoAmount(item_rate), DemoAmount(cents)});
    };
    if (day.meal) item("TSMEAL", 1, kDemoMealCents, kDemoMealCents);
    item("TSNORMAL", day.normal_halves / 2.0, rate, normal);
    if (day.over_halves > 0) item("TSOVER", day.over_halves / 2.0, DemoOvertimeRate(rate), over);
  }

 private:
  SqliteWriter& writer_;
  DemoTable days_{writer_,
                  "TimesheetRecord (TsYear, TsPeriod, EmployeeSysId, JobCodeId, TsDate, TsHours, TsAmount)"};
  DemoTable items_{
      writer_,
      "TimesheetItem (TsYear, TsPeriod, EmployeeSysId, JobCodeId, TsDate, PayItemId, TsQuantity, "
      "TsRate, TsItemAmount)"};
};

}  // namespace

std::vector<DemoWorkDay> DrawDemoWorkDays(std::uint64_t seed, const DemoEmployee& employee, int month) {
  std::vector<DemoWorkDay> days;
  DemoRandom random(seed, employee.sys_id, kDrawTimesheet + month);
  for (DemoDay date = FirstDay(kDemoYear, month); date <= LastDay(kDemoYear, month);
       date += std::chrono::days(1)) {
    const bool weekend = std::chrono::weekday(date).iso_encoding() > 5;
    if (weekend || !random.Chance(45) || !employee.EmployedBetween(date, date)) continue;
    DemoWorkDay& day = days.emplace_back();
    day.date = date;
    day.job = random.Pick(kJobs);
    day.normal_halves = random.Between(8, 16);
    if (day.normal_halves == 16 && random.Chance(60)) day.over_halves = random.Between(1, 5);
    day.meal = day.normal_halves >= 12;
  }
  return days;
}

void WriteDemoTimesheets(SqliteWriter& writer, std::uint64_t seed,
                         const std::vector<DemoEmployee>& employees) {
  TimesheetWriter timesheets(writer);
  for (int month = kDemoFirstTimesheetMonth; month <= 12; ++month) {
    for (const DemoEmployee& employee : employees) {
      if (!employee.hourly) continue;
      for (const DemoWorkDay& day : DrawDemoWorkDays(seed, employee, month))
        timesheets.Write(employee, month, day);
    }
  }
}

}  // namespace excelexp
