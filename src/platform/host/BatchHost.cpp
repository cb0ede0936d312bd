#include "platform/host/BatchHost.h"

#include "platform/analysis/SetupTableAnalysisEngine.h"

namespace excelexp {

BatchHost::BatchHost(const std::string& database_file, std::string output_file)
    : writer_(std::make_shared<SqliteWriter>(database_file)), output_file_(std::move(output_file)) {}

std::optional<std::string> BatchHost::AskSaveFile(const std::string& proposed) {
  return output_file_.empty() ? SafeFileName(proposed) : output_file_;
}

void BatchHost::ShowInformation(const std::string& /*text*/) {}

std::unique_ptr<BAnalysisRptEng> BatchHost::CreateAnalysisRptEng(const AnlysProjectStructure& request,
                                                                 const std::string& /*database_name*/,
                                                                 bool /*interactive*/) {
  return std::make_unique<SetupTableAnalysisEngine>(request, writer_);
}

std::string SafeFileName(const std::string& proposed) {
  const std::size_t separator = proposed.find_last_of("/\\");
  std::string name = separator == std::string::npos ? proposed : proposed.substr(separator + 1);
  std::erase_if(name, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  return name.empty() || name.front() == '.' ? "Report" + name : name;
}

}  // namespace excelexp
