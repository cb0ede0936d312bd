#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include "cli/CommandHost.h"
#include "cli/Console.h"
#include "cli/Databases.h"
#include "cli/Process.h"
#include "cli/Verbs.h"
#include "engine/BExcelExpEngine.h"
#include "platform/host/LineSinks.h"
#include "platform/host/Workstation.h"
#include "platform/spreadsheet/WorkbookFile.h"

namespace excelexp::cli {
namespace {

constexpr std::size_t kShownWarnings = 20;
constexpr std::string_view kDefaultViewTable = "ViewEmployee";

// How the user log says that a run failed; the reason follows on the line or on the next one, or a worksheet
// has given its reason before.
constexpr std::string_view kFailureLine = "Error in Excel Export Engine";
constexpr std::string_view kReasonPrefix = "Error in Excel Export Engine : ";

/// The user log as it grows.
class StandardErrorSink final : public LineSink {
 public:
  void WriteLine(std::string_view line) override { ShowLine(line); }
};

/// A log file that is there only if its option is.
class OptionalLog {
 public:
  explicit OptionalLog(const std::string& file) {
    if (!file.empty()) sink_ = std::make_unique<FileLineSink>(file);
  }
  LineSink* Sink() const { return sink_.get(); }
  /// What could not be written is told; the workbook does not depend on it.
  void Flush() const {
    try {
      if (sink_) sink_->Flush();
    } catch (const std::system_error& error) {
      ShowError(error.what());
    }
  }

 private:
  std::unique_ptr<FileLineSink> sink_;
};

/// What the user log and the internal log say, in files and for the messages at the end.
class Logs {
 public:
  explicit Logs(const Settings& settings)
      : user_file_(settings.log), internal_file_(settings.internal_log), trace_file_(settings.trace) {
    user_.Add(&digest_);
    if (user_file_.Sink() != nullptr) user_.Add(user_file_.Sink());
    if (settings.verbose) user_.Add(&standard_error_);
    internal_.Add(&cause_);
    if (internal_file_.Sink() != nullptr) internal_.Add(internal_file_.Sink());
  }

  void AttachTo(BExcelExpEngine& engine) {
    engine.SetLogMemo(&user_);
    engine.SetInternalMemo(&internal_);
  }

  void Trace(const std::string& what, const std::string& detail) const {
    if (trace_file_.Sink() == nullptr) return;
    trace_file_.Sink()->WriteLine(what);
    trace_file_.Sink()->WriteLine(detail);
    trace_file_.Sink()->WriteLine("");
    trace_file_.Flush();
  }

  void Flush() const {
    user_file_.Flush();
    internal_file_.Flush();
  }

  const LogDigest& Digest() const { return digest_; }

  /// Why the run failed, the most telling line first, as far as the user log says it.
  std::vector<std::string> Reasons() const {
    std::vector<std::string> reasons;
    for (const std::string& line : digest_.Errors()) {
      if (line.starts_with(kReasonPrefix)) {
        reasons.push_back(line.substr(kReasonPrefix.size()));
      } else if (line != kFailureLine) {
        reasons.push_back(line);
      }
    }
    return reasons;
  }

  /// Whether the log ends with a reason that is complete by itself.
  bool SaysWhy() const { return !digest_.Errors().empty() && digest_.Errors().back() != kFailureLine; }

  /// The first technical error entry, "" without one.
  const std::string& Cause() const { return cause_.Entry(); }

 private:
  class FirstErrorEntry final : public LineSink {
   public:
    void WriteLine(std::string_view line) override {
      if (entry_.empty() && line.find(" Error: ") != std::string_view::npos) entry_ = line;
    }
    const std::string& Entry() const { return entry_; }

   private:
    std::string entry_;
  };

  OptionalLog user_file_;
  OptionalLog internal_file_;
  OptionalLog trace_file_;
  StandardErrorSink standard_error_;
  LogDigest digest_;
  FirstErrorEntry cause_;
  TeeLineSink user_;
  TeeLineSink internal_;
};

void CheckSettings(const Settings& settings) {
  CheckFilesDiffer(settings, settings.output);
  if (!settings.workstation.empty() && !IsWorkstationAddress(settings.workstation)) {
    throw ArgumentError("--workstation '" + settings.workstation +
                        "' is no address of 1 to 39 letters, digits, '.', ':', '-', '_'");
  }
  if (settings.output.empty()) return;
  if (std::filesystem::is_directory(settings.output))
    throw ArgumentError("--output '" + settings.output + "' is a folder");
  try {
    WorkbookFormatFor(settings.output);
  } catch (const SpreadsheetError& error) {
    throw ArgumentError(error.what());
  }
}

/// One export, from the options to the exit code.
class Export {
 public:
  explicit Export(const Settings& settings)
      : settings_(settings), databases_(std::make_unique<Databases>(settings, Options())) {
    OpenLogs();
    host_.emplace(settings, [this](const std::string& project, const std::string& message) {
      logs_->Trace("Analysis project '" + project + "' failed.", message);
    });
  }

