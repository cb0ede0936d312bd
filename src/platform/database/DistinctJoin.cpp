#include "platform/database/DistinctJoin.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/HeldTableModule.h"
#include "platform/database/Names.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlClauses.h"
#include "platform/database/SqliteConnection.h"
#include "platform/database/SqliteGuard.h"

namespace excelexp {
namespace {

// With one of these, outside of its subselects, a statement is more than a list of distinct rows, or its
// conditions are not simply what stands between the ANDs.
constexpr std::array<std::string_view, 11> kOtherClauses = {
    "group", "having", "limit", "window", "offset", "union", "intersect", "except", "or", "between", "case"};
constexpr std::array<std::string_view, 3> kRowIds = {"rowid", "oid", "_rowid_"};

bool IsRowId(const SqlToken& token) {
  return token.IsName() &&
         std::ranges::any_of(kRowIds, [&](std::string_view name) { return SameName(NameOf(token), name); });
}

/// A statement whose first table's rows can be made distinct before they are joined.
class DistinctStatement {
 public:
  DistinctStatement(std::string_view sql, const SqliteConnection& connection, const SqliteGuard& guard)
      : sql_(sql), tokens_(TokenizeSql(sql)), connection_(connection), guard_(guard) {}

  /// False when the statement has anything that is not known here.
  bool Parse(const FindTable& find_table) {
    if (!FindClauses() || !FindFirstTable(find_table) || !HasOnlyNumberedParameters(tokens_)) return false;
    const auto is_and = [](const SqlToken& token) { return token.IsWord("and"); };
    for (const TokenSpan& condition : SplitSpan(tokens_, where_, is_and)) {
      if (condition.Size() == 0) return false;
      (IsTablesOwn(condition) ? moved_ : kept_).push_back(condition);
    }
    return NoteColumns() && !columns_.empty() &&
           std::ranges::all_of(columns_, [this](const std::string& column) { return IsPlainText(column); });
  }

  const std::string& Table() const { return table_; }

  /// Rows alike are made one by a select of their own.
  std::string Rewritten() const {
    const SqlToken& table = tokens_[from_.begin];
    std::string columns;
    for (const std::string& column : columns_) columns += (columns.empty() ? "" : ", ") + QuoteName(column);
    std::string text(sql_.substr(0, table.begin));
    text.append("(SELECT DISTINCT ").append(columns).append(" FROM ").append(table.text);
    text.append(Conditions(" WHERE ", moved_)).append(") AS ").append(table.text);
    text.append(sql_.substr(table.End(), tokens_[from_.end].begin - table.End()));
    text.append(Conditions("WHERE ", kept_));
    if (order_.Size() > 0) text.append(" ").append(sql_.substr(tokens_[order_.begin].begin));
    return text;
  }

  /// Of a held table: it gives of rows alike the first.
  std::string WithEachOnce() const {
    const SqlToken& table = tokens_[from_.begin];
    std::string text(sql_.substr(0, table.begin));
    text.append(QuoteName(EachOnce(table_))).append(" AS ").append(table.text);
    return text.append(sql_.substr(table.End()));
  }

 private:
  bool FindClauses() {
    const std::size_t end = tokens_.size();
    if (end < 3 || !tokens_[0].IsWord("select") || !tokens_[1].IsWord("distinct")) return false;
    const bool plain = std::ranges::all_of(kOtherClauses, [&](std::string_view word) {
      return FindWord(tokens_, {0, end}, word) == end;
    });
    const std::size_t from = FindWord(tokens_, {0, end}, "from");
    const std::size_t where = FindWord(tokens_, {from, end}, "where");
    if (!plain || where == end) return false;
    list_ = {2, from};
    from_ = {from + 1, where};
    order_ = {FindWord(tokens_, {where, end}, "order"), end};
    where_ = {where + 1, order_.begin};
    return true;
  }

  /// "FROM table JOIN ..." or "FROM table, ...", with nothing but inner joins.
  bool FindFirstTable(const FindTable& find_table) {
    if (from_.Size() < 3 || !tokens_[from_.begin].IsName()) return false;
    const SqlToken& next = tokens_[from_.begin + 1];
    if (!next.IsMark(',') && !next.IsWord("join") && !next.IsWord("inner")) return false;
    if (HasOtherJoins(tokens_, from_)) return false;
    table_ = NameOf(tokens_[from_.begin]);
    shape_ = find_table(table_);
    return shape_ != nullptr;
  }

