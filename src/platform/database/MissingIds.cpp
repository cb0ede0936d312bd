#include "platform/database/MissingIds.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/Names.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlClauses.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

using Tokens = std::vector<SqlToken>;

/// What is greater than, or equal to, the least number is there. The database does not see of IS NOT NULL
/// that it makes an outer join an inner one.
constexpr std::string_view kIsThere = " >= -9e999";

/// The conditions of the WHERE at the token, up to where its select ends or goes on. None where an AND may
/// stand for something else than another condition.
std::vector<TokenSpan> ConditionsOf(const Tokens& tokens, std::size_t where) {
  constexpr std::array<std::string_view, 8> kNext = {"group", "order",  "having",    "limit",
                                                     "union", "window", "intersect", "except"};
  std::size_t end = where + 1;
  while (end < tokens.size() && !tokens[end].IsMark(')') &&
         std::ranges::none_of(kNext, [&](std::string_view word) { return tokens[end].IsWord(word); })) {
    end = EndOfParentheses(tokens, end);
  }
  const TokenSpan all = {where + 1, end};
  if (FindWord(tokens, all, "case") < end || FindWord(tokens, all, "between") < end) return {};
  return SplitSpan(tokens, all, [](const SqlToken& token) { return token.IsWord("and"); });
}

/// Whether the condition is "column IN (SELECT Id FROM V)" with an integer Id.
bool IsInList(const Tokens& tokens, const TokenSpan& condition, const FindTable& find_table) {
  constexpr std::size_t kListSize = 7;  // IN ( SELECT Id FROM V )
  if (condition.Size() <= kListSize) return false;
  const std::size_t in = condition.end - kListSize;
  const bool is_list = tokens[in].IsWord("in") && tokens[in + 1].IsMark('(') &&
                       tokens[in + 2].IsWord("select") && tokens[in + 3].IsName() &&
                       tokens[in + 4].IsWord("from") && tokens[in + 5].IsName() && tokens[in + 6].IsMark(')');
  if (!is_list || !IsColumnName(tokens, {condition.begin, in})) return false;
  const TableShape* const view = find_table(NameOf(tokens[in + 5]));
  const TableShape::Column* const id = view == nullptr ? nullptr : view->Find(NameOf(tokens[in + 3]));
  return id != nullptr && FoldName(id->declared_type).find("int") != std::string::npos;
}

std::string Rewritten(const std::string& sql, const FindTable& find_table) {
  const Tokens tokens = TokenizeSql(sql);
  std::string rewritten;
  std::size_t copied = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!tokens[i].IsWord("where")) continue;
    for (const TokenSpan& condition : ConditionsOf(tokens, i)) {
      if (!IsInList(tokens, condition, find_table)) continue;
      const std::size_t close = tokens[condition.end - 1].begin;
      if (close < copied) return sql;
      rewritten.append(sql, copied, close - copied);
      rewritten.append(" WHERE ").append(tokens[condition.end - 4].text).append(kIsThere);
      copied = close;
    }
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
