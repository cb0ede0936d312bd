#include "platform/host/Utf8.h"

#include <array>
#include <cstdint>

namespace excelexp {
namespace {

/// The characters of bytes 0x80 to 0x9F in Windows-1252; 0xFFFD where there is none.
/// https://encoding.spec.whatwg.org/index-windows-1252.txt, less its five control characters.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

void Append(std::string& text, char16_t character) {
  const auto byte = [&text](unsigned value) { text += static_cast<char>(value); };
  if (character < 0x80) {
    byte(character);
  } else if (character < 0x800) {
    byte(0xC0U | (character >> 6U));
    byte(0x80U | (character & 0x3FU));
  } else {
    byte(0xE0U | (character >> 12U));
    byte(0x80U | ((character >> 6U) & 0x3FU));
    byte(0x80U | (character & 0x3FU));
  }
}

/// The first bytes of one length and what the second byte may be, so that every character has one spelling
/// (The Unicode Standard, table 3-7).
struct Sequence {
  std::uint8_t first_lead;
  std::uint8_t last_lead;
  std::size_t length;
  std::uint8_t first_second;
  std::uint8_t last_second;
};

constexpr std::array<Sequence, 9> kSequences = {{{0x00, 0x7F, 1, 0, 0},
                                                 {0xC2, 0xDF, 2, 0x80, 0xBF},
                                                 {0xE0, 0xE0, 3, 0xA0, 0xBF},
                                                 {0xE1, 0xEC, 3, 0x80, 0xBF},
                                                 {0xED, 0xED, 3, 0x80, 0x9F},
                                                 {0xEE, 0xEF, 3, 0x80, 0xBF},
                                                 {0xF0, 0xF0, 4, 0x90, 0xBF},
                                                 {0xF1, 0xF3, 4, 0x80, 0xBF},
                                                 {0xF4, 0xF4, 4, 0x80, 0x8F}}};

/// The length of the well-formed sequence that the bytes begin with; 0 when there is none.
std::size_t SequenceLength(std::string_view bytes) {
  const auto at = [&bytes](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
  for (const Sequence& sequence : kSequences) {
    if (at(0) < sequence.first_lead || at(0) > sequence.last_lead) continue;
    if (bytes.size() < sequence.length) return 0;
    if (sequence.length > 1 && (at(1) < sequence.first_second || at(1) > sequence.last_second)) return 0;
    for (std::size_t i = 2; i < sequence.length; ++i) {
      if (at(i) < 0x80 || at(i) > 0xBF) return 0;
    }
    return sequence.length;
  }
  return 0;
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = SequenceLength(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string ToUtf8(std::string_view bytes) {
  if (IsUtf8(bytes)) return std::string(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes);
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<std::uint8_t>(c);
    Append(text, byte >= 0x80 && byte <= 0x9F ? kWindows1252[byte - 0x80U] : byte);
  }
  return text;
}

}  // namespace excelexp
