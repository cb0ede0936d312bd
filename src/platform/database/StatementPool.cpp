#include "platform/database/StatementPool.h"

#include <sqlite3.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

constexpr std::size_t kKeptStatements = 64;
// A walk through keys sends a few statements for each; they stand in front.
constexpr std::size_t kWalkedStatements = 8;
// So often a statement shows what its readers want before it is narrowed to that.
constexpr int kRunsToLearn = 3;
constexpr int kLeastSavedColumns = 4;

// The names of the columns of a join in parentheses bear a number when two tables share them ("Id:1"); the
// column they come from tells which.
std::string ColumnNameOf(sqlite3_stmt* statement, int column) {
  std::string name = sqlite3_column_name(statement, column);
  const char* const origin = sqlite3_column_origin_name(statement, column);
  const std::size_t colon = name.rfind(':');
  if (origin == nullptr || colon == std::string::npos || name.compare(0, colon, origin) != 0) return name;
  const bool numbered = name.find_first_not_of("0123456789", colon + 1) == std::string::npos;
  return numbered ? origin : name;
}

std::shared_ptr<const ResultColumns> ColumnsOf(sqlite3_stmt* statement) {
  std::vector<std::string> names;
  const int width = sqlite3_column_count(statement);
  names.reserve(static_cast<std::size_t>(width));
  for (int column = 0; column < width; ++column) names.push_back(ColumnNameOf(statement, column));
  return std::make_shared<const ResultColumns>(std::move(names));
}

}  // namespace

ResultSetBuilder KeptStatement::ResultOf(bool is_narrow) const {
  if (!is_narrow) return ResultSetBuilder(columns);
  return {columns, narrow.places, static_cast<std::size_t>(narrow.width)};
}

StatementPool::StatementPool(SqliteConnection& connection, SqliteGuard& guard, Compile compile)
    : connection_(connection), guard_(guard), compile_(std::move(compile)) {}

KeptStatement& StatementPool::For(const std::string& sql) {
  // The text that is compiled may be shorter than the one that is bounded.
  if (sql.size() > LongestText())
    throw DatabaseError("the statement is longer than " + std::to_string(LongestText()) + " bytes", sql);
  const auto has_shape = [&](const KeptStatement& kept) { return kept.shape.Matches(sql, values_); };
  auto found = std::ranges::find_if(kept_, has_shape);
  if (found == kept_.end()) {
    Keep(sql);
    found = kept_.begin();
  }
  const auto has_null = [](const SqlComparand& value) {
    return value.raw.find('\0') != std::string_view::npos;
  };
  if (std::ranges::any_of(values_, has_null)) throw DatabaseError("the statement has a null byte", sql);
  KeptStatement& kept = Use(found);
  if (kept.runs == kRunsToLearn) MakeUndistinct(kept);
  return kept;
}

KeptStatement* StatementPool::FindKeyed(const std::string& sql) {
  if (sql.size() > LongestText()) return nullptr;
  std::size_t seen = 0;
  for (auto kept = kept_.begin(); kept != kept_.end() && seen < kWalkedStatements; ++kept, ++seen) {
    if (kept->keyed.rows != nullptr && kept->shape.Matches(sql, values_)) return &Use(kept);
  }
  return nullptr;
}

std::optional<std::int64_t> StatementPool::Key() const {
  const auto is_key = [this](const SqlComparand& value) {
    return !value.is_text && value.number == values_.front().number;
  };
  const bool has_key = !values_.empty() && std::ranges::all_of(values_, is_key);
  return has_key ? std::optional(values_.front().number) : std::nullopt;
}

std::size_t StatementPool::LongestText() const {
  return static_cast<std::size_t>(sqlite3_limit(connection_.Handle(), SQLITE_LIMIT_SQL_LENGTH, -1));
}

KeptStatement& StatementPool::Use(std::list<KeptStatement>::iterator kept) {
  kept_.splice(kept_.begin(), kept_, kept);
  Narrow(*kept);
  return *kept;
}

void StatementPool::Bind(KeptStatement& kept, const std::string& sql) const {
  BindValues(kept.whole.statement.get(), sql);
  if (kept.narrow.statement != nullptr) BindValues(kept.narrow.statement.get(), sql);
  if (kept.undistinct != nullptr) BindValues(kept.undistinct.get(), sql);
}