  ExitCode Run() {
    Outcome outcome = Outcome::kFailed;
    std::string written;
    {
      const FixedViewTable view_table(
          settings_.workstation.empty() ? DefaultWorkstation() : settings_.workstation,
          settings_.view_table.empty() ? std::string(kDefaultViewTable) : settings_.view_table);
      BExcelExpEngine engine(settings_.spreadsheet, &view_table, kDefinitionAlias);
      engine.SetHost(&*host_);
      logs_->AttachTo(engine);
      engine.ExecuteOperation();
      outcome = engine.LastOutcome();
      written = engine.SavedFileName();
    }
    ShowTransient("");
    databases_.reset();
    logs_->Flush();
    return Report(outcome, written);
  }

 private:
  SqliteOptions Options() {
    SqliteOptions options;
    options.cancelled = &Interrupted;
    options.now = [this] { return host_->Now(); };
    options.on_failure = [this](const std::string& sql, const std::string& message) {
      if (logs_) logs_->Trace("Failed: " + message, sql);
    };
    return options;
  }

  /// Only once the databases are open: a mistyped name must not empty the logs of an earlier run.
  void OpenLogs() {
    try {
      logs_.emplace(settings_);
    } catch (const std::system_error& error) {
      throw ArgumentError(error.what());
    }
  }

  ExitCode Report(Outcome outcome, const std::string& written) const {
    if (outcome == Outcome::kWritten) {
      ShowWarnings();
      Print(written + "\n");
      return kDone;
    }
    if (Interrupted()) {
      ShowError("interrupted, nothing was written");
      return kInterrupted;
    }
    const std::string spreadsheet =
        "spreadsheet '" + settings_.spreadsheet + "' of '" + settings_.database + "'";
    if (outcome == Outcome::kDialogCancelled) return NothingWritten("no file was chosen for " + spreadsheet);
    if (outcome == Outcome::kNoWorksheets) return NothingWritten(spreadsheet + " has no worksheets");
    ShowWarnings();
    ShowFailure(spreadsheet);
    return kFailed;
  }

  ExitCode NothingWritten(const std::string& why) const {
    if (!settings_.quiet) ShowError(why + ", nothing was written");
    return kNothingWritten;
  }

  void ShowWarnings() const {
    if (settings_.quiet || settings_.verbose) return;
    const auto& warnings = logs_->Digest().Warnings();
    for (std::size_t i = 0; i < warnings.size() && i < kShownWarnings; ++i) ShowLine(warnings[i]);
    if (warnings.size() > kShownWarnings) {
      ShowLine("... and " + std::to_string(warnings.size() - kShownWarnings) +
               " more warnings; --log FILE keeps all");
    }
  }

  /// One sentence that says what was not exported and why. A worksheet that failed is named, and the first
  /// technical entry, which is the cause of the others, follows.
  void ShowFailure(const std::string& spreadsheet) const {
    std::vector<std::string> reasons = logs_->Reasons();
    std::string what = spreadsheet;
    if (!logs_->SaysWhy()) {
      if (!host_->Worksheet().empty()) what += ", worksheet '" + host_->Worksheet() + "',";
      reasons.push_back(logs_->Cause().empty() ? "the logs do not say why" : logs_->Cause());
    }
    ShowError(what + " was not exported: " + reasons.front());
    for (std::size_t i = 1; i < reasons.size(); ++i) ShowLine("  " + reasons[i]);
  }

  const Settings& settings_;
  std::optional<Logs> logs_;
  std::unique_ptr<Databases> databases_;
  std::optional<CommandHost> host_;
};

}  // namespace

ExitCode RunExport(const Settings& settings) {
  CheckSettings(settings);
  return Export(settings).Run();
}

}  // namespace excelexp::cli
