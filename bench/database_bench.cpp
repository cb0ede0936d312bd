// The database seam against what it must cost: a question asked again, a search in a result, and reading a
// large result beside SQLite's own interface reading the same rows.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/DatabaseRegistry.h"
#include "platform/database/Query.h"
#include "platform/database/SqliteDatabase.h"
#include "platform/database/SqliteWriter.h"

namespace excelexp {
namespace {

constexpr int kRecords = 400'000;
constexpr char kSchema[] = R"(
CREATE TABLE ColourCodeMapping(ColourCodeId VARCHAR(40) PRIMARY KEY, ColourCodeIndex INTEGER);
CREATE TABLE ColourScheme(ColourSchemeId VARCHAR(40) PRIMARY KEY, ColourCodeId VARCHAR(40) REFERENCES
  ColourCodeMapping, ColourSchFont VARCHAR(80), ColourSchSize INTEGER, ColourSchCellWidth INTEGER);
INSERT INTO ColourCodeMapping VALUES('Black', 1);
INSERT INTO ColourScheme VALUES('DefColourScheme', 'Black', 'Arial', 9, 12), ('Title', 'Black', 'Arial', 11, 12);
CREATE TABLE AnlysItemRecord(AnlysProjectId VARCHAR(40), AnlysIPAddress VARCHAR(80), AnlysItemRecYear INTEGER,
  AnlysItemRecPeriodMonth INTEGER, AnlysItemRecSubPeriod INTEGER, AnlysPayRecBasis VARCHAR(40),
  Basis1Id VARCHAR(40), Basis2Id VARCHAR(40), Basis3Id VARCHAR(40), AnlysItem1Id VARCHAR(40),
  AnlysItem2Id VARCHAR(40), AnlysItem3Id VARCHAR(40), AnlysItem4Id VARCHAR(40), AnlysItem5Id VARCHAR(40),
  AnlysItemTypeId VARCHAR(40), AnlysLookUpId VARCHAR(40), AnlysItemDesc VARCHAR(80), AnlysAmount1 DOUBLE,
  AnlysAmount2 DOUBLE, AnlysFAmount1 DOUBLE, AnlysFAmount2 DOUBLE, AnlysDoubleValue1 DOUBLE,
  AnlysDoubleValue2 DOUBLE);
)";
constexpr char kFill[] = R"(
WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < ?1 - 1)
INSERT INTO AnlysItemRecord SELECT 'MonthlyPay', '10.0.0.1_1', 2024, 1 + i / 10 % 12, 1, 'Monthly', 1000 + i / 120, '', '',
  'ITEM' || (i % 10), '', '', '', '', 'PayElement', 'Amount', 'Description of pay item ' || (i % 10), 1000.25 + i, i % 31,
  0, 0, 0.5 * i, NULL FROM n)";

/// The payroll file that all cases read; made once, removed at the end.
class Payroll {
 public:
  static Payroll& Instance() {
    static Payroll payroll;
    return payroll;
  }
  const std::string& File() const { return file_; }

 private:
  Payroll() {
    std::string folder = (std::filesystem::temp_directory_path() / "excelexp-bench-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) std::abort();
    folder_ = folder;
    file_ = folder + "/payroll.db";
    SqliteWriter writer(file_, SqliteWriter::Mode::kCreate);
    writer.ExecuteScript(kSchema);
    const SqlValue count[] = {std::int64_t{kRecords}};
    writer.Execute(kFill, count);
    DatabaseRegistry::Register("payroll", OpenSqliteDatabase(file_));
  }
  ~Payroll() {
    DatabaseRegistry::Remove("payroll");
    std::filesystem::remove_all(folder_);
  }
  std::filesystem::path folder_;
  std::string file_;
};

void DefinitionQueryAgain(benchmark::State& state) {
  Payroll::Instance();
  const std::string sql =
      "SELECT * FROM ColourScheme JOIN ColourCodeMapping WHERE                                     "
      "ColourSchemeId "
      "IN ('DefColourScheme',                                     'Title')";
  Query query("payroll");
  for (auto _ : state) {
    query.SetSql(sql);
    query.Open();
    benchmark::DoNotOptimize(query.FieldByName("ColourSchFont").AsString());
    benchmark::DoNotOptimize(query.FieldByName("ColourCodeIndex").AsInteger());
    query.Close();
  }
}
BENCHMARK(DefinitionQueryAgain);

void LocateFourFields(benchmark::State& state) {
  Payroll::Instance();
  Query query("payroll");
  query.SetSql("SELECT * FROM AnlysItemRecord WHERE rowid <= 10000");
  query.Open();
  std::vector<std::vector<KeyValue>> keys;
  for (int i = 0; i < 997; ++i)
    keys.push_back({1 + i % 12, "Monthly", std::to_string(1000 + i % 83), "ITEM" + std::to_string(i % 11)});
  std::size_t next = 0;
  int found = 0;
  for (auto _ : state) {
    found +=
        query.Locate("AnlysItemRecPeriodMonth;AnlysPayRecBasis;Basis1Id;AnlysItem1Id", keys[next]) ? 1 : 0;
    next = next + 1 == keys.size() ? 0 : next + 1;
  }
  if (found == 0) state.SkipWithError("no record was found");
}
BENCHMARK(LocateFourFields);

const char* const kAllRecords = "SELECT * FROM AnlysItemRecord";

void ReadRecordsResultSet(benchmark::State& state) {
  const auto database = OpenSqliteDatabase(Payroll::Instance().File(), {.cache_bytes = 0});
  for (auto _ : state) {
    const std::shared_ptr<const ResultSet> result = database->Select(kAllRecords);
    if (result->RowCount() != kRecords) state.SkipWithError("rows are missing");
  }
}
BENCHMARK(ReadRecordsResultSet)->Unit(benchmark::kMillisecond);

// Looks at every value of every row, as somebody who wants the values must, and keeps none.
void ReadRecordsBare(benchmark::State& state) {
  sqlite3* handle = nullptr;
  sqlite3_open_v2(Payroll::Instance().File().c_str(), &handle, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX,
                  nullptr);
  sqlite3_exec(handle, "BEGIN", nullptr, nullptr, nullptr);
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(handle, kAllRecords, -1, &statement, nullptr);
  const int width = sqlite3_column_count(statement);
  for (auto _ : state) {
    int rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW; ++rows) {
      for (int column = 0; column < width; ++column) {
        switch (sqlite3_column_type(statement, column)) {
          case SQLITE_INTEGER:
            benchmark::DoNotOptimize(sqlite3_column_int64(statement, column));
            break;
          case SQLITE_FLOAT:
            benchmark::DoNotOptimize(sqlite3_column_double(statement, column));
            break;
          case SQLITE_NULL:
            break;
          default:
            benchmark::DoNotOptimize(sqlite3_column_text(statement, column));
            benchmark::DoNotOptimize(sqlite3_column_bytes(statement, column));
        }
      }
    }
    sqlite3_reset(statement);
    if (rows != kRecords) state.SkipWithError("rows are missing");
  }
  sqlite3_finalize(statement);
  sqlite3_close(handle);
}
BENCHMARK(ReadRecordsBare)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace excelexp
