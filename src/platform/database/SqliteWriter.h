#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace excelexp {

/// A value bound to a statement of ours: NULL, integer, number, text or bytes.
using SqlValue = std::variant<std::monostate, std::int64_t, double, std::string, std::vector<std::uint8_t>>;

/// A read-write connection: the demo generator's, and that of an analysis engine that stores its records. It
/// runs statements written by this system, never a text that a definition carries; values are bound, not
/// spliced. Throws DatabaseError. Exports do not need it.
/// The connection knows the functions of the dialect (NOW, MONTHS, ...) but does not rewrite statements.
class SqliteWriter {
 public:
  enum class Mode { kExisting, kCreate };  ///< kCreate fails when the file exists

  explicit SqliteWriter(const std::string& file, Mode mode = Mode::kExisting, int busy_timeout_ms = 5000);
  ~SqliteWriter();
  SqliteWriter(const SqliteWriter&) = delete;
  SqliteWriter& operator=(const SqliteWriter&) = delete;

  /// Runs a script of any number of statements without values.
  void ExecuteScript(std::string_view script);

  /// Runs one statement with bound values and returns the number of rows changed. The prepared statement is
  /// kept for the next call with the same text.
  std::int64_t Execute(const std::string& sql, std::span<const SqlValue> values = {});

  /// Runs a SELECT and returns its rows.
  std::vector<std::vector<SqlValue>> Rows(const std::string& sql, std::span<const SqlValue> values = {});

  /// Runs `work` inside one immediate transaction: committed when it returns, rolled back when it throws.
  void Transaction(const std::function<void()>& work);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace excelexp
