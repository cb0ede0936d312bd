#include "platform/database/KeyedRows.h"

#include <sqlite3.h>

#include <algorithm>
#include <string_view>

#include "platform/database/KeyedSql.h"
#include "platform/database/Names.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlClauses.h"
#include "platform/database/StatementPool.h"

namespace excelexp {
namespace {

// Rows of one key that are compared with one another.
constexpr int kMostCompared = 16;

/// The statement with the keys in front of its tables and its columns.
std::optional<std::string> ForAllKeys(const KeyedSql& keyed) {
  const std::vector<SqlToken> tokens = TokenizeSql(keyed.text);
  const TokenSpan all = {0, tokens.size()};
  const std::size_t from = FindWord(tokens, all, "from");
  const bool sorted = FindWord(tokens, all, "order") < tokens.size();
  // A window reaches over the rows of all keys.
  const bool windowed =
      std::ranges::any_of(tokens, [](const SqlToken& token) { return token.IsWord("over"); });
  if (sorted || windowed || from + 1 >= tokens.size() || !tokens[0].IsWord("select")) return std::nullopt;
  const std::string_view text = keyed.text;
  const std::size_t list = tokens[1].begin;
  const std::size_t tables = tokens[from].End();
  std::string all_keys = "SELECT ";
  // A star shows the keys of itself.
  if (!tokens[1].IsMark('*'))
    all_keys.append(KeyedSql::kKeys).append(".").append(KeyedSql::kKeys).append(", ");
  all_keys.append(text.substr(list, tables - list)).append(" ").append(keyed.keys);
  all_keys.append(" CROSS JOIN").append(text.substr(tables));
  return all_keys;
}

/// What the narrowed statement reads of the whole one.
std::string NarrowedTo(const NarrowStatement& narrow, sqlite3_stmt* whole, const std::string& sql) {
  std::string list(KeyedSql::kKeys);
  for (int column = 0; column < static_cast<int>(narrow.places->size()); ++column) {
    if ((*narrow.places)[static_cast<std::size_t>(column)] >= 0)
      list += ", " + QuoteName(sqlite3_column_name(whole, column));
  }
  return "SELECT " + list + " FROM (" + sql + "\n)";
}

/// The plan without what makes rows distinct, which leaves the first of those that are alike in their order.
std::vector<PlanStep> PlanBeforeDistinct(const SqliteConnection& connection, const std::string& sql) {
  std::vector<PlanStep> plan = PlanOf(connection, sql);
  std::erase_if(plan, [](const PlanStep& step) {
    return step.depth == 0 && step.text == "USE TEMP B-TREE FOR DISTINCT";
  });
  return plan;
}

}  // namespace

std::optional<std::size_t> KeyedRows::CountKeys(const KeptStatement& kept, const SqliteConnection& connection,
                                                SqliteGuard& guard, const FindTable& find_table) {
  const bool fits = kept.shape.IsPlain() || !kept.shape.WithoutDistinct().empty();
  if (!fits || kept.whole.traits.is_unrepeatable) return std::nullopt;
  const auto keyed = KeyedSql::Of(sqlite3_sql(kept.whole.statement.get()), false, find_table);
  if (!keyed) return std::nullopt;
  const SqliteGuard::Pass pass(guard);
  const SqliteStatement count = connection.Prepare(keyed->count, keyed->count);
  connection.Step(count.get(), keyed->count);
  return static_cast<std::size_t>(sqlite3_column_int64(count.get(), 0));
}

SqliteStatement KeyedRows::Compile(const KeptStatement& kept, sqlite3_stmt* single,
                                   const SqliteConnection& connection, SqliteGuard& guard,
                                   const FindTable& find_table) {
  const SqliteGuard::Pass pass(guard);
  const std::string one = sqlite3_sql(single);
  const auto keyed = KeyedSql::Of(one, false, find_table);
  std::optional<std::string> all = keyed ? ForAllKeys(*keyed) : std::nullopt;
  if (!all) return nullptr;
  sqlite3_stmt* const whole = kept.whole.statement.get();
  if (kept.narrow.statement != nullptr) all = NarrowedTo(kept.narrow, whole, *all);
  const std::vector<PlanStep> plan = PlanOf(connection, one);
  const bool alike = !HasAutomaticIndex(plan) &&
                     (single == whole || plan == PlanBeforeDistinct(connection, sqlite3_sql(whole))) &&
                     FindsRowsAlike(plan, PlanOf(connection, *all));
  return alike ? connection.Prepare(*all, *all) : nullptr;
}

KeyedRows::KeyedRows(std::shared_ptr<const ResultSet> rows) : rows_(std::move(rows)) {
  for (int row = 0; row < rows_->RowCount(); ++row) {
    const std::int64_t key = rows_->AsInteger(row, 0);
    if (keys_.empty() || keys_.back().first != key) keys_.push_back({key, {row, 0}});
    ++keys_.back().second.count;
  }
  std::ranges::sort(keys_, {}, &std::pair<std::int64_t, Span>::first);
}

std::optional<KeyedRows::Span> KeyedRows::Find(std::int64_t key) const {
  const auto found = std::ranges::lower_bound(keys_, key, {}, &std::pair<std::int64_t, Span>::first);
  if (found == keys_.end() || found->first != key) return std::nullopt;
  return found->second;
}

bool KeyedRows::SurelyDiffer(const Span& span) const {
  if (span.count > kMostCompared) return false;
  for (int row = span.first; row < span.first + span.count; ++row) {
    for (int other = span.first; other < row; ++other)
      if (!SurelyDiffer(row, other)) return false;
  }
  return true;
}

bool KeyedRows::SurelyDiffer(int row, int other) const {
  const auto bare = [&](int of_row, int column) {
    std::string text = FoldName(rows_->AsText(of_row, column));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
  };
  for (int column = 1; column < rows_->ColumnCount(); ++column) {
    if (rows_->IsNull(row, column) != rows_->IsNull(other, column)) return true;
    if (bare(row, column) != bare(other, column)) return true;
  }
  return false;
}

void KeyedRows::AddTo(ResultSetBuilder& builder, int row) const {
  builder.BeginRow();
  for (int column = 1; column < rows_->ColumnCount(); ++column) builder.AddFrom(*rows_, row, column);
}

}  // namespace excelexp
