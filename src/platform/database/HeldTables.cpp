#include "platform/database/HeldTables.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/HeldTableModule.h"
#include "platform/database/Names.h"
#include "platform/database/SqlShape.h"
#include "platform/database/SqlText.h"
#include "platform/database/SqlTokens.h"
#include "platform/database/SqliteConnection.h"

namespace excelexp {
namespace {

ValueView WholeIfPossible(double value) {
  constexpr double kBeyond = 9223372036854775808.0;  // 2^63, the first that is no integer of the database
  return value > -kBeyond && value < kBeyond && value == std::floor(value)
             ? ValueView::Integer(static_cast<std::int64_t>(value))
             : ValueView::Float(value);
}

ValueView ValueFor(sqlite3_value* value, Affinity affinity) {
  int type = sqlite3_value_type(value);
  const bool wants_number = affinity == Affinity::kNumeric || affinity == Affinity::kReal;
  if (type == SQLITE_TEXT && wants_number) type = sqlite3_value_numeric_type(value);
  const bool is_number = type == SQLITE_INTEGER || type == SQLITE_FLOAT;
  if (is_number && affinity == Affinity::kText) type = SQLITE_TEXT;
  switch (type) {
    case SQLITE_INTEGER:
      return affinity == Affinity::kReal ? ValueView::Float(sqlite3_value_double(value))
                                         : ValueView::Integer(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return affinity == Affinity::kNumeric ? WholeIfPossible(sqlite3_value_double(value))
                                            : ValueView::Float(sqlite3_value_double(value));
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
      return ValueView::Text({text, static_cast<std::size_t>(sqlite3_value_bytes(value))});
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
      const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
      return {ValueView::Kind::kBlob, 0, size == 0 ? std::string_view() : std::string_view(bytes, size)};
    }
    default:
      return {};
  }
}

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

/// The place of a column by whose texts rows are told apart.
int TextPlace(const std::vector<HeldTable::Column>& columns, const std::string& table,
              const std::string& name) {
  const int place = Place(columns, table, name);
  const HeldTable::Column& column = columns[static_cast<std::size_t>(place)];
  if (column.affinity == Affinity::kText) return place;
  throw DatabaseError("column " + table + "." + column.name + " is declared as '" + column.declared_type +
                          "', and rows to be held are told apart by texts only",
                      "");
}

}  // namespace

HeldTables::HeldTables(const SqliteConnection& connection, SqliteGuard& guard)
    : connection_(connection), intake_(connection, guard) {
  RegisterHeldTableModule(connection, *this);
}

HeldTable* HeldTables::Find(std::string_view name) const {
  const auto found = by_name_.find(FoldName(name));
  return found == by_name_.end() ? nullptr : found->second.get();
}

std::unique_ptr<HeldTable> HeldTables::Describe(const RowsToHold& rows) const {
  std::vector<HeldTable::Column> columns = StoredColumns(rows.table);
  std::vector<int> key;
  for (const auto& [name, value] : rows.key) key.push_back(TextPlace(columns, rows.table, name));
  std::vector<int> order;
  for (const std::string& name : rows.order) order.push_back(TextPlace(columns, rows.table, name));
  return std::make_unique<HeldTable>(rows.table, std::move(columns), std::move(key), std::move(order));
}

void HeldTables::Install(std::unique_ptr<HeldTable> table) {
  const std::string name = table->Name();
  by_name_[FoldName(name)] = std::move(table);
  try {
    RepeatViewsOver(name);
    // The table itself comes last: until then it is not hidden.
    for (const std::string& shown : {EachOnce(name), name}) {
      connection_.Execute(
          ("CREATE VIRTUAL TABLE temp." + QuoteName(shown) + " USING " + kHeldTableModule).c_str());
    }
  } catch (...) {
    const std::string drop = "DROP TABLE IF EXISTS temp." + QuoteName(EachOnce(name));
    sqlite3_exec(connection_.Handle(), drop.c_str(), nullptr, nullptr, nullptr);
    by_name_.erase(FoldName(name));
    throw;
  }
}

/// A view of the database means the tables of the database. Repeated as a view of the connection, those that
/// read the table, or such a view, read what is held.
void HeldTables::RepeatViewsOver(const std::string& table) const {
  constexpr char kViewsSql[] =
      "SELECT name, sql FROM main.sqlite_schema WHERE type = 'view' AND name NOT IN (SELECT name FROM "
      "temp.sqlite_schema)";
  constexpr std::string_view kBegin = "CREATE VIEW ";  // so the database keeps it, however it was written
  std::map<std::string, std::string> views;
  const SqliteStatement rows = connection_.Prepare(kViewsSql, kViewsSql);
  while (connection_.Step(rows.get(), kViewsSql))
    views[FoldName(TextAt(rows.get(), 0))] = TextAt(rows.get(), 1);
  std::set<std::string> hidden = {FoldName(table)};
  const auto reads_hidden = [&hidden](const auto& view) {
    return std::ranges::any_of(TokenizeSql(view.second), [&](const SqlToken& token) {
      return token.IsName() && hidden.contains(FoldName(NameOf(token)));
    });
  };
  for (auto view = views.begin(); view != views.end();) {
    if (!reads_hidden(*view)) {
      ++view;
      continue;
    }
    connection_.Execute(("CREATE TEMP VIEW " + view->second.substr(kBegin.size())).c_str());
    hidden.insert(view->first);
    views.erase(view);
    view = views.begin();
  }
}

std::vector<HeldTable::Column> HeldTables::StoredColumns(const std::string& name) const {
  const std::string sql =
      "SELECT name, type, \"notnull\", dflt_value FROM pragma_table_info(" + SqlText(name) + ", 'main')";
  std::vector<HeldTable::Column> columns;
  std::string defaults;
  const SqliteStatement rows = connection_.Prepare(sql, sql);
  while (connection_.Step(rows.get(), sql)) {
    CheckCollation(name, TextAt(rows.get(), 0));
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

/// Rows are found and sorted by the bytes of their texts.
void HeldTables::CheckCollation(const std::string& table, const std::string& column) const {
  const char* collation = nullptr;
  const int code = sqlite3_table_column_metadata(connection_.Handle(), "main", table.c_str(), column.c_str(),
                                                 nullptr, &collation, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) connection_.Fail(code, "");
  if (SameName(collation, "BINARY")) return;
  throw DatabaseError("column " + table + "." + column + " has the collation " + collation +
                          ", and rows to be held are compared byte by byte only",
                      "");
}

/// The places of a statement's columns in the table.
std::vector<int> HeldTables::GivenColumns(const HeldTable& table, sqlite3_stmt* select) {
  std::vector<int> given;
  for (int i = 0; i < sqlite3_column_count(select); ++i) {
    const std::string name = sqlite3_column_name(select, i);
    const int place = Place(table.Columns(), table.Name(), name);
    const bool is_key = std::ranges::find(table.KeyColumns(), place) != table.KeyColumns().end();
    if (is_key || std::ranges::find(given, place) != given.end())
      throw DatabaseError("the rows to be held have a second value for " + table.Name() + "." + name, "");
    given.push_back(place);
  }
  return given;
}

std::shared_ptr<const HeldRows> HeldTables::Read(const HeldTable& table, const RowsToHold& rows,
                                                 sqlite3_stmt* select, std::vector<std::string> texts,
                                                 std::size_t max_bytes) {
  constexpr int kRowsBetweenChecks = 256;
  const std::vector<int> given = GivenColumns(table, select);
  HeldRowsBuilder builder(table, table.KeyOf(rows.key), given);
  if (!rows.only.column.empty()) {
    const int column = TextPlace(table.Columns(), table.Name(), rows.only.column);
    const auto restricted = std::ranges::find(given, column);
    if (restricted == given.end()) {
      throw DatabaseError(
          "the rows to be held lack the column " + rows.only.column + ", by which they are restricted",
          rows.select);
    }
    builder.Restrict(static_cast<std::size_t>(restricted - given.begin()), std::move(texts));
  }
  const auto check_size = [&] {
    if (builder.Bytes() <= max_bytes) return;
    throw DatabaseError("the rows to be held take more than " + std::to_string(max_bytes) + " bytes",
                        rows.select);
  };
  std::vector<Affinity> affinities;
  affinities.reserve(given.size());
  for (const int place : given)
    affinities.push_back(table.Columns()[static_cast<std::size_t>(place)].affinity);
  int count = 0;
  intake_.Read(select, SqlShape(rows.select).IsPlain(), rows.select, [&](const RowValues& row) {
    builder.Add([&](std::size_t i) { return ValueFor(row[i], affinities[i]); });
    if (++count % kRowsBetweenChecks == 0) check_size();
  });
  check_size();
  return builder.Finish();
}

}  // namespace excelexp
