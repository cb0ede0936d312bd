#pragma once

#include <string_view>

#include "platform/database/SqliteWriter.h"

namespace excelexp {

/// Everything the company pays or deducts. The kind decides into which total of a pay record it goes.
struct DemoPayItem {
  std::string_view id;
  std::string_view kind;
  std::string_view desc;
};
const DemoPayItem& DemoPayItemOf(std::string_view id);

/// Fills the tables that do not depend on the people: companies, codes, pay items, pay periods.
void WriteDemoCodes(SqliteWriter& writer);

}  // namespace excelexp
