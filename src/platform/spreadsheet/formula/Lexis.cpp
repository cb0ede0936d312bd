#include "platform/spreadsheet/formula/Lexis.h"

#include <glib.h>

namespace excelexp::formula {
namespace {

constexpr gunichar kLastCharacter = 0x10FFFF;
constexpr gunichar kReplacement = 0xFFFD;

/// Takes the first character; beyond kLastCharacter for a byte that is no UTF-8.
gunichar TakeCharacter(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text.front());
  const gunichar character =
      first < 0x80 ? first : g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
  const bool valid = character <= kLastCharacter;
  text.remove_prefix(valid ? static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr)) : 1);
  return valid ? character : kLastCharacter + 1;
}

void PutCharacter(std::string& out, gunichar character) {
  char bytes[6];
  out.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(character, bytes)));
}

/// Maps character by character; bytes that are no UTF-8 stay as they are.
template <typename Map>
std::string Mapped(std::string_view text, Map map) {
  std::string mapped;
  mapped.reserve(text.size());
  while (!text.empty()) {
    const char byte = text.front();
    const gunichar character = TakeCharacter(text);
    if (character > kLastCharacter) {
      mapped += byte;
    } else {
      PutCharacter(mapped, map(character));
    }
  }
  return mapped;
}

bool IsAscii(std::string_view text) {
  for (const char c : text) {
    if (IsBeyondAscii(c)) return false;
  }
  return true;
}

}  // namespace

std::string Capitals(std::string_view text) {
  if (!IsAscii(text)) return Mapped(text, g_unichar_toupper);
  std::string capitals(text);
  for (char& c : capitals) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return capitals;
}

std::string SmallLetters(std::string_view text) {
  if (!IsAscii(text)) return Mapped(text, g_unichar_tolower);
  std::string small(text);
  for (char& c : small) c = SmallLetter(c);
  return small;
}

std::size_t Utf16Length(std::string_view text) {
  std::size_t units = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80U) ++units;  // every character has one byte that is no continuation
    if (byte >= 0xF0U) ++units;            // four bytes are a surrogate pair
  }
  return units;
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    gunichar character = TakeCharacter(text);
    if (character > kLastCharacter) character = kReplacement;
    if (character < 0x10000) {
      units += static_cast<char16_t>(character);
    } else {
      units += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
  }
  return units;
}

std::string ToUtf8(std::u16string_view units) {
  std::string text;
  text.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    gunichar character = units[i];
    const bool high = (character & 0xFC00) == 0xD800;
    if (high && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00) {
      character = 0x10000 + ((character & 0x3FF) << 10) + (units[++i] & 0x3FF);
    } else if ((character & 0xF800) == 0xD800) {
      character = kReplacement;
    }
    PutCharacter(text, character);
  }
  return text;
}

}  // namespace excelexp::formula
