#include "platform/database/StoredFunctions.h"

#include <sqlite3.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <set>
#include <span>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/Names.h"

namespace excelexp {
namespace {

constexpr std::size_t kMaxValueBytes = 4u << 20;  // all remembered values of a connection
constexpr std::size_t kValuesOnTrial = 16'000;    // of a function, before its hits count
constexpr std::size_t kValueOverhead = 160;       // map node and value object
constexpr std::size_t kMaxBatchBytes = 8u << 20;  // of a connection
constexpr std::size_t kMaxBatches = 32;           // of a function
constexpr int kMaxDepth = 32;                     // functions that call functions
constexpr int kMaxArguments = 100;

constexpr char kDefinitionsSql[] =
    "SELECT FunctionName, ArgumentCount, FunctionSql FROM DatabaseFunction ORDER BY FunctionName";

// Without an answer the value of a function is NULL.
void Answer(sqlite3_context* context, sqlite3_value* value) {
  if (value != nullptr) sqlite3_result_value(context, value);
}

/// The same of a value that outlives the statement that calls: its text need not be copied.
void AnswerKept(sqlite3_context* context, sqlite3_value* value) {
  if (value == nullptr || sqlite3_value_type(value) != SQLITE_TEXT) return Answer(context, value);
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  sqlite3_result_text64(context, text, static_cast<sqlite3_uint64>(sqlite3_value_bytes(value)), SQLITE_STATIC,
                        SQLITE_UTF8);
}

void PutKeyOf(std::span<sqlite3_value* const> arguments, std::string& key) {
  key.clear();
  for (sqlite3_value* argument : arguments) AppendKeyOf(argument, key);
}

}  // namespace

StoredFunctions::StoredFunctions(SqliteConnection& connection, SqliteGuard& guard, FindTable find_table,
                                 Compile compile)
    : connection_(connection),
      guard_(guard),
      find_table_(std::move(find_table)),
      compile_(std::move(compile)) {}

StoredFunctions::~StoredFunctions() {
  Forget();
}

bool StoredFunctions::Load(bool table_exists) {
  std::vector<Definition> wanted;
  if (table_exists) wanted = ReadDefinitions();
  const auto definition = [](const std::unique_ptr<Function>& function) { return function->definition; };
  if (std::ranges::equal(functions_, wanted, {}, definition)) return false;
  Unregister();
  std::set<std::string> names;
  for (Definition& each : wanted) {
    const std::string folded = FoldName(each.name);
    if (guard_.IsBuiltIn(folded))
      throw DatabaseError("table DatabaseFunction redefines the function " + each.name, each.sql);
    if (!names.insert(folded).second)
      throw DatabaseError("table DatabaseFunction defines the function " + each.name + " twice", each.sql);
    Register(std::move(each));
  }
  return true;
}

std::vector<StoredFunctions::Definition> StoredFunctions::ReadDefinitions() const {
  std::vector<Definition> definitions;
  const SqliteStatement rows = connection_.Prepare(kDefinitionsSql, kDefinitionsSql);
  const auto text = [&](int column) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(rows.get(), column));
    return bytes == nullptr ? std::string() : std::string(bytes);
  };
  while (connection_.Step(rows.get(), kDefinitionsSql)) {
    Definition each{text(0), sqlite3_column_int(rows.get(), 1), text(2)};
    if (each.name.empty() || each.sql.empty() || each.argument_count < 0 ||
        each.argument_count > kMaxArguments) {
      throw DatabaseError(
          "table DatabaseFunction has a row without name, SQL or a sensible argument count: '" + each.name +
              "'",
          each.sql);
    }
    definitions.push_back(std::move(each));
  }
  return definitions;
}

void StoredFunctions::Register(Definition definition) {
  functions_.push_back(std::make_unique<Function>(Function{this, std::move(definition), {}, {}, 0, {}}));
  Function& function = *functions_.back();
  const int code = sqlite3_create_function_v2(
      connection_.Handle(), function.definition.name.c_str(), function.definition.argument_count,
      SQLITE_UTF8 | SQLITE_INNOCUOUS, &function, &OnCall, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) connection_.Fail(code, function.definition.sql);
  guard_.Allow(FoldName(function.definition.name));
}

