// What a printed cell costs in each layout and frame.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/Comparisons.h"
#include "bench/DemoSheets.h"
#include "bench/MeasureExport.h"

namespace excelexp {
namespace {

// Each generates its records anew while the clock stands still, which takes longer than most sheets are
// printed.
constexpr int kExports = 1;

void RunSheet(benchmark::State& state, const std::string& sheet) {
  MeasureExport(state, DemoSheets(), sheet, ".xls", Clocked::kPrinting);
}

}  // namespace

void RegisterLayouts() {
  for (const std::string& sheet : DemoSheetNames()) {
    benchmark::RegisterBenchmark(("Layout/" + sheet).c_str(), RunSheet, sheet)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(kExports)
        ->MeasureProcessCPUTime();
  }
}

}  // namespace excelexp
