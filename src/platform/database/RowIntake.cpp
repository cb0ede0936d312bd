#include "platform/database/RowIntake.h"

#include <sqlite3.h>

#include <exception>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/QueryPlan.h"
#include "platform/database/SqlTokens.h"
#include "platform/database/SqliteGuard.h"

namespace excelexp {
namespace {

// Not among the functions that a text may call: the guard read those before this one was made.
constexpr char kFunction[] = "take row";

}  // namespace

sqlite3_value* RowValues::operator[](std::size_t column) const {
  return arguments_ != nullptr ? arguments_[column]
                               : sqlite3_column_value(statement_, static_cast<int>(column));
}

RowIntake::RowIntake(const SqliteConnection& connection, SqliteGuard& guard)
    : connection_(connection), guard_(guard) {
  const int code =
      sqlite3_create_function_v2(connection.Handle(), kFunction, -1, SQLITE_UTF8 | SQLITE_DIRECTONLY, this,
                                 nullptr, &OnRow, &OnEnd, nullptr);
  if (code != SQLITE_OK) connection.Fail(code, "");
}

void RowIntake::OnRow(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  auto& self = *static_cast<RowIntake*>(sqlite3_user_data(context));
  try {
    (*self.take_)(RowValues(values));
  } catch (...) {  // must not pass through SQLite
    self.failed_ = std::current_exception();
    sqlite3_result_error(context, "a row was not taken", -1);
  }
}

void RowIntake::OnEnd(sqlite3_context* context) {
  sqlite3_result_null(context);
}

void RowIntake::Read(sqlite3_stmt* select, bool lists_rows, const std::string& sent, const Take& take) {
  const SqliteStatement arguments = lists_rows ? AsArguments(select) : nullptr;
  if (arguments == nullptr) {
    while (connection_.Step(select, sent)) take(RowValues(select));
    return;
  }
  take_ = &take;
  failed_ = nullptr;
  try {
    while (connection_.Step(arguments.get(), sent)) {
    }
  } catch (const DatabaseError&) {
    if (failed_ == nullptr) throw;
  }
  if (failed_ != nullptr) std::rethrow_exception(failed_);
}

/// nullptr if the rows would be found in another way, or SQLite does not take so many arguments.
SqliteStatement RowIntake::AsArguments(sqlite3_stmt* select) const {
  std::string columns;
  for (int i = 0; i < sqlite3_column_count(select); ++i)
    columns += (columns.empty() ? "" : ", ") + QuoteName(sqlite3_column_name(select, i));
  const std::string whole = sqlite3_sql(select);
  const std::string sql = "SELECT " + QuoteName(kFunction) + "(" + columns + ") FROM (" + whole + "\n)";
  try {
    const SqliteGuard::Pass pass(guard_);
    const std::vector<PlanStep> plan = PlanOf(connection_, whole);
    if (HasAutomaticIndex(plan) || PlanOf(connection_, sql) != plan) return nullptr;
    return connection_.Prepare(sql, sql);
  } catch (const DatabaseError&) {
    return nullptr;
  }
}

}  // namespace excelexp
