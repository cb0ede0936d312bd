#include "platform/database/SqliteDatabase.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "platform/database/Catalogue.h"
#include "platform/database/DatabaseError.h"
#include "platform/database/Dialect.h"
#include "platform/database/DistinctJoin.h"
#include "platform/database/DistinctOrder.h"
#include "platform/database/HeldSelect.h"
#include "platform/database/HeldTables.h"
#include "platform/database/InLists.h"
#include "platform/database/MissingIds.h"
#include "platform/database/Names.h"
#include "platform/database/ResultCache.h"
#include "platform/database/ResultSet.h"
#include "platform/database/SqliteConnection.h"
#include "platform/database/SqliteGuard.h"
#include "platform/database/StatementPool.h"
#include "platform/database/StoredFunctions.h"
#include "platform/database/TypeWords.h"
#include "platform/database/UnionFilter.h"

namespace excelexp {
namespace {

// Who only wants to know whether there are rows reads no more than these.
constexpr std::size_t kFirstRows = 256;
constexpr std::size_t kFirstCells = 4096;
constexpr std::size_t kAllRows = std::numeric_limits<std::size_t>::max() - 1;
constexpr std::size_t kPartialResults = 64;
constexpr std::size_t kMaxKeyedBytes = 32u << 20;
constexpr std::string_view kDefaultDateFormat = "dd/mm/yyyy";

// Reading through the value saves SQLite's column functions from looking the column up again each time. That
// is sound here because nobody else uses the connection meanwhile.
void AddCell(ResultSetBuilder& builder, sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return builder.AddInteger(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return builder.AddFloat(sqlite3_value_double(value));
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
      return builder.AddText({text, static_cast<std::size_t>(sqlite3_value_bytes(value))});
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
      const int size = sqlite3_value_bytes(value);
      return builder.AddBlob(size == 0 ? std::string_view() : std::string_view(bytes, size));
    }
    default:
      return builder.AddNull();
  }
}

/// Rewinds a statement, and frees it of values, when the rows were read, or when reading them failed.
class Rewinder {
 public:
  explicit Rewinder(sqlite3_stmt* statement) : statement_(statement) {}
  ~Rewinder() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
  }
  Rewinder(const Rewinder&) = delete;
  Rewinder& operator=(const Rewinder&) = delete;

 private:
  sqlite3_stmt* statement_;
};

/// Says that a statement is running.
class Running {
 public:
  explicit Running(bool& running) : running_(running) { running_ = true; }
  ~Running() { running_ = false; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  bool& running_;
};

class SqliteDatabase final : public Database {
 public:
  SqliteDatabase(const std::string& file, SqliteOptions options);
  ~SqliteDatabase() override;

  std::shared_ptr<const ResultSet> Select(const std::string& sql) override;
  std::optional<bool> HasRows(const std::string& sql) override;
  std::string ColumnType(std::string_view table, std::string_view column) override;
  std::string Country() override { return Parameter("Country", ""); }
  std::string DateFormat() override { return Parameter("DateFormat", kDefaultDateFormat); }
  void HoldRows(const RowsToHold& rows) override;
  void ReleaseRows(const std::string& table, const RowsToHold::Key& key) override;
  void NoteWrite() override;

 private:
  /// How much of a result is read, and as of when.
  struct Reading {
    bool all_rows = false;
    bool all_columns = false;
    std::optional<DateTime> moment = {};
  };

  std::shared_ptr<const ResultSet> Run(const std::string& sql);
  std::shared_ptr<const ResultSet> Read(KeptStatement& kept, const std::string& sql, const Reading& reading);
  std::shared_ptr<const ResultSet> ReadKeyed(KeptStatement& kept, const std::string& sql,
                                             const Reading& reading);
  bool ReadAllKeys(KeptStatement& kept);
  void ReadRowsOfAllKeys(KeptStatement& kept);
  std::shared_ptr<const ResultSet> ReadHeld(KeptStatement& kept, const std::string& sql);
  HeldSelect* HeldSelectOf(KeptStatement& kept);
  std::shared_ptr<const ResultSet> ReadJoined(sqlite3_stmt* statement, std::string_view value,
                                              const std::string& sql);
  std::shared_ptr<const ResultSet> Partial(ResultSetBuilder& builder, const std::string& sql,
                                           bool has_more_rows, std::optional<DateTime> moment);
  std::shared_ptr<const HeldRows> ReadRowsToHold(const HeldTable& table, const RowsToHold& rows);
  bool ReadRows(sqlite3_stmt* statement, const std::string& sql, std::size_t most,
                ResultSetBuilder& builder) {
    return ReadRows(statement, sql, most, builder, options_.max_result_bytes);
  }
  bool ReadRows(sqlite3_stmt* statement, const std::string& sql, std::size_t most, ResultSetBuilder& builder,
                std::size_t most_bytes);
  std::shared_ptr<const ResultSet> ReadUndistinct(KeptStatement& kept, const std::string& sql);
  std::shared_ptr<const ResultSet> FetchRest(const std::string& sql, ResultSet::Missing missing,
                                             std::optional<DateTime> moment);
  [[noreturn]] static void FailSize(const std::string& sql, std::size_t most_bytes);
  CompiledQuery Compile(const std::string& sql, const std::string& sent);
  void NoteFailure(const DatabaseError& error, const std::string& sql);

