#include "demo/DemoTable.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace excelexp {

std::string IsoDate(DemoDay day) {
  const std::chrono::year_month_day date(day);
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return text.data();
}

DemoTable::DemoTable(SqliteWriter& writer, std::string_view table_and_columns) : writer_(writer) {
  const auto columns = std::count(table_and_columns.begin(), table_and_columns.end(), ',') + 1;
  sql_ = "INSERT INTO " + std::string(table_and_columns) + " VALUES (?1";
  for (int column = 2; column <= columns; ++column) sql_ += ", ?" + std::to_string(column);
  sql_ += ")";
}

void DemoTable::Insert(std::initializer_list<DemoCell> cells) {
  row_.clear();
  for (const DemoCell& cell : cells) row_.push_back(cell.Take());
  writer_.Execute(sql_, row_);
}

}  // namespace excelexp
