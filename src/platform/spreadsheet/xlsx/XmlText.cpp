#include "platform/spreadsheet/xlsx/XmlText.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace excelexp::xlsx {
namespace {

/// Bytes at which a text cannot simply be copied on: markup, control characters, "_" that may begin an
/// escape, and the first byte of U+FFFE and U+FFFF.
constexpr std::array<bool, 256> kSpecial = [] {
  std::array<bool, 256> special{};
  for (std::size_t code = 0; code < 0x20; ++code) special[code] = true;
  for (const unsigned char code : {'&', '<', '>', '"', '_', '\xEF'}) special[code] = true;
  return special;
}();

bool IsHexDigit(char character) {
  return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F') ||
         (character >= 'a' && character <= 'f');
}

bool LooksLikeEscape(std::string_view text) {
  return text.size() >= 7 && text.starts_with("_x") && text[6] == '_' &&
         std::all_of(text.begin() + 2, text.begin() + 6, IsHexDigit);
}

void AppendControl(std::string& xml, char control) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  xml += "_x00";
  xml += kDigits[static_cast<unsigned char>(control) >> 4];
  xml += kDigits[static_cast<unsigned char>(control) & 15];
  xml += '_';
}

/// Appends what the special character at the front of `text` becomes; returns the bytes it takes.
std::size_t AppendSpecial(std::string& xml, std::string_view text, bool attribute) {
  switch (text.front()) {
    case '&':
      xml += "&amp;";
      return 1;
    case '<':
      xml += "&lt;";
      return 1;
    case '>':
      xml += "&gt;";
      return 1;
    case '"':
      xml += attribute ? "&quot;" : "\"";
      return 1;
    case '_':
      xml += LooksLikeEscape(text) ? "_x005F_" : "_";
      return 1;
    case '\xEF':
      if (text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF")) {
        xml += text[2] == '\xBE' ? "_xFFFE_" : "_xFFFF_";
        return 3;
      }
      xml += '\xEF';
      return 1;
    case '\n':
    case '\t':
      if (!attribute) {
        xml += text.front();
        return 1;
      }
      [[fallthrough]];
    default:
      AppendControl(xml, text.front());
      return 1;
  }
}

void AppendEscaped(std::string& xml, std::string_view text, bool attribute) {
  while (!text.empty()) {
    const auto special = std::find_if(text.begin(), text.end(),
                                      [](char byte) { return kSpecial[static_cast<unsigned char>(byte)]; });
    const auto plain = static_cast<std::size_t>(special - text.begin());
    xml += text.substr(0, plain);
    text.remove_prefix(plain);
    if (!text.empty()) text.remove_prefix(AppendSpecial(xml, text, attribute));
  }
}

template <typename Number>
void AppendDigits(std::string& xml, Number number) {
  char digits[32];
  xml.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

}  // namespace

void AppendText(std::string& xml, std::string_view text) {
  AppendEscaped(xml, text, false);
}

void AppendAttribute(std::string& xml, std::string_view text) {
  AppendEscaped(xml, text, true);
}

void AppendNumber(std::string& xml, double number) {
  AppendDigits(xml, number);
}

void AppendNumber(std::string& xml, int number) {
  AppendDigits(xml, number);
}

bool HasOuterBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n";
  return !text.empty() && (kBlanks.find(text.front()) != std::string_view::npos ||
                           kBlanks.find(text.back()) != std::string_view::npos);
}

}  // namespace excelexp::xlsx
