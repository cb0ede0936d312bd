// Whole exports: what a group costs beside the employees in it.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "demo/DemoDatabase.h"
#include "engine/BExcelExpEngine.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqliteDatabase.h"
#include "platform/database/SqliteWriter.h"
#include "platform/host/BatchHost.h"

namespace excelexp {
namespace {

constexpr int kEmployees = 10000;
constexpr int kPerGroup = 5;

/// One worksheet each: the same month of the same employees, once in one list and once in groups of five.
constexpr char kDefinitions[] = R"(
INSERT INTO EmpCode1 SELECT printf('G%05d', value), printf('Group %05d', value) FROM Numbers;
UPDATE Employee SET EmpCode1Id = printf('G%05d', EmployeeSysId % (SELECT COUNT(*) FROM Numbers) + 1);
CREATE INDEX EmployeeOfCode1 ON Employee (EmpCode1Id);
INSERT INTO ExcelSpreadsheet VALUES ('FLAT', '', 'Flat'), ('GROUPED', '', 'Grouped');
INSERT INTO ExcelWkSheet (WkSheetSysId, ExcelSpreadsheetId, WkSheetOrder, WkSheetName, WkSheetRptSumLvl)
  VALUES (9001, 'FLAT', 1, 'Sheet', 'SumLevelEmpee'), (9002, 'GROUPED', 1, 'Sheet', 'SumLevelEmpee');
INSERT INTO FinancialRpt SELECT column1, '', FinancialAnalysProjId, LayoutSchemeId, 1, 1
  FROM FinancialRpt JOIN (VALUES ('FLAT'), ('GROUPED')) WHERE FinancialRptId = 'PAYROLL';
INSERT INTO ExcelWkSheetItem VALUES (9001, 9001, 1, 'FinancialRpt', 'FLAT'), (9002, 9002, 1, 'FinancialRpt', 'GROUPED');
INSERT INTO ExcelWSItemRptOpts VALUES (9001, 2024, 12, 0, 2024, 12, 0), (9002, 2024, 12, 0, 2024, 12, 0);
INSERT INTO FinanceColItem
  SELECT FinColItemSysId + column2, column1, FinColItemOrder, FinColItemType, FinColItem, FinColGrouping, FinColComponent,
         FinColItemTitle, FinColExcelFormula, FinColIncAccuRange, FinColIsRptMainInfo, ColourSchemeId
  FROM FinanceColItem JOIN (VALUES ('FLAT', 1000000), ('GROUPED', 2000000)) WHERE FinancialRptId = 'PAYROLL';
INSERT INTO FinanceGrpItem VALUES (9001, 'GROUPED', 1, 'Group', 'Employee', 'EmpCode1Id', 1, 1, 'DefColourScheme');
)";

/// A demo database of its own in the temporary folder, made once.
class BenchDatabase {
 public:
  BenchDatabase()
      : file_(std::filesystem::temp_directory_path() / ("excelexp-bench-" + std::to_string(::getpid()))) {
    std::filesystem::remove(file_);
    DemoOptions options;
    options.employees = kEmployees;
    WriteDemoDatabase(file_.string(), options);
    SqliteWriter writer(file_.string());
    writer.Transaction([&] {
      writer.ExecuteScript(
          "CREATE TEMP TABLE Numbers AS WITH RECURSIVE n(value) AS (SELECT 1 UNION ALL SELECT value + 1 "
          "FROM n WHERE value < " +
          std::to_string(kEmployees / kPerGroup) + ") SELECT value FROM n;");
      writer.ExecuteScript(kDefinitions);
    });
  }
  ~BenchDatabase() { std::filesystem::remove(file_); }
  BenchDatabase(const BenchDatabase&) = delete;
  BenchDatabase& operator=(const BenchDatabase&) = delete;
  std::string File() const { return file_.string(); }

 private:
  std::filesystem::path file_;
};

/// A statement without its values, so that the same question about different employees counts as one.
std::string ShapeOf(const std::string& sql) {
  std::string shape;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    if (sql[i] == '\'') {
      i = std::min(sql.find('\'', i + 1), sql.size() - 1);
      shape += "'?'";
    } else if (std::isspace(static_cast<unsigned char>(sql[i])) == 0 || shape.empty() ||
               shape.back() != ' ') {
      shape += sql[i];
    }
  }
  return shape;
}

/// Passes on to a database and tells at the end which questions took most of its time.
class TimedDatabase final : public Database {
 public:
  TimedDatabase(std::shared_ptr<Database> real, std::string name)
      : real_(std::move(real)), name_(std::move(name)) {}
  ~TimedDatabase() override {
    std::vector<std::pair<double, std::string>> slowest;
    for (const auto& [shape, use] : uses_) {
      slowest.emplace_back(use.seconds, std::to_string(use.count) + " x " + shape.substr(0, 150));
    }
    std::sort(slowest.rbegin(), slowest.rend());
    std::fprintf(stderr, "slowest statements of %s:\n", name_.c_str());
    for (std::size_t i = 0; i < std::min<std::size_t>(5, slowest.size()); ++i) {
      std::fprintf(stderr, "  %8.1f ms  %s\n", slowest[i].first * 1000, slowest[i].second.c_str());
    }
  }

  std::shared_ptr<const ResultSet> Select(const std::string& sql) override {
    const auto start = std::chrono::steady_clock::now();
    auto result = real_->Select(sql);
    Use& use = uses_[ShapeOf(sql)];
    use.seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ++use.count;
    return result;
  }
  std::string ColumnType(std::string_view table, std::string_view column) override {
    return real_->ColumnType(table, column);
  }
  std::string Country() override { return real_->Country(); }
  std::string DateFormat() override { return real_->DateFormat(); }
  void NoteWrite() override { real_->NoteWrite(); }

 private:
  struct Use {
    double seconds = 0;
    int count = 0;
  };
  std::shared_ptr<Database> real_;
  std::string name_;
  std::unordered_map<std::string, Use> uses_;
};

/// One more run, not measured, that tells what the database did.
void TellSlowestStatements(const std::string& file, const std::string& output,
                           const std::string& spreadsheet) {
  DatabaseRegistry::Register("varndb",
                             std::make_shared<TimedDatabase>(OpenSqliteDatabase(file), spreadsheet));
  const FixedViewTable view("bench", "ViewEmployee");
  BatchHost host(file, output);
  BExcelExpEngine engine(spreadsheet, &view, "varndb");
  engine.SetHost(&host);
  engine.ExecuteOperation();
  DatabaseRegistry::Remove("varndb");
}

void Export(benchmark::State& state, const std::string& spreadsheet) {
  static const BenchDatabase database;
  const std::string output = database.File() + ".xls";
  for (auto unused : state) {
    DatabaseRegistry::Register("varndb", OpenSqliteDatabase(database.File()));
    const FixedViewTable view("bench", "ViewEmployee");
    BatchHost host(database.File(), output);
    BExcelExpEngine engine(spreadsheet, &view, "varndb");
    engine.SetHost(&host);
    if (engine.ExecuteOperation() != 1) state.SkipWithError("the export failed");
    DatabaseRegistry::Remove("varndb");
  }
  static std::set<std::string> told;
  if (told.insert(spreadsheet).second) TellSlowestStatements(database.File(), output, spreadsheet);
  std::filesystem::remove(output);
}

BENCHMARK_CAPTURE(Export, Ungrouped, "FLAT")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Export, Grouped2000, "GROUPED")->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace excelexp
