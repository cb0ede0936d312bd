#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "cli/CommandLine.h"
#include "platform/host/BatchHost.h"
#include "platform/host/ProgressLine.h"

namespace excelexp::cli {

/// The engine's host at a shell: asks on a terminal, shows progress, stops on a signal.
class CommandHost final : public BatchHost {
 public:
  using OnAnalysisFailed = std::function<void(const std::string& project, const std::string& message)>;

  CommandHost(const Settings& settings, OnAnalysisFailed on_failed);

  std::optional<std::string> AskSaveFile(const std::string& proposed) override;
  void ShowInformation(const std::string& text) override;
  bool OnProgress(const Progress& progress) override;

  /// The worksheet that the run reached; "" before the first one.
  const std::string& Worksheet() const { return worksheet_; }

 protected:
  void OnAnalysisFailure(const std::string& project, const std::string& message) override;

 private:
  void ShowProgress(const Progress& progress);

  const Settings& settings_;
  OnAnalysisFailed on_failed_;
  std::string worksheet_;
  bool shows_progress_;
  ProgressLine progress_line_;
  std::chrono::steady_clock::time_point begin_;
  std::chrono::steady_clock::time_point next_shown_;
};

/// Throws ArgumentError when a file that is written is also read or written under another option: a log must
/// not take the place of the payroll. `output` is the workbook, "" as long as it is not known.
void CheckFilesDiffer(const Settings& settings, const std::string& output);

}  // namespace excelexp::cli