  /// "column = value" or "column IN (SELECT ...)" with a column of the table. Neither fails for one row
  /// rather than for another; and a subselect that asks for more than the table has does not compile where it
  /// goes.
  bool IsTablesOwn(const TokenSpan& condition) const {
    const bool qualified = condition.Size() > 3 && tokens_[condition.begin + 1].IsMark('.');
    const TokenSpan name = {condition.begin, condition.begin + (qualified ? 3 : 1)};
    if (condition.Size() < name.Size() + 2 || !IsColumnName(tokens_, name)) return false;
    if (qualified && !SameName(NameOf(tokens_[name.begin]), table_)) return false;
    if (shape_->Find(NameOf(tokens_[name.end - 1])) == nullptr) return false;
    const TokenSpan value = {name.end + 1, condition.end};
    if (tokens_[name.end].IsMark('=')) return IsValue(tokens_, value);
    return tokens_[name.end].IsWord("in") && IsParenthesised(tokens_, value) &&
           tokens_[value.begin + 1].IsWord("select");
  }

  /// Notes which of the table's columns are asked for, apart from the conditions that move. One too many does
  /// no harm.
  bool NoteColumns() {
    for (const TokenSpan& span : {list_, order_}) {
      for (std::size_t i = span.begin; i < span.end; ++i)
        if (CountsRows(i)) return false;
    }
    std::vector<TokenSpan> spans = kept_;
    spans.insert(spans.end(), {list_, from_, order_});
    for (const TokenSpan& span : spans) {
      for (std::size_t i = span.begin; i < span.end; ++i) {
        if (IsRowId(tokens_[i])) return false;
        NoteColumn(i);
      }
    }
    return true;
  }

  /// Whether what is selected may depend on how many rows there are, as an aggregate does; no function that a
  /// database brings along is one.
  bool CountsRows(std::size_t i) const {
    const bool called = tokens_[i].IsName() && i + 1 < tokens_.size() && tokens_[i + 1].IsMark('(');
    return tokens_[i].IsMark('*') || tokens_[i].IsWord("select") ||
           (called && guard_.IsBuiltIn(FoldName(NameOf(tokens_[i]))));
  }

  void NoteColumn(std::size_t i) {
    const TableShape::Column* column = tokens_[i].IsName() ? shape_->Find(NameOf(tokens_[i])) : nullptr;
    if (column == nullptr || tokens_[i - 1].IsWord("as")) return;
    if (tokens_[i - 1].IsMark('.') && !SameName(NameOf(tokens_[i - 2]), table_)) return;
    if (std::ranges::find(columns_, column->name) == columns_.end()) columns_.push_back(column->name);
  }

  /// Texts compared byte by byte are equal only when they are the same: which of the rows that are alike
  /// stays makes no difference. With numbers (1 and 1.0) or another collation it could.
  bool IsPlainText(const std::string& column) const {
    const char* declared = nullptr;
    const char* collation = nullptr;
    const int code =
        sqlite3_table_column_metadata(connection_.Handle(), nullptr, table_.c_str(), column.c_str(),
                                      &declared, &collation, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK || declared == nullptr || !SameName(collation, "BINARY")) return false;
    const std::string type = FoldName(declared);
    const auto has = [&](std::string_view word) { return type.find(word) != std::string::npos; };
    return (has("char") || has("clob") || has("text")) && !has("int");
  }

  std::string Conditions(std::string_view begin, const std::vector<TokenSpan>& conditions) const {
    std::string text;
    for (const TokenSpan& each : conditions) {
      const std::size_t first = tokens_[each.begin].begin;
      text.append(text.empty() ? begin : " AND ")
          .append(sql_.substr(first, tokens_[each.end - 1].End() - first));
    }
    return text;
  }

