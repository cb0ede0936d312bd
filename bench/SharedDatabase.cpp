#include "bench/SharedDatabase.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "bench/DemoSheets.h"
#include "bench/Export.h"
#include "bench/MonthEnd.h"
#include "bench/Sizes.h"

namespace excelexp {
namespace {

/// Makes `copy` the same database with the analysis records of a spreadsheet.
void CopyWithRecords(const SharedDatabase& original, const std::string& spreadsheet,
                     const SharedDatabase& copy) {
  std::filesystem::copy_file(original.File(), copy.File());
  Export(copy.File(), spreadsheet, copy.Output(".xls"), {.records = Records::kGeneratedAndKept});
}

}  // namespace

const SharedDatabase& MonthEndOf(int employees) {
  static std::map<int, SharedDatabase> made;
  const auto [place, is_new] = made.try_emplace(employees);
  if (is_new) {
    std::fprintf(stderr, "making a month-end of %d employees\n", employees);
    WriteMonthEnd(place->second.File(), employees);
  }
  return place->second;
}

const SharedDatabase& MonthEndWithRecords(int employees) {
  static std::map<int, SharedDatabase> made;
  const auto [place, is_new] = made.try_emplace(employees);
  if (is_new) CopyWithRecords(MonthEndOf(employees), kFlat, place->second);
  return place->second;
}

const SharedDatabase& DemoSheets() {
  static std::unique_ptr<SharedDatabase> made;
  if (made == nullptr) {
    std::fprintf(stderr, "making the demo of %d employees\n", RunSizes().demo);
    made = std::make_unique<SharedDatabase>();
    WriteDemoSheets(made->File(), RunSizes().demo);
  }
  return *made;
}

const SharedDatabase& DemoSheetWithRecords(const std::string& sheet) {
  static std::map<std::string, SharedDatabase> made;
  const auto [place, is_new] = made.try_emplace(sheet);
  if (is_new) CopyWithRecords(DemoSheets(), sheet, place->second);
  return place->second;
}

}  // namespace excelexp
