#pragma once

#include <memory>
#include <optional>
#include <string>

#include "engine/BExcelExpEngCore.h"

namespace excelexp {

/// How a run ended. ExecuteOperation's result is 1 for the first three.
enum class Outcome {
  kNotRun,
  kWritten,               ///< the file stands under SavedFileName
  kDialogCancelled,       ///< the user chose no file
  kNoWorksheets,          ///< the definition has no worksheets
  kFailed,                ///< the logs say why; nothing was written
  kCancelledWhileRunning  ///< the host cancelled; nothing was written
};

/// Turns one stored spreadsheet definition into a workbook file. The engine is itself the context that its
/// classes share.
///
/// Construct, SetHost, SetLogMemo, SetInternalMemo, ExecuteOperation, destroy; one object serves one run.
/// While it lives, the process-wide short date format is "yyyy-mm-dd". Single-threaded.
class BExcelExpEngine : public BExcelExpEngCore {
 public:
  /// `view_table` stays the host's and outlives the engine. `database_name` is an alias in DatabaseRegistry.
  BExcelExpEngine(const std::string& spreadsheet_id, const BQueryViewTable* view_table,
                  const std::string& database_name);
  ~BExcelExpEngine();

  /// Runs the export. 1 when it ended normally: a file was written, the user cancelled the file choice, or
  /// there are no worksheets; 0 when it failed. Never throws for what a definition, the database or the disk
  /// does.
  int ExecuteOperation();

  /// Generates the worksheet whose row the worksheet query stands on; throws ExcelExpEngineFail when that
  /// fails.
  void ExecuteProcExcelWksheet();

  /// Replaces the engine's automation wrapper by one of the host's, before ExecuteOperation.
  void SetOwnExcelAPI(std::unique_ptr<BExcelAPI> api) { OwnExcelAPI = std::move(api); }

  Outcome LastOutcome() const { return outcome_; }
  /// The file that the last run wrote; "" when it wrote none.
  const std::string& SavedFileName() const { return saved_file_name_; }

 private:
  Outcome Run();
  std::optional<std::string> ChooseFile(const std::string& proposed);
  void OpenSpreadsheet();
  void ProcessWorksheet();
  bool TakeBasisLevels();
  void Save(const std::string& file_name);
  void Fail(std::string_view reason);
  /// A cancel that stopped a statement shows as a failure until the host is asked.
  void NoticeCancel();
  std::string CurrentDateTime();

  std::string SavedShortDateFormat;
  std::unique_ptr<Query> ExcelSpreadsheetQry;
  std::unique_ptr<Query> ExcelWorksheetQry;
  std::unique_ptr<BExcelAPI> OwnExcelAPI;
  Handle WorkbookHandle;
  Outcome outcome_ = Outcome::kNotRun;
  std::string saved_file_name_;
};

}  // namespace excelexp
