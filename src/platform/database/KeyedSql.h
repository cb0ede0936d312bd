#pragma once

#include <cstddef>
#include <functional>
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

/// When a statement that is sent for one key after the other is to be read for all keys: once it was sent
/// often, and for one key in so many.
class KeyDemand {
 public:
  /// How many keys there are, or more; nullopt when the statement is not one for a key.
  using CountKeys = std::function<std::optional<std::size_t>()>;
  /// Notes that one more key is asked for. True once, when all are to be read. An error of `count` is its
  /// caller's; then, and after nullopt, they never are.
  bool IsDue(const CountKeys& count);
  /// How many keys were counted, at least 1.
  std::size_t Keys() const { return keys_; }

 private:
  std::size_t asked_ = 0;
  std::size_t keys_ = 0;  // 0: not counted yet
  bool is_settled_ = false;
};

/// Whether the database finds the rows of each key in the way of the statement for a single key, and so in
/// the same order. `all` may begin with how the keys are found. When subqueries are looked at makes no
/// difference.
bool FindsRowsAlike(const std::vector<PlanStep>& single, const std::vector<PlanStep>& all);

/// The plan of what stands last in the plan, a subquery.
std::vector<PlanStep> PlanOfLast(const std::vector<PlanStep>& plan);

}  // namespace excelexp
