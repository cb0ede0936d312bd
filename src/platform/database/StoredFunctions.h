#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database/KeyedSql.h"
#include "platform/database/KeyedValues.h"
#include "platform/database/SqliteConnection.h"
#include "platform/database/SqliteGuard.h"

struct sqlite3_context;

namespace excelexp {

/// A compiled statement of the dialect and what the guard saw in it.
struct CompiledQuery {
  SqliteStatement statement;
  StatementTraits traits;
};

/// The functions that a database brings along: each row of
/// DatabaseFunction(FunctionName, ArgumentCount, FunctionSql) becomes a scalar function whose value is the
/// first column of the first row of its SELECT, or NULL when there is no row. ?1, ?2, ... are the arguments.
///
/// Values are remembered per arguments until Forget, unless the SELECT asks for something volatile, or hardly
/// any of a function's values is asked for again. A function that is called for one key after another, of an
/// employee say, is soon asked for all keys at once.
class StoredFunctions {
 public:
  /// `compile` compiles a SELECT of the dialect under the guard.
  using Compile = std::function<CompiledQuery(const std::string& sql)>;
  StoredFunctions(SqliteConnection& connection, SqliteGuard& guard, FindTable find_table, Compile compile);
  ~StoredFunctions();
  StoredFunctions(const StoredFunctions&) = delete;
  StoredFunctions& operator=(const StoredFunctions&) = delete;

  /// Reads the table and registers what it defines; false when that is what is registered already. Throws
  /// DatabaseError for a row that defines nothing sensible, or that redefines a function the library has.
  bool Load(bool table_exists);

  /// Drops remembered values and compiled statements: the data may have changed.
  void Forget();

  /// Says that the running statement met something volatile; reset and read around a statement.
  bool MetVolatile() const { return met_volatile_; }
  void SetMetVolatile(bool met) { met_volatile_ = met; }

 private:
  struct Definition {
    std::string name;
    int argument_count;
    std::string sql;
    friend bool operator==(const Definition&, const Definition&) = default;
  };
  /// The values for all keys, the arguments behind the key being the same.
  struct Batch {
    std::string others;  ///< those arguments
    KeyDemand demand = {};
    KeyedValues values = {};
  };
  struct Function {
    StoredFunctions* owner;
    Definition definition;
    std::vector<CompiledQuery> idle;  // more than one when the function calls itself
    std::unordered_map<std::string, OwnedSqliteValue> values;
    std::size_t hits = 0;
    std::deque<Batch> batches;  // a call may add to them while one of them is read
  };

  std::vector<Definition> ReadDefinitions() const;
  void Register(Definition definition);
  void Unregister();
  static void OnCall(sqlite3_context* context, int count, sqlite3_value** arguments);
  void Call(Function& function, sqlite3_context* context, int count, sqlite3_value** arguments);
  void Evaluate(Function& function, sqlite3_context* context, int count, sqlite3_value** arguments,
                std::optional<std::string> key);
  /// nullptr for a call without an integer as its key.
  Batch* BatchFor(Function& function, int count, sqlite3_value** arguments);
  void ReadBatchIfDue(Function& function, Batch& batch, std::span<sqlite3_value* const> arguments);
  std::optional<std::size_t> CountKeys(const Function& function) const;
  void ReadValues(Function& function, Batch& batch, std::span<sqlite3_value* const> arguments);
  KeyedValues ReadValues(const CompiledQuery& query, const std::string& sql,
                         std::span<sqlite3_value* const> arguments);
  /// nullptr for a SELECT without a row.
  void Remember(Function& function, std::string key, sqlite3_value* found);
  CompiledQuery Take(Function& function);

  SqliteConnection& connection_;
  SqliteGuard& guard_;
  FindTable find_table_;
  Compile compile_;
  std::vector<std::unique_ptr<Function>> functions_;
  std::size_t value_bytes_ = 0;
  std::size_t batch_bytes_ = 0;
  std::string key_;  // of arguments of the call that is made
  int depth_ = 0;
  bool met_volatile_ = false;
};

}  // namespace excelexp
