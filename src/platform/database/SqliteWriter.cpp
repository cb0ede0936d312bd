#include "platform/database/SqliteWriter.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqliteConnection.h"

namespace excelexp {
namespace {

// A new payroll file is its owner's alone. SQLite gives its journals the mode of the file.
constexpr mode_t kNewFileMode = 0600;

const std::string& Created(const std::string& file) {
  const int descriptor = ::open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kNewFileMode);
  if (descriptor < 0) {
    throw DatabaseError(
        "the database '" + file + "' cannot be created: " + std::generic_category().message(errno), "");
  }
  ::close(descriptor);
  return file;
}

// Values outlive the statement run they are bound for.
struct Binder {
  sqlite3_stmt* statement;
  int index;

  int operator()(std::monostate) const { return sqlite3_bind_null(statement, index); }
  int operator()(std::int64_t value) const { return sqlite3_bind_int64(statement, index, value); }
  int operator()(double value) const { return sqlite3_bind_double(statement, index, value); }
  int operator()(const std::string& value) const {
    return sqlite3_bind_text64(statement, index, value.data(), value.size(), SQLITE_STATIC, SQLITE_UTF8);
  }
  int operator()(const std::vector<std::uint8_t>& value) const {
    static constexpr char kNoBytes = 0;  // a null pointer would bind NULL
    return sqlite3_bind_blob64(statement, index,
                               value.empty() ? static_cast<const void*>(&kNoBytes) : value.data(),
                               value.size(), SQLITE_STATIC);
  }
};

SqlValue ValueAt(sqlite3_stmt* row, int column) {
  switch (sqlite3_column_type(row, column)) {
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_column_int64(row, column)};
    case SQLITE_FLOAT:
      return sqlite3_column_double(row, column);
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
      return std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(row, column));
      return std::vector<std::uint8_t>(bytes, bytes + sqlite3_column_bytes(row, column));
    }
    default:
      return std::monostate{};
  }
}

}  // namespace

struct SqliteWriter::Impl {
  Impl(const std::string& file, int busy_timeout_ms)
      : connection(file, SqliteConnection::Access::kWrite, busy_timeout_ms, {}) {
    // Changed pages stay in memory until the commit: writing some of them earlier would lock the readers of
    // a rollback-journal file out in the middle of the work.
    connection.Execute("PRAGMA cache_spill = OFF");
  }

  /// The statement with the values bound; rewound and free of values when the holder goes.
  class Bound {
   public:
    Bound(sqlite3_stmt* statement) : statement_(statement) {}
    ~Bound() {
      sqlite3_reset(statement_);
      sqlite3_clear_bindings(statement_);
    }
    Bound(const Bound&) = delete;
    Bound& operator=(const Bound&) = delete;
    sqlite3_stmt* Get() const { return statement_; }

   private:
    sqlite3_stmt* statement_;
  };

  sqlite3_stmt* Bind(const std::string& sql, std::span<const SqlValue> values) {
    SqliteStatement& kept = statements[sql];
    if (kept == nullptr) kept = connection.Prepare(sql, sql);
    sqlite3_stmt* const statement = kept.get();
    if (sqlite3_bind_parameter_count(statement) != static_cast<int>(values.size()))
      throw DatabaseError("the statement has not as many parameters as values", sql);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const int code = std::visit(Binder{statement, static_cast<int>(i) + 1}, values[i]);
      if (code != SQLITE_OK) connection.Fail(code, sql);
    }
    connection.BeginStatement();
    return statement;
  }

  /// Runs something that commits by itself. The registered readers give up their snapshots first, or a
  /// rollback-journal file could not be committed; afterwards they see the write.
  template <typename Work>
  void Write(const Work& work) {
    if (in_transaction) return work();
    DatabaseRegistry::NoteWrite();
    work();
    DatabaseRegistry::NoteWrite();
  }

  SqliteConnection connection;
  std::unordered_map<std::string, SqliteStatement> statements;
  bool in_transaction = false;
};

SqliteWriter::SqliteWriter(const std::string& file, Mode mode, int busy_timeout_ms)
    : impl_(std::make_unique<Impl>(mode == Mode::kCreate ? Created(file) : file, busy_timeout_ms)) {}

SqliteWriter::~SqliteWriter() = default;

void SqliteWriter::ExecuteScript(std::string_view script) {
  impl_->Write([&] { impl_->connection.Execute(std::string(script).c_str()); });
}

std::int64_t SqliteWriter::Execute(const std::string& sql, std::span<const SqlValue> values) {
  std::int64_t changed = 0;
  impl_->Write([&] {
    const Impl::Bound statement(impl_->Bind(sql, values));
    while (impl_->connection.Step(statement.Get(), sql)) {
    }
    changed = sqlite3_stmt_readonly(statement.Get()) != 0 ? 0 : sqlite3_changes64(impl_->connection.Handle());
  });
  return changed;
}

std::vector<std::vector<SqlValue>> SqliteWriter::Rows(const std::string& sql,
                                                      std::span<const SqlValue> values) {
  const Impl::Bound statement(impl_->Bind(sql, values));
  const int width = sqlite3_column_count(statement.Get());
  std::vector<std::vector<SqlValue>> rows;
  while (impl_->connection.Step(statement.Get(), sql)) {
    std::vector<SqlValue>& row = rows.emplace_back();
    row.reserve(width);
    for (int column = 0; column < width; ++column) row.push_back(ValueAt(statement.Get(), column));
  }
  return rows;
}

void SqliteWriter::Transaction(const std::function<void()>& work) {
  if (impl_->in_transaction) throw DatabaseError("a transaction is begun inside another", "");
  impl_->connection.Execute("BEGIN IMMEDIATE");
  impl_->in_transaction = true;
  const auto finish = [&](const char* how) {
    // The work may have read through a registered connection, which began a snapshot again.
    DatabaseRegistry::NoteWrite();
    impl_->connection.Execute(how);
    impl_->in_transaction = false;
    DatabaseRegistry::NoteWrite();
  };
  try {
    work();
    finish("COMMIT");
  } catch (...) {
    impl_->in_transaction = false;
    if (sqlite3_get_autocommit(impl_->connection.Handle()) == 0)
      sqlite3_exec(impl_->connection.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

}  // namespace excelexp
