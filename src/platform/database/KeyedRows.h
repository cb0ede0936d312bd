#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/database/ResultSet.h"
#include "platform/database/SqliteConnection.h"
#include "platform/database/SqliteGuard.h"
#include "platform/database/TableShape.h"

namespace excelexp {

struct KeptStatement;

/// The rows that a statement finds for each key, read for all keys at once.
///
/// A report asks the same of one employee after the other, "... WHERE Employee.EmployeeSysId = 4711". To
/// start and end a statement costs the database more than the few rows that it finds.
class KeyedRows {
 public:
  /// How many keys the statement could be sent for, or more. nullopt when it is not sent for a key.
  static std::optional<std::size_t> CountKeys(const KeptStatement& kept, const SqliteConnection& connection,
                                              SqliteGuard& guard, const FindTable& find_table);
  /// The statement for all keys: the key in front, then the columns that are read of the one for a single
  /// key. `single` is that statement, or the same without DISTINCT. nullptr when the database would find rows
  /// in another way, and so maybe in another order.
  static SqliteStatement Compile(const KeptStatement& kept, sqlite3_stmt* single,
                                 const SqliteConnection& connection, SqliteGuard& guard,
                                 const FindTable& find_table);

  /// Takes rows with their key in front. Of a key they stand together.
  explicit KeyedRows(std::shared_ptr<const ResultSet> rows);

  std::size_t KeyCount() const { return keys_.size(); }
  struct Span {
    int first;
    int count;
  };
  /// nullopt for a key without rows.
  std::optional<Span> Find(std::int64_t key) const;
  /// Whether DISTINCT would keep all rows of the span, whatever their collation. False when in doubt.
  bool SurelyDiffer(const Span& span) const;
  /// Adds the row without its key.
  void AddTo(ResultSetBuilder& builder, int row) const;

 private:
  bool SurelyDiffer(int row, int other) const;

  std::shared_ptr<const ResultSet> rows_;
  std::vector<std::pair<std::int64_t, Span>> keys_;  // ascending
};

}  // namespace excelexp
