#include "platform/spreadsheet/Utf8.h"

#include <cstdint>

namespace excelexp {
namespace {

/// Characters at the front that are plain ASCII without control characters: most texts end here.
std::size_t PlainPrefix(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && static_cast<unsigned char>(text[i] - 0x20) < 0x5F) ++i;
  return i;
}

}  // namespace

char32_t DecodeUtf8(std::string_view& text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC0 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF8 ? 4
                                           : 0;
  char32_t character = length == 1 ? lead : lead & (0xFFU >> (length + 1));
  bool valid = length != 0 && text.size() >= length;
  for (std::size_t i = 1; valid && i < length; ++i) {
    valid = (byte(i) & 0xC0) == 0x80;
    character = character << 6 | (byte(i) & 0x3FU);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  valid = valid && character >= kLeast[length] && character <= 0x10FFFF && (character & ~0x7FFU) != 0xD800;
  text.remove_prefix(valid ? length : 1);
  return valid ? character : kNoCharacter;
}

Utf16Size MeasureUtf16(std::string_view text) {
  Utf16Size size{PlainPrefix(text), false};
  for (text.remove_prefix(size.units); !text.empty();) {
    const char32_t character = DecodeUtf8(text);
    size.units += character > 0xFFFF ? 2 : 1;
    size.wide |= character > 0xFF;
  }
  return size;
}

const char* TextProblem(std::string_view text) {
  text.remove_prefix(PlainPrefix(text));
  while (!text.empty()) {
    const char32_t character = DecodeUtf8(text);
    if (character == kNoCharacter) return "is no valid UTF-8";
    if (character == 0xFFFE || character == 0xFFFF)
      return "holds a character that is none (U+FFFE or U+FFFF)";
    if (character < 0x20 && character != '\t' && character != '\n' && character != '\r') {
      return "holds a control character";
    }
  }
  return nullptr;
}

}  // namespace excelexp
