#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace excelexp {

/// One value as the database knows them. A text or blob points into whatever the value came from.
struct ValueView {
  enum class Kind : std::uint8_t { kNull, kInteger, kFloat, kText, kBlob };
  Kind kind = Kind::kNull;
  std::int64_t integer = 0;  ///< of an integer; of a float its bits
  std::string_view bytes = {};

  static ValueView Integer(std::int64_t value) { return {Kind::kInteger, value}; }
  static ValueView Float(double value) { return {Kind::kFloat, std::bit_cast<std::int64_t>(value)}; }
  static ValueView Text(std::string_view text) { return {Kind::kText, 0, text}; }
  double AsFloat() const {
    return kind == Kind::kFloat ? std::bit_cast<double>(integer) : static_cast<double>(integer);
  }
  friend bool operator==(const ValueView&, const ValueView&) = default;
};

inline bool IsNumber(ValueView::Kind kind) {
  return kind == ValueView::Kind::kInteger || kind == ValueView::Kind::kFloat;
}
inline bool IsBytes(ValueView::Kind kind) {
  return kind == ValueView::Kind::kText || kind == ValueView::Kind::kBlob;
}

/// The order in which an index holds values: NULL, numbers by size, texts and blobs by their bytes.
bool ComesBefore(const ValueView& a, const ValueView& b);

/// Eight bytes as a number.
inline std::uint64_t LoadWord(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

/// Up to seven bytes as a number; some may count twice.
inline std::uint64_t LoadBytes(const char* bytes, std::size_t count) {
  if (count == 0) return 0;
  if (count < 4) {
    const auto byte = [bytes](std::size_t at) {
      return std::uint64_t{static_cast<unsigned char>(bytes[at])};
    };
    return byte(0) | byte(count / 2) << 8 | byte(count - 1) << 16;
  }
  std::uint32_t halves[2];
  std::memcpy(&halves[0], bytes, 4);
  std::memcpy(&halves[1], bytes + count - 4, 4);
  return halves[0] | std::uint64_t{halves[1]} << 32;
}

/// Keys and codes are short; calling memcmp costs more than comparing them.
inline bool HaveSameBytes(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  if (a.size() > 16) return std::memcmp(a.data(), b.data(), a.size()) == 0;
  if (a.size() < 8) return LoadBytes(a.data(), a.size()) == LoadBytes(b.data(), b.size());
  const std::size_t last = a.size() - 8;
  return LoadWord(a.data()) == LoadWord(b.data()) && LoadWord(a.data() + last) == LoadWord(b.data() + last);
}

/// Room for a number as text.
using TextBuffer = std::array<char, 40>;

/// A value that is neither text nor blob: NULL as "", integers in decimal, numbers as the shortest text that
/// reads back as the same value, without exponent between 1e-5 and 1e15, whole ones without a point.
std::string_view NumberText(const ValueView& value, TextBuffer& buffer);
/// Any value as text; valid as long as the buffer and the value's bytes.
inline std::string_view ShownText(const ValueView& value, TextBuffer& buffer) {
  return IsBytes(value.kind) ? value.bytes : NumberText(value, buffer);
}

}  // namespace excelexp