void StoredFunctions::Unregister() {
  Forget();
  for (const std::unique_ptr<Function>& function : functions_) {
    guard_.Forbid(FoldName(function->definition.name));
    sqlite3_create_function_v2(connection_.Handle(), function->definition.name.c_str(),
                               function->definition.argument_count, SQLITE_UTF8, nullptr, nullptr, nullptr,
                               nullptr, nullptr);
  }
  functions_.clear();
}

void StoredFunctions::Forget() {
  for (const std::unique_ptr<Function>& function : functions_) {
    function->idle.clear();
    function->values.clear();
    function->hits = 0;
    function->batches.clear();
  }
  value_bytes_ = 0;
  batch_bytes_ = 0;
}

void StoredFunctions::OnCall(sqlite3_context* context, int count, sqlite3_value** arguments) {
  auto& function = *static_cast<Function*>(sqlite3_user_data(context));
  std::string message;
  try {
    return function.owner->Call(function, context, count, arguments);
  } catch (const DatabaseError& error) {
    message = error.Message();
  } catch (const std::exception& error) {
    message = error.what();
  }
  if (!message.starts_with("function ")) message = "function " + function.definition.name + ": " + message;
  sqlite3_result_error(context, message.data(), static_cast<int>(message.size()));
}

void StoredFunctions::Call(Function& function, sqlite3_context* context, int count,
                           sqlite3_value** arguments) {
  Batch* const batch = BatchFor(function, count, arguments);
  const auto of_batch = [&] {
    return batch == nullptr ? nullptr : batch->values.Find(sqlite3_value_int64(arguments[0]));
  };
  if (const OwnedSqliteValue* const known = of_batch()) return AnswerKept(context, known->get());
  const bool remembers = function.values.size() < kValuesOnTrial || function.hits >= function.values.size();
  std::optional<std::string> key;
  if (remembers) {
    PutKeyOf({arguments, static_cast<std::size_t>(count)}, key_);
    if (const auto known = function.values.find(key_); known != function.values.end()) {
      ++function.hits;
      return Answer(context, known->second.get());
    }
    key = key_;
  }
  if (depth_ >= kMaxDepth)
    throw DatabaseError("functions call each other too deeply", function.definition.sql);
  if (batch != nullptr) {
    ReadBatchIfDue(function, *batch, {arguments, static_cast<std::size_t>(count)});
    if (const OwnedSqliteValue* const known = of_batch()) return AnswerKept(context, known->get());
  }
  ++depth_;
  const bool outer_volatile = std::exchange(met_volatile_, false);
  try {
    Evaluate(function, context, count, arguments, std::move(key));
  } catch (...) {
    --depth_;
    met_volatile_ = true;
    throw;
  }
  --depth_;
  met_volatile_ = met_volatile_ || outer_volatile;
}

StoredFunctions::Batch* StoredFunctions::BatchFor(Function& function, int count, sqlite3_value** arguments) {
  if (count == 0 || sqlite3_value_type(arguments[0]) != SQLITE_INTEGER) return nullptr;
  PutKeyOf({arguments + 1, static_cast<std::size_t>(count) - 1}, key_);
  for (Batch& batch : function.batches)
    if (batch.others == key_) return &batch;
  if (function.batches.size() == kMaxBatches) return nullptr;
  return &function.batches.emplace_back(Batch{.others = key_});
}

/// Reads the values of all keys if that pays. What goes wrong with a key is told when its value is asked for.
void StoredFunctions::ReadBatchIfDue(Function& function, Batch& batch,
                                     std::span<sqlite3_value* const> arguments) {
  const bool met_volatile = std::exchange(met_volatile_, false);
  ++depth_;
  try {
    if (batch.demand.IsDue([&] { return CountKeys(function); })) {
      ReadValues(function, batch, arguments);
      if (met_volatile_) batch.values = {};
      batch_bytes_ += batch.values.Bytes();
    }
  } catch (const DatabaseError&) {
    batch.values = {};
  }
  --depth_;
  met_volatile_ = met_volatile;
}

std::optional<std::size_t> StoredFunctions::CountKeys(const Function& function) const {
  const std::optional<KeyedSql> keyed = KeyedSql::Of(function.definition.sql, true, find_table_);
  if (!keyed) return std::nullopt;
  const CompiledQuery count = compile_(keyed->count);
  connection_.Step(count.statement.get(), keyed->count);
  return static_cast<std::size_t>(sqlite3_column_int64(count.statement.get(), 0));
}

