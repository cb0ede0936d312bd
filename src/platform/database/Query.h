#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/database/DatabaseError.h"
#include "platform/database/ResultSet.h"
#include "platform/host/DateTime.h"

namespace excelexp {

class Query;

/// One field of a query's current row. Valid while the query stays open; reads the row the query stands on
/// when read. How values are converted is told at ResultSet.
class Field {
 public:
  bool IsNull() const;
  std::string AsString() const;
  int AsInteger() const;  ///< values beyond 32 bits are an error that names the column
  double AsFloat() const;
  DateTime AsDateTime() const;  ///< throws DatabaseError naming the column for a malformed date
  /// Replaces `stream` by the bytes of a blob (or text) column.
  void SaveToStream(std::string& stream) const;

 private:
  friend class Query;
  Field(const Query& query, int column) : query_(&query), column_(column) {}
  const Query* query_;
  int column_;
};

/// A dataset over one SQL text on a named database: a cursor over a shared, immutable result.
///
/// The cursor: Open and First stand on the first row with Bof set; Next on the last row stays there and sets
/// Eof; Last stands on the last row with Eof set; Prior on the first row stays there and sets Bof. An empty
/// result has both set. Any move clears the flag of the edge it leads away from, also when it stays on the
/// only row; a Locate that finds a row clears both. So `for (q.First(); !q.Eof(); q.Next())` and `for
/// (q.Last(); !q.Bof(); q.Prior())` visit every row once, and Bof tells the first row on a walk that began
/// with First.
class Query {
 public:
  Query() = default;
  explicit Query(std::string database_name);
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  const std::string& DatabaseName() const { return database_name_; }
  /// Closes the query.
  void SetDatabaseName(std::string name);

  /// Closes the query and replaces the statement.
  void SetSql(std::string sql);
  const std::string& Sql() const { return sql_; }

  /// Runs the statement on the database registered under the name now. Throws DatabaseError and stays closed
  /// on failure.
  void Open();
  void Close();
  bool IsOpen() const { return result_ != nullptr; }

  void First();
  void Next();
  void Prior();
  void Last();
  /// Which row it stands on, from 0.
  int RowIndex() const { return row_; }
  bool Bof() const { return bof_; }
  bool Eof() const { return eof_; }
  /// Database::HasRows of the database registered under the name, for a statement that is not opened.
  std::optional<bool> HasRows(const std::string& sql) const;
  /// 0 for a closed query.
  int RowCount() const;
  /// Whether there are no rows; cheaper than counting them.
  bool IsEmpty() const { return result_ == nullptr || result_->IsEmpty(); }

  /// Throws DatabaseError, naming the field and the statement, when the query is closed, empty or has no such
  /// column.
  Field FieldByName(std::string_view name) const;

  /// Moves to the first row (in result order) whose fields, given as "A" or "A;B;C", equal the values: exact,
  /// case-sensitive, whole values. False leaves the position alone. Throws DatabaseError for a closed query
  /// or an unknown field.
  bool Locate(std::string_view fields, std::span<const KeyValue> values);
  bool Locate(std::string_view field, const KeyValue& value) { return Locate(field, std::span(&value, 1)); }

  /// The same in two steps, for one search after the other: how to search by the fields, and the search. Each
  /// is for the result that the query is open on.
  ResultSet::Search SearchBy(std::span<const std::string_view> fields) const;
  bool Locate(const ResultSet::Search& search, std::span<const KeyView> values);
  /// nullptr for a closed query.
  const std::shared_ptr<const ResultSet>& Result() const { return result_; }

 private:
  friend class Field;
  const ResultSet& OpenResult() const;
  std::vector<int> ColumnsOf(std::span<const std::string_view> fields) const;

  std::string database_name_;
  std::string sql_;
  std::shared_ptr<const ResultSet> result_;
  int row_ = 0;
  bool bof_ = true;
  bool eof_ = true;
};

}  // namespace excelexp
