#include "platform/database/UnionFilter.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/Names.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlClauses.h"
#include "platform/database/SqlText.h"
#include "platform/database/SqliteConnection.h"

namespace excelexp {
namespace {

// With one of these, outside of its subselects, a statement has more behind its FROM than conditions between
// ANDs.
constexpr std::array<std::string_view, 11> kOtherClauses = {
    "group", "having", "limit", "window", "order", "union", "intersect", "except", "or", "between", "case"};

/// "(SELECT * FROM table UNION SELECT ...) AS name" in a FROM clause, and the statement's condition
/// "name.column = value".
struct United {
  TokenSpan parentheses;
  std::size_t union_word;
  std::string_view table;  ///< as written
  std::string name;
  bool adds_blank;  ///< it adds a row of empty texts
  std::string column;
  std::string_view value;     ///< as written, like
  std::string_view compared;  ///< "column = value"
};

class UnionFilter {
 public:
  explicit UnionFilter(std::string_view sql) : sql_(sql), tokens_(TokenizeSql(sql)) {
    if (FindClauses()) FindUnited();
  }

  const std::vector<United>& AllUnited() const { return united_; }

  /// With each condition inside its union too. The second select gives no rows. It keeps the number that the
  /// database expects, by which it decides in which order to join.
  std::string Searched() const {
    return Replaced([this](const United& each, std::string& text) {
      text.append(TextOf({each.parentheses.begin, each.union_word})).append(" WHERE ").append(each.table);
      text.append(".").append(each.compared).append(" UNION SELECT * FROM ").append(each.table);
      text.append(" WHERE 0 ").append(TextOf({each.union_word, each.parentheses.end}));
    });
  }

  /// The tables themselves where no value is the empty text of their unions' other row, and Searched where
  /// one is.
  std::string InBranches() const {
    std::string blank, filled;
    for (const United& each : united_) {
      blank.append(blank.empty() ? " AND (" : " OR ").append(each.value).append(" = ''");
      filled.append(" AND ").append(each.value).append(" <> ''");
    }
    const std::string alone =
        Replaced([](const United& each, std::string& text) { text.append(each.table); });
    return alone + filled + " UNION ALL " + Searched() + blank + ")";
  }

