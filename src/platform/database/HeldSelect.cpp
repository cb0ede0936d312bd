#include "platform/database/HeldSelect.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <ranges>
#include <utility>

#include "platform/database/HeldTables.h"
#include "platform/database/Names.h"

namespace excelexp {
namespace {

bool IsOneOf(std::span<const int> places, int place) {
  return std::ranges::find(places, place) != places.end();
}

/// A number as numeric columns hold it, a text as it is. One with doubled quotes is unquoted into `text`,
/// which outlives the value.
HeldValue ValueOf(const SqlComparand& comparand, std::string& text) {
  if (!comparand.is_text) return HeldValue::Integer(comparand.number);
  if (comparand.raw.find('\'') == std::string_view::npos) return HeldValue::Text(comparand.raw);
  text = TextOf(comparand);
  return HeldValue::Text(text);
}

void Add(const HeldValue& value, ResultSetBuilder& builder) {
  switch (value.kind) {
    case HeldValue::Kind::kNull:
      return builder.AddNull();
    case HeldValue::Kind::kInteger:
      return builder.AddInteger(value.integer);
    case HeldValue::Kind::kFloat:
      return builder.AddFloat(value.AsFloat());
    case HeldValue::Kind::kText:
      return builder.AddText(value.bytes);
    case HeldValue::Kind::kBlob:
      return builder.AddBlob(value.bytes);
  }
}

std::string_view OriginOf(const char* name) {
  return name == nullptr ? std::string_view() : std::string_view(name);
}

}  // namespace

std::unique_ptr<HeldSelect> HeldSelect::Of(const SqlShape& shape, const std::vector<SqlComparand>& values,
                                           sqlite3_stmt* whole, const HeldTables& tables,
                                           const FindTable& find_table, const Compile& compile) {
  const std::vector<SqlToken> tokens = TokenizeSql(shape.Text());
  const auto where =
      std::ranges::find_if(tokens, [](const SqlToken& token) { return token.IsWord("where"); });
  const auto from = std::span(tokens.begin(), where);
  if (where == tokens.end() || from.size() < 4 || !from[0].IsWord("select") || !from[1].IsMark('*') ||
      !from[2].IsWord("from") || !from[3].IsName()) {
    return nullptr;
  }
  std::unique_ptr<HeldSelect> select(new HeldSelect());
  select->table_ = tables.Find(NameOf(from[3]));
  const bool fits = select->table_ != nullptr && select->TakeTables(from.subspan(4), find_table) &&
                    select->TakeConditions(std::span(where + 1, tokens.end()), values) &&
                    select->TakeReference(*find_table(select->table_->Name())) &&
                    select->CompileJoined(compile) && select->TakeColumns(whole);
  return fits ? std::move(select) : nullptr;
}

/// "JOIN name JOIN name ..."
bool HeldSelect::TakeTables(std::span<const SqlToken> tokens, const FindTable& find_table) {
  for (; tokens.size() >= 2 && tokens[0].IsWord("join") && tokens[1].IsName(); tokens = tokens.subspan(2)) {
    joined_tables_.push_back(find_table(NameOf(tokens[1])));
    if (joined_tables_.back() == nullptr) return false;
  }
  return tokens.empty();
}

/// "name = ?1 AND name = ?2 ...", each name a column of the held table alone, and of the value's type.
bool HeldSelect::TakeConditions(std::span<const SqlToken> tokens, const std::vector<SqlComparand>& values) {
  const auto is_joined = [this](const std::string& name) {
    return std::ranges::any_of(joined_tables_,
                               [&](const TableShape* table) { return table->Find(name) != nullptr; });
  };
  while (true) {
    if (tokens.size() < 4 || !tokens[0].IsName() || !tokens[1].IsMark('=') || !tokens[2].IsMark('?') ||
        tokens[3].text != std::to_string(conditions_.size() + 1)) {
      return false;
    }
    const std::string name = NameOf(tokens[0]);
    conditions_.push_back(table_->FindColumn(name));
    if (conditions_.back() < 0 || is_joined(name)) return false;
    const Affinity affinity = table_->Columns()[static_cast<std::size_t>(conditions_.back())].affinity;
    const bool is_text = values[conditions_.size() - 1].is_text;
    if (affinity != (is_text ? Affinity::kText : Affinity::kNumeric)) return false;
    if (tokens.size() == 4) break;
    if (!tokens[4].IsWord("and")) return false;
    tokens = tokens.subspan(5);
  }
  const auto place_of = [this](int column) {
    return static_cast<int>(std::ranges::find(conditions_, column) - conditions_.begin());
  };
  for (const int column : table_->KeyColumns()) {
    if (!IsOneOf(conditions_, column)) return false;
    key_places_.push_back(place_of(column));
  }
  for (const int column : table_->OrderColumns()) {
    if (!IsOneOf(conditions_, column)) break;
    leading_.push_back(place_of(column));
  }
  for (int i = 0; i < static_cast<int>(conditions_.size()); ++i) {
    if (!IsOneOf(key_places_, i) && !IsOneOf(leading_, i)) others_.push_back(i);
  }
  return true;
}

/// The one key from the held table to the first table joined; no other table joined may be tied to it.
bool HeldSelect::TakeReference(const TableShape& held) {
  if (joined_tables_.empty()) return true;
  const TableShape* first = joined_tables_.front();
  for (const TableShape::ForeignKey& key : held.keys) {
    const bool to_first = SameName(key.target, first->name);
    const bool to_other = std::ranges::any_of(joined_tables_, [&](const TableShape* table) {
      return table != first && SameName(key.target, table->name);
    });
    if (to_other || (to_first && (reference_ >= 0 || key.columns.size() != 1))) return false;
    if (!to_first) continue;
    reference_ = table_->FindColumn(key.columns.front().first);
    target_ = key.columns.front().second;
  }
  const bool is_tied = std::ranges::any_of(joined_tables_, [this](const TableShape* table) {
    return std::ranges::any_of(table->keys, [this](const TableShape::ForeignKey& key) {
      return SameName(key.target, table_->Name());
    });
  });
  return !is_tied && reference_ >= 0 &&
         table_->Columns()[static_cast<std::size_t>(reference_)].affinity == Affinity::kText;
}

bool HeldSelect::CompileJoined(const Compile& compile) {
  if (joined_tables_.empty()) return true;
  const TableShape::Column* target = joined_tables_.front()->Find(target_);
  if (target == nullptr || AffinityOf(target->declared_type) != Affinity::kText) return false;
  std::string sql = "SELECT * FROM ";
  for (const TableShape* table : joined_tables_)
    sql += (table == joined_tables_.front() ? "" : " JOIN ") + QuoteName(table->name);
  sql +=
      " WHERE " + QuoteName(joined_tables_.front()->name) + "." + QuoteName(target_) + " = ?1 COLLATE BINARY";
  joined_ = compile(sql);
  // A view's columns come from other tables, or are computed.
  return std::ranges::all_of(std::views::iota(0, sqlite3_column_count(joined_.statement.get())), [&](int i) {
    const std::string_view origin = OriginOf(sqlite3_column_table_name(joined_.statement.get(), i));
    return std::ranges::any_of(joined_tables_,
                               [&](const TableShape* table) { return SameName(table->name, origin); });
  });
}

bool HeldSelect::TakeColumns(sqlite3_stmt* whole) {
  const int joined_width = joined_.statement == nullptr ? 0 : sqlite3_column_count(joined_.statement.get());
  for (int i = 0; i < sqlite3_column_count(whole); ++i) {
    const std::string_view table = OriginOf(sqlite3_column_table_name(whole, i));
    const std::string_view origin = OriginOf(sqlite3_column_origin_name(whole, i));
    Source source;
    if (SameName(table, table_->Name())) {
      source.held = table_->FindColumn(origin);
    } else {
      for (int j = 0; j < joined_width; ++j) {
        sqlite3_stmt* const joined = joined_.statement.get();
        if (OriginOf(sqlite3_column_table_name(joined, j)) == table &&
            OriginOf(sqlite3_column_origin_name(joined, j)) == origin) {
          source.joined = j;
        }
      }
    }
    if (source.held < 0 && source.joined < 0) return false;
    sources_.push_back(source);
  }
  return true;
}

HeldSelect::Found HeldSelect::Find(const std::vector<SqlComparand>& values, std::size_t most) const {
  std::vector<std::string> texts(values.size());
  std::vector<HeldValue> wanted;
  wanted.reserve(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) wanted.push_back(ValueOf(values[i], texts[i]));
  HeldTable::Key key;
  key.reserve(key_places_.size());
  for (const int place : key_places_) key.emplace_back(wanted[static_cast<std::size_t>(place)].bytes);
  Found found{table_->Find(key), {}};
  if (found.rows == nullptr) return found;
  std::vector<HeldValue> leading;
  leading.reserve(leading_.size());
  for (const int place : leading_) leading.push_back(wanted[static_cast<std::size_t>(place)]);
  const HeldRows::Range range = found.rows->Find(leading);
  found.places.reserve(std::min(range.end - range.begin, most + 1));
  for (std::size_t row = range.begin; row < range.end && found.places.size() <= most; ++row) {
    const bool meets = std::ranges::all_of(others_, [&](int place) {
      const int column = conditions_[static_cast<std::size_t>(place)];
      return found.rows->Column(column).At(row) == wanted[static_cast<std::size_t>(place)];
    });
    if (meets) found.places.push_back(row);
  }
  return found;
}

bool HeldSelect::AddRows(const Found& found, std::size_t count, std::span<const int> wanted,
                         std::uint64_t generation, const ReadOne& read, ResultSetBuilder& builder) {
  if (count == 0) return true;
  const HeldColumn* const reference = reference_ < 0 ? nullptr : &found.rows->Column(reference_);
  if (reference != nullptr && !reference->HasCodes()) return false;
  Joined* const joined_here = reference == nullptr ? nullptr : &JoinedTo(found.rows, generation);
  constexpr HeldColumn::Code kNone = std::numeric_limits<HeldColumn::Code>::max();
  struct Cell {
    const HeldColumn* held;  // or null, and
    int joined;
    HeldColumn::Code above;  // code in the row above
  };
  std::vector<Cell> cells;
  for (const int column : wanted) {
    const Source& source = sources_[static_cast<std::size_t>(column)];
    cells.push_back({source.held < 0 ? nullptr : &found.rows->Column(source.held), source.joined, kNone});
  }
  const ResultSet* joined = nullptr;
  HeldColumn::Code joined_code = kNone;
  bool has_rows = false;
  for (const std::size_t row : std::span(found.places).first(count)) {
    bool joins_the_same = reference != nullptr && reference->CodeAt(row) == joined_code;
    if (reference != nullptr && !joins_the_same) {
      joined_code = reference->CodeAt(row);
      joined = &ReadJoined(*reference, joined_code, read, *joined_here);
    }
    const int matches = joined == nullptr ? 1 : joined->RowCount();
    for (int match = 0; match < matches; ++match) {
      if (builder.BeginRow()) {  // there is no row above
        joins_the_same = false;
        for (Cell& cell : cells) cell.above = kNone;
      }
      const bool is_same_match = joins_the_same && matches == 1;
      for (Cell& cell : cells) {
        if (cell.held == nullptr) {
          is_same_match ? builder.AddSame() : builder.AddFrom(*joined, match, cell.joined);
        } else if (!cell.held->HasCodes()) {
          Add(cell.held->At(row), builder);
        } else if (const HeldColumn::Code code = cell.held->CodeAt(row); code == cell.above) {
          builder.AddSame();
        } else {
          Add(cell.held->ValueOf(code), builder);
          cell.above = code;
        }
      }
      has_rows = true;
    }
  }
  return has_rows || count == found.places.size();
}

HeldSelect::Joined& HeldSelect::JoinedTo(const std::shared_ptr<const HeldRows>& rows,
                                         std::uint64_t generation) {
  if (generation != std::exchange(joined_generation_, generation)) joined_rows_.clear();
  const auto known = std::ranges::find_if(
      joined_rows_, [&rows](const JoinedRows& each) { return each.rows.lock() == rows; });
  if (known != joined_rows_.end()) return known->joined;
  return joined_rows_.emplace_back(rows).joined;
}

const ResultSet& HeldSelect::ReadJoined(const HeldColumn& reference, HeldColumn::Code code,
                                        const ReadOne& read, Joined& joined) const {
  if (code >= joined.size()) joined.resize(reference.CodeCount());
  std::shared_ptr<const ResultSet>& result = joined[code];
  if (result == nullptr) {
    // What is no text equals none: no bytes at all are bound as NULL.
    const HeldValue value = reference.ValueOf(code);
    const bool is_text = value.kind == HeldValue::Kind::kText;
    result = read(joined_.statement.get(), is_text ? value.bytes : std::string_view());
  }
  return *result;
}

}  // namespace excelexp
