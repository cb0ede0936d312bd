#include "platform/database/HeldTableModule.h"

#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/database/HeldDistinct.h"
#include "platform/database/HeldTables.h"
#include "platform/database/SqlTokens.h"
#include "platform/database/SqliteConnection.h"

// The module's functions are called by SQLite as its manual, "The Virtual Table Mechanism Of SQLite", tells.

namespace excelexp {
namespace {

struct Table : sqlite3_vtab {
  const HeldTable* held;
  bool each_once;
};

/// The rows of one key that a search goes through.
struct Stretch {
  std::shared_ptr<const HeldRows> rows;
  HeldRows::Range range;
  std::shared_ptr<const std::vector<std::uint32_t>> chosen;  // what the range counts, if not all rows

  std::size_t RowAt(std::size_t place) const { return chosen == nullptr ? place : (*chosen)[place]; }
};

struct Cursor : sqlite3_vtab_cursor {
  std::vector<Stretch> stretches;
  std::size_t stretch = 0;
  std::size_t place = 0;

  const HeldTable& Held() const { return *static_cast<const Table*>(pVtab)->held; }
  std::size_t Row() const { return stretches[stretch].RowAt(place); }
  bool AtEnd() const { return stretch == stretches.size(); }

  void Start() {
    stretch = 0;
    EnterStretch();
  }
  void Next() {
    if (++place < stretches[stretch].range.end) return;
    ++stretch;
    EnterStretch();
  }

