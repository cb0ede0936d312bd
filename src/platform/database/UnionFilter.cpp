#include "platform/database/UnionFilter.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/Names.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlClauses.h"

namespace excelexp {
namespace {

// With one of these, outside of its subselects, a statement has more behind its FROM than conditions between
// ANDs.
constexpr std::array<std::string_view, 11> kOtherClauses = {
    "group", "having", "limit", "window", "order", "union", "intersect", "except", "or", "between", "case"};

/// "(SELECT * FROM table UNION SELECT ...) AS name" in a FROM clause.
struct United {
  std::string_view table;  ///< as written
  std::string name;
  std::size_t union_word;
};

class UnionFilter {
 public:
  explicit UnionFilter(std::string_view sql) : sql_(sql), tokens_(TokenizeSql(sql)) {}

  /// The tables that the conditions were put to.
  const std::vector<std::string>& Tables() const { return tables_; }

  std::string Run() {
    if (!FindClauses()) return std::string(sql_);
    std::string text;
    std::size_t copied = 0;
    // What stands deeper goes by names that the statement's conditions do not mean.
    for (std::size_t i = from_.begin; i < from_.end; i = EndOfParentheses(tokens_, i)) {
      United united;
      const std::string condition = ReadUnited(i, united) ? ConditionOn(united) : "";
      if (condition.empty()) continue;
      const std::size_t place = tokens_[united.union_word].begin;
      text.append(sql_.substr(copied, place - copied)).append(condition);
      copied = place;
      tables_.push_back(NameOf(tokens_[united.union_word - 1]));
    }
    return text.append(sql_.substr(copied));
  }

 private:
  bool FindClauses() {
    const std::size_t end = tokens_.size();
    if (end < 8 || !tokens_[0].IsWord("select")) return false;
    const std::size_t from = FindWord(tokens_, {0, end}, "from");
    const std::size_t where = FindWord(tokens_, {from, end}, "where");
    if (where == end) return false;
    from_ = {from + 1, where};
    where_ = {where + 1, end};
    return HasOnlyNumberedParameters(tokens_) && !HasOtherJoins(tokens_, from_) &&
           std::ranges::all_of(kOtherClauses, [&](std::string_view word) {
             return FindWord(tokens_, {0, end}, word) == end;
           });
  }

  bool ReadUnited(std::size_t begin, United& united) const {
    if (!tokens_[begin].IsMark('(')) return false;
    const std::size_t end = EndOfParentheses(tokens_, begin);
    const bool known = end + 2 <= from_.end && end - begin > 7 && tokens_[begin + 1].IsWord("select") &&
                       tokens_[begin + 2].IsMark('*') && tokens_[begin + 3].IsWord("from") &&
                       tokens_[begin + 4].IsName() && tokens_[begin + 5].IsWord("union") &&
                       tokens_[end].IsWord("as") && tokens_[end + 1].IsName();
    if (!known || FindWord(tokens_, {begin + 1, end - 1}, "limit") != end - 1) return false;
    united = {tokens_[begin + 4].text, NameOf(tokens_[end + 1]), begin + 5};
    return true;
  }

  /// What is to stand before the UNION: the statement's condition "name.column = value"; "" when it has none.
  std::string ConditionOn(const United& united) const {
    const auto is_and = [](const SqlToken& token) { return token.IsWord("and"); };
    for (const TokenSpan& condition : SplitSpan(tokens_, where_, is_and)) {
      const std::size_t begin = condition.begin;
      const bool compares = condition.Size() > 4 && IsColumnName(tokens_, {begin, begin + 3}) &&
                            SameName(NameOf(tokens_[begin]), united.name) && tokens_[begin + 3].IsMark('=') &&
                            IsValue(tokens_, {begin + 4, condition.end});
      if (!compares) continue;
      const std::size_t column = tokens_[begin + 2].begin;
      const std::string_view compared = sql_.substr(column, tokens_[condition.end - 1].End() - column);
      std::string text = "WHERE ";
      text.append(united.table).append(".").append(compared);
      // The second select gives no rows. It keeps the number that the database expects, by which it decides
      // in which order to join.
      return text.append(" UNION SELECT * FROM ").append(united.table).append(" WHERE 0 ");
    }
    return "";
  }

  std::string_view sql_;
  std::vector<SqlToken> tokens_;
  TokenSpan from_{}, where_{};
  std::vector<std::string> tables_;
};

/// The plan of a rewritten statement with a table read as a whole again in each place where it is searched
/// and then, by what was put to it, not read.
std::vector<PlanStep> WithTablesRead(const std::vector<PlanStep>& plan,
                                     const std::vector<std::string>& tables) {
  std::vector<PlanStep> steps;
  for (std::size_t i = 0; i < plan.size(); ++i) {
    steps.push_back(plan[i]);
    if (i + 2 >= plan.size()) continue;
    const int depth = plan[i].depth;
    for (const std::string& table : tables) {
      const PlanStep read = {depth, "SCAN " + table};
      const bool filtered = plan[i].text.starts_with("SEARCH " + table + " USING ") &&
                            plan[i + 1] == PlanStep{depth - 1, "UNION USING TEMP B-TREE"} &&
                            plan[i + 2] == read;
      if (!filtered) continue;
      steps.back() = read;
      i += 2;
      break;
    }
  }
  return steps;
}

}  // namespace

std::string FilterWhatIsUnited(const std::string& sql, const SqliteConnection& connection) {
  UnionFilter filter(sql);
  const std::string rewritten = filter.Run();
  if (filter.Tables().empty()) return sql;
  try {
    const std::vector<PlanStep> plan = WithTablesRead(PlanOf(connection, rewritten), filter.Tables());
    return plan == PlanOf(connection, sql) ? rewritten : sql;
  } catch (const DatabaseError&) {
    return sql;  // of the statement as it is the caller will be told what is wrong
  }
}

}  // namespace excelexp
