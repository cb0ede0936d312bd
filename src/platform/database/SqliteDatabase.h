#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database/Database.h"

namespace excelexp {

/// How an SQLite file is opened for reading. The defaults are what the command uses.
struct SqliteOptions {
  int busy_timeout_ms = 5000;           ///< how long a lock held by another program is waited for
  std::size_t cache_bytes = 64u << 20;  ///< bound of the result cache; 0 switches it off
  /// Asked every few thousand steps of a running statement; true stops it with a DatabaseError.
  std::function<bool()> cancelled;
  /// Told every statement that failed, with the database's message (the --trace file).
  std::function<void(const std::string& sql, const std::string& message)> on_failure;
};

/// Opens the file read-only: nothing that arrives as SQL can write to it, attach another file or run without
/// end. Throws DatabaseError when the file is missing, is not a database or stays locked; never creates a
/// file.
std::shared_ptr<Database> OpenSqliteDatabase(const std::string& file, SqliteOptions options = {});

}  // namespace excelexp
