#pragma once

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/database/HeldSelect.h"
#include "platform/database/KeyedRows.h"
#include "platform/database/KeyedSql.h"
#include "platform/database/ResultCache.h"
#include "platform/database/SqlShape.h"
#include "platform/database/StoredFunctions.h"

namespace excelexp {

/// A statement that reads some columns of another one's rows.
struct NarrowStatement {
  SqliteStatement statement;
  std::shared_ptr<const std::vector<int>> places;  ///< of each column of the whole statement, or -1
  int width = 0;
};

/// What is known of a statement that is sent for one key after the other, since the data changed last.
struct KeyedStatement {
  KeyDemand demand = {};
  std::shared_ptr<const KeyedRows> rows = {};
  /// Of the narrow statement that the rows are of; null: of the whole one.
  std::shared_ptr<const std::vector<int>> places = {};
};

/// A compiled statement, kept for the next time one of its shape is sent, and what was learnt from its use.
struct KeptStatement {
  SqlShape shape;
  CompiledQuery whole;
  std::shared_ptr<const ResultColumns> columns;
  std::shared_ptr<CacheUse> use = std::make_shared<CacheUse>();
  int runs = 0;
  bool met_volatile = false;  ///< one of its functions asked for something volatile
  bool may_narrow = true;
  NarrowStatement narrow = {};
  bool gave_many = false;  ///< more than one row
  /// The same without DISTINCT, for as long as it finds one row at most: to see that rows differ, the
  /// database makes a table of them each time.
  SqliteStatement undistinct = {};
  /// How rows held in memory answer it; no pointer when they do not, nothing before that was looked for.
  std::optional<std::unique_ptr<HeldSelect>> held = {};
  KeyedStatement keyed = {};

  /// An empty result of the narrow statement, or of the whole one.
  ResultSetBuilder ResultOf(bool is_narrow) const;
};

/// The statements used last, compiled once for each shape.
class StatementPool {
 public:
  /// Compiles a SELECT of the dialect; the second text is the one that errors show.
  using Compile = std::function<CompiledQuery(const std::string& sql, const std::string& sent)>;
  StatementPool(SqliteConnection& connection, SqliteGuard& guard, Compile compile);

  /// The statement of the text's shape. Valid until the next call. Throws DatabaseError for a text that is
  /// too long, has a null byte or does not compile.
  KeptStatement& For(const std::string& sql);
  /// The same if its rows were read for all keys and it is one of those used last; nullptr otherwise.
  KeptStatement* FindKeyed(const std::string& sql);
  /// Binds the values of the text, the one of the last call.
  void Bind(KeptStatement& kept, const std::string& sql) const;
  /// The values that the text of the last call compares columns with; they point into it.
  const std::vector<SqlComparand>& Values() const { return values_; }
  /// The one number that all of them are; nullopt when there is none.
  std::optional<std::int64_t> Key() const;
  void Clear() { kept_.clear(); }
  /// The data may have changed.
  void ForgetRows() {
    for (KeptStatement& kept : kept_) kept.keyed = {};
  }

 private:
  std::size_t LongestText() const;
  KeptStatement& Use(std::list<KeptStatement>::iterator kept);
  void Keep(const std::string& sql);
  void BindValues(sqlite3_stmt* statement, const std::string& sql) const;
  void Narrow(KeptStatement& kept);
  void MakeUndistinct(KeptStatement& kept) const;

  SqliteConnection& connection_;
  SqliteGuard& guard_;
  Compile compile_;
  std::list<KeptStatement> kept_;  // the one used last in front
  std::vector<SqlComparand> values_;
};

}  // namespace excelexp
