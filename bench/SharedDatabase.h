#pragma once

#include <string>
#include <string_view>

#include "bench/Measure.h"

namespace excelexp {

/// A database in a folder of its own, where its exports go too. Benchmarks share it, and the first one makes
/// it.
class SharedDatabase {
 public:
  std::string File() const { return folder_.File("payroll.db"); }
  std::string Output(std::string_view extension) const {
    return folder_.File("Payroll" + std::string(extension));
  }

 private:
  TemporaryFolder folder_;
};

/// A month-end as an export finds it.
const SharedDatabase& MonthEndOf(int employees);
/// One in which a host's own analysis engine left the records of FLAT.
const SharedDatabase& MonthEndWithRecords(int employees);

/// The demo's worksheets.
const SharedDatabase& DemoSheets();

}  // namespace excelexp
