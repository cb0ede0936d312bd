#pragma once

#include <string>
#include <vector>

namespace excelexp {

class SqliteConnection;

/// One step of how the database goes about a statement, in the words of EXPLAIN QUERY PLAN.
struct PlanStep {
  int depth;  ///< 0 for the loops of the statement itself
  std::string text;
  friend bool operator==(const PlanStep&, const PlanStep&) = default;
};

/// The steps in order. Whether an index has all columns is left out: it makes no difference to the rows.
/// Throws DatabaseError, with that text, for a statement that does not compile.
std::vector<PlanStep> PlanOf(const SqliteConnection& connection, const std::string& sql);

/// Whether the database makes an index for one run of the statement. It holds the columns that the statement
/// reads, and gives rows of equal keys in the order of those.
bool HasAutomaticIndex(const std::vector<PlanStep>& plan);

}  // namespace excelexp
