#include "platform/database/HeldColumn.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <utility>

#include "platform/database/DatabaseError.h"

namespace excelexp {
namespace {

// Numbers are held as they are from the moment that so many of them differ, and an eighth of the rows.
constexpr std::size_t kManyNumbers = 1000;
constexpr std::size_t kRowsPerNumber = 8;

template <typename Code>
std::vector<std::uint8_t> Reordered(const std::vector<std::uint8_t>& codes,
                                    const std::vector<std::uint32_t>& order) {
  std::vector<std::uint8_t> reordered(codes.size());
  for (std::size_t row = 0; row < order.size(); ++row) {
    std::memcpy(reordered.data() + row * sizeof(Code), codes.data() + order[row] * sizeof(Code),
                sizeof(Code));
  }
  return reordered;
}

std::size_t HashOf(const ValueView& value) {
  constexpr std::uint64_t kOdd = 0x9e3779b97f4a7c15u;
  const std::uint64_t hash = value.bytes.empty() ? static_cast<std::uint64_t>(value.integer)
                                                 : std::hash<std::string_view>()(value.bytes);
  const std::uint64_t mixed = (hash + static_cast<std::uint64_t>(value.kind)) * kOdd;
  return mixed ^ mixed >> 32;
}

}  // namespace

HeldColumn::Value HeldColumn::Pack(const ValueView& value) {
  if (!IsBytes(value.kind)) return {value.kind, 0, static_cast<std::uint64_t>(value.integer)};
  const std::size_t offset = text_.size();
  if (offset + value.bytes.size() > std::numeric_limits<std::uint32_t>::max())
    throw DatabaseError("the rows hold more text than 4 GiB in one column", "");
  text_.append(value.bytes);
  return {value.kind, 0, static_cast<std::uint64_t>(offset) << 32 | value.bytes.size()};
}

void HeldColumn::AddPlain(const ValueView& value) {
  const Value packed = Pack(value);
  plain_kinds_.push_back(packed.kind);
  plain_bits_.push_back(packed.bits);
}

void HeldColumn::AddWide(Code code) {
  codes_.resize(codes_.size() + width_);
  StoreCode(rows_, code);
  if (code + 1 == values_.size() && RepeatsTooLittle()) HoldPlain();
}

HeldColumn::Code HeldColumn::SearchCode(const ValueView& value) {
  if (values_.size() * 2 >= slots_.size()) GrowSlots();
  Code& slot = slots_[SlotOf(value)];
  if (slot != 0) return slot - 1;
  values_.push_back(Pack(value));
  slot = static_cast<Code>(values_.size());
  const std::size_t highest = values_.size() - 1;
  const std::size_t width = highest == 0 ? 0 : highest <= 0xff ? 1 : highest <= 0xffff ? 2 : 4;
  if (width > width_) Widen(width);
  return slot - 1;
}

std::optional<HeldColumn::Code> HeldColumn::Find(const ValueView& value) const {
  if (slots_.empty()) return std::nullopt;
  const Code slot = slots_[SlotOf(value)];
  return slot == 0 ? std::nullopt : std::optional(slot - 1);
}

/// Where the value stands, or where it would.
std::size_t HeldColumn::SlotOf(const ValueView& value) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = HashOf(value) & mask;
  while (slots_[slot] != 0 && !Is(values_[slots_[slot] - 1], value)) slot = (slot + 1) & mask;
  return slot;
}

void HeldColumn::GrowSlots() {
  slots_.assign(std::bit_ceil(values_.size() * 4 + 8), 0);
  for (Code code = 0; code < values_.size(); ++code) slots_[SlotOf(ValueOf(code))] = code + 1;
}

void HeldColumn::StoreCode(std::size_t row, Code code) {
  std::uint8_t* const at = codes_.data() + row * width_;
  switch (width_) {
    case 0:
      break;
    case 1:
      *at = static_cast<std::uint8_t>(code);
      break;
    case 2: {
      const auto half = static_cast<std::uint16_t>(code);
      std::memcpy(at, &half, sizeof half);
      break;
    }
    default:
      std::memcpy(at, &code, sizeof code);
  }
}

void HeldColumn::Widen(std::size_t width) {
  HeldColumn narrow(numbers_);
  narrow.width_ = std::exchange(width_, width);
  narrow.codes_ = std::exchange(codes_, std::vector<std::uint8_t>(rows_ * width));
  for (std::size_t row = 0; row < rows_; ++row) StoreCode(row, narrow.CodeAt(row));
}

bool HeldColumn::RepeatsTooLittle() const {
  return numbers_ == Numbers::kAsTheyCome && values_.size() > kManyNumbers &&
         values_.size() * kRowsPerNumber > rows_ && IsNumber(values_.back().kind);
}

/// Called for the last row, before it is counted.
void HeldColumn::HoldPlain() {
  for (std::size_t row = 0; row <= rows_; ++row) {
    plain_bits_.push_back(values_[CodeAt(row)].bits);
    plain_kinds_.push_back(values_[CodeAt(row)].kind);
  }
  is_plain_ = true;
  codes_ = {};
  values_ = {};
  slots_ = {};
}

void HeldColumn::SortCodes() {
  std::vector<Code> sorted(values_.size());
  std::iota(sorted.begin(), sorted.end(), 0);
  std::ranges::sort(sorted, [this](Code a, Code b) { return ComesBefore(ValueOf(a), ValueOf(b)); });
  std::vector<Code> rank(values_.size());
  std::vector<Value> values(values_.size());
  for (Code code = 0; code < sorted.size(); ++code) {
    rank[sorted[code]] = code;
    values[code] = values_[sorted[code]];
  }
  for (std::size_t row = 0; row < rows_; ++row) StoreCode(row, rank[CodeAt(row)]);
  values_ = std::move(values);
  GrowSlots();
}

void HeldColumn::Reorder(const std::vector<std::uint32_t>& order) {
  if (is_plain_) {
    std::vector<std::uint64_t> bits(rows_);
    std::vector<Kind> kinds(rows_);
    for (std::size_t row = 0; row < rows_; ++row) {
      bits[row] = plain_bits_[order[row]];
      kinds[row] = plain_kinds_[order[row]];
    }
    plain_bits_ = std::move(bits);
    plain_kinds_ = std::move(kinds);
  } else if (width_ == 1) {
    codes_ = Reordered<std::uint8_t>(codes_, order);
  } else if (width_ == 2) {
    codes_ = Reordered<std::uint16_t>(codes_, order);
  } else if (width_ > 0) {
    codes_ = Reordered<Code>(codes_, order);
  }
}

void HeldColumn::Shrink() {
  codes_.shrink_to_fit();
  text_.shrink_to_fit();
  plain_bits_.shrink_to_fit();
  plain_kinds_.shrink_to_fit();
}

std::size_t HeldColumn::Bytes() const {
  return codes_.capacity() + values_.capacity() * sizeof(Value) + slots_.capacity() * sizeof(Code) +
         text_.capacity() + plain_bits_.capacity() * sizeof(std::uint64_t) + plain_kinds_.capacity();
}

}  // namespace excelexp
