#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace excelexp {

class ResultSet;

/// Rows of a table that a connection is to hold in its own memory.
struct RowsToHold {
  /// Column and value: what all of the rows have in common.
  using Key = std::vector<std::pair<std::string, std::string>>;
  /// Only rows in which the column has, as text, one of the values that the statement selects first.
  struct Restriction {
    std::string column;
    std::string select;
  };

  std::string table;               ///< a table of the database: its columns, types and defaults hold
  Key key;                         ///< columns of texts; replaces what is held under it
  std::vector<std::string> order;  ///< by which columns of texts the rows are found and sorted
  std::string select;              ///< where they come from; gives other columns of the table by name
  Restriction only = {};           ///< an empty column restricts nothing
};

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

  /// Whether the statement has rows, where that can be told for less than reading it; nullopt otherwise, also
  /// for a statement that fails.
  virtual std::optional<bool> HasRows(const std::string& /*sql*/) { return std::nullopt; }

  /// The declared type word of a column: "char", "integer", "smallint", "double", "decimal", "date", "time"
  /// or "timestamp"; "" for a table or column that does not exist. Letter case does not count.
  virtual std::string ColumnType(std::string_view table, std::string_view column) = 0;

  /// The country the database is set up for; "" when it does not say.
  virtual std::string Country() = 0;

  /// The pattern in which the database shows dates, e.g. "dd/mm/yyyy".
  virtual std::string DateFormat() = 0;

  /// Holds rows that only this connection sees. From then on it sees of the table, also through views, what
  /// is held, under any key, and nothing of what is stored. Columns that the statement does not give have
  /// their default. Throws DatabaseError; what was held before stays then.
  virtual void HoldRows(const RowsToHold& rows) = 0;
  /// Forgets what is held under the key.
  virtual void ReleaseRows(const std::string& table, const RowsToHold::Key& key) = 0;

  /// Says that another connection has written: ends the snapshot and drops what was remembered, so that the
  /// next Select sees the write.
  virtual void NoteWrite() = 0;
};

}  // namespace excelexp
