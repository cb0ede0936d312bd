#pragma once

#include <string>
#include <string_view>

#include "engine/BExcelExpEngCore.h"

namespace excelexp {

/// The people that an employee information report is about. The user's view table has a column of the id's
/// name.
struct Population {
  std::string_view table;
  std::string_view id;
  int by_employee;  ///< which rules of BExcelExpEngCalcFields apply
};

inline constexpr Population kEmployees = {"Employee", "EmployeeSysId", 1};
inline constexpr Population kPersons = {"Personal", "PersonalSysId", 0};

/// "Employee.EmployeeSysId".
std::string QualifiedId(const Population& population);

/// The condition that keeps the people whom the user may see.
std::string InView(const BExcelExpEngCore* core, const Population& population);
/// The same for statements that select few people: it asks the view for each `id` (an expression) alone
/// instead of reading it whole, so that its cost does not grow with the number of people in the view.
std::string InViewOneByOne(const BExcelExpEngCore* core, const Population& population, const std::string& id);

/// The stored condition of a report that has a filter, else "". In parentheses: an OR inside it must not let
/// anybody past the conditions beside it.
std::string FilterCondition(int has_filter, const std::string& condition);

}  // namespace excelexp
