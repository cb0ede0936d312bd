#include "platform/database/ResultKeys.h"

#include <charconv>
#include <optional>

namespace excelexp {
namespace {

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
  return HaveSameBytes(ShownText(value, buffer), *std::get_if<std::string_view>(&key));
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
