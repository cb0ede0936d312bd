#include "platform/database/Catalogue.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/SqlClauses.h"
#include "platform/database/SqliteConnection.h"

namespace excelexp {
namespace {

// SELECT * shows neither hidden columns of virtual tables (1) nor anything else that is missing here.
constexpr char kColumnsSql[] = "SELECT name, type FROM pragma_table_xinfo(?1, ?2) WHERE hidden <> 1";
// A key that names no columns of its target means the target's primary key.
constexpr char kKeysSql[] =
    "SELECT k.id, k.\"table\", k.\"from\", coalesce(k.\"to\", (SELECT t.name FROM "
    "pragma_table_info(k.\"table\", ?2) t WHERE t.pk = k.seq + 1)) "
    "FROM pragma_foreign_key_list(?1, ?2) k ORDER BY k.id, k.seq";
constexpr char kStoredNamesSql[] = "SELECT name FROM main.sqlite_schema WHERE type IN ('table', 'view')";
constexpr char kTemporaryNameSql[] =
    "SELECT name FROM temp.sqlite_schema WHERE type IN ('table', 'view') AND name = ?1 COLLATE NOCASE LIMIT "
    "1";
constexpr char kTablesSql[] =
    "SELECT name, type FROM main.sqlite_schema WHERE type IN ('table', 'view') AND name NOT LIKE "
    "'sqlite\\_%' "
    "ESCAPE '\\' ORDER BY name";

constexpr char kDummySql[] = "CREATE TEMP TABLE DUMMY(dummy_col INTEGER); INSERT INTO DUMMY VALUES(0)";
constexpr char kSystemSql[] =
    "CREATE TEMP TABLE SysTable(table_id INTEGER PRIMARY KEY, table_name VARCHAR(128) COLLATE NOCASE, "
    "table_type VARCHAR(8));"
    "CREATE TEMP TABLE SysColumn(table_id INTEGER REFERENCES SysTable, column_id INTEGER, "
    "column_name VARCHAR(128) COLLATE NOCASE, column_type VARCHAR(128))";

std::string TextAt(sqlite3_stmt* row, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  return text == nullptr ? std::string() : std::string(text);
}

void BindText(sqlite3_stmt* statement, int index, const std::string& text) {
  sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

/// The name, folded, in "SELECT ... FROM SysTable JOIN SysColumn WHERE table_name = 'name' AND ...", which
/// reads no columns of another table; nothing for every other statement.
std::optional<std::string> OnlyTableOf(std::string_view sql) {
  const std::vector<SqlToken> tokens = TokenizeSql(sql);
  const std::size_t end = tokens.size();
  const std::size_t from = FindWord(tokens, {0, end}, "from");
  const bool joins_both = from + 5 < end && tokens[0].IsWord("select") &&
                          SameName(tokens[from + 1].text, "SysTable") && tokens[from + 2].IsWord("join") &&
                          SameName(tokens[from + 3].text, "SysColumn") && tokens[from + 4].IsWord("where");
  const bool selects_once =
      std::ranges::count_if(tokens, [](const SqlToken& token) { return token.IsWord("select"); }) == 1;
  const bool narrows_with_each = std::ranges::none_of(tokens, [](const SqlToken& token) {
    return token.IsWord("or") || token.IsWord("between") || token.IsWord("case");
  });
  if (!joins_both || !selects_once || !narrows_with_each) return std::nullopt;
  const auto is_and = [](const SqlToken& token) { return token.IsWord("and"); };
  for (const TokenSpan& condition : SplitSpan(tokens, {from + 5, end}, is_and)) {
    const bool names = condition.Size() == 3 && SameName(tokens[condition.begin].text, "table_name") &&
                       tokens[condition.begin + 1].IsMark('=') &&
                       tokens[condition.begin + 2].text.starts_with('\'');
    if (names) return FoldName(NameOf(tokens[condition.begin + 2]));
  }
  return std::nullopt;
}

}  // namespace

void Catalogue::Rewinder::operator()(sqlite3_stmt* statement) const {
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
}

Catalogue::Borrowed Catalogue::Borrow(const char* sql) const {
  SqliteStatement& statement = kept_[sql];
  if (statement == nullptr) statement = connection_.Prepare(sql, sql);
  return Borrowed(statement.get());
}

// The stored table comes first: it tells its keys also where rows held in memory hide it.
Catalogue::Declared Catalogue::FindDeclared(std::string_view name) const {
  if (stored_names_.empty()) {
    const Borrowed names = Borrow(kStoredNamesSql);
    while (connection_.Step(names.get(), kStoredNamesSql)) {
      const std::string stored = TextAt(names.get(), 0);
      stored_names_.emplace(FoldName(stored), stored);
    }
  }
  if (const auto stored = stored_names_.find(FoldName(name)); stored != stored_names_.end())
    return {stored->second, "main"};
  const Borrowed temporary = Borrow(kTemporaryNameSql);
  BindText(temporary.get(), 1, std::string(name));
  if (!connection_.Step(temporary.get(), kTemporaryNameSql)) return {};
  return {TextAt(temporary.get(), 0), "temp"};
}

void Catalogue::CreateSystemTables() {
  if (FindDeclared("DUMMY").name.empty()) connection_.Execute(kDummySql);
  own_system_tables_ = FindDeclared("SysTable").name.empty() && FindDeclared("SysColumn").name.empty();
  if (own_system_tables_) connection_.Execute(kSystemSql);
}

const TableShape* Catalogue::Find(std::string_view name) {
  const auto [entry, is_new] = tables_.try_emplace(FoldName(name));
  if (is_new) {
    const Declared declared = FindDeclared(name);
    if (!declared.name.empty()) entry->second = std::make_unique<TableShape>(Read(declared));
  }
  return entry->second.get();
}

std::vector<TableShape::Column> Catalogue::ReadColumns(const Declared& declared) const {
  std::vector<TableShape::Column> read;
  const Borrowed columns = Borrow(kColumnsSql);
  BindText(columns.get(), 1, declared.name);
  BindText(columns.get(), 2, declared.schema);
  try {
    while (connection_.Step(columns.get(), kColumnsSql))
      read.push_back({TextAt(columns.get(), 0), TextAt(columns.get(), 1)});
  } catch (const DatabaseError&) {
    // A view that does not compile; a statement that reads it will say why.
  }
  return read;
}

TableShape Catalogue::Read(const Declared& declared) const {
  TableShape shape;
  shape.name = declared.name;
  shape.columns = ReadColumns(declared);
  const Borrowed keys = Borrow(kKeysSql);
  BindText(keys.get(), 1, declared.name);
  BindText(keys.get(), 2, declared.schema);
  int id = -1;
  while (connection_.Step(keys.get(), kKeysSql)) {
    if (sqlite3_column_int(keys.get(), 0) != id) shape.keys.push_back({TextAt(keys.get(), 1), {}});
    id = sqlite3_column_int(keys.get(), 0);
    shape.keys.back().columns.emplace_back(TextAt(keys.get(), 2), TextAt(keys.get(), 3));
  }
  std::erase_if(shape.keys, [](const TableShape::ForeignKey& key) {
    return std::ranges::any_of(key.columns, [](const auto& pair) { return pair.second.empty(); });
  });
  return shape;
}

void Catalogue::FillSystemTables(std::string_view sql) {
  if (filled_ || !own_system_tables_) return;
  const std::optional<std::string> only = OnlyTableOf(sql);
  std::set<std::string> tables_to_fill = filled_tables_;
  if (only && !tables_to_fill.insert(*only).second) return;
  filled_tables_.clear();  // until it is done
  connection_.Execute("DELETE FROM temp.SysColumn; DELETE FROM temp.SysTable");
  constexpr char kInsertTable[] = "INSERT INTO temp.SysTable VALUES(?1, ?2, ?3)";
  constexpr char kInsertColumn[] = "INSERT INTO temp.SysColumn VALUES(?1, ?2, ?3, ?4)";
  const SqliteStatement tables = connection_.Prepare(kTablesSql, kTablesSql);
  const SqliteStatement insert_table = connection_.Prepare(kInsertTable, kInsertTable);
  const SqliteStatement insert_column = connection_.Prepare(kInsertColumn, kInsertColumn);
  const auto insert = [&](const SqliteStatement& statement, const char* text) {
    connection_.Step(statement.get(), text);
    sqlite3_reset(statement.get());
  };
  for (int table_id = 1; connection_.Step(tables.get(), kTablesSql); ++table_id) {
    const std::string name = TextAt(tables.get(), 0);
    if (only && !tables_to_fill.contains(FoldName(name))) continue;
    sqlite3_bind_int(insert_table.get(), 1, table_id);
    BindText(insert_table.get(), 2, name);
    BindText(insert_table.get(), 3, TextAt(tables.get(), 1));
    insert(insert_table, kInsertTable);
    int column_id = 0;
    for (const TableShape::Column& column : ReadColumns({name, "main"})) {
      sqlite3_bind_int(insert_column.get(), 1, table_id);
      sqlite3_bind_int(insert_column.get(), 2, ++column_id);
      BindText(insert_column.get(), 3, column.name);
      BindText(insert_column.get(), 4, column.declared_type);
      insert(insert_column, kInsertColumn);
    }
  }
  filled_ = !only;
  filled_tables_ = std::move(tables_to_fill);
}

void Catalogue::Forget() {
  tables_.clear();
  stored_names_.clear();
  filled_ = false;
  filled_tables_.clear();
}

}  // namespace excelexp