  void ForgetResults();
  void NotePartial(const std::shared_ptr<const ResultSet>& result);
  void CompletePartial();

  /// `sent` is the statement that errors show.
  void BeginSnapshot(const std::string& sent);
  void EndSnapshot();
  void ForgetSchema();
  std::int64_t Pragma(const char* sql, const std::string& sent);
  std::string Parameter(std::string_view id, std::string_view absent);

  SqliteOptions options_;
  SqliteConnection connection_;
  SqliteGuard guard_;
  Catalogue catalogue_;
  HeldTables held_;
  FindTable find_table_;
  StatementPool statements_;
  StoredFunctions functions_;
  ResultCache cache_;
  std::vector<std::weak_ptr<const ResultSet>> partial_;  // results that may come back for their rest
  std::size_t most_partial_ = kPartialResults;           // before those that are gone are left out
  bool running_ = false;
  bool in_snapshot_ = false;
  std::optional<std::int64_t> data_version_;
  std::optional<std::int64_t> schema_version_;
  std::uint64_t writes_noted_ = 0;
  std::size_t keyed_bytes_ = 0;  // of rows read for all keys, since the data changed last
};

std::string WithContent(const std::string& file) {
  std::error_code error;
  if (std::filesystem::is_regular_file(file, error) && std::filesystem::file_size(file, error) == 0)
    throw DatabaseError("'" + file + "' is empty, not a database", "");
  return file;
}

SqliteDatabase::SqliteDatabase(const std::string& file, SqliteOptions options)
    : options_(std::move(options)),
      connection_(WithContent(file), SqliteConnection::Access::kRead, options_.busy_timeout_ms,
                  {options_.cancelled, options_.now}),
      guard_(connection_),
      catalogue_(connection_),
      held_(connection_, guard_),
      find_table_([this](std::string_view name) {
        const SqliteGuard::Pass pass(guard_);
        return catalogue_.Find(name);
      }),
      statements_(connection_, guard_,
                  [this](const std::string& sql, const std::string& sent) { return Compile(sql, sent); }),
      functions_(connection_, guard_, find_table_,
                 [this](const std::string& sql) { return Compile(sql, sql); }),
      cache_(options_.cache_bytes) {
  {
    const SqliteGuard::Pass pass(guard_);
    catalogue_.CreateSystemTables();
  }
  // Opening reports what is wrong with the file; it must not hold a lock from then on.
  BeginSnapshot("");
  EndSnapshot();
}

SqliteDatabase::~SqliteDatabase() {
  cache_.Clear();
  CompletePartial();
}

std::shared_ptr<const ResultSet> SqliteDatabase::Select(const std::string& sql) {
  try {
    // Rows by key and what is in the cache are of this snapshot: they end together.
    if (KeptStatement* const keyed = statements_.FindKeyed(sql)) {
      if (std::shared_ptr<const ResultSet> known = ReadKeyed(*keyed, sql, {})) return known;
    }
    if (std::shared_ptr<const ResultSet> known = cache_.Find(sql)) return known;
    return Run(sql);
  } catch (const DatabaseError& error) {
    NoteFailure(error, sql);
    throw;
  }
}

std::optional<bool> SqliteDatabase::HasRows(const std::string& sql) {
  try {
    if (!in_snapshot_) BeginSnapshot(sql);
    const std::optional<std::string> existence =
        SqlShape(sql).IsPlain() ? AsExistence(sql, find_table_) : std::nullopt;
    if (!existence) return std::nullopt;
    const CompiledQuery query = Compile(*existence, sql);
    if (query.traits.reads_catalogue) return std::nullopt;
    connection_.BeginStatement();
    const Running running(running_);
    connection_.Step(query.statement.get(), sql);
    return sqlite3_column_int(query.statement.get(), 0) != 0;
  } catch (const DatabaseError&) {
    return std::nullopt;  // the statement itself will tell
  }
}

void SqliteDatabase::NoteFailure(const DatabaseError& error, const std::string& sql) {
  // A failure such as a full disk or a damaged page ends a transaction by itself.
  if (in_snapshot_ && sqlite3_get_autocommit(connection_.Handle()) != 0) {
    in_snapshot_ = false;
    NoteWrite();
  }
  if (options_.on_failure) options_.on_failure(sql, error.Message());
}

std::shared_ptr<const ResultSet> SqliteDatabase::Run(const std::string& sql) {
  if (!in_snapshot_) BeginSnapshot(sql);
  const std::uint64_t writes_noted = writes_noted_;
  KeptStatement& kept = statements_.For(sql);
  if (kept.whole.traits.reads_catalogue) {
    const SqliteGuard::Pass pass(guard_);
    catalogue_.FillSystemTables(kept.whole.traits.calls_stored ? std::string_view() : sql);
  }
  const bool whole = !kept.may_narrow;
  std::shared_ptr<const ResultSet> result = Read(kept, sql, {.all_rows = whole, .all_columns = whole});
  ++kept.runs;
  const bool is_volatile = kept.whole.traits.is_volatile || kept.met_volatile;
  if (!is_volatile && writes_noted == writes_noted_) cache_.Put(sql, result, kept.use);
  return result;
}

std::shared_ptr<const ResultSet> SqliteDatabase::Read(KeptStatement& kept, const std::string& sql,
                                                      const Reading& reading) {
  if (std::shared_ptr<const ResultSet> held = ReadHeld(kept, sql)) return held;
  if (std::shared_ptr<const ResultSet> known = ReadKeyed(kept, sql, reading)) return known;
  statements_.Bind(kept, sql);
  reading.moment ? connection_.ContinueStatement(*reading.moment) : connection_.BeginStatement();
  // A function of the database may turn out to ask for it.
  const bool asks_moment = kept.whole.traits.is_volatile || kept.whole.traits.calls_stored;
  const std::optional<DateTime> moment = asks_moment ? std::optional(connection_.Moment()) : std::nullopt;
  functions_.SetMetVolatile(false);
  if (std::shared_ptr<const ResultSet> single = ReadUndistinct(kept, sql)) return single;
  const bool narrow = !reading.all_columns && kept.narrow.statement != nullptr;
  ResultSetBuilder builder = kept.ResultOf(narrow);
  sqlite3_stmt* const statement = narrow ? kept.narrow.statement.get() : kept.whole.statement.get();
  const std::size_t first_rows = std::min(kFirstRows, kFirstCells / (builder.Width() + 1));
  const bool has_more_rows = !ReadRows(statement, sql, reading.all_rows ? kAllRows : first_rows, builder);
  kept.gave_many = kept.gave_many || builder.RowCount() > 1;
  const bool is_partial = narrow || has_more_rows;
  if (functions_.MetVolatile()) {
    // Read a second time, a function that asks for something volatile may give other values, and other rows.
    kept.met_volatile = true;
    kept.may_narrow = false;
    kept.narrow = {};
    if (is_partial) {
      return Read(statements_.For(sql), sql, {.all_rows = true, .all_columns = true, .moment = moment});
    }
  }
  return is_partial ? Partial(builder, sql, has_more_rows, moment) : builder.Finish();
}

/// The one row at most that the statement finds; nullptr when there is no telling, or there are more.
std::shared_ptr<const ResultSet> SqliteDatabase::ReadUndistinct(KeptStatement& kept, const std::string& sql) {
  if (kept.undistinct == nullptr) return nullptr;
  ResultSetBuilder builder(kept.columns);
  if (ReadRows(kept.undistinct.get(), sql, 1, builder)) {
    kept.met_volatile = kept.met_volatile || functions_.MetVolatile();
    return builder.Finish();
  }
  kept.undistinct.reset();
  return nullptr;
}

std::shared_ptr<const ResultSet> SqliteDatabase::Partial(ResultSetBuilder& builder, const std::string& sql,
                                                         bool has_more_rows, std::optional<DateTime> moment) {
  std::shared_ptr<const ResultSet> result = builder.Finish(
      has_more_rows,
      [this, sql, moment](ResultSet::Missing missing) { return FetchRest(sql, missing, moment); });
  NotePartial(result);
  return result;
}

/// nullptr for a statement whose rows are not known for all keys.
std::shared_ptr<const ResultSet> SqliteDatabase::ReadKeyed(KeptStatement& kept, const std::string& sql,
                                                           const Reading& reading) {
  const std::optional<std::int64_t> key = statements_.Key();
  const bool rest_of_columns = kept.may_narrow && reading.all_columns;
  if (!key || rest_of_columns || !ReadAllKeys(kept)) return nullptr;
  const std::shared_ptr<const KeyedRows> rows = kept.keyed.rows;
  const std::optional<KeyedRows::Span> found = rows->Find(*key);
  if (!found || (!kept.shape.WithoutDistinct().empty() && !rows->SurelyDiffer(*found))) return nullptr;
  connection_.BeginStatement();
  const std::optional<DateTime> moment =
      kept.whole.traits.is_volatile ? std::optional(connection_.Moment()) : std::nullopt;
  const bool narrow = kept.keyed.places != nullptr;  // then they are the narrow statement's
  ResultSetBuilder builder = kept.ResultOf(narrow);
  for (int row = found->first; row < found->first + found->count; ++row) rows->AddTo(builder, row);
  return narrow ? Partial(builder, sql, false, moment) : builder.Finish();
}

/// Reads the statement's rows for all keys if that pays, or was done. What goes wrong with a key is told when
/// its rows are asked for.
bool SqliteDatabase::ReadAllKeys(KeptStatement& kept) {
  KeyedStatement& keyed = kept.keyed;
  if (keyed.rows != nullptr) {
    if (keyed.places == kept.narrow.places) return true;
    keyed = {};  // more columns are asked for now
  }
  const auto count_keys = [&] { return KeyedRows::CountKeys(kept, connection_, guard_, find_table_); };
  try {
    if (keyed.demand.IsDue(count_keys)) ReadRowsOfAllKeys(kept);
  } catch (const DatabaseError&) {
    return false;
  }
  return keyed.rows != nullptr;
}

void SqliteDatabase::ReadRowsOfAllKeys(KeptStatement& kept) {
  const std::uint64_t writes_noted = writes_noted_;
  const std::string& undistinct = kept.shape.WithoutDistinct();
  const CompiledQuery single = undistinct.empty() ? CompiledQuery{} : Compile(undistinct, undistinct);
  const SqliteStatement all = KeyedRows::Compile(
      kept, (undistinct.empty() ? kept.whole : single).statement.get(), connection_, guard_, find_table_);
  if (all == nullptr) return;
  connection_.BeginStatement();
  functions_.SetMetVolatile(false);
  ResultSetBuilder rows(std::vector<std::string>(static_cast<std::size_t>(sqlite3_column_count(all.get()))));
  const std::string sql = sqlite3_sql(all.get());
  ReadRows(all.get(), sql, kAllRows, rows, kMaxKeyedBytes - std::min(kMaxKeyedBytes, keyed_bytes_));
  keyed_bytes_ += rows.Bytes();
  if (connection_.TookMoment() || functions_.MetVolatile() || writes_noted != writes_noted_) return;
  auto all_rows = std::make_shared<const KeyedRows>(rows.Finish());
  // What counts or sums has one row for all keys.
  if (all_rows->KeyCount() < std::min<std::size_t>(2, kept.keyed.demand.Keys())) return;
  kept.keyed.rows = std::move(all_rows);
  kept.keyed.places = kept.narrow.places;
}

/// nullptr for a statement that rows held in memory do not answer.
std::shared_ptr<const ResultSet> SqliteDatabase::ReadHeld(KeptStatement& kept, const std::string& sql) {
  HeldSelect* const select = HeldSelectOf(kept);
  if (select == nullptr) return nullptr;
  std::shared_ptr<const ResultRows> rows = select->Rows(
      statements_.Values(), writes_noted_,
      [&](sqlite3_stmt* joined, std::string_view value) { return ReadJoined(joined, value, sql); });
  return rows == nullptr ? nullptr : std::make_shared<const ResultSet>(kept.columns, std::move(rows));
}

HeldSelect* SqliteDatabase::HeldSelectOf(KeptStatement& kept) {
  if (!kept.held) {
    kept.held =
        kept.may_narrow && !held_.IsEmpty()
            ? HeldSelect::Of(kept.shape, statements_.Values(), kept.whole.statement.get(), held_, find_table_,
                             [this](const std::string& sql) { return Compile(sql, sql); })
            : nullptr;
  }
  return kept.held->get();
}

std::shared_ptr<const ResultSet> SqliteDatabase::ReadJoined(sqlite3_stmt* statement, std::string_view value,
                                                            const std::string& sql) {
  ResultSetBuilder rows(std::vector<std::string>(static_cast<std::size_t>(sqlite3_column_count(statement))));
  sqlite3_bind_text64(statement, 1, value.data(), value.size(), SQLITE_STATIC, SQLITE_UTF8);
  ReadRows(statement, sql, kAllRows, rows);
  return rows.Finish();
}

/// False when there are more rows than were wanted.
bool SqliteDatabase::ReadRows(sqlite3_stmt* statement, const std::string& sql, std::size_t most,
                              ResultSetBuilder& builder, std::size_t most_bytes) {
  const Rewinder rewinder(statement);
  const Running running(running_);
  const auto width = static_cast<int>(builder.Width());
  while (connection_.Step(statement, sql)) {
    if (builder.RowCount() == most) return false;
    builder.BeginRow();
    for (int column = 0; column < width; ++column) AddCell(builder, sqlite3_column_value(statement, column));
    if (builder.Bytes() > most_bytes) FailSize(sql, most_bytes);
  }
  return true;
}

void SqliteDatabase::FailSize(const std::string& sql, std::size_t most_bytes) {
  throw DatabaseError("the result is larger than " + std::to_string(most_bytes) + " bytes", sql);
}

std::shared_ptr<const ResultSet> SqliteDatabase::FetchRest(const std::string& sql, ResultSet::Missing missing,
                                                           std::optional<DateTime> moment) {
  if (running_ || !in_snapshot_)
    throw DatabaseError("the rest of a result is asked for when its data may have changed", sql);
  try {
    KeptStatement& kept = statements_.For(sql);
    std::shared_ptr<const ResultSet> rest =
        Read(kept, sql,
             {.all_rows = true, .all_columns = missing == ResultSet::Missing::kColumns, .moment = moment});
    kept.met_volatile ? cache_.Drop(sql) : cache_.NoteGrowth();
    return rest;
  } catch (const DatabaseError& error) {
    NoteFailure(error, sql);
    throw;
  }
}

void SqliteDatabase::NotePartial(const std::shared_ptr<const ResultSet>& result) {
  if (partial_.size() >= most_partial_) {
    std::erase_if(partial_, [](const auto& each) { return each.expired(); });
    most_partial_ = std::max(kPartialResults, 2 * partial_.size());
  }
  partial_.push_back(result);
}

void SqliteDatabase::CompletePartial() {
  for (const std::weak_ptr<const ResultSet>& each : std::exchange(partial_, {})) {
    if (const std::shared_ptr<const ResultSet> result = each.lock()) result->Complete();
  }
}

CompiledQuery SqliteDatabase::Compile(const std::string& sql, const std::string& sent) {
  std::string rewritten;
  try {
    const SqliteGuard::Pass pass(guard_);
    rewritten = RewriteSql(SortWhatIsDistinct(sql), find_table_);
    rewritten = JoinWhatIsDistinct(rewritten, connection_, guard_, find_table_);
    rewritten = FilterWhatIsUnited(rewritten, connection_);
    rewritten = LeaveOutMissingIds(rewritten, connection_, find_table_);
  } catch (const DatabaseError& error) {
    throw DatabaseError(error.Message(), sent);
  }
  guard_.Begin();
  SqliteStatement statement = connection_.Prepare(rewritten, sent);
  if (sqlite3_stmt_readonly(statement.get()) == 0 || sqlite3_stmt_isexplain(statement.get()) != 0 ||
      sqlite3_column_count(statement.get()) == 0)
    throw DatabaseError("refused: only SELECT statements are run here", sent);
  return {std::move(statement), guard_.Traits(sql)};
}

void SqliteDatabase::BeginSnapshot(const std::string& sent) {
  const SqliteGuard::Pass pass(guard_);
  connection_.Execute("BEGIN");
  in_snapshot_ = true;
  try {
    // The first read takes the snapshot.
    const std::int64_t schema_version = Pragma("PRAGMA schema_version", sent);
    const std::int64_t data_version = Pragma("PRAGMA data_version", sent);
    if (schema_version_ != schema_version) ForgetSchema();
    const bool changed = data_version_ != data_version || schema_version_ != schema_version;
    if (changed && functions_.Load(catalogue_.Find("DatabaseFunction") != nullptr)) statements_.Clear();
    schema_version_ = schema_version;
    data_version_ = data_version;
  } catch (...) {
    EndSnapshot();
    throw;
  }
}

void SqliteDatabase::EndSnapshot() {
  if (!in_snapshot_) return;
  const SqliteGuard::Pass pass(guard_);
  in_snapshot_ = false;
  // There is nothing to lose: whatever goes wrong, the lock has to go.
  for (const char* end : {"COMMIT", "ROLLBACK"}) {
    if (sqlite3_get_autocommit(connection_.Handle()) == 0)
      sqlite3_exec(connection_.Handle(), end, nullptr, nullptr, nullptr);
  }
}

std::int64_t SqliteDatabase::Pragma(const char* sql, const std::string& sent) {
  const SqliteStatement statement = connection_.Prepare(sql, sent);
  connection_.Step(statement.get(), sent);
  return sqlite3_column_int64(statement.get(), 0);
}

void SqliteDatabase::NoteWrite() {
  ForgetResults();
  EndSnapshot();
}

void SqliteDatabase::ForgetResults() {
  ++writes_noted_;
  cache_.Clear();
  CompletePartial();
  functions_.Forget();
  statements_.ForgetRows();
  keyed_bytes_ = 0;
}

void SqliteDatabase::HoldRows(const RowsToHold& rows) {
  try {
    if (!in_snapshot_) BeginSnapshot(rows.select);
    HeldTable* table = held_.Find(rows.table);
    std::unique_ptr<HeldTable> made;
    if (table == nullptr) {
      const SqliteGuard::Pass pass(guard_);
      made = held_.Describe(rows);
      table = made.get();
    }
    std::shared_ptr<const HeldRows> held = ReadRowsToHold(*table, rows);
    ForgetResults();
    if (made != nullptr) {
      const SqliteGuard::Pass pass(guard_);
      statements_.Clear();
      held_.Install(std::move(made));
    }
    table->Replace(table->KeyOf(rows.key), std::move(held));
  } catch (const DatabaseError& error) {
    NoteFailure(error, rows.select);
    throw;
  }
}

std::shared_ptr<const HeldRows> SqliteDatabase::ReadRowsToHold(const HeldTable& table,
                                                               const RowsToHold& rows) {
  std::vector<std::string> texts;
  if (!rows.only.column.empty()) {
    const std::shared_ptr<const ResultSet> allowed = Select(rows.only.select);
    for (int row = 0; row < allowed->RowCount(); ++row) {
      if (!allowed->IsNull(row, 0)) texts.push_back(allowed->AsText(row, 0));
    }
  }
  const CompiledQuery select = Compile(rows.select, rows.select);
  connection_.BeginStatement();
  const Running running(running_);
  return held_.Read(table, rows, select.statement.get(), std::move(texts), options_.max_result_bytes);
}

void SqliteDatabase::ReleaseRows(const std::string& name, const RowsToHold::Key& key) {
  HeldTable* const table = held_.Find(name);
  if (table == nullptr) return;
  ForgetResults();
  table->Remove(table->KeyOf(key));
}

void SqliteDatabase::ForgetSchema() {
  statements_.Clear();
  functions_.Forget();
  catalogue_.Forget();
}

std::string SqliteDatabase::ColumnType(std::string_view table, std::string_view column) {
  if (!in_snapshot_) BeginSnapshot("");
  const TableShape* shape = find_table_(table);
  const TableShape::Column* found = shape == nullptr ? nullptr : shape->Find(column);
  return found == nullptr ? std::string() : TypeWordOf(found->declared_type);
}

std::string SqliteDatabase::Parameter(std::string_view id, std::string_view absent) {
  if (!in_snapshot_) BeginSnapshot("");
  const TableShape* shape = find_table_("SystemParameter");
  if (shape == nullptr || shape->Find("ParameterValue") == nullptr) return std::string(absent);
  const auto rows =
      Select("SELECT ParameterValue FROM SystemParameter WHERE ParameterId = '" + std::string(id) + "'");
  return rows->RowCount() == 0 || rows->IsNull(0, 0) ? std::string(absent) : rows->AsText(0, 0);
}

}  // namespace

std::shared_ptr<Database> OpenSqliteDatabase(const std::string& file, SqliteOptions options) {
  try {
    return std::make_shared<SqliteDatabase>(file, std::move(options));
  } catch (const DatabaseError& error) {
    throw DatabaseError(error.Message(), "");  // the statement is one of ours and would only confuse
  }
}

}  // namespace excelexp
