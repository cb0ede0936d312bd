#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/database/Database.h"
#include "platform/host/HostServices.h"

namespace excelexp {

/// A host without a user: the output file is given in advance, information boxes are passed over, and the
/// analysis engine makes its records from the setups that the database brings along.
class BatchHost : public HostServices {
 public:
  /// An empty `output_file` takes the name that the definition proposes, into the current folder, without its
  /// folders.
  explicit BatchHost(std::string output_file) : output_file_(std::move(output_file)) {}
  /// Deletes the analysis records that a failed export left in memory.
  ~BatchHost() override;

  /// Throws SpreadsheetError when the file could not be written anyway: a folder of that name, or a folder to
  /// write into that is not there or may not be written. So it is told before the work.
  std::optional<std::string> AskSaveFile(const std::string& proposed) override;
  void ShowInformation(const std::string& text) override;
  /// nullptr when no database is registered under the name.
  std::unique_ptr<BAnalysisRptEng> CreateAnalysisRptEng(const AnlysProjectStructure& request,
                                                        const std::string& database_name,
                                                        bool interactive) override;

 protected:
  /// The analysis engine could not generate the records of a request: which project, and why.
  virtual void OnAnalysisFailure(const std::string& project, const std::string& message);

 private:
  struct Generated {
    std::weak_ptr<Database> database;
    RowsToHold::Key key;
  };

  std::string output_file_;
  std::vector<Generated> generated_;
};

/// The last component of a proposed name, safe to use inside a chosen folder: what stands before a path
/// separator (of any system) and control characters do not survive; a name that begins with a dot gets
/// "Report" in front of it.
std::string SafeFileName(const std::string& proposed);

/// Throws SpreadsheetError, naming file and folder, for a file that could not be written (see AskSaveFile).
void CheckOutputFile(const std::string& file);

}  // namespace excelexp
