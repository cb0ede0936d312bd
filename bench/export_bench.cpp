// Whole exports, and libxlsxwriter alone writing the same cells from memory.

#include <benchmark/benchmark.h>

#include <memory>

#include "bench/Comparisons.h"
#include "bench/LibxlsxwriterPeer.h"
#include "bench/MeasureExport.h"
#include "bench/MonthEnd.h"
#include "bench/SharedDatabase.h"
#include "bench/Sizes.h"

namespace excelexp {
namespace {

struct Case {
  const char* name;
  const char* spreadsheet;
  const char* extension;
  int Sizes::*employees;
  Clocked clocked = Clocked::kEverything;
  Records records = Records::kGenerated;
};

constexpr Case kCases[] = {
    {"Export/Xls", kFlat, ".xls", &Sizes::listing},
    {"Export/PrintXls", kFlat, ".xls", &Sizes::listing, Clocked::kPrinting},
    {"Export/PrintStoredXls", kFlat, ".xls", &Sizes::listing, Clocked::kEverything, Records::kStored},
    {"Export/Xlsx", kFlat, ".xlsx", &Sizes::listing},
    {"Export/Grouped", kGrouped, ".xls", &Sizes::listing},
    {"Export/Small", kFlat, ".xls", &Sizes::small},
    {"Export/Large", kFlat, ".xls", &Sizes::large},
};

void RunCase(benchmark::State& state, const Case& row) {
  const int employees = RunSizes().*row.employees;
  const SharedDatabase& database =
      row.records == Records::kStored ? MonthEndWithRecords(employees) : MonthEndOf(employees);
  MeasureExport(state, database, row.spreadsheet, row.extension, row.clocked, row.records);
}

const LibxlsxwriterPeer& Listing() {
  static const std::unique_ptr<LibxlsxwriterPeer> kListing = [] {
    std::unique_ptr<LibxlsxwriterPeer> peer;
    const SharedDatabase& database = MonthEndOf(RunSizes().listing);
    Export(database.File(), kFlat, database.Output(".xls"), {.when_saved = [&peer](const Workbook& workbook) {
             peer = std::make_unique<LibxlsxwriterPeer>(workbook);
           }});
    return peer;
  }();
  return *kListing;
}

void RunLibxlsxwriter(benchmark::State& state) {
  const LibxlsxwriterPeer& listing = Listing();
  const TemporaryFolder folder;
  for (auto unused : state) listing.Write(folder.File("Payroll.xlsx"));
}

}  // namespace

void RegisterExports() {
  for (const Case& row : kCases) {
    benchmark::RegisterBenchmark(row.name, RunCase, row)
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime();
  }
  benchmark::RegisterBenchmark("Export/Libxlsxwriter", RunLibxlsxwriter)
      ->Unit(benchmark::kMillisecond)
      ->MeasureProcessCPUTime();
}

}  // namespace excelexp
