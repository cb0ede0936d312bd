#include "platform/database/HeldSelect.h"

#include <sqlite3.h>

#include <algorithm>
#include <functional>
#include <numeric>
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
ValueView ValueOf(const SqlComparand& comparand, std::string& text) {
  if (!comparand.is_text) return ValueView::Integer(comparand.number);
  if (comparand.raw.find('\'') == std::string_view::npos) return ValueView::Text(comparand.raw);
  text = TextOf(comparand);
  return ValueView::Text(text);
}

std::string_view BytesOf(std::span<const ValueView> values, int place) {
  return values[static_cast<std::size_t>(place)].bytes;
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
  for (int i = 0; i < sqlite3_column_count(joined_.statement.get()); ++i) {
    const std::string_view origin = OriginOf(sqlite3_column_table_name(joined_.statement.get(), i));
    const auto is_origin = [&](const TableShape* table) { return SameName(table->name, origin); };
    if (std::ranges::none_of(joined_tables_, is_origin)) return false;
  }
  return true;
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

/// What was found out about the rows of one key, for all results over them.
struct HeldSelect::Batch {
  struct Column {
    const HeldColumn* codes;          ///< which tell its values apart: its own, or those of the reference
    int joined;                       ///< column of what is joined, or -1
    std::vector<std::size_t> hashes;  ///< by code; 0 where nobody asked
  };
  HeldTable::Key key;
  std::weak_ptr<const HeldRows> rows;                    ///< gone when they were released
  std::vector<Column> columns;                           ///< of the statement
  std::vector<std::shared_ptr<const ResultSet>> joined;  ///< by the reference's code; null where nobody asked
};

/// Some rows of a batch, each with the one row that is joined to it.
class HeldSelect::BatchRows final : public ResultRows {
 public:
  BatchRows(std::shared_ptr<const HeldRows> rows, std::shared_ptr<Batch> batch,
            std::vector<std::uint32_t> places)
      : rows_(std::move(rows)), batch_(std::move(batch)), places_(std::move(places)) {}

  std::size_t RowCount() const override { return places_.size(); }
  ValueView At(std::size_t row, std::size_t column) const override {
    const Batch::Column& source = batch_->columns[column];
    const std::size_t place = places_[row];
    if (source.joined < 0) return source.codes->At(place);
    return batch_->joined[source.codes->CodeAt(place)]->At(0, source.joined);
  }
  std::size_t Variety(std::size_t column) const override {
    const HeldColumn& codes = *batch_->columns[column].codes;
    if (!codes.HasCodes()) return places_.size() + 1;
    bool varies = false;
    codes.WithCodes([&](const auto& code_at) {
      varies = std::ranges::adjacent_find(places_, std::ranges::not_equal_to(), code_at) != places_.end();
    });
    return varies ? codes.CodeCount() : 1;
  }
  std::size_t FindHashes(std::size_t row, std::span<const std::size_t> columns,
                         std::span<const std::size_t> hashes) const override {
    const auto has_others = [&](std::size_t at) {
      for (std::size_t i = 1; i < columns.size(); ++i)
        if (HashAt(at, columns[i]) != hashes[i]) return false;
      return true;
    };
    if (columns.empty()) return row;
    WithHashes(columns.front(), [&](const auto& hash_at) {
      while (row < places_.size() && (hash_at(row) != hashes.front() || !has_others(row))) ++row;
    });
    return row;
  }
  void MixColumn(std::size_t column, std::span<std::size_t> hashes) const override {
    WithHashes(column, [&](const auto& hash_at) {
      for (std::size_t row = 0; row < hashes.size(); ++row) hashes[row] = MixKeys(hashes[row], hash_at(row));
    });
  }
  bool HaveSameKeys(std::size_t row, std::size_t other, std::span<const std::size_t> columns) const override {
    return std::ranges::all_of(columns, [&](std::size_t column) {
      const HeldColumn& codes = *batch_->columns[column].codes;
      const bool alike = codes.HasCodes() && codes.CodeAt(places_[row]) == codes.CodeAt(places_[other]);
      return alike || HaveSameText(At(row, column), At(other, column));
    });
  }

 private:
  std::size_t HashAt(std::size_t row, std::size_t column) const {
    std::size_t hash = 0;
    WithHashes(column, [&](const auto& hash_at) { hash = hash_at(row); });
    return hash;
  }
  /// Calls `use` with what tells the hash of a row's value.
  template <typename Use>
  void WithHashes(std::size_t column, const Use& use) const {
    Batch::Column& source = batch_->columns[column];
    if (!source.codes->HasCodes()) return use([&](std::size_t row) { return HashOfKey(At(row, column)); });
    source.hashes.resize(source.codes->CodeCount());
    source.codes->WithCodes([&](const auto& code_at) {
      use([&](std::size_t row) {
        std::size_t& hash = source.hashes[code_at(places_[row])];
        if (hash == 0) hash = HashOfKey(At(row, column));
        return hash;
      });
    });
  }

  std::shared_ptr<const HeldRows> rows_;
  std::shared_ptr<Batch> batch_;
  std::vector<std::uint32_t> places_;
};

std::shared_ptr<const ResultRows> HeldSelect::Rows(const std::vector<SqlComparand>& comparands,
                                                   std::uint64_t generation, const ReadOne& read) {
  std::vector<std::string> texts(comparands.size());
  std::vector<ValueView> values(comparands.size());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = ValueOf(comparands[i], texts[i]);
  const std::shared_ptr<Batch> batch = BatchOf(values, generation);
  const std::shared_ptr<const HeldRows> rows = batch->rows.lock();
  std::vector<std::uint32_t> places;
  if (rows != nullptr) {
    if (reference_ >= 0 && !rows->Column(reference_).HasCodes()) return nullptr;
    places = Find(*rows, values);
    if (reference_ >= 0 && !JoinTo(places, *rows, *batch, read)) return nullptr;
  }
  return std::make_shared<const BatchRows>(rows, batch, std::move(places));
}

/// What is known of the rows with these values of the key columns.
std::shared_ptr<HeldSelect::Batch> HeldSelect::BatchOf(std::span<const ValueView> values,
                                                       std::uint64_t generation) {
  if (generation != std::exchange(batches_generation_, generation)) batches_.clear();
  const auto has_key = [&](const std::shared_ptr<Batch>& batch) {
    return std::ranges::equal(batch->key, key_places_, {}, {},
                              [&](int place) { return BytesOf(values, place); });
  };
  const auto known = std::ranges::find_if(batches_, has_key);
  if (known != batches_.end()) return *known;
  auto batch = std::make_shared<Batch>();
  for (const int place : key_places_) batch->key.emplace_back(BytesOf(values, place));
  const std::shared_ptr<const HeldRows> rows = table_->Find(batch->key);
  batch->rows = rows;
  if (rows != nullptr) {
    for (const Source& source : sources_) {
      const int codes = source.held < 0 ? reference_ : source.held;
      batch->columns.push_back({&rows->Column(codes), source.joined, {}});
    }
  }
  return batches_.emplace_back(std::move(batch));
}

/// The rows that meet the conditions.
std::vector<std::uint32_t> HeldSelect::Find(const HeldRows& rows, std::span<const ValueView> values) const {
  const auto value_of = [&](int place) { return values[static_cast<std::size_t>(place)]; };
  std::vector<ValueView> leading;
  for (const int place : leading_) leading.push_back(value_of(place));
  const HeldRows::Range range = rows.Find(leading);
  std::vector<std::uint32_t> places(range.end - range.begin);
  std::iota(places.begin(), places.end(), static_cast<std::uint32_t>(range.begin));
  for (const int place : others_) {
    const HeldColumn& column = rows.Column(conditions_[static_cast<std::size_t>(place)]);
    std::erase_if(places, [&](std::uint32_t row) { return column.At(row) != value_of(place); });
  }
  return places;
}

/// Reads what is joined to the rows, and leaves out those that it has nothing for. False if one row would
/// become several.
bool HeldSelect::JoinTo(std::vector<std::uint32_t>& places, const HeldRows& rows, Batch& batch,
                        const ReadOne& read) const {
  const HeldColumn& reference = rows.Column(reference_);
  batch.joined.resize(reference.CodeCount());
  bool lacks_some = false;
  for (const std::uint32_t row : places) {
    const HeldColumn::Code code = reference.CodeAt(row);
    std::shared_ptr<const ResultSet>& joined = batch.joined[code];
    if (joined == nullptr) {
      // What is no text equals none: no bytes at all are bound as NULL.
      const ValueView value = reference.ValueOf(code);
      const bool is_text = value.kind == ValueView::Kind::kText;
      joined = read(joined_.statement.get(), is_text ? value.bytes : std::string_view());
    }
    if (joined->RowCount() > 1) return false;
    lacks_some = lacks_some || joined->IsEmpty();
  }
  if (lacks_some) {
    std::erase_if(places, [&](std::uint32_t row) { return batch.joined[reference.CodeAt(row)]->IsEmpty(); });
  }
  return true;
}

}  // namespace excelexp
