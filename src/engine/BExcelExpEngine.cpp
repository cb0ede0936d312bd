#include "engine/BExcelExpEngine.h"

#include "engine/DefinitionTables.h"
#include "engine/ExcelExpEngineFail.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqlText.h"
#include "platform/host/Format.h"
#include "platform/spreadsheet/WorkbookFile.h"
#include "worksheet/BExcelExpEngWksheet.h"

namespace excelexp {
namespace {

constexpr std::string_view kShortDateFormat = "yyyy-mm-dd";
constexpr std::string_view kWhere = "BExcelExpEngine::ExecuteOperation";

class RunSnapshot {
 public:
  RunSnapshot() { DatabaseRegistry::NoteWrite(); }
  ~RunSnapshot() { DatabaseRegistry::NoteWrite(); }
  RunSnapshot(const RunSnapshot&) = delete;
  RunSnapshot& operator=(const RunSnapshot&) = delete;
};

}  // namespace

BExcelExpEngine::BExcelExpEngine(const std::string& spreadsheet_id, const BQueryViewTable* view_table,
                                 const std::string& database_name)
    : SavedShortDateFormat(ShortDateFormat()) {
  SetShortDateFormat(std::string(kShortDateFormat));
  SetDatabaseName(database_name);
  ExcelSpreadsheetQry = std::make_unique<Query>(database_name);
  ExcelWorksheetQry = std::make_unique<Query>(database_name);
  OwnExcelAPI = std::make_unique<BExcelAPI>();
  SetExcelSpreadsheetId(spreadsheet_id);
  SetQueryViewTable(view_table);
}

BExcelExpEngine::~BExcelExpEngine() {
  SetShortDateFormat(SavedShortDateFormat);
}

int BExcelExpEngine::ExecuteOperation() {
  // A run sees the database as it is when the run begins, and holds no lock on it when it is over.
  const RunSnapshot snapshot;
  saved_file_name_.clear();
  outcome_ = Outcome::kFailed;
  try {
    outcome_ = Run();
  } catch (const ExcelExpEngineFail&) {
    Fail("");
  } catch (const DatabaseError& error) {
    Fail(error.Message());
  } catch (const std::exception& error) {
    Fail(error.what());
  } catch (...) {
    Fail("");
  }
  return outcome_ == Outcome::kFailed || outcome_ == Outcome::kCancelledWhileRunning ? 0 : 1;
}

Outcome BExcelExpEngine::Run() {
  WriteBanner(Memo::kAll, {"             EXCEL EXPORT PROCESSING            "});
  WriteAllMemo("Start Date and Time: " + CurrentDateTime());
  WriteAllMemo("");
  WriteAllMemo("Excel Spreadsheet ID: " + ExcelSpreadsheetId);
  WriteAllMemo("");

  if (!OpenOrLog(*ExcelSpreadsheetQry,
                 "SELECT * FROM ExcelSpreadsheet WHERE" + std::string(41, ' ') +
                     "ExcelSpreadsheetId = " + SqlText(ExcelSpreadsheetId),
                 kWhere, "ExcelSpreadsheetQry", Rows::kRequired)) {
    WriteAllMemo("Error in Excel Export Engine : No Spreadsheet found.");
    WriteAllMemo("");
    return Outcome::kFailed;
  }

  const auto file_name = ChooseFile(ExcelSpreadsheetQry->FieldByName("ExcelRptFileName").AsString() + ".xls");
  if (!file_name) {
    WriteUserEntry("Generation of Excel Report is cancelled.");
    return Outcome::kDialogCancelled;
  }

  if (!OpenOrLog(*ExcelWorksheetQry,
                 "SELECT * FROM ExcelWkSheet" + std::string(39, ' ') + "WHERE ExcelSpreadsheetId = " +
                     SqlText(ExcelSpreadsheetId) + std::string(39, ' ') + "ORDER BY WkSheetOrder",
                 kWhere, "ExcelWorksheetQry", Rows::kOptional)) {
    WriteAllMemo("Error in Excel Export Engine : No Worksheet found.");
    WriteAllMemo("");
    return Outcome::kFailed;
  }
  if (ExcelWorksheetQry->IsEmpty()) {
    WriteUserEntry("Warning: There are no Excel Worksheets being set up in this Excel Spreadsheet.");
    WriteAllMemo("Generation of Excel Report is not successful.");
    WriteAllMemo("");
    return Outcome::kNoWorksheets;
  }

  OpenSpreadsheet();
  worksheet_count_ = ExcelWorksheetQry->RowCount();
  worksheet_number_ = 0;
  for (ExcelWorksheetQry->First(); !ExcelWorksheetQry->Eof(); ExcelWorksheetQry->Next()) ProcessWorksheet();
  Save(*file_name);
  return Outcome::kWritten;
}

std::optional<std::string> BExcelExpEngine::ChooseFile(const std::string& proposed) {
  if (Host == nullptr) throw SpreadsheetError("the engine has no host to ask for the output file");
  auto file_name = Host->AskSaveFile(proposed);
  if (!file_name) return std::nullopt;
  WorkbookFormatFor(*file_name);  // an unknown kind of file is told now, not after the work
  if (Host->FileExists(*file_name))
    Host->ShowInformation("Please remember to close the file if it is opened.");
  return file_name;
}

void BExcelExpEngine::OpenSpreadsheet() {
  SetExcelAPI(OwnExcelAPI.get());
  OwnExcelAPI->SetMoment(Host->Now());
  OwnExcelAPI->OpenExcelOLE(false);
  WorkbookHandle = OwnExcelAPI->CreateWorkbook(1);
  WorkbookHandle.Get()->title = ExcelSpreadsheetId;
  SetExcelWorkbook(WorkbookHandle);
}

void BExcelExpEngine::ProcessWorksheet() {
  const auto text = [this](std::string_view name) { return ExcelWorksheetQry->FieldByName(name).AsString(); };
  SetExcelWorksheetSysId(ExcelWorksheetQry->FieldByName("WkSheetSysId").AsInteger());
  SetExcelWorksheetName(text("WkSheetName"));
  SetExcelWkSheetRptSumLvl(text("WkSheetRptSumLvl"));
  SetExcelWkSheetTitleColourSchemeId(text("WkSheetTitleColourSchemeId"));
  SetLastPrintedCol(1);
  SetLastPrintedRow(1);
  ++worksheet_number_;
  ReportProgress(0, 0);

  WriteFrame("           EXCEL WORKSHEET PROCESSING           ");
  WriteAllMemo("Excel Worksheet Order: " +
               std::to_string(ExcelWorksheetQry->FieldByName("WkSheetOrder").AsInteger()));
  WriteAllMemo("Excel Worksheet Name: " + ExcelWorksheetName);
  WriteAllMemo("");

  if (ExcelWkSheetRptSumLvl.empty()) {
    WriteUserEntry("Warning: The Excel Worksheet Report Summary Level is not selected.");
  } else if (ExcelWkSheetRptSumLvl == summary_level::kBasis && !TakeBasisLevels()) {
    WriteUserEntry("Warning: The Excel Worksheet Report Basis Levels are not selected.");
  } else {
    ExecuteProcExcelWksheet();
  }
}

bool BExcelExpEngine::TakeBasisLevels() {
  const auto text = [this](std::string_view name) { return ExcelWorksheetQry->FieldByName(name).AsString(); };
  const std::string basis1 = text("WkSheetRptBasis1");
  const std::string basis2 = text("WkSheetRptBasis2");
  const std::string basis3 = text("WkSheetRptBasis3");
  if (basis1.empty() && basis2.empty() && basis3.empty()) return false;
  SetExcelWkSheetRptBasis1(basis1);
  SetExcelWkSheetRptBasis2(basis2);
  SetExcelWkSheetRptBasis3(basis3);
  return true;
}

void BExcelExpEngine::ExecuteProcExcelWksheet() {
  WriteBanner(Memo::kInternal, {"        EXECUTE EXCEL WORKSHEET PROCESS         "});
  BExcelExpEngWksheet worksheet(this);
  if (worksheet.ExecuteOperation() == 0) {
    WriteInternalMemo("BExcelExpEngine::ExecuteProcExcelWksheet Error: Error in processing Excel Worksheet");
    WriteInternalMemo("");
    throw ExcelExpEngineFail{};
  }
}

void BExcelExpEngine::Save(const std::string& file_name) {
  WriteFrame("           SAVING REPORT IN PROGRESS            ");
  // A run that was cancelled must not be saved: the queries it stopped left gaps.
  OwnExcelAPI->SetBeforeSaveStep([this] { ReportProgress(0, 0); });
  OwnExcelAPI->SaveWorkbook(WorkbookHandle, file_name, false);
  saved_file_name_ = file_name;
  WriteAllMemo("File has been successfully generated to " + file_name);
  WriteAllMemo("End Date and Time: " + CurrentDateTime());
  WriteAllMemo("");
  OwnExcelAPI->TerminateExcel();
}

void BExcelExpEngine::Fail(std::string_view reason) {
  NoticeCancel();
  outcome_ = Cancelled() ? Outcome::kCancelledWhileRunning : Outcome::kFailed;
  WriteAllMemo("Error in Excel Export Engine");
  if (Cancelled()) {
    WriteAllMemo("Generation of Excel Report is cancelled.");
  } else if (!reason.empty()) {
    WriteAllMemo(reason);
  }
  OwnExcelAPI->TerminateExcel();
}

void BExcelExpEngine::NoticeCancel() {
  try {
    ReportProgress(0, 0);
  } catch (const ExcelExpEngineFail&) {
    // Cancelled() says it from now on.
  }
}

std::string BExcelExpEngine::CurrentDateTime() {
  return Host == nullptr ? "" : FormatDateTime(ShortDateFormat() + " hh:nn:ss", Host->Now());
}

}  // namespace excelexp
