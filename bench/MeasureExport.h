#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "bench/Export.h"
#include "bench/SharedDatabase.h"

namespace excelexp {

/// The loop of a benchmark of whole exports; the counter "cells" says how many cells one of them prints.
inline void MeasureExport(benchmark::State& state, const SharedDatabase& database,
                          const std::string& spreadsheet, std::string_view extension, Records records) {
  const std::string output = database.Output(extension);
  std::int64_t cells = 0;
  const ExportOptions options{.records = records, .when_saved = [&](const Workbook& workbook) {
                                state.PauseTiming();
                                cells = PrintedCells(workbook);
                                state.ResumeTiming();
                              }};
  for (auto unused : state) Export(database.File(), spreadsheet, output, options);
  state.counters["cells"] = static_cast<double>(cells);
}

}  // namespace excelexp
