#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/ResultKeys.h"
#include "platform/database/ValueView.h"
#include "platform/host/DateTime.h"

namespace excelexp {

/// The columns of a statement's results, shared by all of them, which of them have been asked for by name,
/// and whether the rows of a result have been searched often. Letter case does not count; of two columns of
/// one name the first counts.
class ResultColumns {
 public:
  explicit ResultColumns(std::vector<std::string> names);

  int Count() const { return static_cast<int>(names_.size()); }
  const std::string& Name(int column) const { return names_.at(static_cast<std::size_t>(column)); }
  /// -1 when there is no such column.
  int Find(std::string_view name) const {
    const std::uint16_t guess = Guess(name);
    if (guess != 0 && names_[guess - 1U] == name) return guess - 1;
    return Search(name);
  }

  /// The columns that Find found so far, from the left.
  std::vector<int> Asked() const;
  int AskedCount() const { return asked_count_; }

  bool AreSearchedOften() const { return searched_often_; }
  void NoteSearchedOften() const { searched_often_ = true; }

 private:
  std::uint16_t& Guess(std::string_view name) const {
    const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(name.data()));
    return guesses_[place * 0x9e3779b97f4a7c15u >> 56];
  }
  int Search(std::string_view name) const;

  std::vector<std::string> names_;
  std::vector<int> slots_;  // column + 1 by the hash of its name, or 0; a power of two of them
  // Readers ask with the same literal again and again: column + 1 by where the literal stands, to be checked.
  mutable std::array<std::uint16_t, 256> guesses_{};
  mutable std::vector<bool> asked_;
  mutable int asked_count_ = 0;
  mutable bool searched_often_ = false;
};

/// Rows of values that a result shows without holding them itself; the same for as long as they are there.
class ResultRows {
 public:
  virtual ~ResultRows() = default;
  virtual std::size_t RowCount() const = 0;
  virtual ValueView At(std::size_t row, std::size_t column) const = 0;
  /// About how many different values the column has; 1 only if all rows have the same there.
  virtual std::size_t Variety(std::size_t column) const = 0;
  /// The first row from `row` on whose values in these columns have these hashes (HashOfKey); RowCount() if
  /// there is none.
  virtual std::size_t FindHashes(std::size_t row, std::span<const std::size_t> columns,
                                 std::span<const std::size_t> hashes) const = 0;
  /// MixKeys for each row: its hash so far with HashOfKey of its value in the column.
  virtual void MixColumn(std::size_t column, std::span<std::size_t> hashes) const = 0;
  /// HaveSameText in all of these columns.
  virtual bool HaveSameKeys(std::size_t row, std::size_t other,
                            std::span<const std::size_t> columns) const = 0;
};

/// The result of a query, never changed, shared by any number of cursors of one thread.
///
/// What a result leaves out of the first reading (rows behind the first ones, columns that nobody asked for
/// before) it fetches when it is asked for; no caller can tell, except by the time.
///
/// Values are read the way the engine's classes read fields: NULL as "", 0, 0.0 and the null date; a text as
/// a number by its leading digits; a number as text without locale. A row or column that the result does not
/// have throws std::out_of_range.
class ResultSet {
 public:
  enum class Missing { kRows, kColumns };
  /// The same result with all of its rows (and the same columns at least), or with everything.
  using Fetch = std::function<std::shared_ptr<const ResultSet>(Missing)>;

  /// Shows rows that are held elsewhere, with all columns.
  ResultSet(std::shared_ptr<const ResultColumns> columns, std::shared_ptr<const ResultRows> rows);
  ResultSet(const ResultSet&) = delete;
  ResultSet& operator=(const ResultSet&) = delete;
  ~ResultSet();

  int RowCount() const {
    return static_cast<int>(has_more_rows_ ? Rest(Missing::kRows).row_count_ : row_count_);
  }
  bool IsEmpty() const { return row_count_ == 0; }
  const std::shared_ptr<const ResultColumns>& Columns() const { return columns_; }
  int ColumnCount() const { return columns_->Count(); }
  const std::string& ColumnName(int column) const { return columns_->Name(column); }
  /// -1 when there is no such column.
  int ColumnIndex(std::string_view name) const { return columns_->Find(name); }