  std::string_view sql_;
  std::vector<SqlToken> tokens_;
  const SqliteConnection& connection_;
  const SqliteGuard& guard_;
  TokenSpan list_{}, from_{}, where_{}, order_{};
  std::string table_;
  const TableShape* shape_ = nullptr;
  std::vector<TokenSpan> moved_, kept_;  // conditions
  std::vector<std::string> columns_;
};

/// The number of a subselect says only where in the text it stands.
std::string WithoutNumber(const std::string& step) {
  constexpr std::string_view kSubquery = "SUBQUERY ";
  const std::size_t found = step.find(kSubquery);
  return found == std::string::npos ? step : step.substr(0, found + kSubquery.size());
}

/// The plan of a rewritten statement with the steps that find the distinct rows in place of the one that
/// reads them, as if these rows were read where they are used. It is no statement's plan when they have to be
/// sorted to be distinct, for that is a step too.
std::vector<PlanStep> WithDistinctInPlace(const std::vector<PlanStep>& plan, const std::string& table) {
  std::vector<PlanStep> distinct, rest;
  bool inside = false;
  for (const PlanStep& step : plan) {
    if (step.depth == 0) inside = step.text == "MATERIALIZE " + table || step.text == "CO-ROUTINE " + table;
    if (!inside) rest.push_back(step);
    if (inside && step.depth > 0) distinct.push_back({step.depth - 1, step.text});
  }
  const auto reads = std::ranges::find(rest, PlanStep{0, "SCAN " + table});
  if (reads == rest.end()) return {};
  rest.insert(rest.erase(reads), distinct.begin(), distinct.end());
  return rest;
}

/// Where the plan reads the held table; the plan's end for a stored one.
std::vector<PlanStep>::iterator ReadingOfHeld(std::vector<PlanStep>& plan, const std::string& table) {
  const std::string reading = "SCAN " + table + " VIRTUAL TABLE INDEX ";
  return std::ranges::find_if(
      plan, [&](const PlanStep& step) { return step.depth == 0 && step.text.starts_with(reading); });
}

/// The same without what tells the table which columns are to differ.
std::vector<PlanStep> WithEveryRow(std::vector<PlanStep> plan, const std::string& table) {
  const auto reading = ReadingOfHeld(plan, table);
  if (reading != plan.end()) reading->text.resize(reading->text.rfind(':'));
  return plan;
}

/// Whether the plans are the same but for the numbers of subselects.
bool SamePlan(const std::vector<PlanStep>& plan, const std::vector<PlanStep>& rewritten) {
  return std::ranges::equal(plan, rewritten, [](const PlanStep& left, const PlanStep& right) {
    return left.depth == right.depth && WithoutNumber(left.text) == WithoutNumber(right.text);
  });
}

/// The statement in the form that does not change its answer; nothing when none is known.
std::optional<std::string> Rewritten(const SqliteConnection& connection, const std::string& sql,
                                     const DistinctStatement& statement) {
  try {
    std::vector<PlanStep> plan = PlanOf(connection, sql);
    const std::string& table = statement.Table();
    const bool held = ReadingOfHeld(plan, table) != plan.end();
    std::string rewritten = held ? statement.WithEachOnce() : statement.Rewritten();
    const std::vector<PlanStep> other = PlanOf(connection, rewritten);
    if (SamePlan(plan, held ? WithEveryRow(other, table) : WithDistinctInPlace(other, table)))
      return rewritten;
  } catch (const DatabaseError&) {
    // Of the statement as it is the caller will be told what is wrong.
  }
  return std::nullopt;
}

/// Where the statement that selects begins and ends: all of it, or what "SELECT * FROM (...) ORDER BY" sorts.
std::pair<std::size_t, std::size_t> DistinctPart(std::string_view sql) {
  const std::vector<SqlToken> tokens = TokenizeSql(sql);
  const bool sorted = tokens.size() > 5 && tokens[0].IsWord("select") && tokens[1].IsMark('*') &&
                      tokens[2].IsWord("from") && tokens[3].IsMark('(');
  const std::size_t order = FindWord(tokens, {0, tokens.size()}, "order");
  if (!sorted || order == tokens.size() || !IsParenthesised(tokens, {3, order})) return {0, sql.size()};
  return {tokens[3].End(), tokens[order - 1].begin};
}

}  // namespace

std::string JoinWhatIsDistinct(const std::string& sql, const SqliteConnection& connection,
                               const SqliteGuard& guard, const FindTable& find_table) {
  const auto [begin, end] = DistinctPart(sql);
  const std::string part = sql.substr(begin, end - begin);
  DistinctStatement statement(part, connection, guard);
  if (!statement.Parse(find_table)) return sql;
  const std::optional<std::string> rewritten = Rewritten(connection, part, statement);
  return rewritten ? sql.substr(0, begin) + *rewritten + sql.substr(end) : sql;
}

}  // namespace excelexp
