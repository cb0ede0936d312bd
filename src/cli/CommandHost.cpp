#include "cli/CommandHost.h"

#include <filesystem>
#include <vector>

#include "cli/Console.h"
#include "cli/Process.h"
#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/WorkbookFile.h"

namespace excelexp::cli {
namespace {

namespace fs = std::filesystem;

constexpr auto kProgressPause = std::chrono::milliseconds(100);

bool ShowsProgress(const Settings& settings) {
  if (settings.progress != "auto") return settings.progress == "always";
  return !settings.quiet && ErrorIsTerminal();
}

/// Terminals and pipes may stand under several options.
bool IsSameFile(const std::string& one, const std::string& other) {
  std::error_code error;
  if (fs::exists(one, error) && fs::exists(other, error))
    return fs::is_regular_file(one, error) && fs::equivalent(one, other, error);
  const auto full = [&error](const std::string& file) {
    return fs::weakly_canonical(fs::absolute(file, error), error);
  };
  return full(one) == full(other);
}

}  // namespace

CommandHost::CommandHost(const Settings& settings, OnAnalysisFailed on_failed)
    : BatchHost(settings.output),
      settings_(settings),
      on_failed_(std::move(on_failed)),
      shows_progress_(ShowsProgress(settings)),
      begin_(std::chrono::steady_clock::now()),
      next_shown_(begin_) {}

std::optional<std::string> CommandHost::AskSaveFile(const std::string& proposed) {
  std::optional<std::string> file;
  if (!settings_.output.empty() || !InputIsTerminal() || !ErrorIsTerminal()) {
    file = BatchHost::AskSaveFile(proposed);
  } else {
    const std::string name = SafeFileName(proposed);
    std::string answer;
    if (!Ask("File to write [" + name + "]: ", answer)) return std::nullopt;
    file = answer.empty() ? name : answer;
    CheckOutputFile(*file);
  }
  CheckFilesDiffer(settings_, *file);
  return file;
}

void CommandHost::ShowInformation(const std::string& text) {
  if (!settings_.quiet && ErrorIsTerminal()) ShowLine(text);
}

bool CommandHost::OnProgress(const Progress& progress) {
  worksheet_ = progress.worksheet_name;
  if (shows_progress_) ShowProgress(progress);
  return !Interrupted();
}

void CommandHost::ShowProgress(const Progress& progress) {
  const auto now = std::chrono::steady_clock::now();
  if (now < next_shown_) return;
  next_shown_ = now + kProgressPause;
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  ShowTransient(progress_line_.Text(progress, seconds, TerminalWidth() - 1));
}

void CommandHost::OnAnalysisFailure(const std::string& project, const std::string& message) {
  on_failed_(project, message);
}

void CheckFilesDiffer(const Settings& settings, const std::string& output) {
  struct Use {
    std::string_view option;
    const std::string& file;
  };
  const std::vector<Use> written = {{"--output", output},
                                    {"--log", settings.log},
                                    {"--internal-log", settings.internal_log},
                                    {"--trace", settings.trace}};
  std::vector<Use> seen = {{"--database", settings.database}};
  for (const auto& alias : settings.aliases) seen.push_back({"--database", alias.second});
  for (const Use& use : written) {
    if (use.file.empty()) continue;
    for (const Use& other : seen) {
      if (IsSameFile(use.file, other.file)) {
        throw ArgumentError(std::string(use.option) + " '" + use.file + "' is the file of " +
                            std::string(other.option));
      }
    }
    seen.push_back(use);
  }
}

}  // namespace excelexp::cli
