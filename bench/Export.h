#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/database/Database.h"
#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// What becomes of the analysis records of an export. Those that are kept stand under the address "kept".
enum class Records {
  kGeneratedAndDeleted,  ///< as the command does
  kGeneratedAndKept,
  kAlreadyThere  ///< an earlier export of the same spreadsheet kept them
};

struct ExportOptions {
  Records records = Records::kGeneratedAndDeleted;
  std::shared_ptr<Database> connection = nullptr;             ///< without one, the export opens its own
  std::function<void(const Workbook&)> when_saved = nullptr;  ///< sees the workbook, its formulas computed
};

/// Exports one definition of a database into `output`, the two logs written to files beside it. Throws
/// std::runtime_error when the export fails.
void Export(const std::string& database_file, const std::string& spreadsheet, const std::string& output,
            const ExportOptions& options = {});

/// Cells that show something: a number, a text or a formula.
std::int64_t PrintedCells(const Workbook& workbook);

}  // namespace excelexp
