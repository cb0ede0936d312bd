#pragma once

#include <array>
#include <bit>
#include <cstdint>
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
