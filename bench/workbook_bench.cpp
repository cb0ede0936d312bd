// Building and saving a sheet of 10,000 x 40 formatted cells through the automation wrapper, beside
// libxlsxwriter alone writing the same values from memory.

#include <benchmark/benchmark.h>
#include <xlsxwriter.h>

#include <cstdint>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "platform/spreadsheet/BExcelAPI.h"
#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/formula/Recalculate.h"

namespace excelexp {
namespace {

constexpr int kRows = 10000;
constexpr int kTexts = 4;
constexpr int kColumns = 40;
constexpr std::int64_t kCells = std::int64_t{kRows} * kColumns;
const char* const kSheet = "Payroll";

enum Values : int { kCents, kDoubles };

/// What the rows show: four texts and 36 amounts each, the same on every run.
struct Table {
  explicit Table(Values values) {
    const char* const departments[] = {"Accounts", "Stores", "Transport", "Kitchen",
                                       "Workshop", "Design", "Sales"};
    const char* const names[] = {"Alva",  "Bruno", "Chandra", "Dewi", "Emil",
                                 "Farah", "Greta", "Hiro",    "Ilse"};
    std::uint32_t state = 1;
    const auto next = [&state] { return state = state * 1664525U + 1013904223U; };
    for (int row = 0; row < kRows; ++row) {
      texts.push_back("E" + std::to_string(100000 + row));
      texts.push_back(std::string(names[next() % 9]) + " " + names[next() % 9] + " " + std::to_string(row));
      texts.push_back(departments[row / 500 % 7]);
      texts.push_back(row % 2 == 0 ? "Monthly" : "Weekly");
      for (int i = kTexts; i < kColumns; ++i) {
        numbers.push_back(values == kCents ? (next() >> 9) / 100.0 : next() / 4294967296.0 * 1e5);
      }
    }
  }
  std::vector<std::string> texts;
  std::vector<double> numbers;
};

const Table& TableOf(Values values) {
  static const Table kTables[] = {Table(kCents), Table(kDoubles)};
  return kTables[values];
}

/// The seven calls of a colour scheme.
void Format(BExcelAPI& api, const Handle& workbook, const std::string& sheet, const std::string& cell,
            bool text) {
  static const std::string kFont = "Arial";
  api.SetFontNameSize(workbook, sheet, cell, kFont, 10);
  api.SetFontColour(workbook, sheet, cell, text ? 5 : 1);
  api.SetFontStyle(workbook, sheet, cell, text, false, false);
  api.SetFontUnderline(workbook, sheet, cell, static_cast<int>(Underline::kNone));
  api.SetFontEffects(workbook, sheet, cell, false, false, false);
  api.SetColumnWidth(workbook, sheet, cell, 12);
  api.SetRowHeight(workbook, sheet, cell, 15);
}

Handle Build(BExcelAPI& api, const Table& table) {
  const std::string sheet = kSheet;
  Handle workbook = api.CreateWorkbook(1);
  api.CreateNewTable(workbook, sheet);
  const std::string* text = table.texts.data();
  const double* number = table.numbers.data();
  for (int row = 1; row <= kRows; ++row) {
    for (int column = 1; column <= kColumns; ++column) {
      const bool is_text = column <= kTexts;
      if (is_text) {
        api.WriteTableCellText(workbook, sheet, row, column, *text++);
      } else {
        api.WriteTableCell(workbook, sheet, row, column, *number++);
      }
      Format(api, workbook, sheet, GetCellName(row, column), is_text);
    }
  }
  return workbook;
}

std::string Bytes(const Handle& workbook, const char* file_name) {
  const WorkbookFormat& format = WorkbookFormatFor(file_name);
  formula::Recalculate(*workbook.Get(), {});
  CheckWorkbook(*workbook.Get(), format);
  return format.serialize(*workbook.Get());
}

/// Cells to bytes in memory.
void WorkbookBytes(benchmark::State& state, const char* file_name, Values values) {
  const Table& table = TableOf(values);
  const auto work = [&] {
    BExcelAPI api;
    benchmark::DoNotOptimize(Bytes(Build(api, table), file_name));
  };
  for (auto _ : state) work();
  state.counters["peak_bytes_per_cell"] = static_cast<double>(PeakBytes(work)) / kCells;
}
BENCHMARK_CAPTURE(WorkbookBytes, XlsCents, "a.xls", kCents)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WorkbookBytes, XlsDoubles, "a.xls", kDoubles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WorkbookBytes, XlsxCents, "a.xlsx", kCents)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WorkbookBytes, XlsxDoubles, "a.xlsx", kDoubles)->Unit(benchmark::kMillisecond);

void WorkbookModel(benchmark::State& state) {
  const Table& table = TableOf(kCents);
  for (auto _ : state) {
    BExcelAPI api;
    benchmark::DoNotOptimize(Build(api, table));
  }
}
BENCHMARK(WorkbookModel)->Unit(benchmark::kMillisecond);

/// Cells to a published file.
void WorkbookPublished(benchmark::State& state, const char* file_name, Values values) {
  const Table& table = TableOf(values);
  const TemporaryFolder folder;
  for (auto _ : state) {
    BExcelAPI api;
    api.SaveWorkbook(Build(api, table), folder.File(file_name), false);
    api.TerminateExcel();
  }
}
BENCHMARK_CAPTURE(WorkbookPublished, XlsCents, "a.xls", kCents)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WorkbookPublished, XlsxCents, "a.xlsx", kCents)->Unit(benchmark::kMillisecond);

lxw_format* AddFormat(lxw_workbook* workbook, lxw_color_t colour, bool bold) {
  lxw_format* const format = workbook_add_format(workbook);
  format_set_font_name(format, "Arial");
  format_set_font_size(format, 10);
  format_set_font_color(format, colour);
  if (bold) format_set_bold(format);
  return format;
}

/// The same cells, formats and sizes straight into libxlsxwriter.
void WorkbookLibxlsxwriter(benchmark::State& state, Values values) {
  const Table& table = TableOf(values);
  const TemporaryFolder folder;
  for (auto _ : state) {
    lxw_workbook* const workbook = workbook_new(folder.File("payroll.xlsx").c_str());
    lxw_worksheet* const sheet = workbook_add_worksheet(workbook, kSheet);
    lxw_format* const text_format = AddFormat(workbook, 0x0000FF, true);
    lxw_format* const number_format = AddFormat(workbook, 0x000000, false);
    worksheet_set_column(sheet, 0, kColumns - 1, 12, nullptr);
    const std::string* text = table.texts.data();
    const double* number = table.numbers.data();
    for (lxw_row_t row = 0; row < kRows; ++row) {
      worksheet_set_row(sheet, row, 15, nullptr);
      for (lxw_col_t column = 0; column < kColumns; ++column) {
        if (column < kTexts) {
          worksheet_write_string(sheet, row, column, (text++)->c_str(), text_format);
        } else {
          worksheet_write_number(sheet, row, column, *number++, number_format);
        }
      }
    }
    if (workbook_close(workbook) != LXW_NO_ERROR) return state.SkipWithError("libxlsxwriter failed");
  }
}
BENCHMARK_CAPTURE(WorkbookLibxlsxwriter, Cents, kCents)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WorkbookLibxlsxwriter, Doubles, kDoubles)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace excelexp
