#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/database/Database.h"
#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// Where the analysis records of an export come from.
enum class Records {
  kGenerated,  ///< as the command does
  kStored      ///< a host's own analysis engine left them in the database, under the address "stored"
};

struct ExportOptions {
  Records records = Records::kGenerated;
  std::shared_ptr<Database> connection = nullptr;  ///< without one, the export opens its own
  /// Generates or deletes the records, maybe with a clock stopped.
  std::function<void(const std::function<void()>& work)> analyse = nullptr;
  std::function<void(const Workbook&)> when_saved = nullptr;  ///< sees the workbook, its formulas computed
};

/// Exports one definition of a database into `output`, the two logs written to files beside it. Throws
/// std::runtime_error when the export fails.
void Export(const std::string& database_file, const std::string& spreadsheet, const std::string& output,
            const ExportOptions& options = {});

/// Cells that show something: a number, a text or a formula.
std::int64_t PrintedCells(const Workbook& workbook);

}  // namespace excelexp
