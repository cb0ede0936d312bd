#include "platform/host/BatchHost.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/analysis/SetupTableAnalysisEngine.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp {

BatchHost::~BatchHost() {
  for (const Generated& each : generated_) {
    try {
      if (const std::shared_ptr<Database> database = each.database.lock())
        database->ReleaseRows(kAnalysisRecordTable, each.key);
    } catch (...) {
      // Whoever still reads them learns of it there.
    }
  }
}

std::optional<std::string> BatchHost::AskSaveFile(const std::string& proposed) {
  std::string file = output_file_.empty() ? SafeFileName(proposed) : output_file_;
  CheckOutputFile(file);
  return file;
}

void BatchHost::ShowInformation(const std::string& /*text*/) {}

std::unique_ptr<BAnalysisRptEng> BatchHost::CreateAnalysisRptEng(const AnlysProjectStructure& request,
                                                                 const std::string& database_name,
                                                                 bool /*interactive*/) {
  const std::shared_ptr<Database> database = DatabaseRegistry::Find(database_name);
  if (database == nullptr) return nullptr;
  generated_.push_back({database, AnalysisRecordKey(request)});
  auto analysis = std::make_unique<SetupTableAnalysisEngine>(request, database);
  analysis->SetOnFailure([this, project = request.AnlysProjectId](const std::string& message) {
    OnAnalysisFailure(project, message);
  });
  return analysis;
}

void BatchHost::OnAnalysisFailure(const std::string& /*project*/, const std::string& /*message*/) {}

void CheckOutputFile(const std::string& file) {
  const auto refuse = [&file](const std::string& reason) {
    throw SpreadsheetError("'" + file + "' cannot be written: " + reason);
  };
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) refuse("it is a folder");
  const std::string parent = std::filesystem::path(file).parent_path().string();
  const std::string folder = parent.empty() ? "." : parent;
  if (!std::filesystem::is_directory(folder, error)) refuse("there is no folder '" + folder + "'");
  if (access(folder.c_str(), W_OK | X_OK) != 0) {
    refuse("the folder '" + folder + "': " + std::generic_category().message(errno));
  }
}

std::string SafeFileName(const std::string& proposed) {
  const std::size_t separator = proposed.find_last_of("/\\");
  std::string name = separator == std::string::npos ? proposed : proposed.substr(separator + 1);
  std::erase_if(name, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  return name.empty() || name.front() == '.' ? "Report" + name : name;
}

}  // namespace excelexp
