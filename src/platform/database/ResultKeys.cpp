#include "platform/database/ResultKeys.h"

#include <charconv>
#include <cstring>
#include <optional>

namespace excelexp {
namespace {

std::uint64_t LoadWord(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Up to seven bytes; some may count twice.
std::uint64_t LoadBytes(const char* bytes, std::size_t count) {
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

// The number that is written like this in decimal, no sign and no zero too many.
std::optional<std::int64_t> PlainNumber(std::string_view text) {
  const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
  if (digits.empty() || digits.front() > '9' || digits.front() < '0') return std::nullopt;
  if (digits.front() == '0') return text == "0" ? std::optional<std::int64_t>(0) : std::nullopt;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  return whole ? std::optional(number) : std::nullopt;
}

// Keys are short; calling memcmp costs more than comparing them.
bool SameBytes(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  if (a.size() > 16) return std::memcmp(a.data(), b.data(), a.size()) == 0;
  if (a.size() < 8) return LoadBytes(a.data(), a.size()) == LoadBytes(b.data(), b.size());
  const std::size_t last = a.size() - 8;
  return LoadWord(a.data()) == LoadWord(b.data()) && LoadWord(a.data() + last) == LoadWord(b.data() + last);
}

std::size_t HashOfNumber(std::int64_t number) {
  return MixKeys(0, static_cast<std::uint64_t>(number));
}

// A text that a number is written like has the number's hash, because it equals the number. Keys are short: a
// word at a time beats a hash for long texts.
std::size_t HashOfText(std::string_view text) {
  if (const std::optional<std::int64_t> number = PlainNumber(text)) return HashOfNumber(*number);
  std::size_t hash = text.size();
  if (text.size() < 8) return MixKeys(hash, LoadBytes(text.data(), text.size()));
  for (std::size_t at = 0; at + 8 < text.size(); at += 8) hash = MixKeys(hash, LoadWord(text.data() + at));
  return MixKeys(hash, LoadWord(text.data() + text.size() - 8));
}

}  // namespace

bool IsKey(const ValueView& value, const KeyView& key) {
  if (const auto* const number = std::get_if<std::int64_t>(&key)) {
    return value.kind == ValueView::Kind::kInteger ? value.integer == *number
                                                   : HaveSameText(value, ValueView::Integer(*number));
  }
  TextBuffer buffer;
  return SameBytes(ShownText(value, buffer), *std::get_if<std::string_view>(&key));
}

bool HaveSameText(const ValueView& a, const ValueView& b) {
  if (a.kind == ValueView::Kind::kInteger && b.kind == ValueView::Kind::kInteger)
    return a.integer == b.integer;
  TextBuffer buffer_a;
  TextBuffer buffer_b;
  return ShownText(a, buffer_a) == ShownText(b, buffer_b);
}

std::size_t HashOfKey(const ValueView& value) {
  if (value.kind == ValueView::Kind::kInteger) return HashOfNumber(value.integer);
  TextBuffer buffer;
  return HashOfText(ShownText(value, buffer));
}

std::size_t HashOfKey(const KeyView& key) {
  const auto* number = std::get_if<std::int64_t>(&key);
  return number != nullptr ? HashOfNumber(*number) : HashOfText(*std::get_if<std::string_view>(&key));
}

}  // namespace excelexp
