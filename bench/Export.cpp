#include "bench/Export.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "engine/BExcelExpEngine.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqliteDatabase.h"
#include "platform/host/BatchHost.h"
#include "platform/host/LineSinks.h"

namespace excelexp {
namespace {

constexpr char kAlias[] = "varndb";

class WatchedEngine final : public BAnalysisRptEng {
 public:
  WatchedEngine(std::unique_ptr<BAnalysisRptEng> real, const ExportOptions& options)
      : real_(std::move(real)), options_(options) {}
  void SetQueryViewTable(const BQueryViewTable* view_table) override { real_->SetQueryViewTable(view_table); }
  int ExecuteOperation() override {
    int result = 0;
    options_.analyse([&] { result = real_->ExecuteOperation(); });
    return result;
  }
  void DeleteOperation() override {
    options_.analyse([&] { real_->DeleteOperation(); });
  }

 private:
  std::unique_ptr<BAnalysisRptEng> real_;
  const ExportOptions& options_;
};

/// Finds everything done.
class IdleEngine final : public BAnalysisRptEng {
 public:
  explicit IdleEngine(bool movement) : success_(movement ? 0 : 1) {}
  void SetQueryViewTable(const BQueryViewTable* /*view_table*/) override {}
  int ExecuteOperation() override { return success_; }
  void DeleteOperation() override {}

 private:
  int success_;
};

class ExportHost final : public BatchHost {
 public:
  ExportHost(std::string output, const ExportOptions& options)
      : BatchHost(std::move(output)), options_(options) {}

  std::unique_ptr<BAnalysisRptEng> CreateAnalysisRptEng(const AnlysProjectStructure& request,
                                                        const std::string& database_name,
                                                        bool interactive) override {
    if (options_.records == Records::kStored)
      return std::make_unique<IdleEngine>(request.AnlysProjectSubType == "ProjSubTypeMovement");
    auto real = BatchHost::CreateAnalysisRptEng(request, database_name, interactive);
    if (!options_.analyse) return real;
    return std::make_unique<WatchedEngine>(std::move(real), options_);
  }

 private:
  const ExportOptions& options_;
};

class WatchedApi final : public BExcelAPI {
 public:
  explicit WatchedApi(std::function<void(const Workbook&)> when_saved) : when_saved_(std::move(when_saved)) {}
  void SaveWorkbook(const Handle& workbook, const std::string& file_name, bool ask) override {
    BExcelAPI::SaveWorkbook(workbook, file_name, ask);
    when_saved_(*workbook.Get());
  }

 private:
  std::function<void(const Workbook&)> when_saved_;
};

}  // namespace

void Export(const std::string& database_file, const std::string& spreadsheet, const std::string& output,
            const ExportOptions& options) {
  DatabaseRegistry::Register(
      kAlias, options.connection != nullptr ? options.connection : OpenSqliteDatabase(database_file));
  const bool stored = options.records == Records::kStored;
  const FixedViewTable view(stored ? "stored" : "bench", "ViewEmployee");
  ExportHost host(output, options);
  FileLineSink user_log(output + ".user.log");
  FileLineSink internal_log(output + ".internal.log");
  Outcome outcome = Outcome::kNotRun;
  {
    BExcelExpEngine engine(spreadsheet, &view, kAlias);
    engine.SetHost(&host);
    engine.SetLogMemo(&user_log);
    engine.SetInternalMemo(&internal_log);
    if (options.when_saved) engine.SetOwnExcelAPI(std::make_unique<WatchedApi>(options.when_saved));
    engine.ExecuteOperation();
    outcome = engine.LastOutcome();
  }
  user_log.Flush();
  internal_log.Flush();
  DatabaseRegistry::Remove(kAlias);
  if (outcome != Outcome::kWritten) throw std::runtime_error("the export of " + spreadsheet + " failed");
}

std::int64_t PrintedCells(const Workbook& workbook) {
  std::int64_t cells = 0;
  for (const auto& sheet : workbook.Sheets()) {
    for (int row = 1; row <= sheet->LastRow(); ++row) {
      const std::vector<Cell>& line = sheet->Row(row);
      cells += std::count_if(line.begin(), line.end(),
                             [](const Cell& cell) { return cell.type != CellType::kEmpty; });
    }
  }
  return cells;
}

}  // namespace excelexp
