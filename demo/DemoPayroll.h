#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "demo/DemoPeople.h"

namespace excelexp {

/// A day's work of an hourly paid employee. Hours are counted in halves.
struct DemoWorkDay {
  DemoDay date;
  std::string_view job;
  int normal_halves = 0;
  int over_halves = 0;
  bool meal = false;
};

/// What an hourly paid employee works in a month of the demo's year.
std::vector<DemoWorkDay> DrawDemoWorkDays(std::uint64_t seed, const DemoEmployee& employee, int month);

inline constexpr std::int64_t kDemoMealCents = 800;
/// Cents for an overtime hour; rates are multiples of four, so that no half hour costs a broken cent.
inline std::int64_t DemoOvertimeRate(std::int64_t rate) {
  return rate * 3 / 2;
}

/// The first month whose timesheets are kept beside the pay they led to.
inline constexpr int kDemoFirstTimesheetMonth = 10;

/// Writes twelve months of pay records with their items and payments, in the order of their keys. `tick` is
/// called once for each employee and month.
void WriteDemoPayroll(SqliteWriter& writer, std::uint64_t seed, const std::vector<DemoEmployee>& employees,
                      const std::function<void()>& tick);

/// Writes the timesheets of the last months.
void WriteDemoTimesheets(SqliteWriter& writer, std::uint64_t seed,
                         const std::vector<DemoEmployee>& employees);

/// Writes the year's leave entitlements and the leave taken.
void WriteDemoLeave(SqliteWriter& writer, std::uint64_t seed, const std::vector<DemoEmployee>& employees);

}  // namespace excelexp
