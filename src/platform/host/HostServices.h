#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/analysis/BAnalysisRptEng.h"
#include "platform/host/DateTime.h"

namespace excelexp {

/// How far a run has come. Counts begin at 1; 0 of 0 where there is nothing to count yet.
struct Progress {
  std::string worksheet_name;
  int worksheet = 0;
  int worksheets = 0;
  int entity =
      0;  ///< of the entity list being printed: all of an ungrouped worksheet, one group's of a grouped one
  int entities = 0;
};

/// What the engine asks of the program that loads it. Calls come on the engine's thread.
class HostServices {
 public:
  virtual ~HostServices() = default;

  /// The file-save dialog: the file the user chose, or nothing when the user cancelled. `proposed` may be any
  /// text that a definition holds: a host that takes it as a path answers for where it leads.
  virtual std::optional<std::string> AskSaveFile(const std::string& proposed) = 0;

  /// A message box of the information kind with one OK button.
  virtual void ShowInformation(const std::string& text) = 0;

  virtual bool FileExists(const std::string& file);

  /// Local time of day; the default honours SOURCE_DATE_EPOCH (seconds, taken as UTC) before the system's
  /// clock.
  virtual DateTime Now();

  /// Called as the run goes on; false cancels the run: it fails, saves nothing and leaves the old file as it
  /// was.
  virtual bool OnProgress(const Progress& progress);

  /// The analysis engine for one request; nullptr when the host has none. `request` outlives the result.
  virtual std::unique_ptr<BAnalysisRptEng> CreateAnalysisRptEng(const AnlysProjectStructure& request,
                                                                const std::string& database_name,
                                                                bool interactive) = 0;
};

}  // namespace excelexp
