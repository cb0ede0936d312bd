#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/database/HeldTable.h"
#include "platform/database/ResultSet.h"
#include "platform/database/SqlShape.h"
#include "platform/database/SqlTokens.h"
#include "platform/database/StoredFunctions.h"
#include "platform/database/TableShape.h"

struct sqlite3_stmt;

namespace excelexp {

class HeldTables;

/// Answers the statement that a report sends for each of its entities,
///
///   SELECT * FROM Held [JOIN Other ...] WHERE Column = value [AND Column = value ...]
///
/// from the rows of a held table: they are found by their key and order columns, and what is joined to them
/// is read once for each value of the one column that refers to it. Rows come in the order of the held table.
class HeldSelect {
 public:
  /// Compiles a SELECT of the dialect.
  using Compile = std::function<CompiledQuery(const std::string& sql)>;
  /// Reads all rows of a compiled statement whose one parameter is bound to the text.
  using ReadOne = std::function<std::shared_ptr<const ResultSet>(sqlite3_stmt*, std::string_view)>;

  /// nullptr for a statement of another form, or one where types or names leave room for another meaning.
  /// `whole` is the same statement, compiled.
  /// `values` are those of the statement in front of us: others of its shape have the same types.
  static std::unique_ptr<HeldSelect> Of(const SqlShape& shape, const std::vector<SqlComparand>& values,
                                        sqlite3_stmt* whole, const HeldTables& tables,
                                        const FindTable& find_table, const Compile& compile);

  /// The rows for these values of the conditions, with what is joined to them. Another `generation` says that
  /// the database may have changed. nullptr when a row has to be joined to several, or has no code to find by
  /// what it is joined to.
  std::shared_ptr<const ResultRows> Rows(const std::vector<SqlComparand>& values, std::uint64_t generation,
                                         const ReadOne& read);

 private:
  /// Where a column of the statement comes from.
  struct Source {
    int held = -1;    ///< column of the held table, or
    int joined = -1;  ///< column of what is joined
  };
  struct Batch;
  class BatchRows;

  HeldSelect() = default;
  bool TakeTables(std::span<const SqlToken> tokens, const FindTable& find_table);
  bool TakeConditions(std::span<const SqlToken> tokens, const std::vector<SqlComparand>& values);
  bool TakeReference(const TableShape& held);
  bool CompileJoined(const Compile& compile);
  bool TakeColumns(sqlite3_stmt* whole);
  std::shared_ptr<Batch> BatchOf(std::span<const ValueView> values, std::uint64_t generation);
  std::vector<std::uint32_t> Find(const HeldRows& rows, std::span<const ValueView> values) const;
  bool JoinTo(std::vector<std::uint32_t>& places, const HeldRows& rows, Batch& batch,
              const ReadOne& read) const;

  const HeldTable* table_ = nullptr;
  std::vector<const TableShape*> joined_tables_;
  std::vector<int> conditions_;  // column of each value
  std::vector<int> key_places_;  // which value each key column has
  std::vector<int> leading_;     // which value each leading order column has
  std::vector<int> others_;      // values that the rows are checked for one by one
  int reference_ = -1;           // the column that refers to what is joined
  std::string target_;           // and the column that it refers to
  CompiledQuery joined_;
  std::vector<Source> sources_;  // of each column of the statement

  std::vector<std::shared_ptr<Batch>> batches_;  // a report prints items of several keys in turns
  std::uint64_t batches_generation_ = 0;
};

}  // namespace excelexp