void StoredFunctions::ReadValues(Function& function, Batch& batch,
                                 std::span<sqlite3_value* const> arguments) {
  const KeyedSql keyed = *KeyedSql::Of(function.definition.sql, true, find_table_);
  if (!keyed.walk.empty()) {
    const CompiledQuery walk = compile_(keyed.walk);
    batch.values = ReadValues(walk, keyed.walk, arguments);
    // An aggregate has one row for all keys, and a key that has two rows may have another one first.
    if (batch.values.Finish() && batch.values.Size() == batch.demand.Keys()) return;
  }
  const std::string sql =
      "SELECT " + std::string(KeyedSql::kKeys) + ", (" + keyed.text + "\n) FROM " + keyed.keys;
  const CompiledQuery single = compile_(function.definition.sql);
  const CompiledQuery all = compile_(sql);
  const auto plan_of = [this](const CompiledQuery& query) {
    const SqliteGuard::Pass pass(guard_);
    return PlanOf(connection_, sqlite3_sql(query.statement.get()));
  };
  batch.values = {};
  if (!FindsRowsAlike(plan_of(single), PlanOfLast(plan_of(all)))) return;
  batch.values = ReadValues(all, sql, arguments);
  batch.values.Finish();
}

KeyedValues StoredFunctions::ReadValues(const CompiledQuery& query, const std::string& sql,
                                        std::span<sqlite3_value* const> arguments) {
  KeyedValues values;
  sqlite3_stmt* const statement = query.statement.get();
  for (std::size_t i = 1; i < arguments.size(); ++i)
    sqlite3_bind_value(statement, static_cast<int>(i + 1), arguments[i]);
  met_volatile_ = met_volatile_ || query.traits.is_volatile;
  while (!met_volatile_ && batch_bytes_ + values.Bytes() < kMaxBatchBytes &&
         connection_.Step(statement, sql)) {
    sqlite3_value* const key = sqlite3_column_value(statement, 0);
    if (sqlite3_value_type(key) == SQLITE_INTEGER)
      values.Add(sqlite3_value_int64(key), sqlite3_column_value(statement, 1));
  }
  return values;
}

void StoredFunctions::Evaluate(Function& function, sqlite3_context* context, int count,
                               sqlite3_value** arguments, std::optional<std::string> key) {
  CompiledQuery query = Take(function);
  sqlite3_stmt* const statement = query.statement.get();
  for (int i = 0; i < count; ++i) sqlite3_bind_value(statement, i + 1, arguments[i]);
  const bool has_row = connection_.Step(statement, function.definition.sql);
  met_volatile_ = met_volatile_ || query.traits.is_volatile;
  sqlite3_value* const value = has_row ? sqlite3_column_value(statement, 0) : nullptr;
  Answer(context, value);
  if (key && !met_volatile_) Remember(function, *std::move(key), value);
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
  function.idle.push_back(std::move(query));
}

void StoredFunctions::Remember(Function& function, std::string key, sqlite3_value* found) {
  OwnedSqliteValue value(sqlite3_value_dup(found));
  const int type = value == nullptr ? SQLITE_NULL : sqlite3_value_type(value.get());
  const bool is_long = type == SQLITE_TEXT || type == SQLITE_BLOB;
  const std::size_t bytes = key.size() + (is_long ? sqlite3_value_bytes(value.get()) : 0) + kValueOverhead;
  if (value_bytes_ + bytes > kMaxValueBytes) {
    for (const std::unique_ptr<Function>& each : functions_) each->values.clear();
    value_bytes_ = 0;
  }
  value_bytes_ += bytes;
  function.values.emplace(std::move(key), std::move(value));
}

CompiledQuery StoredFunctions::Take(Function& function) {
  if (!function.idle.empty()) {
    CompiledQuery query = std::move(function.idle.back());
    function.idle.pop_back();
    return query;
  }
  CompiledQuery query = compile_(function.definition.sql);
  if (sqlite3_bind_parameter_count(query.statement.get()) > function.definition.argument_count) {
    throw DatabaseError("its SQL has more parameters than the function has arguments",
                        function.definition.sql);
  }
  return query;
}

}  // namespace excelexp
