#pragma once

#include <chrono>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/SqliteWriter.h"

namespace excelexp {

using DemoDay = std::chrono::sys_days;

/// 'yyyy-mm-dd'.
std::string IsoDate(DemoDay day);

/// Cents as an amount.
inline double DemoAmount(std::int64_t cents) {
  return static_cast<double>(cents) / 100.0;
}

/// One value of a row, as it is stored.
class DemoCell {
 public:
  template <std::integral T>
  DemoCell(T value) : value_(static_cast<std::int64_t>(value)) {}
  DemoCell(double value) : value_(value) {}
  DemoCell(std::string value) : value_(std::move(value)) {}
  DemoCell(std::string_view value) : value_(std::string(value)) {}
  DemoCell(const char* value) : value_(std::string(value)) {}
  DemoCell(std::vector<std::uint8_t> value) : value_(std::move(value)) {}
  DemoCell(DemoDay value) : value_(IsoDate(value)) {}
  DemoCell(std::nullopt_t) {}
  template <typename T>
  DemoCell(const std::optional<T>& value) {
    if (value) value_ = DemoCell(*value).Take();
  }

  /// Moves the value out: the elements of a braced list can be read once only, but need no copy.
  SqlValue Take() const { return std::move(value_); }

 private:
  mutable SqlValue value_;
};

/// Inserts rows into one table: DemoTable(writer, "Family (FamilySysId, Gender)").Insert({1, "0"}). The
/// values of a braced list are computed from left to right, so that a row may draw random numbers.
class DemoTable {
 public:
  /// `writer` outlives the table.
  DemoTable(SqliteWriter& writer, std::string_view table_and_columns);

  void Insert(std::initializer_list<DemoCell> cells);

 private:
  SqliteWriter& writer_;
  std::string sql_;
  std::vector<SqlValue> row_;
};

}  // namespace excelexp
