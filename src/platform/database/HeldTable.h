#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/HeldColumn.h"

namespace excelexp {

/// Rows that have the values of the key columns in common, sorted by the order columns, rows of equal ones as
/// they were added. Never changed once it is made.
class HeldRows {
 public:
  std::size_t RowCount() const { return row_count_; }
  int ColumnCount() const { return static_cast<int>(columns_.size()); }
  const HeldColumn& Column(int column) const { return columns_[static_cast<std::size_t>(column)]; }

  struct Range {
    std::size_t begin;
    std::size_t end;
  };
  /// The rows whose first order columns have these values.
  Range Find(std::span<const ValueView> leading) const;
  /// The rows whose first order column has a text that reads as that number: "7", "07", "7.0". They may not
  /// be neighbours.
  std::vector<Range> FindNumber(double number) const;

  std::size_t Bytes() const;

 private:
  friend class HeldRowsBuilder;
  std::size_t row_count_ = 0;
  std::vector<HeldColumn> columns_;
  std::vector<int> order_;
  // What the texts of the first order column read as, with their codes, sorted; made when first asked for.
  mutable std::vector<std::pair<double, HeldColumn::Code>> numbers_;
};

/// What a column makes of a value, by its declared type (SQLite's manual, "Datatypes", 3.1).
enum class Affinity { kText, kNumeric, kReal, kNone };
Affinity AffinityOf(const std::string& declared_type);

/// A table of which a connection holds rows in its own memory: the columns of the stored table it stands for,
/// and the rows by key.
class HeldTable {
 public:
  struct Column {
    std::string name;
    std::string declared_type;
    Affinity affinity = Affinity::kNone;
    bool not_null = false;
    ValueView default_value = {};  ///< its text points to default_text
    std::string default_text = {};
  };
  using Key = std::vector<std::string>;

  /// `key` and `order` are places among the columns.
  HeldTable(std::string name, std::vector<Column> columns, std::vector<int> key, std::vector<int> order)
      : name_(std::move(name)),
        columns_(std::move(columns)),
        key_(std::move(key)),
        order_(std::move(order)) {}

  const std::string& Name() const { return name_; }
  const std::vector<Column>& Columns() const { return columns_; }
  const std::vector<int>& KeyColumns() const { return key_; }
  const std::vector<int>& OrderColumns() const { return order_; }
  /// -1 when there is no such column.
  int FindColumn(std::string_view name) const;
  /// The values in the order of the key columns. Throws std::invalid_argument for other columns.
  Key KeyOf(const std::vector<std::pair<std::string, std::string>>& values) const;

  using Batches = std::map<Key, std::shared_ptr<const HeldRows>>;
  const Batches& All() const { return batches_; }
  /// nullptr when nothing is held under the key.
  std::shared_ptr<const HeldRows> Find(const Key& key) const;
  void Replace(const Key& key, std::shared_ptr<const HeldRows> rows);
  void Remove(const Key& key) { batches_.erase(key); }
  std::size_t RowCount() const;

 private:
  std::string name_;
  std::vector<Column> columns_;
  std::vector<int> key_;
  std::vector<int> order_;
  Batches batches_;
};

/// Makes the rows of one key.
class HeldRowsBuilder {
 public:
  /// `given` are the columns (places in the table) that Add is called for in each row; the others have their
  /// default or the key's value.
  HeldRowsBuilder(const HeldTable& table, const HeldTable::Key& key, std::span<const int> given);

  /// Before the first row: only rows in which that given column (by its number among them) has one of these
  /// texts are kept.
  void Restrict(std::size_t given, std::vector<std::string> texts);

  /// Adds a row: `value_of` tells the value of a given column, by its number among them, as the database
  /// would store it there. Throws DatabaseError for a NULL where the column takes none, also where it is the
  /// default.
  template <typename ValueOf>
  void Add(const ValueOf& value_of) {
    if (restricted_ >= 0 && !IsWanted(value_of(static_cast<std::size_t>(restricted_)))) return;
    if (without_value_ != nullptr) FailNull(*without_value_);
    for (std::size_t i = 0; i < given_.size(); ++i) {
      const ValueView value = value_of(i);
      if (value.kind == ValueView::Kind::kNull && given_[i].of_table->not_null) FailNull(*given_[i].of_table);
      given_[i].column->Add(value);
    }
    ++rows_->row_count_;
  }

  std::size_t Bytes() const;
  std::shared_ptr<const HeldRows> Finish();

 private:
  struct Given {
    HeldColumn* column;
    const HeldTable::Column* of_table;
  };
  bool IsWanted(const ValueView& value);
  [[noreturn]] void FailNull(const HeldTable::Column& column) const;
  void Sort();

  const HeldTable& table_;
  std::shared_ptr<HeldRows> rows_;
  std::vector<Given> given_;
  const HeldTable::Column* without_value_ = nullptr;  // takes no NULL and has no other value
  int restricted_ = -1;
  std::vector<std::string> wanted_texts_;  // sorted
  HeldColumn seen_{HeldColumn::Numbers::kByCode};
  std::vector<bool> is_wanted_;  // by code in seen_
};

}  // namespace excelexp
