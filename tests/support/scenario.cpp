#include "support/scenario.h"

#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "platform/database/DatabaseError.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqliteDatabase.h"
#include "platform/database/SqliteWriter.h"
#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/formula/Recalculate.h"

namespace excelexp {
namespace {

constexpr std::string_view kNow = "2024-03-05 14:05:09";

std::string ReadFile(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

/// Keeps what is saved for the test to look at.
class RecordingExcelAPI final : public BExcelAPI {
 public:
  RecordingExcelAPI(Handle& saved, bool save) : saved_(saved), save_(save) {}

  void SaveWorkbook(const Handle& workbook, const std::string& file_name, bool ask) override {
    if (save_) {
      BExcelAPI::SaveWorkbook(workbook, file_name, ask);
    } else {
      formula::Recalculate(*workbook.Get(), ParseDateTime(kNow));
      CheckWorkbook(*workbook.Get(), WorkbookFormatFor(file_name));
    }
    saved_ = workbook;
  }

 private:
  Handle& saved_;
  bool save_;
};

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "excelexp-test-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

std::string ScenarioRun::Grid(std::string_view sheet, GridOptions options) const {
  const Sheet* found = workbook.IsEmpty() ? nullptr : workbook.Get()->FindSheet(sheet);
  if (found == nullptr) {
    ADD_FAILURE() << "no sheet " << sheet << "; internal log:\n" << Lines(internal_log);
    return "";
  }
  return DumpSheet(*workbook.Get(), *found, options);
}

double ScenarioRun::Result(std::string_view sheet, int row, int column) const {
  const Sheet* found = workbook.IsEmpty() ? nullptr : workbook.Get()->FindSheet(sheet);
  const Cell* cell = found == nullptr ? nullptr : found->Find(row, column);
  if (cell != nullptr && cell->type == CellType::kFormula) {
    const FormulaResult& shown = workbook.Get()->FormulaAt(cell->formula).result;
    if (shown.type == FormulaResult::Type::kNumber) return shown.number;
  }
  ADD_FAILURE() << "no number in " << GetCellName(row, column) << " of " << sheet;
  return 0.0;
}

std::string ScenarioRun::Lines(const std::vector<std::string>& log) {
  std::string lines;
  for (std::size_t i = 0; i < log.size(); ++i) {
    const bool framed = i > 0 && i + 1 < log.size() && log[i].size() == 48 &&
                        log[i] != std::string(48, '*') &&
                        (log[i - 1] == std::string(48, ' ') || log[i + 1] == std::string(48, ' '));
    const bool rule = log[i] == std::string(48, '*') || log[i].find_first_not_of(' ') == std::string::npos;
    if (!framed && !rule) lines += log[i] + "\n";
  }
  return lines;
}

std::vector<std::string> ScenarioRun::Errors() const {
  std::vector<std::string> errors;
  for (const std::string& line : internal_log) {
    if (line.find("Error") != std::string::npos) errors.push_back(line);
  }
  return errors;
}

bool ScenarioRun::Shows(std::string_view text) const {
  const auto contains = [text](const std::string& line) { return line.find(text) != std::string::npos; };
  if (std::any_of(user_log.begin(), user_log.end(), contains)) return true;
  if (std::any_of(internal_log.begin(), internal_log.end(), contains)) return true;
  if (workbook.IsEmpty()) return false;
  const auto& sheets = workbook.Get()->Sheets();
  return std::any_of(sheets.begin(), sheets.end(), [&](const auto& sheet) {
    return contains(DumpSheet(*workbook.Get(), *sheet, {.formulas = true}));
  });
}

/// Passes statements on to the real database, except those that a test wants to fail.
class Scenario::FailingDatabase final : public Database {
 public:
  explicit FailingDatabase(std::shared_ptr<Database> real) : real_(std::move(real)) {}

  std::shared_ptr<const ResultSet> Select(const std::string& sql) override {
    if (nth > 0 && sql.find(part) != std::string::npos && ++seen_ >= nth)
      throw DatabaseError("switched to fail", sql);
    return real_->Select(sql);
  }
  std::string ColumnType(std::string_view table, std::string_view column) override {
    return real_->ColumnType(table, column);
  }
  std::string Country() override { return real_->Country(); }
  std::string DateFormat() override { return real_->DateFormat(); }
  void HoldRows(const RowsToHold& rows) override { real_->HoldRows(rows); }
  void ReleaseRows(const std::string& table, const RowsToHold::Key& key) override {
    real_->ReleaseRows(table, key);
  }
  void NoteWrite() override { real_->NoteWrite(); }

  void Arm(std::string text, int count) {
    part = std::move(text);
    nth = count;
    seen_ = 0;
  }

 private:
  std::shared_ptr<Database> real_;
  std::string part;
  int nth = 0;
  int seen_ = 0;
};

Scenario::Scenario(const std::string& sql) : context_name_(kPayrollDatabaseName) {
  database_ = MakeDatabase(context_name_, sql);
  host_ = std::make_unique<ScenarioHost>(OutputFile(), context_name_);
}

Scenario::Scenario(const std::string& sql, const std::string& context_sql) : context_name_("reports") {
  MakeDatabase(std::string(kPayrollDatabaseName), sql);
  database_ = MakeDatabase(context_name_, context_sql);
  host_ = std::make_unique<ScenarioHost>(OutputFile(), context_name_);
}

std::shared_ptr<Scenario::FailingDatabase> Scenario::MakeDatabase(const std::string& name,
                                                                  const std::string& sql) {
  const std::string file = folder_.File(name + ".db");
  SqliteWriter writer(file, SqliteWriter::Mode::kCreate);
  writer.Transaction([&] {
    writer.ExecuteScript(ReadFile(EXCELEXP_SOURCE_DIR "/demo/schema.sql"));
    writer.ExecuteScript(sql);
  });
  SqliteOptions options;
  options.now = [] { return ParseDateTime(kNow); };
  auto database = std::make_shared<FailingDatabase>(OpenSqliteDatabase(file, options));
  DatabaseRegistry::Register(name, database);
  return database;
}

Scenario::~Scenario() {
  DatabaseRegistry::Remove(kPayrollDatabaseName);
  DatabaseRegistry::Remove(context_name_);
}

void Scenario::Attach(BExcelExpEngCore& core, LineSink& user_log, LineSink& internal_log) {
  core.SetDatabaseName(context_name_);
  core.SetQueryViewTable(&view_);
  core.SetHost(host_.get());
  core.SetLogMemo(&user_log);
  core.SetInternalMemo(&internal_log);
}

void Scenario::Execute(const std::string& sql) {
  SqliteWriter(DatabaseFile()).ExecuteScript(sql);
}

void Scenario::FailStatement(std::string part, int nth) {
  database_->Arm(std::move(part), nth);
}

ScenarioRun Scenario::Run(const std::string& spreadsheet_id, bool save) {
  ScenarioRun run;
  MemoryLineSink user_log;
  MemoryLineSink internal_log;
  BExcelExpEngine engine(spreadsheet_id, &view_, context_name_);
  Attach(engine, user_log, internal_log);
  engine.SetOwnExcelAPI(std::make_unique<RecordingExcelAPI>(run.workbook, save));
  run.result = engine.ExecuteOperation();
  run.outcome = engine.LastOutcome();
  run.user_log = user_log.Lines();
  run.internal_log = internal_log.Lines();
  return run;
}

}  // namespace excelexp
