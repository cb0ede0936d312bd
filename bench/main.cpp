// Measures, or does one thing that is measured from outside.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/Comparisons.h"
#include "bench/DemoSheets.h"
#include "bench/Export.h"
#include "bench/LibxlsxwriterPeer.h"
#include "bench/Measure.h"
#include "bench/MonthEnd.h"
#include "bench/SharedDatabase.h"
#include "bench/Sizes.h"
#include "bench/TimedDatabase.h"
#include "platform/database/SqliteDatabase.h"

namespace excelexp {
namespace {

constexpr char kUsage[] =
    R"(usage: excelexp_bench [--divide=N] [--benchmark_...]
       excelexp_bench --month-end=FILE [--divide=N] [--records=stored]
       excelexp_bench --layouts=FILE [--divide=N]
       excelexp_bench --export=ID --database=FILE --output=FILE [--records=stored] [--libxlsxwriter=FILE]
       excelexp_bench --statements=ID [--divide=N]

The first measures. The others
  write the month-end database with the definitions FLAT and GROUPED; with --records=stored also the analysis
    records of FLAT, as an analysis engine that stores them leaves them,
  write the database of the layouts, in which each worksheet of the demo is a definition of its own,
  export one definition of a database and print how much memory that took and how many cells it printed;
    with --records=stored those records are printed, with --libxlsxwriter that library writes the cells again,
  export FLAT, GROUPED or a worksheet of the demo and print which SQL statements took most of the time.
--divide makes every database smaller.
)";

using Options = std::map<std::string, std::string, std::less<>>;

constexpr std::array kNames = {"divide", "month-end", "layouts",       "export",     "database",
                               "output", "records",   "libxlsxwriter", "statements", "help"};

/// Takes our own options out of the arguments; the others stay for the benchmark library.
Options TakeOptions(int& count, char** arguments) {
  Options options;
  int kept = 1;
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    const std::size_t equals = std::min(argument.find('='), argument.size());
    const auto* const known = std::find_if(kNames.begin(), kNames.end(), [&](const std::string& name) {
      return argument.compare(0, equals, "--" + name) == 0;
    });
    if (known == kNames.end()) {
      arguments[kept++] = arguments[i];
    } else {
      options[*known] = argument.substr(std::min(equals + 1, argument.size()));
    }
  }
  count = kept;
  return options;
}

std::string Required(const Options& options, std::string_view name) {
  const auto option = options.find(name);
  if (option == options.end()) throw std::invalid_argument("--" + std::string(name) + "=... is missing");
  return option->second;
}

bool HasStoredRecords(const Options& options) {
  const auto option = options.find("records");
  if (option != options.end() && option->second != "stored")
    throw std::invalid_argument("--records=stored is what --records can say");
  return option != options.end();
}

void ExportOnce(const Options& options) {
  std::int64_t cells = 0;
  ExportOptions how{.when_saved = [&](const Workbook& workbook) {
    cells = PrintedCells(workbook);
    const auto theirs = options.find("libxlsxwriter");
    if (theirs != options.end()) LibxlsxwriterPeer(workbook).Write(theirs->second);
  }};
  if (HasStoredRecords(options)) how.records = Records::kStored;
  const std::int64_t peak = PeakBytesHere([&] {
    Export(Required(options, "database"), Required(options, "export"), Required(options, "output"), how);
  });
  std::printf("{\"peak_bytes\": %lld, \"cells\": %lld}\n", static_cast<long long>(peak),
              static_cast<long long>(cells));
}

void PrintStatements(const std::string& spreadsheet) {
  const bool month_end = spreadsheet == kFlat || spreadsheet == kGrouped;
  const SharedDatabase& database = month_end ? MonthEndOf(RunSizes().listing) : DemoSheets();
  Export(database.File(), spreadsheet, database.Output(".xls"),
         {.connection = std::make_shared<TimedDatabase>(OpenSqliteDatabase(database.File()), spreadsheet)});
}

void Measure(int count, char** arguments) {
  RegisterExports();
  RegisterLayouts();
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) throw std::invalid_argument(kUsage);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}

void Run(int count, char** arguments) {
  const Options options = TakeOptions(count, arguments);
  if (options.contains("divide")) DivideSizes(std::stoi(Required(options, "divide")));
  if (options.contains("help")) {
    std::fputs(kUsage, stdout);
  } else if (options.contains("month-end")) {
    const std::string file = Required(options, "month-end");
    WriteMonthEnd(file, RunSizes().listing);
    if (HasStoredRecords(options)) StoreRecords(file);
  } else if (options.contains("layouts")) {
    WriteDemoSheets(Required(options, "layouts"), RunSizes().demo);
  } else if (options.contains("export")) {
    ExportOnce(options);
  } else if (options.contains("statements")) {
    PrintStatements(Required(options, "statements"));
  } else {
    Measure(count, arguments);
  }
}

}  // namespace
}  // namespace excelexp

int main(int count, char** arguments) {
  try {
    excelexp::Run(count, arguments);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "excelexp_bench: %s\n", error.what());
    return 1;
  }
}
