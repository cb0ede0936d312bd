#include "cli/Databases.h"

#include <filesystem>
#include <system_error>

#include "cli/Process.h"
#include "platform/database/DatabaseError.h"
#include "platform/database/DatabaseRegistry.h"

namespace excelexp::cli {
namespace {

std::shared_ptr<Database> Open(const std::string& file, const SqliteOptions& options) {
  try {
    return OpenSqliteDatabase(file, options);
  } catch (const DatabaseError& error) {
    if (Interrupted()) throw;
    throw ArgumentError(error.Message());
  }
}

}  // namespace

Databases::Databases(const Settings& settings, const SqliteOptions& options) {
  std::vector<std::pair<std::string, std::shared_ptr<Database>>> opened;
  const auto definition = Open(settings.database, options);
  opened.emplace_back(kDefinitionAlias, definition);
  opened.emplace_back(kPayrollDatabaseName, definition);
  for (const auto& [alias, file] : settings.aliases) {
    if (alias == kDefinitionAlias)
      throw ArgumentError("the alias '" + alias + "' is taken by the first database");
    std::error_code error;
    const bool is_first = std::filesystem::equivalent(file, settings.database, error);
    opened.emplace_back(alias, is_first ? definition : Open(file, options));
  }
  for (const auto& [alias, database] : opened) Register(alias, database);
}

Databases::~Databases() {
  for (const std::string& alias : aliases_) DatabaseRegistry::Remove(alias);
}

void Databases::Register(const std::string& alias, std::shared_ptr<Database> database) {
  DatabaseRegistry::Register(alias, std::move(database));
  aliases_.push_back(alias);
}

}  // namespace excelexp::cli
