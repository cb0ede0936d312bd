#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/BExcelExpEngine.h"
#include "platform/host/BatchHost.h"
#include "platform/host/LineSinks.h"
#include "platform/spreadsheet/SheetGrid.h"

namespace excelexp {

/// A folder of its own below the system's temporary folder, removed with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::string File(const std::string& name) const { return (path_ / name).string(); }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// A host whose clock stands still at 5 March 2024 14:05:09 and who answers the dialogs as a test says.
class ScenarioHost : public BatchHost {
 public:
  /// Analysis records go to the connection of `records_alias`, whichever the engine names.
  ScenarioHost(std::string output_file, std::string records_alias)
      : BatchHost(std::move(output_file)), records_alias_(std::move(records_alias)) {}

  std::optional<std::string> AskSaveFile(const std::string& name) override {
    proposed.push_back(name);
    return cancel_dialog ? std::nullopt : BatchHost::AskSaveFile(name);
  }
  void ShowInformation(const std::string& text) override { shown.push_back(text); }
  DateTime Now() override { return now; }
  bool OnProgress(const Progress& progress) override { return !on_progress || on_progress(progress); }
  std::unique_ptr<BAnalysisRptEng> CreateAnalysisRptEng(const AnlysProjectStructure& request,
                                                        const std::string& database,
                                                        bool interactive) override {
    requests.push_back(request);
    request_databases.push_back(interactive ? database + ", interactive" : database);
    return make_analysis ? make_analysis(request)
                         : BatchHost::CreateAnalysisRptEng(request, records_alias_, interactive);
  }

  DateTime now = ParseDateTime("2024-03-05 14:05:09");
  bool cancel_dialog = false;
  std::function<bool(const Progress&)> on_progress;
  std::function<std::unique_ptr<BAnalysisRptEng>(const AnlysProjectStructure&)> make_analysis;

  std::vector<std::string> proposed;            ///< by the save dialog
  std::vector<std::string> shown;               ///< message boxes
  std::vector<AnlysProjectStructure> requests;  ///< to the analysis engine
  std::vector<std::string> request_databases;   ///< named in each of them

 private:
  std::string records_alias_;
};

/// What a run left.
struct ScenarioRun {
  int result = -99;
  Outcome outcome = Outcome::kNotRun;
  std::vector<std::string> user_log;
  std::vector<std::string> internal_log;
  Handle workbook;  ///< as it was saved; empty when nothing was
  /// A sheet as a grid; a test failure and "" when there is no such sheet.
  std::string Grid(std::string_view sheet, GridOptions options = {}) const;
  /// The number that a cell's formula came to; a test failure and 0 when it is no number.
  double Result(std::string_view sheet, int row, int column) const;
  /// The lines of a log that are not banners or empty, joined by line feeds.
  static std::string Lines(const std::vector<std::string>& log);
  /// The error entries of the internal log, from the innermost operation outwards.
  std::vector<std::string> Errors() const;
  /// True when a line of a log or a cell shows the text.
  bool Shows(std::string_view text) const;
};

/// A payroll database of the real schema in a file of its own, registered as "varndb", and runs of the engine
/// on it.
class Scenario {
 public:
  /// The SQL text adds definitions and records to the empty database.
  explicit Scenario(const std::string& sql = "");
  /// The context works on a second database, "reports", made from `context_sql`; "varndb" is made from `sql`.
  /// Analysis records go where the context reads them.
  Scenario(const std::string& sql, const std::string& context_sql);
  ~Scenario();

  void Execute(const std::string& sql);
  /// Makes a context ready for a class that is tested alone. The sinks outlive the context's use.
  void Attach(BExcelExpEngCore& core, LineSink& user_log, LineSink& internal_log);
  /// Who may be seen: a table or view with EmployeeSysId and PersonalSysId; everybody when never called.
  void UseView(const std::string& table) { view_ = FixedViewTable("10.1.2.3", table); }
  /// Runs the engine; nothing is written to the disk unless `save` is set.
  ScenarioRun Run(const std::string& spreadsheet_id, bool save = false);

  ScenarioHost& Host() { return *host_; }
  /// The context's.
  std::string DatabaseFile() const { return folder_.File(context_name_ + ".db"); }
  std::string OutputFile() const { return folder_.File("out.xls"); }
  const TemporaryFolder& Folder() const { return folder_; }

  /// From this many-th statement that contains `part` on, statements containing it fail; 0 switches failing
  /// off.
  void FailStatement(std::string part, int nth = 1);

 private:
  class FailingDatabase;

  /// Makes and registers a database.
  std::shared_ptr<FailingDatabase> MakeDatabase(const std::string& name, const std::string& sql);

  TemporaryFolder folder_;
  std::string context_name_;
  FixedViewTable view_{"10.1.2.3", "ViewEmployee"};
  std::shared_ptr<FailingDatabase> database_;
  std::unique_ptr<ScenarioHost> host_;
};

}  // namespace excelexp
