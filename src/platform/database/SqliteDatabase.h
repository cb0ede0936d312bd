#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database/Database.h"
#include "platform/host/DateTime.h"

namespace excelexp {

/// How an SQLite file is opened for reading. The defaults are what the command uses. The hooks are called
/// from within a running statement and must not use the connection.
struct SqliteOptions {
  int busy_timeout_ms = 5000;           ///< how long a lock held by another program is waited for
  std::size_t cache_bytes = 64u << 20;  ///< bound of the result cache; 0 switches it off
  /// Bound of one result; a statement whose result is larger fails with a DatabaseError.
  std::size_t max_result_bytes = 2u << 30;
  /// Asked every few thousand steps of a running statement and while a lock is waited for; true stops the
  /// statement with a DatabaseError.
  std::function<bool()> cancelled = {};
  /// What NOW() answers, one moment per statement; the local time of the system when empty.
  std::function<DateTime()> now = {};
  /// Told every statement that failed, with the database's message (the --trace file); also when a result is
  /// completed because its snapshot ends or the connection closes.
  std::function<void(const std::string& sql, const std::string& message)> on_failure = {};
};

/// Opens the file read-only: nothing that arrives as SQL can write to it, attach another file or run without
/// end. Throws DatabaseError when the file is missing, is not a database or stays locked; never creates a
/// file.
///
/// Statements are in the engine's dialect (docs/database.md): joins without ON follow the declared foreign
/// key; DUMMY, SysTable, SysColumn, NOW and MONTHS exist, and so do the functions that the table
/// DatabaseFunction(FunctionName, ArgumentCount, FunctionSql) defines, when the file has it.
///
/// Country and DateFormat are the values of 'Country' and 'DateFormat' in the table
/// SystemParameter(ParameterId, ParameterValue); "" and "dd/mm/yyyy" when it has no such row or does not
/// exist.
///
/// All results come from one snapshot: it begins with the first Select after the file was opened or NoteWrite
/// was called, and ends with the next NoteWrite. What other connections and programs commit meanwhile is seen
/// after that. While a snapshot lasts, a file in rollback-journal mode cannot be written by others (one in
/// WAL mode can); so a run ends with DatabaseRegistry::NoteWrite().
std::shared_ptr<Database> OpenSqliteDatabase(const std::string& file, SqliteOptions options = {});

}  // namespace excelexp
