#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/host/DateTime.h"

namespace excelexp {

/// One value of a Locate: integers and texts may stand in one list.
using KeyValue = std::variant<std::int64_t, std::string>;

/// A whole query result, read once and never changed, shared by any number of cursors of one thread.
///
/// Columns are found by name without regard to case; of two columns of one name the first counts.
/// Values are read the way the engine's classes read fields: NULL as "", 0, 0.0 and the null date; a text as
/// a number by its leading digits; a number as text without locale. A row or column that the result does not
/// have throws std::out_of_range.
class ResultSet {
 public:
  ResultSet(const ResultSet&) = delete;
  ResultSet& operator=(const ResultSet&) = delete;
  ~ResultSet();

  int RowCount() const { return static_cast<int>(row_count_); }
  int ColumnCount() const { return static_cast<int>(names_.size()); }
  const std::string& ColumnName(int column) const { return names_.at(static_cast<std::size_t>(column)); }
  /// -1 when there is no such column.
  int ColumnIndex(std::string_view name) const;

  bool IsNull(int row, int column) const { return At(row, column).kind == Kind::kNull; }
  /// Integers in decimal; numbers as the shortest text that reads back as the same value, without exponent
  /// between 1e-5 and 1e15, whole ones without a point.
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
  /// are the same: exact, case-sensitive, whole; so 5 equals 5, 5.0 and '5', and '' equals NULL. The index
  /// over these columns is built on the first call and kept.
  /// Throws std::invalid_argument when there are not as many keys as columns.
  int Find(std::span<const int> columns, std::span<const KeyValue> keys) const;

  /// About how much memory the result takes, its indexes included.
  std::size_t Bytes() const { return bytes_; }

 private:
  friend class ResultSetBuilder;
  enum class Kind : std::uint8_t { kNull, kInteger, kFloat, kText, kBlob };
  // An integer or a number as its bits; a text or blob as its offset (high half) and length in text_.
  struct Value {
    Kind kind;
    std::uint64_t bits;
  };
  // Rows in blocks: a large result grows without being copied.
  struct Block {
    std::unique_ptr<std::uint64_t[]> bits;
    std::unique_ptr<Kind[]> kinds;
  };
  struct Index {
    std::vector<int> columns;
    std::vector<std::uint32_t> slots;  // row + 1, or 0; a power of two of them
  };
  static constexpr std::size_t kBlockShift = 10;
  static constexpr std::size_t kBlockRows = std::size_t{1} << kBlockShift;

  explicit ResultSet(std::vector<std::string> names);

  Value At(int row, int column) const;
  Value AtUnchecked(std::size_t row, std::size_t column) const {
    const Block& block = blocks_[row >> kBlockShift];
    const std::size_t cell = (row & (kBlockRows - 1)) * names_.size() + column;
    return {block.kinds[cell], block.bits[cell]};
  }
  std::string_view TextOf(std::uint64_t bits) const {
    return std::string_view(text_).substr(bits >> 32, bits & 0xffffffffu);
  }
  struct TextBuffer;
  std::string_view AsView(Value value, TextBuffer& buffer) const;
  [[noreturn]] void FailDate(int column, const std::string& text) const;

  const Index& IndexOver(std::span<const int> columns) const;
  Index BuildIndex(std::span<const int> columns) const;
  bool SameKeys(std::size_t row, std::size_t other, std::span<const int> columns) const;

  std::vector<std::string> names_;
  std::vector<std::uint32_t> name_hashes_;
  std::size_t row_count_ = 0;
  std::vector<Block> blocks_;
  std::string text_;
  mutable std::vector<std::unique_ptr<const Index>> indexes_;
  mutable std::size_t bytes_ = 0;
};

/// Fills a result set, row by row and column by column from the left.
class ResultSetBuilder {
 public:
  explicit ResultSetBuilder(std::vector<std::string> column_names);

  /// Makes room for one more row; its columns are then to be added.
  void BeginRow();
  void AddNull() { Add(ResultSet::Kind::kNull, 0); }
  void AddInteger(std::int64_t value) { Add(ResultSet::Kind::kInteger, static_cast<std::uint64_t>(value)); }
  void AddFloat(double value);
  void AddText(std::string_view text) { AddBytes(ResultSet::Kind::kText, text); }
  void AddBlob(std::string_view bytes) { AddBytes(ResultSet::Kind::kBlob, bytes); }

  std::size_t Bytes() const;
  std::shared_ptr<const ResultSet> Finish();

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
