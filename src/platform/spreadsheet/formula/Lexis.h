#pragma once

#include <array>
#include <string>
#include <string_view>

namespace excelexp::formula {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool IsAsciiLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
/// Changes ASCII letters only.
constexpr char SmallLetter(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
/// Part of a character outside ASCII.
constexpr bool IsBeyondAscii(char c) {
  return (static_cast<unsigned char>(c) & 0x80U) != 0;
}

inline constexpr auto kWordCharacters = [] {
  std::array<bool, 256> table{};
  for (int i = 0; i < 256; ++i) {
    const char c = static_cast<char>(i);
    table[static_cast<std::size_t>(i)] =
        IsAsciiLetter(c) || IsDigit(c) || c == '_' || c == '.' || c == '\\' || c == '?' || IsBeyondAscii(c);
  }
  return table;
}();

/// Characters of names, functions and unquoted sheet names after the first one.
constexpr bool IsWordCharacter(char c) {
  return kWordCharacters[static_cast<unsigned char>(c)];
}

/// UTF-8 text in capitals and in small letters, by Unicode's simple mappings, whatever the locale is.
std::string Capitals(std::string_view text);
std::string SmallLetters(std::string_view text);

/// Length in UTF-16 units, as spreadsheets count; the text is UTF-8.
std::size_t Utf16Length(std::string_view text);

/// UTF-8 to UTF-16; a byte that is no UTF-8 becomes U+FFFD.
std::u16string ToUtf16(std::string_view text);
/// UTF-16 to UTF-8; half a surrogate pair becomes U+FFFD.
std::string ToUtf8(std::u16string_view units);

}  // namespace excelexp::formula
