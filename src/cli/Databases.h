#pragma once

#include <string>
#include <vector>

#include "cli/CommandLine.h"
#include "platform/database/SqliteDatabase.h"

namespace excelexp::cli {

/// The alias of the file that --database names first.
inline constexpr char kDefinitionAlias[] = "definition";

/// The databases of a run, registered under their aliases as long as the object lives.
class Databases {
 public:
  /// Names of one file share a connection, and so what it holds in memory.
  /// Throws ArgumentError for a file that is no database and for an alias that is taken.
  Databases(const Settings& settings, const SqliteOptions& options);
  ~Databases();
  Databases(const Databases&) = delete;
  Databases& operator=(const Databases&) = delete;

 private:
  void Register(const std::string& alias, std::shared_ptr<Database> database);

  std::vector<std::string> aliases_;
};

}  // namespace excelexp::cli
