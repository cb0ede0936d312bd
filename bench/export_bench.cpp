// Whole exports.

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "bench/MonthEnd.h"
#include "bench/TimedDatabase.h"
#include "platform/database/SqliteDatabase.h"

namespace excelexp {
namespace {

const MonthEnd& Of(int employees) {
  static std::map<int, std::unique_ptr<MonthEnd>> made;
  auto& known = made[employees];
  if (known == nullptr) known = std::make_unique<MonthEnd>(employees);
  return *known;
}

void Export(benchmark::State& state, const std::string& spreadsheet, const std::string& extension,
            MonthEnd::Records records) {
  const MonthEnd& month_end = Of(static_cast<int>(state.range(0)));
  for (auto unused : state) month_end.Export(spreadsheet, extension, records);
}
constexpr auto kGenerated = MonthEnd::Records::kGeneratedAndDeleted;
constexpr auto kThere = MonthEnd::Records::kAlreadyThere;
BENCHMARK_CAPTURE(Export, Xls, "FLAT", ".xls", kGenerated)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(Export, PrintXls, "FLAT", ".xls", kThere)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(Export, Xlsx, "FLAT", ".xlsx", kGenerated)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(Export, Grouped, "GROUPED", ".xls", kGenerated)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void Slow(benchmark::State& state) {
  const MonthEnd& month_end = Of(10000);
  for (auto unused : state)
    month_end.Export("FLAT", ".xls", kGenerated,
                     std::make_shared<TimedDatabase>(OpenSqliteDatabase(month_end.DatabaseFile()), "flat"));
}
BENCHMARK(Slow)->Unit(benchmark::kMillisecond)->Iterations(1);
}  // namespace
}  // namespace excelexp
