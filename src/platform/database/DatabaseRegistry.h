#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database/Database.h"

namespace excelexp {

/// The fixed alias of the payroll database, under which the analysis engine, the employee report classes and
/// the common-library functions look for it.
inline constexpr std::string_view kPayrollDatabaseName = "varndb";

/// The process-wide map from a database name (an alias such as "varndb") to a connection. Names are exact.
/// The registry shares ownership; a connection lives at least until it is removed or replaced.
class DatabaseRegistry {
 public:
  static void Register(std::string name, std::shared_ptr<Database> database);
  static void Remove(std::string_view name);
  /// nullptr when no connection has that name.
  static std::shared_ptr<Database> Find(std::string_view name);
  /// Calls NoteWrite on every registered connection.
  static void NoteWrite();
  /// Another number after every Register, Remove and NoteWrite: what was read under an earlier one may have
  /// changed.
  static std::uint64_t Generation();
};

}  // namespace excelexp
