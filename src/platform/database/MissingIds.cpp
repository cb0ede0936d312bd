#include "platform/database/MissingIds.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/InLists.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

/// What is greater than, or equal to, the least number is there. The database does not see of IS NOT NULL
/// that it makes an outer join an inner one.
constexpr std::string_view kIsThere = " >= -9e999";

std::string Rewritten(const std::string& sql, const FindTable& find_table) {
  const std::vector<SqlToken> tokens = TokenizeSql(sql);
  std::string rewritten;
  std::size_t copied = 0;
  for (const InList& list : InListsOf(tokens, find_table)) {
    const std::size_t close = tokens[list.close].begin;
    if (close < copied) return sql;
    rewritten.append(sql, copied, close - copied);
    rewritten.append(" WHERE ").append(tokens[list.id].text).append(kIsThere);
    copied = close;
  }
  return rewritten.append(sql, copied);
}

/// The plan without what is below its lists.
std::vector<PlanStep> WithoutLists(const std::vector<PlanStep>& plan) {
  std::vector<PlanStep> rest;
  bool in_list = false;
  for (const PlanStep& step : plan) {
    if (in_list && step.depth > rest.back().depth) continue;
    in_list = step.text.starts_with("LIST SUBQUERY");
    rest.push_back(step);
  }
  return rest;
}

std::ptrdiff_t OuterJoins(const std::vector<PlanStep>& plan) {
  return std::ranges::count_if(plan, [](const PlanStep& step) { return step.text.ends_with("LEFT-JOIN"); });
}

}  // namespace

std::string LeaveOutMissingIds(const std::string& sql, const SqliteConnection& connection,
                               const FindTable& find_table) {
  std::string rewritten = Rewritten(sql, find_table);
  if (rewritten == sql) return sql;
  try {
    const std::vector<PlanStep> plan = PlanOf(connection, sql);
    if (OuterJoins(plan) == 0) return sql;
    const std::vector<PlanStep> shorter = PlanOf(connection, rewritten);
    if (OuterJoins(shorter) < OuterJoins(plan) && WithoutLists(shorter) == WithoutLists(plan))
      return rewritten;
  } catch (const DatabaseError&) {
    // Of the statement as it is the caller will be told what is wrong.
  }
  return sql;
}

}  // namespace excelexp