void StatementPool::MakeUndistinct(KeptStatement& kept) const {
  const bool pays =
      !kept.gave_many && !kept.shape.WithoutDistinct().empty() && !kept.whole.traits.is_volatile;
  if (pays) kept.undistinct = compile_(kept.shape.WithoutDistinct(), kept.shape.WithoutDistinct()).statement;
}

void StatementPool::Keep(const std::string& sql) {
  SqlShape shape(sql);
  CompiledQuery whole = compile_(shape.Text(), sql);
  if (sqlite3_bind_parameter_count(whole.statement.get()) != static_cast<int>(shape.ValueCount()))
    throw DatabaseError("the statement has parameters, and nothing gives them values", sql);
  shape.Matches(sql, values_);
  std::shared_ptr<const ResultColumns> columns = ColumnsOf(whole.statement.get());
  const bool may_narrow = shape.IsPlain() && !whole.traits.is_unrepeatable;
  kept_.push_front({.shape = std::move(shape),
                    .whole = std::move(whole),
                    .columns = std::move(columns),
                    .may_narrow = may_narrow});
  if (kept_.size() > kKeptStatements) kept_.pop_back();
}

void StatementPool::BindValues(sqlite3_stmt* statement, const std::string& sql) const {
  int index = 0;
  for (const SqlComparand& value : values_) {
    ++index;
    int code = SQLITE_OK;
    if (!value.is_text) {
      code = sqlite3_bind_int64(statement, index, value.number);
    } else if (value.raw.find('\'') == std::string_view::npos) {
      // The text of the statement outlives its run.
      code = sqlite3_bind_text64(statement, index, value.raw.data(), value.raw.size(), SQLITE_STATIC,
                                 SQLITE_UTF8);
    } else {
      const std::string text = TextOf(value);
      code = sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    if (code != SQLITE_OK) connection_.Fail(code, sql);
  }
}

/// Readers of "SELECT *" want a few columns, and each column costs, a computed one most. A statement that is
/// sent again and again is narrowed to what was asked of it so far, as long as the database then finds its
/// rows in the very same way, and so in the same order. Of rows held in memory only what is asked for is read
/// anyway.
void StatementPool::Narrow(KeptStatement& kept) {
  const bool is_held = kept.held && *kept.held != nullptr;
  if (!kept.may_narrow || is_held || kept.runs < kRunsToLearn) return;
  if (kept.narrow.statement != nullptr && kept.columns->AskedCount() == kept.narrow.width) return;
  const std::vector<int> asked = kept.columns->Asked();
  kept.narrow = {};
  kept.may_narrow = static_cast<int>(asked.size()) + kLeastSavedColumns <= kept.columns->Count();
  if (!kept.may_narrow) return;
  std::string list;
  auto places = std::make_shared<std::vector<int>>(kept.columns->Count(), -1);
  for (const int column : asked) {
    const std::string_view name = sqlite3_column_name(kept.whole.statement.get(), column);
    // A name such as "Id:1" may be another column's once the statement is a table: columns of one name are
    // numbered there.
    if (name.find(':') != std::string_view::npos) kept.may_narrow = false;
    (*places)[static_cast<std::size_t>(column)] = kept.narrow.width++;
    list += (list.empty() ? "" : ", ") + QuoteName(name);
  }
  if (!kept.may_narrow) return;
  const std::string whole = sqlite3_sql(kept.whole.statement.get());
  const std::string sql = "SELECT " + (list.empty() ? "NULL" : list) + " FROM (" + whole + "\n)";
  try {
    const SqliteGuard::Pass pass(guard_);
    const std::vector<PlanStep> plan = PlanOf(connection_, whole);
    kept.may_narrow = !HasAutomaticIndex(plan) && PlanOf(connection_, sql) == plan;
    if (kept.may_narrow) kept.narrow.statement = connection_.Prepare(sql, sql);
    kept.narrow.places = std::move(places);
  } catch (const DatabaseError&) {
    kept.may_narrow = false;  // a name that cannot be told from another
  }
}

}  // namespace excelexp