  /// As the database knows it; its text or blob stays as long as this result.
  ValueView At(int row, int column) const {
    const Place place = PlaceOf(row, column);
    return place.result->ValueAt(place.row, place.column);
  }
  bool IsNull(int row, int column) const { return At(row, column).kind == ValueView::Kind::kNull; }
  /// As ShownText of the value.
  std::string AsText(int row, int column) const;
  /// Fractions are cut off; values beyond 64 bits become the nearest that fits.
  std::int64_t AsInteger(int row, int column) const;
  double AsFloat(int row, int column) const;
  /// A date, time or both as text; '' and 0 are the null date like NULL. Throws DatabaseError naming the
  /// column for every other value.
  DateTime AsDateTime(int row, int column) const;
  /// The bytes of a blob or of a text.
  std::string AsBytes(int row, int column) const;

  /// The first row in result order whose values equal all keys, or -1. A key equals a value when their texts
  /// are the same: exact, case-sensitive, whole; so 5 equals 5, 5.0 and '5', and '' equals NULL. An index
  /// over these columns is built and kept where results of the statement are searched often.
  /// Throws std::invalid_argument when there are not as many keys as columns.
  int Find(std::span<const int> columns, std::span<const KeyView> keys) const;
  class Search;
  /// The same for one search after the other: its Find takes the keys. Valid as long as this result.
  Search SearchBy(std::span<const int> columns) const;

  /// About how much memory the result takes, with its indexes and what was fetched later.
  std::size_t Bytes() const { return bytes_ + (rest_ == nullptr ? 0 : rest_->Bytes()); }

  bool IsComplete() const { return !has_more_rows_ && places_ == nullptr; }
  /// Fetches what is left out, for the fetching will not work any more. What fails is thrown when somebody
  /// asks for it.
  void Complete() const;

 private:
  friend class ResultSetBuilder;
  using Kind = ValueView::Kind;
  /// Where a value stands: in this result, or in the one that was fetched later.
  struct Place {
    const ResultSet* result;
    std::size_t row;
    std::size_t column;
  };
  // Rows in blocks: a large result grows without being copied. An integer or a number stands as its bits; a
  // text or blob as its offset (high half) and length in text_.
  struct Block {
    std::unique_ptr<std::uint64_t[]> bits;
    std::unique_ptr<Kind[]> kinds;
  };
  struct Index {
    struct Slot {
      std::uint32_t hash;
      std::uint32_t row;  // counted from 1; 0: nobody stands here
    };
    std::vector<int> columns;
    std::vector<std::size_t> places;                       // of those that tell rows apart
    std::vector<std::size_t> keys;                         // and which of a search's keys they have
    std::vector<std::pair<ValueView, std::size_t>> alike;  // the one value of each of the others, and its key
    std::vector<Slot> slots;                               // a power of two of them, or none before they pay
    int searches = 0;                                      // through all rows
  };
  static constexpr std::size_t kBlockShift = 10;
  static constexpr std::size_t kBlockRows = std::size_t{1} << kBlockShift;

  explicit ResultSet(std::shared_ptr<const ResultColumns> columns);

  Place PlaceOf(int row, int column) const {
    const auto row_index = static_cast<std::size_t>(row);
    const auto column_index = static_cast<std::size_t>(column);
    const bool inside = row_index < row_count_ && column_index < static_cast<std::size_t>(ColumnCount());
    if (!inside) return PlaceElsewhere(row, column);
    if (places_ == nullptr) return {this, row_index, column_index};
    const int place = (*places_)[column_index];
    if (place < 0) return PlaceElsewhere(row, column);
    return {this, row_index, static_cast<std::size_t>(place)};
  }
  Place PlaceElsewhere(int row, int column) const;
  const ResultSet& Rest(Missing missing) const;
  ValueView ValueAt(std::size_t row, std::size_t column) const {
    if (rows_ != nullptr) return rows_->At(row, column);
    const Block& block = blocks_[row >> kBlockShift];
    const std::size_t cell = (row & (kBlockRows - 1)) * width_ + column;
    const Kind kind = block.kinds[cell];
    const std::uint64_t bits = block.bits[cell];
    if (!IsBytes(kind)) return {kind, static_cast<std::int64_t>(bits)};
    return {kind, 0, {text_.data() + (bits >> 32), static_cast<std::size_t>(bits & 0xffffffffu)}};
  }
  [[noreturn]] void FailDate(int column, const std::string& text) const;

