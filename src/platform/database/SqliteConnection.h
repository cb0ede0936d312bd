#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/host/DateTime.h"

struct sqlite3;
struct sqlite3_stmt;

namespace excelexp {

struct SqliteStatementCloser {
  void operator()(sqlite3_stmt* statement) const;
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, SqliteStatementCloser>;

/// An open SQLite file: what the reading and the writing connection have in common. Waits for locks, stops
/// running statements when asked to, knows the functions of the dialect, and words errors.
class SqliteConnection {
 public:
  enum class Access { kRead, kWrite };
  struct Hooks {
    std::function<bool()> cancelled;  ///< true stops the running statement or the wait for a lock
    std::function<DateTime()> now;    ///< what NOW() answers; the local time of the system when empty
  };

  /// Throws DatabaseError for a file that is missing, empty or not to be opened. Creates no file.
  SqliteConnection(const std::string& file, Access access, int busy_timeout_ms, Hooks hooks);
  ~SqliteConnection();
  SqliteConnection(const SqliteConnection&) = delete;
  SqliteConnection& operator=(const SqliteConnection&) = delete;

  sqlite3* Handle() const { return handle_; }

  /// Compiles a text that must hold exactly one statement. `sent` is the text that errors show.
  SqliteStatement Prepare(std::string_view sql, const std::string& sent) const;

  /// Moves to the next row; false at the end. Throws DatabaseError.
  bool Step(sqlite3_stmt* statement, const std::string& sent) const;

  /// Runs a script of our own.
  void Execute(const char* script) const;

  [[noreturn]] void Fail(int code, const std::string& sent) const;

  /// Begins a statement that a caller sees as one: NOW() gives one moment, and memory is counted, until the
  /// next call.
  void BeginStatement();
  /// The same for the rest of a statement that began at that moment.
  void ContinueStatement(DateTime moment);
  DateTime Moment();
  /// Whether the statement that is running, or ended last, asked for its moment.
  bool TookMoment() const { return moment_taken_; }

 private:
  static int OnBusy(void* self, int attempt);
  static int OnProgress(void* self);
  bool IsCancelled() noexcept;
  std::string Describe(int code) const;

  sqlite3* handle_ = nullptr;
  std::string file_;
  int busy_timeout_ms_;
  Hooks hooks_;
  bool moment_taken_ = false;
  DateTime moment_;
  std::int64_t memory_at_begin_ = 0;
  bool too_much_memory_ = false;
};

}  // namespace excelexp
