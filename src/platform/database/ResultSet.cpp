#include "platform/database/ResultSet.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/Names.h"

namespace excelexp {
namespace {

// To enter the rows into an index costs about as much as this many searches through all of them; through rows
// that are held elsewhere, with most of their hashes known, a search is cheaper.
constexpr int kSearchesByRow = 8;
constexpr int kSearchesByHeldRow = 24;
constexpr std::size_t kMostHashed = 4;

std::uint32_t HashName(std::string_view name) {
  std::uint32_t hash = 2166136261u;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(FoldLetter(c))) * 16777619u;
  return hash;
}

std::string_view TrimLeft(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

// from_chars knows no plus sign.
std::string_view NumberIn(std::string_view text) {
  text = TrimLeft(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  return text;
}

std::int64_t Truncate(double value) {
  constexpr double kLimit = 9223372036854775808.0;
  if (std::isnan(value)) return 0;
  if (value >= kLimit) return std::numeric_limits<std::int64_t>::max();
  if (value < -kLimit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

double ReadFloat(std::string_view text) {
  text = NumberIn(text);
  const bool digits = !text.empty() && text.find_first_of("0123456789") <= 2;  // no "inf", no "nan"
  double value = 0.0;
  if (digits) std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::int64_t ReadInteger(std::string_view text) {
  text = NumberIn(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = error == std::errc{} &&
                     (end == text.data() + text.size() || (*end != '.' && *end != 'e' && *end != 'E'));
  return whole ? value : Truncate(ReadFloat(text));
}

}  // namespace

ResultColumns::ResultColumns(std::vector<std::string> names)
    : names_(std::move(names)), slots_(std::bit_ceil(names_.size() * 2 + 1)), asked_(names_.size()) {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t column = 0; column < names_.size(); ++column) {
    std::size_t slot = HashName(names_[column]) & mask;
    while (slots_[slot] != 0) slot = (slot + 1) & mask;
    slots_[slot] = static_cast<int>(column) + 1;
  }
}

int ResultColumns::Search(std::string_view name) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t slot = HashName(name) & mask; slots_[slot] != 0; slot = (slot + 1) & mask) {
    const auto column = static_cast<std::size_t>(slots_[slot] - 1);
    if (!SameName(names_[column], name)) continue;
    if (!asked_[column]) ++asked_count_;
    asked_[column] = true;
    Guess(name) = static_cast<std::uint16_t>(column + 1);
    return static_cast<int>(column);
  }
  return -1;
}

std::vector<int> ResultColumns::Asked() const {
  std::vector<int> asked;
  for (int column = 0; column < Count(); ++column)
    if (asked_[static_cast<std::size_t>(column)]) asked.push_back(column);
  return asked;
}

ResultSet::ResultSet(std::shared_ptr<const ResultColumns> columns)
    : columns_(std::move(columns)), width_(static_cast<std::size_t>(columns_->Count())) {}

ResultSet::ResultSet(std::shared_ptr<const ResultColumns> columns, std::shared_ptr<const ResultRows> rows)
    : ResultSet(std::move(columns)) {
  rows_ = std::move(rows);
  row_count_ = rows_->RowCount();
  bytes_ = sizeof(ResultSet) + row_count_ * sizeof(std::uint32_t);
}

ResultSet::~ResultSet() = default;

const ResultSet& ResultSet::Rest(Missing missing) const {
  if (rest_failed_) std::rethrow_exception(rest_failed_);
  if (rest_ == nullptr) rest_ = fetch_(missing);
  return *rest_;
}

void ResultSet::Complete() const {
  try {
    if (!IsComplete() && !rest_failed_) Rest(Missing::kColumns).Complete();
  } catch (...) {
    rest_failed_ = std::current_exception();
  }
}

ResultSet::Place ResultSet::PlaceElsewhere(int row, int column) const {
  const bool is_here = row >= 0 && static_cast<std::size_t>(row) < row_count_;
  if (row >= 0 && !is_here && has_more_rows_) return Rest(Missing::kRows).PlaceOf(row, column);
  if (!is_here || column < 0 || column >= ColumnCount()) {
    throw std::out_of_range("the result has no row " + std::to_string(row) + " or no column " +
                            std::to_string(column));
  }
  return Rest(Missing::kColumns).PlaceOf(row, column);
}

std::string ResultSet::AsText(int row, int column) const {
  TextBuffer buffer;
  return std::string(ShownText(At(row, column), buffer));
}

std::int64_t ResultSet::AsInteger(int row, int column) const {
  const ValueView value = At(row, column);
  if (value.kind == Kind::kInteger) return value.integer;
  if (value.kind == Kind::kFloat) return Truncate(value.AsFloat());
  return value.kind == Kind::kNull ? 0 : ReadInteger(value.bytes);
}

double ResultSet::AsFloat(int row, int column) const {
  const ValueView value = At(row, column);
  if (IsNumber(value.kind)) return value.AsFloat();
  return value.kind == Kind::kNull ? 0.0 : ReadFloat(value.bytes);
}

DateTime ResultSet::AsDateTime(int row, int column) const {
  const ValueView value = At(row, column);
  TextBuffer buffer;
  const std::string_view text = ShownText(value, buffer);
  const bool is_text = value.kind == Kind::kText;
  if (text.empty() || (!is_text && text == "0")) return {};
  if (!is_text) FailDate(column, std::string(text));
  try {
    return ParseDateTime(text);
  } catch (const std::invalid_argument&) {
    FailDate(column, std::string(text));
  }
}

void ResultSet::FailDate(int column, const std::string& text) const {
  throw DatabaseError("column " + ColumnName(column) + " holds '" + text + "', which is no date or time", "");
}

std::string ResultSet::AsBytes(int row, int column) const {
  return AsText(row, column);
}

int ResultSet::Find(std::span<const int> columns, std::span<const KeyView> keys) const {
  if (columns.size() != keys.size() || columns.empty())
    throw std::invalid_argument("a search needs one key for each of its columns");
  return SearchBy(columns).Find(keys);
}

ResultSet::Search ResultSet::SearchBy(std::span<const int> columns) const {
  if (Index* const known = KnownIndex(columns)) return {*this, *known};
  if (has_more_rows_) return Rest(Missing::kRows).SearchBy(columns);
  Index index;
  index.columns.assign(columns.begin(), columns.end());
  struct Varying {
    std::size_t variety;
    std::size_t place;
    std::size_t key;
  };
  std::vector<Varying> varying;
  for (std::size_t key = 0; key < columns.size(); ++key) {
    static_cast<void>(ColumnName(columns[key]));  // throws for an unknown one
    const int column = places_ == nullptr ? columns[key] : (*places_)[static_cast<std::size_t>(columns[key])];
    if (column < 0) return Rest(Missing::kColumns).SearchBy(columns);
    const auto place = static_cast<std::size_t>(column);
    const std::size_t variety = row_count_ == 0 ? 0 : Variety(place);
    if (variety == 1) {
      index.alike.emplace_back(ValueAt(0, place), key);
    } else {
      varying.push_back({variety, place, key});
    }
  }
  // What tells most rows apart is compared first.
  std::ranges::stable_sort(varying, std::ranges::greater(), &Varying::variety);
  for (const Varying& each : varying) {
    index.places.push_back(each.place);
    index.keys.push_back(each.key);
  }
  bytes_ += sizeof(Index);
  return {*this, *indexes_.emplace_back(std::make_unique<Index>(std::move(index)))};
}

ResultSet::Index* ResultSet::KnownIndex(std::span<const int> columns) const {
  for (const std::unique_ptr<Index>& index : indexes_)
    if (std::ranges::equal(index->columns, columns)) return index.get();
  return nullptr;
}

int ResultSet::FindBy(Index& index, std::span<const KeyView> keys) const {
  for (const auto& [value, key] : index.alike)
    if (!IsKey(value, keys[key])) return -1;
  if (index.slots.empty()) {
    const int by_row = rows_ == nullptr ? kSearchesByRow : kSearchesByHeldRow;
    if (++index.searches > by_row) columns_->NoteSearchedOften();
    if (!columns_->AreSearchedOften())
      return rows_ == nullptr ? FindByRow(index, keys) : FindByHash(index, keys);
    EnterRows(index);
  }
  std::size_t hash = 0;
  for (const std::size_t key : index.keys) hash = MixKeys(hash, HashOfKey(keys[key]));
  const std::size_t mask = index.slots.size() - 1;
  for (std::size_t at = hash & mask; index.slots[at].row != 0; at = (at + 1) & mask) {
    const Index::Slot& slot = index.slots[at];
    if (slot.hash == static_cast<std::uint32_t>(hash) && HasKeys(slot.row - 1, index, keys))
      return static_cast<int>(slot.row - 1);
  }
  return -1;
}

int ResultSet::FindByRow(const Index& index, std::span<const KeyView> keys) const {
  for (std::size_t row = 0; row < row_count_; ++row)
    if (HasKeys(row, index, keys)) return static_cast<int>(row);
  return -1;
}

int ResultSet::FindByHash(const Index& index, std::span<const KeyView> keys) const {
  std::array<std::size_t, kMostHashed> hashes;
  const std::size_t count = std::min(index.keys.size(), kMostHashed);
  for (std::size_t i = 0; i < count; ++i) hashes[i] = HashOfKey(keys[index.keys[i]]);
  const auto columns = std::span(index.places).first(count);
  const auto wanted = std::span(hashes).first(count);
  for (std::size_t row = 0; row < row_count_; ++row) {
    row = rows_->FindHashes(row, columns, wanted);
    if (row < row_count_ && HasKeys(row, index, keys)) return static_cast<int>(row);
  }
  return -1;
}

bool ResultSet::HasKeys(std::size_t row, const Index& index, std::span<const KeyView> keys) const {
  for (std::size_t i = 0; i < index.places.size(); ++i)
    if (!IsKey(ValueAt(row, index.places[i]), keys[index.keys[i]])) return false;
  return true;
}

// Values that are equal most often share their bits; where they do not, hashing them does no harm.
std::size_t ResultSet::Variety(std::size_t column) const {
  if (rows_ != nullptr) return rows_->Variety(column);
  const Kind kind = blocks_.front().kinds[column];
  const std::uint64_t bits = blocks_.front().bits[column];
  std::size_t rows_left = row_count_;
  for (const Block& block : blocks_) {
    const std::size_t cells = std::min(rows_left, kBlockRows) * width_;
    for (std::size_t cell = column; cell < cells; cell += width_)
      if (block.bits[cell] != bits || block.kinds[cell] != kind) return row_count_;
    rows_left -= cells / width_;
  }
  return 1;
}

// Of rows with equal keys only the first is entered: it is the one that counts.
void ResultSet::EnterRows(Index& index) const {
  // Where no column tells rows apart, the first is all that counts.
  const std::size_t rows = index.places.empty() ? std::min<std::size_t>(row_count_, 1) : row_count_;
  index.slots.resize(std::bit_ceil(rows * 2 + 1));
  bytes_ += index.slots.size() * sizeof(Index::Slot);
  std::vector<std::size_t> hashes(rows);
  for (const std::size_t column : index.places) MixColumn(column, hashes);
  const std::size_t mask = index.slots.size() - 1;
  for (std::size_t row = 0; row < rows; ++row) {
    const auto low = static_cast<std::uint32_t>(hashes[row]);
    const auto is_known = [&](const Index::Slot& slot) {
      return slot.hash == low && HaveSameKeys(row, slot.row - 1, index.places);
    };
    std::size_t at = hashes[row] & mask;
    while (index.slots[at].row != 0 && !is_known(index.slots[at])) at = (at + 1) & mask;
    if (index.slots[at].row == 0) index.slots[at] = {low, static_cast<std::uint32_t>(row + 1)};
  }
}

void ResultSet::MixColumn(std::size_t column, std::span<std::size_t> hashes) const {
  if (rows_ != nullptr) return rows_->MixColumn(column, hashes);
  for (std::size_t row = 0; row < hashes.size(); ++row)
    hashes[row] = MixKeys(hashes[row], HashOfKey(ValueAt(row, column)));
}

bool ResultSet::HaveSameKeys(std::size_t row, std::size_t other, std::span<const std::size_t> columns) const {
  if (rows_ != nullptr) return rows_->HaveSameKeys(row, other, columns);
  return std::ranges::all_of(columns, [&](std::size_t column) {
    return HaveSameText(ValueAt(row, column), ValueAt(other, column));
  });
}

ResultSetBuilder::ResultSetBuilder(std::vector<std::string> column_names)
    : ResultSetBuilder(std::make_shared<const ResultColumns>(std::move(column_names))) {}

ResultSetBuilder::ResultSetBuilder(std::shared_ptr<const ResultColumns> columns)
    : result_(new ResultSet(std::move(columns))), width_(result_->width_) {}

ResultSetBuilder::ResultSetBuilder(std::shared_ptr<const ResultColumns> columns,
                                   std::shared_ptr<const std::vector<int>> places, std::size_t width)
    : result_(new ResultSet(std::move(columns))), width_(width) {
  result_->places_ = std::move(places);
  result_->width_ = width;
}

void ResultSetBuilder::BeginRow() {
  ResultSet& result = *result_;
  const std::size_t row = result.row_count_++ & (ResultSet::kBlockRows - 1);
  if (row == 0) {
    result.blocks_.emplace_back();
    block_rows_ = 0;
  }
  ResultSet::Block& block = result.blocks_.back();
  if (row == block_rows_) {
    // Most results have few rows: the first block grows, the others are made whole.
    const std::size_t rows =
        result.blocks_.size() > 1 ? ResultSet::kBlockRows : std::max<std::size_t>(4, row * 4);
    block_rows_ = std::min(rows, ResultSet::kBlockRows);
    Resize(block, row, block_rows_);
  }
  kind_ = block.kinds.get() + row * width_;
  bits_ = block.bits.get() + row * width_;
}

void ResultSetBuilder::Resize(ResultSet::Block& block, std::size_t old_rows, std::size_t new_rows) {
  ResultSet::Block resized{std::make_unique_for_overwrite<std::uint64_t[]>(new_rows * width_),
                           std::make_unique_for_overwrite<Kind[]>(new_rows * width_)};
  const std::size_t cells = std::min(old_rows, new_rows) * width_;
  std::copy_n(block.bits.get(), cells, resized.bits.get());
  std::copy_n(block.kinds.get(), cells, resized.kinds.get());
  block = std::move(resized);
}

void ResultSetBuilder::AddFloat(double value) {
  Add(Kind::kFloat, std::bit_cast<std::uint64_t>(value));
}

// Longer ones are seldom repeated and dear to compare.
constexpr std::size_t kShareable = 256;

// Neighbouring rows repeat most of their texts (project, entity, item): a repeated one is stored once.
void ResultSetBuilder::AddBytes(Kind kind, std::string_view bytes) {
  if (bytes.empty()) return Add(kind, 0);
  const auto width = static_cast<std::ptrdiff_t>(width_);
  const bool has_row_above = bits_ - result_->blocks_.back().bits.get() >= width;
  if (bytes.size() <= kShareable && has_row_above && kind_[-width] == kind) {
    const std::uint64_t above = bits_[-width];
    if ((above & 0xffffffffu) == bytes.size() &&
        std::memcmp(result_->text_.data() + (above >> 32), bytes.data(), bytes.size()) == 0)
      return Add(kind, above);
  }
  const std::size_t offset = result_->text_.size();
  if (offset + bytes.size() > std::numeric_limits<std::uint32_t>::max())
    throw DatabaseError("the result holds more text than 4 GiB", "");
  result_->text_.append(bytes);
  Add(kind, static_cast<std::uint64_t>(offset) << 32 | bytes.size());
}

void ResultSetBuilder::AddFrom(const ResultSet& source, int row, int column) {
  const ValueView value = source.ValueAt(static_cast<std::size_t>(row), static_cast<std::size_t>(column));
  IsBytes(value.kind) ? AddBytes(value.kind, value.bytes)
                      : Add(value.kind, static_cast<std::uint64_t>(value.integer));
}

std::size_t ResultSetBuilder::Bytes() const {
  constexpr std::size_t kCell = sizeof(std::uint64_t) + sizeof(Kind);
  // Rows of which no column is kept are bounded like others.
  return result_->row_count_ * std::max<std::size_t>(width_, 1) * kCell + result_->text_.size();
}

std::shared_ptr<const ResultSet> ResultSetBuilder::Finish() {
  ResultSet& result = *result_;
  if (!result.blocks_.empty()) {
    const std::size_t rows = result.row_count_ - (result.blocks_.size() - 1) * ResultSet::kBlockRows;
    if (rows < block_rows_) Resize(result.blocks_.back(), rows, rows);
  }
  result.text_.shrink_to_fit();
  result.bytes_ = Bytes() + sizeof(ResultSet);
  return std::move(result_);
}

std::shared_ptr<const ResultSet> ResultSetBuilder::Finish(bool has_more_rows, ResultSet::Fetch fetch) {
  result_->has_more_rows_ = has_more_rows;
  result_->fetch_ = std::move(fetch);
  return Finish();
}

}  // namespace excelexp
