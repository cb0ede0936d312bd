#include "bench/SharedDatabase.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "bench/DemoSheets.h"
#include "bench/MonthEnd.h"
#include "bench/Sizes.h"

namespace excelexp {

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
  if (is_new) {
    std::filesystem::copy_file(MonthEndOf(employees).File(), place->second.File());
    StoreRecords(place->second.File());
  }
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

}  // namespace excelexp
