#pragma once

#include <functional>
#include <string>

#include "platform/database/SqliteConnection.h"

struct sqlite3_context;
struct sqlite3_stmt;
struct sqlite3_value;

namespace excelexp {

class SqliteGuard;

/// The values of a row of a running statement.
class RowValues {
 public:
  explicit RowValues(sqlite3_stmt* statement) : statement_(statement) {}
  explicit RowValues(sqlite3_value** arguments) : arguments_(arguments) {}
  /// Valid as long as the row.
  sqlite3_value* operator[](std::size_t column) const;

 private:
  sqlite3_stmt* statement_ = nullptr;
  sqlite3_value** arguments_ = nullptr;
};

/// Reads many rows of a statement. Asked for value by value SQLite spends a quarter of the time on handing
/// them out; so a statement that just lists rows is run as the arguments of an aggregate function, which gets
/// a row at once, if the database then finds the rows in the same way and so in the same order.
class RowIntake {
 public:
  using Take = std::function<void(const RowValues&)>;

  /// Both outlive the object, and no statement over the function runs after it.
  RowIntake(const SqliteConnection& connection, SqliteGuard& guard);
  RowIntake(const RowIntake&) = delete;
  RowIntake& operator=(const RowIntake&) = delete;

  /// Gives each row of a compiled statement to `take`, in order. `lists_rows` says that it is one select of
  /// rows as they are found (SqlShape::IsPlain). Throws DatabaseError with the text `sent`, or what `take`
  /// throws.
  void Read(sqlite3_stmt* select, bool lists_rows, const std::string& sent, const Take& take);

 private:
  static void OnRow(sqlite3_context* context, int count, sqlite3_value** values);
  static void OnEnd(sqlite3_context* context);
  SqliteStatement AsArguments(sqlite3_stmt* select) const;

  const SqliteConnection& connection_;
  SqliteGuard& guard_;
  const Take* take_ = nullptr;
  std::exception_ptr failed_;
};

}  // namespace excelexp
