#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/QueryPlan.h"
#include "platform/database/TableShape.h"

namespace excelexp {

/// A statement that is run for one key after the other, "... WHERE Employee.EmployeeSysId = ?1", rewritten
/// for all keys at once: to run it for each of them costs several times what its rows cost.
struct KeyedSql {
  /// The name of the derived table of the keys, and of its only column. No table of a database is called so.
  static constexpr std::string_view kKeys = "excelexp_key";

  std::string text;   ///< the statement with a column of kKeys in place of the parameters
  std::string keys;   ///< "(SELECT ...) AS excelexp_key"
  std::string count;  ///< a statement that counts the keys, or more than there are
  /// For "SELECT ... FROM table WHERE column = ?1": each key of that table, and what is selected of its row,
  /// in one walk through it. Sound when the column tells the rows apart. "" for any other statement.
  std::string walk;

  /// With `first_only`, ?1 is the key and other parameters stay. nullopt when a key is more than compared
  /// with a column of a table, or there is none.
  static std::optional<KeyedSql> Of(std::string_view sql, bool first_only, const FindTable& find_table);
};

/// Whether the database finds the rows of each key in the way of the statement for a single key, and so in
/// the same order. `all` may begin with how the keys are found. When subqueries are looked at makes no
/// difference.
bool FindsRowsAlike(const std::vector<PlanStep>& single, const std::vector<PlanStep>& all);

/// The plan of what stands last in the plan, a subquery.
std::vector<PlanStep> PlanOfLast(const std::vector<PlanStep>& plan);

}  // namespace excelexp
