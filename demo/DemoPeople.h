#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "demo/DemoTable.h"

namespace excelexp {

enum class DemoCategory { kManagement, kExecutive, kStaff, kOperations };
enum class DemoPayment { kCash, kCheque, kBank };

/// A pay item an employee has every month. Amounts of money in the generator are cents.
struct DemoFixedItem {
  std::string_view item;
  std::int64_t cents = 0;
};

/// One employment, as far as other parts of the demo need to know it.
struct DemoEmployee {
  int sys_id = 0;  ///< also the person's
  std::string employee_id;
  std::string name;
  bool male = false;
  DemoCategory category = DemoCategory::kStaff;
  bool hourly = false;  ///< paid for the hours of the timesheets
  bool shifts = false;
  std::string_view company;
  std::string_view department;
  std::string_view section;
  std::string_view position;
  DemoDay birth;
  DemoDay hire;
  int probation_months = 3;
  std::optional<DemoDay> confirmed;
  std::optional<DemoDay> ceased;
  std::optional<DemoDay> transferred;  ///< into `department`
  std::string_view former_department;  ///< "" when never transferred
  std::optional<DemoDay> raised;
  std::int64_t first_rate = 0;  ///< cents a month, or an hour; before the raise
  std::int64_t rate = 0;
  std::vector<DemoFixedItem> fixed_items;
  DemoPayment payment = DemoPayment::kBank;
  bool second_account = false;

  std::int64_t RateOn(DemoDay day) const { return raised && day < *raised ? first_rate : rate; }
  bool EmployedBetween(DemoDay first, DemoDay last) const {
    return hire <= last && (!ceased || *ceased >= first);
  }
};

/// Employees 1 to `count`; each depends on the seed and its own number only.
std::vector<DemoEmployee> DrawDemoEmployees(std::uint64_t seed, int count);

/// Writes the employees with their persons, families, careers and assignments, and some persons who are no
/// employees (numbered after the employees).
void WriteDemoPeople(SqliteWriter& writer, std::uint64_t seed, const std::vector<DemoEmployee>& employees);

}  // namespace excelexp
