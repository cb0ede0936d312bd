#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace excelexp {

/// The complete schema: a script that makes an empty, usable database (demo/schema.sql).
extern const std::string_view kDemoSchemaSql;

struct DemoOptions {
  int employees = 25;      ///< 1 to 100,000; an employee is the same whatever the number
  std::uint64_t seed = 1;  ///< the same seed and number give the same database, byte for byte
  bool overwrite = false;  ///< replace a file that exists
  /// Told now and then how far the work is: `done` of `total` steps. An exception from it abandons the work.
  std::function<void(std::int64_t done, std::int64_t total)> progress;
};

/// Writes a payroll database with invented people, twelve months of pay, and the spreadsheet definitions
/// 'DEMO' and 'STAFF'. The file appears under its name when it is complete; a run that fails or is abandoned
/// leaves what was there before.
///
/// Throws std::invalid_argument for a number of employees out of range, std::system_error when the file
/// exists (and may not be replaced) or cannot be written, DatabaseError for a failure of the database.
void WriteDemoDatabase(const std::string& file, const DemoOptions& options = {});

}  // namespace excelexp
