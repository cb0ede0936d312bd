#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/ValueView.h"

namespace excelexp {

/// The values of one column of many rows, packed: most columns of payroll figures repeat a few values, so a
/// row holds the number (code) of its value in 0, 1, 2 or 4 bytes; one value for all rows takes no room.
/// Numbers that hardly repeat are held as they are, in 9 bytes, unless the codes are needed.
class HeldColumn {
 public:
  using Code = std::uint32_t;
  enum class Numbers { kAsTheyCome, kByCode };
  explicit HeldColumn(Numbers numbers = Numbers::kAsTheyCome) : numbers_(numbers) {}

  /// Appends a row. Throws DatabaseError beyond 4 GiB of text.
  void Add(const ValueView& value) {
    if (is_plain_) {
      AddPlain(value);
    } else if (const Code code = CodeOf(value); width_ == 1) {
      codes_.push_back(static_cast<std::uint8_t>(code));
    } else if (width_ > 1) {
      AddWide(code);
    }
    ++rows_;
  }
  /// The code of a value, which gets one if it has none. Only while the column has codes.
  Code CodeOf(const ValueView& value) {
    if (values_.empty()) return last_ = SearchCode(value);
    Code code = values_[last_].next;
    if (!Is(values_[code], value)) {
      code = Is(values_[last_], value) ? last_ : SearchCode(value);
      values_[last_].next = code;
    }
    return last_ = code;
  }

  /// Texts point into the column and stay as long as it does.
  ValueView At(std::size_t row) const { return is_plain_ ? Plain(row) : ValueOf(CodeAt(row)); }
  Code CodeAt(std::size_t row) const {
    if (width_ == 0) return 0;
    if (width_ == 1) return codes_[row];
    return width_ == 2 ? Wide<std::uint16_t>(row) : Wide<Code>(row);
  }
  /// Hands over the codes of the rows from `begin` up to `end`.
  template <typename Take>
  void EachCode(std::size_t begin, std::size_t end, const Take& take) const {
    WithCodes([&](const auto& code_at) {
      for (std::size_t row = begin; row < end; ++row) take(code_at(row));
    });
  }
  /// Calls `use` with what tells the code of a row, faster than CodeAt where many are asked for.
  template <typename Use>
  void WithCodes(const Use& use) const {
    if (width_ == 1) return use([this](std::size_t row) { return Code{codes_[row]}; });
    if (width_ == 2) return use([this](std::size_t row) { return Code{Wide<std::uint16_t>(row)}; });
    use([this](std::size_t row) { return CodeAt(row); });
  }
  ValueView ValueOf(Code code) const { return Unpacked(values_[code].kind, values_[code].bits); }
  /// Nothing for a value that no row has.
  std::optional<Code> Find(const ValueView& value) const;
  /// False for numbers held as they are: they have no codes.
  bool HasCodes() const { return !is_plain_; }
  /// How many different values have codes.
  std::size_t CodeCount() const { return values_.size(); }

  /// Numbers the values anew in the order of ComesBefore, so that codes compare as values do.
  void SortCodes();
  /// Row i becomes what row order[i] was.
  void Reorder(const std::vector<std::uint32_t>& order);
  /// Gives back what was allocated ahead.
  void Shrink();

  std::size_t Bytes() const;

 private:
  using Kind = ValueView::Kind;
  // A text or blob as its offset (high half) and length in text_. Rows repeat each other's sequences: `next`
  // is the code that came after this one the last time.
  struct Value {
    Kind kind;
    Code next;
    std::uint64_t bits;
  };

  ValueView Unpacked(Kind kind, std::uint64_t bits) const {
    if (!IsBytes(kind)) return {kind, static_cast<std::int64_t>(bits)};
    return {kind, 0, std::string_view(text_).substr(bits >> 32, bits & 0xffffffffu)};
  }
  ValueView Plain(std::size_t row) const { return Unpacked(plain_kinds_[row], plain_bits_[row]); }
  Value Pack(const ValueView& value);
  template <typename Stored>
  Code Wide(std::size_t row) const {
    Stored code = 0;
    std::memcpy(&code, codes_.data() + row * sizeof code, sizeof code);
    return code;
  }
  bool Is(const Value& known, const ValueView& value) const {
    if (known.kind != value.kind) return false;
    if (!IsBytes(value.kind)) return static_cast<std::int64_t>(known.bits) == value.integer;
    return HaveSameBytes({text_.data() + (known.bits >> 32), known.bits & 0xffffffffu}, value.bytes);
  }
  Code SearchCode(const ValueView& value);
  void AddPlain(const ValueView& value);
  void AddWide(Code code);
  std::size_t SlotOf(const ValueView& value) const;
  void GrowSlots();
  void Widen(std::size_t width);
  void StoreCode(std::size_t row, Code code);
  bool RepeatsTooLittle() const;
  void HoldPlain();

  Numbers numbers_;
  bool is_plain_ = false;
  std::size_t rows_ = 0;
  std::size_t width_ = 0;            // bytes of a code
  std::vector<std::uint8_t> codes_;  // rows_ x width_
  Code last_ = 0;                    // what CodeOf told last
  std::vector<Value> values_;        // by code
  std::vector<Code> slots_;          // code + 1 by hash, or 0; a power of two of them
  std::string text_;
  std::vector<std::uint64_t> plain_bits_;
  std::vector<Kind> plain_kinds_;
};

}  // namespace excelexp
