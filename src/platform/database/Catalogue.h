#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database/SqliteConnection.h"
#include "platform/database/TableShape.h"

namespace excelexp {

/// The tables of a database, looked up when first asked for, and the catalogue tables made from them.
///
/// Every connection has three temporary tables of its own, unless the database has a table of that name:
///   DUMMY(dummy_col)                          one row
///   SysTable(table_id, table_name, table_type)
///   SysColumn(table_id, column_id, column_name, column_type), with a foreign key to SysTable
/// Their name columns compare without regard to letter case.
class Catalogue {
 public:
  explicit Catalogue(const SqliteConnection& connection) : connection_(connection) {}

  /// Makes the temporary tables. The catalogue tables stay empty until FillSystemTables.
  void CreateSystemTables();

  /// nullptr when there is no such table or view. Valid until Forget.
  const TableShape* Find(std::string_view name);

  /// Writes what the statement may read of the tables and views of the database into SysTable and SysColumn,
  /// if it is not there yet. To tell a view's columns it has to be compiled, so the columns are only those of
  /// the table whose name the statement asks for, if it is known to see no others.
  void FillSystemTables(std::string_view sql);

  /// Another connection may have changed the schema.
  void Forget();

 private:
  /// A statement that is kept; to be rewound after each use, for a running one keeps the file locked.
  struct Rewinder {
    void operator()(sqlite3_stmt* statement) const;
  };
  using Borrowed = std::unique_ptr<sqlite3_stmt, Rewinder>;
  Borrowed Borrow(const char* sql) const;

  struct Declared {
    std::string name;    ///< as it was declared; "" when there is no such table or view
    std::string schema;  ///< "main" or "temp"
  };
  Declared FindDeclared(std::string_view name) const;
  std::vector<TableShape::Column> ReadColumns(const Declared& declared) const;
  TableShape Read(const Declared& declared) const;

  const SqliteConnection& connection_;
  mutable std::unordered_map<const char*, SqliteStatement> kept_;        // by their text, a constant
  mutable std::unordered_map<std::string, std::string> stored_names_;    // as declared, by folded name
  std::unordered_map<std::string, std::unique_ptr<TableShape>> tables_;  // by folded name
  bool own_system_tables_ = false;
  bool filled_ = false;                  // with everything
  std::set<std::string> filled_tables_;  // whose columns are there, folded
};

}  // namespace excelexp
