#pragma once

#include <cstddef>
#include <string_view>

namespace excelexp {

/// What DecodeUtf8 gives for a byte that begins no valid character.
inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

/// Takes one character from the front of a text that is not empty; kNoCharacter takes one byte. Overlong
/// forms, surrogates and values beyond U+10FFFF are not valid (RFC 3629).
char32_t DecodeUtf8(std::string_view& text);

/// What a valid UTF-8 text needs in UTF-16.
struct Utf16Size {
  std::size_t units = 0;
  bool wide = false;  ///< some unit is above 0xFF
};
Utf16Size MeasureUtf16(std::string_view text);

/// Why no workbook can hold the text, as the end of a sentence; nullptr for a good text. Control characters
/// other than tab, line feed and carriage return, U+FFFE and U+FFFF cannot stand in XML 1.0 (section 2.2),
/// and a text must be the same in every file format.
const char* TextProblem(std::string_view text);

}  // namespace excelexp
