#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace excelexp {

class ResultSet;

/// A read-only connection to one database, whatever its kind. Used from one thread.
class Database {
 public:
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  virtual ~Database() = default;

  /// Runs one SELECT, sent in the engine's dialect, and returns its whole result. Throws DatabaseError.
  /// The result may come from a cache; it never shows less than what the last NoteWrite announced.
  virtual std::shared_ptr<const ResultSet> Select(const std::string& sql) = 0;

  /// The declared type word of a column: "char", "integer", "smallint", "double", "decimal", "date", "time"
  /// or "timestamp"; "" for a table or column that does not exist. Letter case does not count.
  virtual std::string ColumnType(std::string_view table, std::string_view column) = 0;

  /// The country the database is set up for; "" when it does not say.
  virtual std::string Country() = 0;

  /// The pattern in which the database shows dates, e.g. "dd/mm/yyyy".
  virtual std::string DateFormat() = 0;

  /// Says that another connection has written: ends the snapshot and drops what was remembered, so that the
  /// next Select sees the write.
  virtual void NoteWrite() = 0;
};

}  // namespace excelexp
