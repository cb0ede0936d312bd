#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <string_view>

#include "bench/Export.h"
#include "bench/SharedDatabase.h"

namespace excelexp {

/// What the clock of a benchmark of exports runs for.
enum class Clocked {
  kEverything,
  kPrinting  ///< everything but generating and deleting the analysis records
};

/// The loop of a benchmark of whole exports; the counter "cells" says how many cells one of them prints.
inline void MeasureExport(benchmark::State& state, const SharedDatabase& database,
                          const std::string& spreadsheet, std::string_view extension, Clocked clocked,
                          Records records = Records::kGenerated) {
  const std::string output = database.Output(extension);
  const auto unclocked = [&state](const std::function<void()>& work) {
    state.PauseTiming();
    work();
    state.ResumeTiming();
  };
  std::int64_t cells = 0;
  ExportOptions options{.records = records};
  if (clocked == Clocked::kPrinting) options.analyse = unclocked;
  options.when_saved = [&](const Workbook& workbook) { unclocked([&] { cells = PrintedCells(workbook); }); };
  for (auto unused : state) Export(database.File(), spreadsheet, output, options);
  state.counters["cells"] = static_cast<double>(cells);
}

}  // namespace excelexp
