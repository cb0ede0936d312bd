#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/Database.h"
#include "platform/database/HeldTable.h"
#include "platform/database/RowIntake.h"

struct sqlite3_stmt;

namespace excelexp {

class SqliteConnection;

/// The tables of which a connection holds rows itself. To its statements such a table is a virtual table in
/// the temp schema, which therefore hides the stored table of that name.
///
/// Rows come in the order that an index over (key columns, order columns) would give; a condition of equality
/// on these columns finds its rows by them.
class HeldTables {
 public:
  /// Both outlive the object; statements over its tables do not outlive it.
  HeldTables(const SqliteConnection& connection, SqliteGuard& guard);
  HeldTables(const HeldTables&) = delete;
  HeldTables& operator=(const HeldTables&) = delete;

  bool IsEmpty() const { return by_name_.empty(); }
  /// nullptr for a table of which no rows are or were held.
  HeldTable* Find(std::string_view name) const;

  /// The table that the request names, with the columns, types and defaults of the stored one, without rows.
  /// Throws DatabaseError when there is none, or it lacks a column of the request, or has one by which rows
  /// are told apart and which does not hold texts, or one that does not compare them byte by byte.
  std::unique_ptr<HeldTable> Describe(const RowsToHold& rows) const;
  /// From now on statements see it, and so do the views of the database that read it.
  void Install(std::unique_ptr<HeldTable> table);

  /// Reads what a compiled statement selects into rows of the request's key. `texts` are what
  /// RowsToHold::only allows. Throws DatabaseError, also for a statement with a column that the table lacks,
  /// that is given twice, or belongs to the key, for one without the column of RowsToHold::only, and beyond
  /// `max_bytes`.
  std::shared_ptr<const HeldRows> Read(const HeldTable& table, const RowsToHold& rows, sqlite3_stmt* select,
                                       std::vector<std::string> texts, std::size_t max_bytes);

 private:
  std::vector<HeldTable::Column> StoredColumns(const std::string& name) const;
  void RepeatViewsOver(const std::string& table) const;
  void CheckCollation(const std::string& table, const std::string& column) const;
  static std::vector<int> GivenColumns(const HeldTable& table, sqlite3_stmt* select);

  const SqliteConnection& connection_;
  RowIntake intake_;
  std::map<std::string, std::unique_ptr<HeldTable>, std::less<>> by_name_;  // folded
};

}  // namespace excelexp