  int FindBy(Index& index, std::span<const KeyView> keys) const;
  int FindByRow(const Index& index, std::span<const KeyView> keys) const;
  int FindByHash(const Index& index, std::span<const KeyView> keys) const;
  Index* KnownIndex(std::span<const int> columns) const;
  std::size_t Variety(std::size_t column) const;
  void EnterRows(Index& index) const;
  bool HasKeys(std::size_t row, const Index& index, std::span<const KeyView> keys) const;
  void MixColumn(std::size_t column, std::span<std::size_t> hashes) const;
  bool HaveSameKeys(std::size_t row, std::size_t other, std::span<const std::size_t> columns) const;

  std::shared_ptr<const ResultColumns> columns_;
  std::shared_ptr<const std::vector<int>>
      places_;         // of each column among those that are here, or -1; null: all are
  std::size_t width_;  // how many columns are here
  bool has_more_rows_ = false;
  mutable Fetch fetch_;
  mutable std::shared_ptr<const ResultSet> rest_;
  mutable std::exception_ptr rest_failed_;
  std::size_t row_count_ = 0;
  std::shared_ptr<const ResultRows> rows_;  // null: they are in the blocks
  std::vector<Block> blocks_;
  std::string text_;
  mutable std::vector<std::unique_ptr<Index>> indexes_;
  mutable std::size_t bytes_ = 0;
};

class ResultSet::Search {
 public:
  Search() = default;
  int Find(std::span<const KeyView> keys) const { return result_->FindBy(*index_, keys); }

 private:
  friend class ResultSet;
  Search(const ResultSet& result, Index& index) : result_(&result), index_(&index) {}

  const ResultSet* result_ = nullptr;
  Index* index_ = nullptr;
};

/// Fills a result set, row by row and column by column from the left.
class ResultSetBuilder {
 public:
  explicit ResultSetBuilder(std::vector<std::string> column_names);
  explicit ResultSetBuilder(std::shared_ptr<const ResultColumns> columns);
  /// For a result of which only some columns are added: `places` says for each column which of them it is, or
  /// -1; `width` is how many they are.
  ResultSetBuilder(std::shared_ptr<const ResultColumns> columns,
                   std::shared_ptr<const std::vector<int>> places, std::size_t width);

  /// Makes room for one more row; its columns are then to be added.
  void BeginRow();
  void AddNull() { Add(ResultSet::Kind::kNull, 0); }
  void AddInteger(std::int64_t value) { Add(ResultSet::Kind::kInteger, static_cast<std::uint64_t>(value)); }
  void AddFloat(double value);
  void AddText(std::string_view text) { AddBytes(ResultSet::Kind::kText, text); }
  void AddBlob(std::string_view bytes) { AddBytes(ResultSet::Kind::kBlob, bytes); }

  /// The same value as in another result, one that is complete.
  void AddFrom(const ResultSet& source, int row, int column);

  std::size_t RowCount() const { return result_->row_count_; }
  /// How many columns are to be added to a row.
  std::size_t Width() const { return width_; }
  std::size_t Bytes() const;
  std::shared_ptr<const ResultSet> Finish();
  /// The same for a result that leaves columns out, or, with `has_more_rows`, rows.
  std::shared_ptr<const ResultSet> Finish(bool has_more_rows, ResultSet::Fetch fetch);

 private:
  using Kind = ResultSet::Kind;
  void Add(Kind kind, std::uint64_t bits) {
    *kind_++ = kind;
    *bits_++ = bits;
  }
  void AddBytes(Kind kind, std::string_view bytes);

  void Resize(ResultSet::Block& block, std::size_t old_rows, std::size_t new_rows);

  std::shared_ptr<ResultSet> result_;
  std::size_t width_;
  std::size_t block_rows_ = 0;  // how many the last block has room for
  Kind* kind_ = nullptr;
  std::uint64_t* bits_ = nullptr;
};

}  // namespace excelexp
