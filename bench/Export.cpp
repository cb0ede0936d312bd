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

/// Deletes no records, and generates them only when they are not there.
class KeepingEngine final : public BAnalysisRptEng {
 public:
  KeepingEngine(std::unique_ptr<BAnalysisRptEng> real, bool movement, bool there)
      : real_(std::move(real)), movement_(movement), there_(there) {}
  void SetQueryViewTable(const BQueryViewTable* view_table) override { real_->SetQueryViewTable(view_table); }
  int ExecuteOperation() override {
    const int success = movement_ ? 0 : 1;
    return there_ ? success : real_->ExecuteOperation();
  }
  void DeleteOperation() override {}

 private:
  std::unique_ptr<BAnalysisRptEng> real_;
  bool movement_;
  bool there_;
};

class ExportHost final : public BatchHost {
 public:
  ExportHost(const std::string& database_file, std::string output, Records records)
      : BatchHost(database_file, std::move(output)), records_(records) {}

  std::unique_ptr<BAnalysisRptEng> CreateAnalysisRptEng(const AnlysProjectStructure& request,
                                                        const std::string& database_name,
                                                        bool interactive) override {
    auto real = BatchHost::CreateAnalysisRptEng(request, database_name, interactive);
    if (records_ == Records::kGeneratedAndDeleted) return real;
    return std::make_unique<KeepingEngine>(std::move(real),
                                           request.AnlysProjectSubType == "ProjSubTypeMovement",
                                           records_ == Records::kAlreadyThere);
  }

 private:
  Records records_;
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
  const bool deleted = options.records == Records::kGeneratedAndDeleted;
  const FixedViewTable view(deleted ? "bench" : "kept", "ViewEmployee");
  ExportHost host(database_file, output, options.records);
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
