#include "platform/database/HeldTables.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/HeldTableModule.h"
#include "platform/database/Names.h"
#include "platform/database/SqlText.h"
#include "platform/database/SqlTokens.h"
#include "platform/database/SqliteConnection.h"

namespace excelexp {
namespace {

HeldValue WholeIfPossible(double value) {
  constexpr double kExact = 2251799813685248.0;  // 2^51, as the database does
  return std::abs(value) < kExact && value == std::floor(value)
             ? HeldValue::Integer(static_cast<std::int64_t>(value))
             : HeldValue::Float(value);
}

HeldValue ValueFor(sqlite3_value* value, Affinity affinity) {
  int type = sqlite3_value_type(value);
  const bool wants_number = affinity == Affinity::kNumeric || affinity == Affinity::kReal;
  if (type == SQLITE_TEXT && wants_number) type = sqlite3_value_numeric_type(value);
  const bool is_number = type == SQLITE_INTEGER || type == SQLITE_FLOAT;
  if (is_number && affinity == Affinity::kText) type = SQLITE_TEXT;
  switch (type) {
    case SQLITE_INTEGER:
      return affinity == Affinity::kReal ? HeldValue::Float(sqlite3_value_double(value))
                                         : HeldValue::Integer(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return affinity == Affinity::kNumeric ? WholeIfPossible(sqlite3_value_double(value))
                                            : HeldValue::Float(sqlite3_value_double(value));
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
      return HeldValue::Text({text, static_cast<std::size_t>(sqlite3_value_bytes(value))});
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
      const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
      return {HeldValue::Kind::kBlob, 0, size == 0 ? std::string_view() : std::string_view(bytes, size)};
    }
    default:
      return {};
  }
}

/// A column of a statement whose values are to be held.
struct Source {
  int column;
  Affinity affinity;
};

std::string TextAt(sqlite3_stmt* row, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  return text == nullptr ? std::string() : std::string(text);
}

int Place(const std::vector<HeldTable::Column>& columns, const std::string& table, const std::string& name) {
  const auto found = std::ranges::find_if(
      columns, [&](const HeldTable::Column& column) { return SameName(column.name, name); });
  if (found == columns.end()) throw DatabaseError("table " + table + " has no column " + name, "");
  return static_cast<int>(found - columns.begin());
}

}  // namespace

HeldTables::HeldTables(const SqliteConnection& connection) : connection_(connection) {
  RegisterHeldTableModule(connection, *this);
}

HeldTable* HeldTables::Find(std::string_view name) const {
  const auto found = by_name_.find(FoldName(name));
  return found == by_name_.end() ? nullptr : found->second.get();
}

std::unique_ptr<HeldTable> HeldTables::Describe(const RowsToHold& rows) const {
  std::vector<HeldTable::Column> columns = StoredColumns(rows.table);
  std::vector<int> key;
  for (const auto& [name, value] : rows.key) key.push_back(Place(columns, rows.table, name));
  std::vector<int> order;
  for (const std::string& name : rows.order) order.push_back(Place(columns, rows.table, name));
  return std::make_unique<HeldTable>(rows.table, std::move(columns), std::move(key), std::move(order));
}

void HeldTables::Install(std::unique_ptr<HeldTable> table) {
  const std::string name = table->Name();
  by_name_[FoldName(name)] = std::move(table);
  try {
    connection_.Execute(
        ("CREATE VIRTUAL TABLE temp." + QuoteName(name) + " USING " + kHeldTableModule).c_str());
  } catch (...) {
    by_name_.erase(FoldName(name));
    throw;
  }
}

std::vector<HeldTable::Column> HeldTables::StoredColumns(const std::string& name) const {
  const std::string sql =
      "SELECT name, type, \"notnull\", dflt_value FROM pragma_table_info(" + SqlText(name) + ", 'main')";
  std::vector<HeldTable::Column> columns;
  std::string defaults;
  const SqliteStatement rows = connection_.Prepare(sql, sql);
  while (connection_.Step(rows.get(), sql)) {
    columns.push_back({.name = TextAt(rows.get(), 0),
                       .declared_type = TextAt(rows.get(), 1),
                       .affinity = AffinityOf(TextAt(rows.get(), 1)),
                       .not_null = sqlite3_column_int(rows.get(), 2) != 0});
    const std::string expression = TextAt(rows.get(), 3);
    defaults += (defaults.empty() ? "SELECT " : ", ") + (expression.empty() ? "NULL" : expression);
  }
  if (columns.empty()) throw DatabaseError("there is no table " + name, "");
  const SqliteStatement row = connection_.Prepare(defaults, defaults);
  connection_.Step(row.get(), defaults);
  for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
    HeldTable::Column& column = columns[static_cast<std::size_t>(i)];
    column.default_value = ValueFor(sqlite3_column_value(row.get(), i), column.affinity);
    column.default_text = column.default_value.bytes;
  }
  for (HeldTable::Column& column : columns) column.default_value.bytes = column.default_text;
  return columns;
}

std::shared_ptr<const HeldRows> HeldTables::Read(const HeldTable& table, const RowsToHold& rows,
                                                 sqlite3_stmt* select, std::vector<std::string> texts,
                                                 std::size_t max_bytes) const {
  constexpr int kRowsBetweenChecks = 4096;
  std::vector<int> given;
  std::vector<Source> sources;
  int restricted = -1;
  for (int i = 0; i < sqlite3_column_count(select); ++i) {
    const std::string_view name = sqlite3_column_name(select, i);
    const int column = table.FindColumn(name);
    const auto has = [column](const std::vector<int>& columns) {
      return std::ranges::find(columns, column) != columns.end();
    };
    if (column < 0 || has(table.KeyColumns()) || has(given)) continue;
    if (SameName(name, rows.only.column)) restricted = static_cast<int>(given.size());
    given.push_back(column);
    sources.push_back({i, table.Columns()[static_cast<std::size_t>(column)].affinity});
  }
  if (restricted < 0 && !rows.only.column.empty())
    throw DatabaseError("there is no column " + rows.only.column + " to choose rows by", rows.select);
  HeldRowsBuilder builder(table, table.KeyOf(rows.key), given);
  if (restricted >= 0) builder.Restrict(static_cast<std::size_t>(restricted), std::move(texts));

  std::vector<HeldValue> values(sources.size());
  for (int count = 1; connection_.Step(select, rows.select); ++count) {
    std::ranges::transform(sources, values.begin(), [select](const Source& source) {
      return ValueFor(sqlite3_column_value(select, source.column), source.affinity);
    });
    builder.Add(values);
    if (count % kRowsBetweenChecks == 0 && builder.Bytes() > max_bytes) {
      throw DatabaseError("the rows to be held take more than " + std::to_string(max_bytes) + " bytes",
                          rows.select);
    }
  }
  return builder.Finish();
}

}  // namespace excelexp