  /// Whether that is the same but for the order: each row stays in its branch, with the columns of the whole.
  bool CanBranch() const {
    return tokens_[1].IsMark('*') && tokens_[2].IsWord("from") &&
           std::ranges::all_of(united_, &United::adds_blank);
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

  void FindUnited() {
    // What stands deeper goes by names that the statement's conditions do not mean.
    for (std::size_t i = from_.begin; i < from_.end; i = EndOfParentheses(tokens_, i)) {
      United united;
      if (ReadUnited(i, united) && FindCondition(united)) united_.push_back(united);
    }
  }

  bool ReadUnited(std::size_t begin, United& united) const {
    if (!tokens_[begin].IsMark('(')) return false;
    const std::size_t end = EndOfParentheses(tokens_, begin);
    const bool known = end + 2 <= from_.end && end - begin > 7 && tokens_[begin + 1].IsWord("select") &&
                       tokens_[begin + 2].IsMark('*') && tokens_[begin + 3].IsWord("from") &&
                       tokens_[begin + 4].IsName() && tokens_[begin + 5].IsWord("union") &&
                       tokens_[end].IsWord("as") && tokens_[end + 1].IsName();
    if (!known || FindWord(tokens_, {begin + 1, end - 1}, "limit") != end - 1) return false;
    united.parentheses = {begin, end};
    united.union_word = begin + 5;
    united.table = tokens_[begin + 4].text;
    united.name = NameOf(tokens_[end + 1]);
    united.adds_blank = tokens_[begin + 6].IsWord("select") && IsBlank({begin + 7, end - 1});
    return true;
  }

  /// "'', '' ..."
  bool IsBlank(const TokenSpan& list) const {
    const std::vector<TokenSpan> items =
        SplitSpan(tokens_, list, [](const SqlToken& token) { return token.IsMark(','); });
    return std::ranges::all_of(items, [this](const TokenSpan& item) {
      return item.Size() == 1 && tokens_[item.begin].text == "''";
    });
  }

  bool FindCondition(United& united) const {
    const auto is_and = [](const SqlToken& token) { return token.IsWord("and"); };
    for (const TokenSpan& condition : SplitSpan(tokens_, where_, is_and)) {
      const std::size_t begin = condition.begin;
      const bool compares = condition.Size() > 4 && IsColumnName(tokens_, {begin, begin + 3}) &&
                            SameName(NameOf(tokens_[begin]), united.name) && tokens_[begin + 3].IsMark('=') &&
                            IsValue(tokens_, {begin + 4, condition.end});
      if (!compares) continue;
      united.column = NameOf(tokens_[begin + 2]);
      united.value = TextOf({begin + 4, condition.end});
      united.compared = TextOf({begin + 2, condition.end});
      return true;
    }
    return false;
  }

  std::string_view TextOf(const TokenSpan& span) const {
    const std::size_t begin = tokens_[span.begin].begin;
    return sql_.substr(begin, tokens_[span.end - 1].End() - begin);
  }

  /// The statement with what `put` appends in the place of each union.
  template <typename Put>
  std::string Replaced(const Put& put) const {
    std::string text;
    std::size_t copied = 0;
    for (const United& each : united_) {
      const std::size_t begin = tokens_[each.parentheses.begin].begin;
      text.append(sql_.substr(copied, begin - copied));
      put(each, text);
      copied = tokens_[each.parentheses.end - 1].End();
    }
    return text.append(sql_.substr(copied, tokens_.back().End() - copied));
  }

  std::string_view sql_;
  std::vector<SqlToken> tokens_;
  TokenSpan from_{}, where_{};
  std::vector<United> united_;
};

/// The plan of a rewritten statement with a table read as a whole again in each place where it is searched
/// and then, by what was put to it, not read.
std::vector<PlanStep> WithTablesRead(const std::vector<PlanStep>& plan, const std::vector<United>& united) {
  std::vector<PlanStep> steps;
  for (std::size_t i = 0; i < plan.size(); ++i) {
    steps.push_back(plan[i]);
    if (i + 2 >= plan.size()) continue;
    const int depth = plan[i].depth;
    for (const United& each : united) {
      const std::string table = NameOf(TokenizeSql(each.table).front());
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

/// How the other tables are joined.
std::vector<PlanStep> WithoutUnited(const std::vector<PlanStep>& plan, const std::vector<United>& united) {
  std::vector<PlanStep> rest;
  bool skips = false;
  for (const PlanStep& step : plan) {
    const std::string subject = step.text.substr(step.text.find(' ') + 1) + " ";
    if (step.depth == 0) {
      skips = std::ranges::any_of(united,
                                  [&](const United& each) { return subject.starts_with(each.name + " "); });
    }
    if (!skips) rest.push_back(step);
  }
  return rest;
}

/// The plans of the two selects of "SELECT ... UNION ALL SELECT ..."; empty ones for another plan.
std::array<std::vector<PlanStep>, 2> BranchesOf(const std::vector<PlanStep>& plan) {
  std::array<std::vector<PlanStep>, 2> branches;
  const auto second = std::ranges::find(plan, PlanStep{1, "UNION ALL"});
  if (plan.front() != PlanStep{0, "COMPOUND QUERY"} || second == plan.end()) return branches;
  for (auto step = plan.begin() + 2; step != plan.end(); ++step) {
    if (step != second) branches[step < second ? 0 : 1].push_back({step->depth - 2, step->text});
  }
  return branches;
}

/// Whether no two rows of the table have the same text in that column.
bool IsUnique(const United& united, const SqliteConnection& connection) {
  const std::string table = NameOf(TokenizeSql(united.table).front());
  const char* collation = nullptr;
  const int code =
      sqlite3_table_column_metadata(connection.Handle(), nullptr, table.c_str(), united.column.c_str(),
                                    nullptr, &collation, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK || !SameName(collation, "BINARY")) return false;
  const std::string sql =
      "SELECT 1 FROM pragma_index_list(" + SqlText(table) +
      ") i WHERE i.\"unique\" AND NOT i.partial AND (SELECT group_concat(name || ' ' || coll) FROM "
      "pragma_index_xinfo(i.name) WHERE key) = " +
      SqlText(united.column + " BINARY") + " COLLATE NOCASE";
  const SqliteStatement indexes = connection.Prepare(sql, sql);
  return connection.Step(indexes.get(), sql);
}

/// Whether the statement in branches finds the same rows, and joins the other tables in the same way.
bool MayBranch(const UnionFilter& filter, const std::vector<PlanStep>& plan,
               const SqliteConnection& connection) {
  const std::vector<United>& united = filter.AllUnited();
  const auto is_unique = [&](const United& each) { return IsUnique(each, connection); };
  if (!filter.CanBranch() || !std::ranges::all_of(united, is_unique)) return false;
  // Of one row at most it makes no difference where it is joined.
  const auto [alone, searched] = BranchesOf(PlanOf(connection, filter.InBranches()));
  return !alone.empty() && WithoutUnited(alone, united) == WithoutUnited(plan, united) &&
         WithTablesRead(searched, united) == plan;
}

}  // namespace

std::string FilterWhatIsUnited(const std::string& sql, const SqliteConnection& connection) {
  const UnionFilter filter(sql);
  if (filter.AllUnited().empty()) return sql;
  try {
    const std::vector<PlanStep> plan = PlanOf(connection, sql);
    if (MayBranch(filter, plan, connection)) return filter.InBranches();
    std::string searched = filter.Searched();
    if (WithTablesRead(PlanOf(connection, searched), filter.AllUnited()) == plan) return searched;
  } catch (const DatabaseError&) {
    // Of the statement as it is the caller will be told what is wrong.
  }
  return sql;
}

}  // namespace excelexp
