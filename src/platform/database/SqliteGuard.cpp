#include "platform/database/SqliteGuard.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <vector>

#include "platform/database/Names.h"
#include "platform/database/SqlTokens.h"
#include "platform/database/SqliteConnection.h"

namespace excelexp {
namespace {

struct Limit {
  int id;
  int value;
};
// Far above what report texts need, far below what exhausts a machine. (SQLite's manual, "Limits".)
constexpr std::array<Limit, 9> kLimits = {{
    {SQLITE_LIMIT_LENGTH, 16 << 20},
    {SQLITE_LIMIT_SQL_LENGTH, 1 << 20},
    {SQLITE_LIMIT_EXPR_DEPTH, 1000},
    {SQLITE_LIMIT_COMPOUND_SELECT, 500},
    {SQLITE_LIMIT_VDBE_OP, 1 << 20},
    {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 1000},
    {SQLITE_LIMIT_VARIABLE_NUMBER, 127},
    {SQLITE_LIMIT_WORKER_THREADS, 0},
}};

struct Setting {
  int id;
  int value;
};
constexpr std::array<Setting, 8> kSettings = {{
    {SQLITE_DBCONFIG_DEFENSIVE, 1},
    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    {SQLITE_DBCONFIG_WRITABLE_SCHEMA, 0},
    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
    {SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0},
    {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
    // A misspelt "name" must be an error, not a text.
    {SQLITE_DBCONFIG_DQS_DML, 0},
    // A statement that is read a second time for its rest must find its rows in the same order, so the plan
    // may not depend on the values bound.
    {SQLITE_DBCONFIG_ENABLE_QPSG, 1},
}};

// Not needed by any report, and each reaches outside the database or its rows.
constexpr std::array<std::string_view, 8> kForbidden = {"load_extension", "fts3_tokenizer", "writefile",
                                                        "readfile",       "edit",           "sqlite_log",
                                                        "zipfile",        "sqlar_compress"};
constexpr std::array<std::string_view, 10> kVolatile = {
    "now",          "random",        "randomblob", "current_timestamp", "current_date",
    "current_time", "total_changes", "changes",    "last_insert_rowid", "sqlite_offset"};
// These ask the clock only for 'now' or without an argument.
constexpr std::array<std::string_view, 6> kDates = {"date",      "time",     "datetime",
                                                    "julianday", "strftime", "unixepoch"};

template <std::size_t N>
bool Contains(const std::array<std::string_view, N>& names, std::string_view name) {
  return std::ranges::any_of(names, [&](std::string_view each) { return SameName(each, name); });
}

// The call at `name` has no argument, or, for strftime, none but the format.
bool CallsWithoutTime(const std::vector<SqlToken>& tokens, std::size_t name) {
  if (name + 1 >= tokens.size() || !tokens[name + 1].IsMark('(')) return false;
  if (!tokens[name].IsWord("strftime")) return name + 2 < tokens.size() && tokens[name + 2].IsMark(')');
  int depth = 0;
  for (std::size_t i = name + 1; i < tokens.size(); ++i) {
    if (tokens[i].IsMark('(')) ++depth;
    if (tokens[i].IsMark(')') && --depth == 0) return true;
    if (tokens[i].IsMark(',') && depth == 1) return false;
  }
  return true;
}

bool AsksClock(std::string_view sql) {
  const std::vector<SqlToken> tokens = TokenizeSql(sql);
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == SqlToken::Kind::kString && SameName(tokens[i].text, "'now'")) return true;
    if (Contains(kDates, tokens[i].text) && CallsWithoutTime(tokens, i)) return true;
  }
  return false;
}

}  // namespace

SqliteGuard::SqliteGuard(const SqliteConnection& connection) {
  sqlite3* const handle = connection.Handle();
  for (const Limit& limit : kLimits) sqlite3_limit(handle, limit.id, limit.value);
  for (const Setting& setting : kSettings) sqlite3_db_config(handle, setting.id, setting.value, nullptr);
  ReadFunctions(connection);
  sqlite3_set_authorizer(handle, &Authorize, this);
}

// Functions that SQLite itself marks as harmless, or as depending on nothing but their arguments, and that
// may be called from anywhere.
void SqliteGuard::ReadFunctions(const SqliteConnection& connection) {
  constexpr char kSql[] = "SELECT name, flags FROM pragma_function_list";
  constexpr int kHarmless = SQLITE_INNOCUOUS | SQLITE_DETERMINISTIC;
  const SqliteStatement rows = connection.Prepare(kSql, kSql);
  while (connection.Step(rows.get(), kSql)) {
    const std::string name = FoldName(reinterpret_cast<const char*>(sqlite3_column_text(rows.get(), 0)));
    const int flags = sqlite3_column_int(rows.get(), 1);
    functions_.insert(name);
    if ((flags & kHarmless) != 0 && (flags & SQLITE_DIRECTONLY) == 0 && !Contains(kForbidden, name))
      allowed_.insert(name);
  }
}

StatementTraits SqliteGuard::Traits(std::string_view sql) const {
  StatementTraits traits = traits_;
  const bool asks_clock = calls_date_ && AsksClock(sql);
  traits.is_volatile = traits.is_volatile || asks_clock;
  traits.is_unrepeatable = traits.is_unrepeatable || asks_clock;
  return traits;
}

int SqliteGuard::Authorize(void* self, int action, const char* first, const char* second, const char*,
                           const char* view) {
  auto& guard = *static_cast<SqliteGuard*>(self);
  if (guard.passes_ > 0) return SQLITE_OK;
  switch (action) {
    case SQLITE_SELECT:
    case SQLITE_RECURSIVE:
      return SQLITE_OK;
    case SQLITE_READ:
      return guard.MayRead(first) ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_FUNCTION:
      return guard.MayCall(second, view != nullptr) ? SQLITE_OK : SQLITE_DENY;
    default:
      return SQLITE_DENY;
  }
}

bool SqliteGuard::MayCall(const char* name, bool in_view) {
  const std::string folded = FoldName(name);
  if (Contains(kVolatile, folded)) {
    traits_.is_volatile = true;
    traits_.is_unrepeatable = traits_.is_unrepeatable || folded != "now";
  }
  if (Contains(kDates, folded)) {
    calls_date_ = true;
    traits_.is_volatile = traits_.is_volatile || in_view;  // the view's text is not at hand
    traits_.is_unrepeatable = traits_.is_unrepeatable || in_view;
  }
  traits_.calls_stored = traits_.calls_stored || !IsBuiltIn(folded);
  return allowed_.contains(folded);
}

// The library's own virtual tables show settings, pages and statements, not data of the database.
bool SqliteGuard::MayRead(const char* table) {
  const std::string folded = FoldName(table == nullptr ? "" : table);
  if (folded == "systable" || folded == "syscolumn") traits_.reads_catalogue = true;
  return !folded.starts_with("pragma_") && folded != "sqlite_dbpage" && folded != "sqlite_stmt" &&
         folded != "dbstat" && folded != "bytecode" && folded != "tables_used" && folded != "fts3tokenize";
}

}  // namespace excelexp