 private:
  void EnterStretch() {
    while (!AtEnd() && stretches[stretch].range.begin == stretches[stretch].range.end) ++stretch;
    if (!AtEnd()) place = stretches[stretch].range.begin;
  }
};

Cursor& CursorOf(sqlite3_vtab_cursor* cursor) {
  return *static_cast<Cursor*>(cursor);
}

/// An exception must not pass through SQLite.
template <typename Work>
int Guarded(const Work& work) {
  try {
    work();
    return SQLITE_OK;
  } catch (...) {
    return SQLITE_NOMEM;
  }
}

int Connect(sqlite3* handle, void* tables, int /*count*/, const char* const* arguments, sqlite3_vtab** made,
            char** /*error*/) {
  std::string_view name = arguments[2];
  const bool each_once = name.ends_with(kEachOnce);
  if (each_once) name.remove_suffix(kEachOnce.size());
  const HeldTable* held = static_cast<HeldTables*>(tables)->Find(name);
  if (held == nullptr) return SQLITE_ERROR;
  return Guarded([&] {
    std::string declaration;
    for (const HeldTable::Column& column : held->Columns()) {
      declaration += (declaration.empty() ? "CREATE TABLE t(" : ", ") + QuoteName(column.name) + " " +
                     column.declared_type;
    }
    declaration += ")";
    if (sqlite3_declare_vtab(handle, declaration.c_str()) != SQLITE_OK) throw std::bad_alloc();
    // Views may read it: it shows no more than the stored table would.
    sqlite3_vtab_config(handle, SQLITE_VTAB_INNOCUOUS);
    auto table = std::make_unique<Table>();
    table->held = held;
    table->each_once = each_once;
    *made = table.release();
  });
}

int Disconnect(sqlite3_vtab* table) {
  delete static_cast<Table*>(table);
  return SQLITE_OK;
}

// How a search is told to Filter: a letter for each value it gets, 'A' and on for the key columns, 'a' and on
// for the leading order columns; behind the mark, if it is there, the columns (as bits) in which rows must
// differ to be told apart.
constexpr char kKey = 'A';
constexpr char kOrder = 'a';
constexpr char kDistinct = ':';

/// Takes the condition "column = value" as the next value of the search, if there is such a condition.
bool TakeEquality(sqlite3_index_info* info, int column, char letter, std::string& plan) {
  for (int i = 0; i < info->nConstraint; ++i) {
    const auto& constraint = info->aConstraint[i];
    if (constraint.iColumn != column || constraint.usable == 0 ||
        constraint.op != SQLITE_INDEX_CONSTRAINT_EQ || info->aConstraintUsage[i].argvIndex != 0 ||
        std::string_view(sqlite3_vtab_collation(info, i)) != "BINARY") {
      continue;
    }
    plan += letter;
    info->aConstraintUsage[i].argvIndex = static_cast<int>(plan.size());
    return true;
  }
  return false;
}

/// Whether rows of one key come as the statement wants them sorted.
bool IsInOrder(const HeldTable& held, const sqlite3_index_info& info) {
  std::size_t place = 0;
  for (int i = 0; i < info.nOrderBy; ++i) {
    const int column = info.aOrderBy[i].iColumn;
    if (std::ranges::find(held.KeyColumns(), column) != held.KeyColumns().end()) continue;
    if (info.aOrderBy[i].desc != 0 || place == held.OrderColumns().size() ||
        held.OrderColumns()[place++] != column) {
      return false;
    }
  }
  return true;
}

/// What SQLite takes for granted of an index of a stored table that was never analysed (its manual,
/// "ANALYZE"): about ten rows for a value of the first column, one less for each further one. With the same
/// guess it goes through held and stored rows in the same order.
sqlite3_int64 GuessedRows(int columns) {
  constexpr sqlite3_int64 kAllRows = 1 << 20;
  return columns == 0 ? kAllRows : std::max(1, 11 - columns);
}

int BestIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
  const Table& table = *static_cast<Table*>(base);
  const HeldTable& held = *table.held;
  return Guarded([&] {
    std::string plan;
    std::size_t keys = 0;
    for (const int column : held.KeyColumns())
      keys += TakeEquality(info, column, static_cast<char>(kKey + keys), plan) ? 1 : 0;
    const bool one_key = keys == held.KeyColumns().size();
    if (!one_key) {  // letters tell a key column by its place only when all are there
      for (int i = 0; i < info->nConstraint; ++i) info->aConstraintUsage[i].argvIndex = 0;
      plan.clear();
    }
    int places = one_key ? static_cast<int>(keys) : 0;
    for (const int column : held.OrderColumns()) {
      const auto letter = static_cast<char>(kOrder + places - static_cast<int>(keys));
      if (!one_key || !TakeEquality(info, column, letter, plan)) break;
      ++places;
    }
    info->estimatedRows = GuessedRows(places);
    info->estimatedCost = static_cast<double>(info->estimatedRows) * 2 + 10;
    // Of rows alike in all columns that the statement sees, a DISTINCT needs one.
    if (table.each_once || sqlite3_vtab_distinct(info) >= 2)
      plan += kDistinct + std::to_string(info->colUsed);
    info->idxStr = sqlite3_mprintf("%s", plan.c_str());
    if (info->idxStr == nullptr) throw std::bad_alloc();
    info->needToFreeIdxStr = 1;
    if (one_key && IsInOrder(held, *info)) info->orderByConsumed = 1;
  });
}

int Open(sqlite3_vtab* /*table*/, sqlite3_vtab_cursor** made) {
  return Guarded([&] { *made = std::make_unique<Cursor>().release(); });
}

int Close(sqlite3_vtab_cursor* cursor) {
  delete static_cast<Cursor*>(cursor);
  return SQLITE_OK;
}

std::string_view TextOf(sqlite3_value* value) {
  return {reinterpret_cast<const char*>(sqlite3_value_text(value)),
          static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

/// The rows of a key whose leading columns have the values, and maybe others: SQLite checks each condition
/// again. An integer is compared with a text column as a number if it comes from a column of numbers. A
/// fraction is not searched for: as a text it has fewer digits.
std::vector<HeldRows::Range> Narrowed(const HeldRows& rows, sqlite3_value** values, std::size_t count) {
  if (count > 0 && sqlite3_value_type(values[0]) == SQLITE_INTEGER)
    return rows.FindNumber(sqlite3_value_double(values[0]));
  std::vector<ValueView> leading;
  for (std::size_t i = 0; i < count && sqlite3_value_type(values[i]) == SQLITE_TEXT; ++i)
    leading.push_back(ValueView::Text(TextOf(values[i])));
  return {rows.Find(leading)};
}

/// Which columns tell rows apart; nothing where every row counts.
std::optional<std::uint64_t> DistinctOf(std::string_view plan) {
  const std::size_t mark = plan.find(kDistinct);
  if (mark == std::string_view::npos) return std::nullopt;
  std::uint64_t columns = 0;
  std::from_chars(plan.data() + mark + 1, plan.data() + plan.size(), columns);
  return columns;
}

Stretch StretchOf(const std::shared_ptr<const HeldRows>& rows, const HeldRows::Range& range,
                  const std::optional<std::uint64_t>& distinct) {
  auto firsts = distinct ? FirstOfAlike(*rows, range, *distinct) : std::nullopt;
  if (!firsts) return {rows, range, nullptr};
  const HeldRows::Range all = {0, firsts->size()};
  return {rows, all, std::make_shared<const std::vector<std::uint32_t>>(*std::move(firsts))};
}

int Filter(sqlite3_vtab_cursor* base, int /*number*/, const char* plan, int count, sqlite3_value** values) {
  Cursor& cursor = CursorOf(base);
  return Guarded([&] {
    const HeldTable& held = cursor.Held();
    cursor.stretches.clear();
    const std::optional<std::uint64_t> distinct = DistinctOf(plan);
    const std::size_t keys = held.KeyColumns().size();
    const bool by_key =
        count > 0 && plan[0] == kKey && std::all_of(values, values + keys, [](sqlite3_value* value) {
          return sqlite3_value_type(value) == SQLITE_TEXT;
        });
    if (by_key) {
      HeldTable::Key key;
      for (std::size_t i = 0; i < keys; ++i) key.emplace_back(TextOf(values[i]));
      if (const auto rows = held.Find(key)) {
        for (const HeldRows::Range& range :
             Narrowed(*rows, values + keys, static_cast<std::size_t>(count) - keys)) {
          cursor.stretches.push_back(StretchOf(rows, range, distinct));
        }
      }
    } else {
      for (const auto& [key, rows] : held.All())
        cursor.stretches.push_back(StretchOf(rows, {0, rows->RowCount()}, distinct));
    }
    cursor.Start();
  });
}

int Next(sqlite3_vtab_cursor* cursor) {
  return Guarded([&] { CursorOf(cursor).Next(); });
}

int Eof(sqlite3_vtab_cursor* cursor) {
  return CursorOf(cursor).AtEnd() ? 1 : 0;
}

// The texts stay as they are while a statement runs: rows are replaced between statements.
int Column(sqlite3_vtab_cursor* base, sqlite3_context* context, int column) {
  const Cursor& cursor = CursorOf(base);
  const ValueView value = cursor.stretches[cursor.stretch].rows->Column(column).At(cursor.Row());
  switch (value.kind) {
    case ValueView::Kind::kNull:
      sqlite3_result_null(context);
      break;
    case ValueView::Kind::kInteger:
      sqlite3_result_int64(context, value.integer);
      break;
    case ValueView::Kind::kFloat:
      sqlite3_result_double(context, value.AsFloat());
      break;
    case ValueView::Kind::kText:
      sqlite3_result_text64(context, value.bytes.data(), value.bytes.size(), SQLITE_STATIC, SQLITE_UTF8);
      break;
    case ValueView::Kind::kBlob:
      sqlite3_result_blob64(context, value.bytes.data(), value.bytes.size(), SQLITE_STATIC);
  }
  return SQLITE_OK;
}

int Rowid(sqlite3_vtab_cursor* base, sqlite3_int64* rowid) {
  const Cursor& cursor = CursorOf(base);
  *rowid = static_cast<sqlite3_int64>(cursor.stretch << 32 | cursor.Row());
  return SQLITE_OK;
}

const sqlite3_module& Module() {
  static const sqlite3_module kModule = [] {
    sqlite3_module module{};
    module.xCreate = Connect;
    module.xConnect = Connect;
    module.xBestIndex = BestIndex;
    module.xDisconnect = Disconnect;
    module.xDestroy = Disconnect;
    module.xOpen = Open;
    module.xClose = Close;
    module.xFilter = Filter;
    module.xNext = Next;
    module.xEof = Eof;
    module.xColumn = Column;
    module.xRowid = Rowid;
    return module;
  }();
  return kModule;
}

}  // namespace

void RegisterHeldTableModule(const SqliteConnection& connection, HeldTables& tables) {
  const int code =
      sqlite3_create_module_v2(connection.Handle(), kHeldTableModule, &Module(), &tables, nullptr);
  if (code != SQLITE_OK) connection.Fail(code, "");
}

}  // namespace excelexp
