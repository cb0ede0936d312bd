#include "platform/database/SqliteConnection.h"

#include <sqlite3.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <thread>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/DialectFunctions.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

constexpr int kStepsBetweenChecks = 5000;  // some tens of microseconds
constexpr int kBusyPauseMs = 10;
// A statement that sorts or joins without end meets this before it meets the machine's memory.
constexpr sqlite3_int64 kMaxMemory = sqlite3_int64{2} << 30;

DateTime SystemNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return EncodeDateTime({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                         local.tm_sec < 60 ? local.tm_sec : 59, 0});
}

// SQLite would take a name such as "file:..." or ":memory:" for something else than a file.
std::string ExistingFile(const std::string& file) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(file, error);
  if (file.empty() || error || !std::filesystem::exists(path, error))
    throw DatabaseError("there is no database file '" + file + "'", "");
  if (!std::filesystem::is_regular_file(path, error)) throw DatabaseError("'" + file + "' is not a file", "");
  return path.string();
}

}  // namespace

void SqliteStatementCloser::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

SqliteConnection::SqliteConnection(const std::string& file, Access access, int busy_timeout_ms, Hooks hooks)
    : file_(file), busy_timeout_ms_(busy_timeout_ms), hooks_(std::move(hooks)) {
  const int flags = access == Access::kRead ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  const int code =
      sqlite3_open_v2(ExistingFile(file).c_str(), &handle_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  try {
    if (code != SQLITE_OK) Fail(code, "");
    sqlite3_extended_result_codes(handle_, 1);
    sqlite3_busy_handler(handle_, &OnBusy, this);
    sqlite3_progress_handler(handle_, kStepsBetweenChecks, &OnProgress, this);
    // Sorted payroll rows must not reach a file in the temp folder.
    Execute("PRAGMA temp_store = MEMORY");
    RegisterDialectFunctions(*this);
  } catch (...) {
    sqlite3_close_v2(handle_);
    throw;
  }
}

SqliteConnection::~SqliteConnection() {
  sqlite3_close_v2(handle_);
}

SqliteStatement SqliteConnection::Prepare(std::string_view sql, const std::string& sent) const {
  if (sql.find('\0') != std::string_view::npos) throw DatabaseError("the statement has a null byte", sent);
  sqlite3_stmt* compiled = nullptr;
  const char* tail = nullptr;
  const int code = sqlite3_prepare_v2(handle_, sql.data(), static_cast<int>(sql.size()), &compiled, &tail);
  SqliteStatement statement(compiled);
  if (code != SQLITE_OK) Fail(code, sent);
  if (statement == nullptr) throw DatabaseError("there is no statement in the text", sent);
  if (!TokenizeSql(sql.substr(static_cast<std::size_t>(tail - sql.data()))).empty())
    throw DatabaseError("refused: the text holds more than one statement", sent);
  return statement;
}

bool SqliteConnection::Step(sqlite3_stmt* statement, const std::string& sent) const {
  const int code = sqlite3_step(statement);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  Fail(code, sent);
}

void SqliteConnection::Execute(const char* script) const {
  if (const int code = sqlite3_exec(handle_, script, nullptr, nullptr, nullptr); code != SQLITE_OK)
    Fail(code, script);
}

void SqliteConnection::Fail(int code, const std::string& sent) const {
  throw DatabaseError(Describe(code), sent);
}

std::string SqliteConnection::Describe(int code) const {
  std::string said = handle_ != nullptr ? sqlite3_errmsg(handle_) : sqlite3_errstr(code);
  switch (code & 0xff) {
    case SQLITE_BUSY:
      return "the database '" + file_ + "' is locked by another program (waited " +
             std::to_string(busy_timeout_ms_) + " ms)";
    case SQLITE_NOTADB:
      return "'" + file_ + "' is not a database";
    case SQLITE_CANTOPEN:
      return "the database '" + file_ + "' cannot be opened: " + said;
    case SQLITE_AUTH:
      return "refused: " + said;
    case SQLITE_INTERRUPT:
      return too_much_memory_ ? "stopped: the statement needs too much memory" : "cancelled";
    case SQLITE_READONLY:
      if (code != SQLITE_READONLY_ROLLBACK && code != SQLITE_READONLY_RECOVERY) return said;
      return "the database '" + file_ +
             "' was left by an interrupted write: open it once with a program that " + "may write";
    default:
      return said;
  }
}

bool SqliteConnection::IsCancelled() noexcept {
  try {
    return hooks_.cancelled && hooks_.cancelled();
  } catch (...) {
    return true;  // an exception must not pass through SQLite
  }
}

int SqliteConnection::OnBusy(void* self, int attempt) {
  auto& connection = *static_cast<SqliteConnection*>(self);
  const bool patient = attempt * kBusyPauseMs < connection.busy_timeout_ms_;
  if (!patient || connection.IsCancelled()) return 0;
  std::this_thread::sleep_for(std::chrono::milliseconds(kBusyPauseMs));
  return 1;
}

int SqliteConnection::OnProgress(void* self) {
  auto& connection = *static_cast<SqliteConnection*>(self);
  connection.too_much_memory_ = sqlite3_memory_used() - connection.memory_at_begin_ > kMaxMemory;
  return connection.too_much_memory_ || connection.IsCancelled() ? 1 : 0;
}

void SqliteConnection::BeginStatement() {
  moment_taken_ = false;
  memory_at_begin_ = sqlite3_memory_used();
}

void SqliteConnection::ContinueStatement(DateTime moment) {
  BeginStatement();
  moment_ = moment;
  moment_taken_ = true;
}

DateTime SqliteConnection::Moment() {
  if (!moment_taken_) moment_ = hooks_.now ? hooks_.now() : SystemNow();
  moment_taken_ = true;
  return moment_;
}

}  // namespace excelexp
