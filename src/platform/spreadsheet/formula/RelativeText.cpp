#include "platform/spreadsheet/formula/RelativeText.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/ReferenceReader.h"

namespace excelexp::formula {
namespace {

constexpr std::size_t kLongest = 512;
constexpr char kReferenceMark = '\x01';

void AppendAxis(std::string& text, int position, bool absolute, int base) {
  std::array<char, 12> digits;
  digits[0] = absolute ? '$' : 'r';
  const auto end =
      std::to_chars(digits.data() + 1, digits.data() + digits.size(), absolute ? position : position - base);
  text.append(digits.data(), end.ptr);
}

void AppendReference(std::string& text, const Reference& reference, int row, int column) {
  text += kReferenceMark;
  text += reference.single ? '1' : '2';
  AppendAxis(text, reference.range.first_row, reference.row_absolute[0], row);
  AppendAxis(text, reference.range.first_col, reference.column_absolute[0], column);
  if (reference.single) return;
  AppendAxis(text, reference.range.last_row, reference.row_absolute[1], row);
  AppendAxis(text, reference.range.last_col, reference.column_absolute[1], column);
}

/// One past what begins at `at` and is no reference: a text in quotes, a word or number, or one character.
std::size_t EndOfOther(std::string_view formula, std::size_t at) {
  if (formula[at] == '"') return std::min(formula.find('"', at + 1), formula.size() - 1) + 1;
  if (!IsWordCharacter(formula[at])) return at + 1;
  while (at < formula.size() && IsWordCharacter(formula[at])) ++at;
  return at;
}

}  // namespace

std::optional<std::string> RelativeText(std::string_view formula, int row, int column) {
  const bool shareable = formula.size() <= kLongest && std::ranges::none_of(formula, [](char c) {
                           return c == '!' || c == '\'' || static_cast<unsigned char>(c) < 0x20;
                         });
  if (!shareable) return std::nullopt;
  std::string text;
  text.reserve(formula.size() + 32);
  for (std::size_t at = 0; at < formula.size();) {
    const char c = formula[at];
    if (IsAsciiLetter(c) || IsDigit(c) || c == '$') {
      if (const std::optional<ReadReference> read = ReadCells(formula.substr(at))) {
        AppendReference(text, read->reference, row, column);
        at += read->length;
        continue;
      }
    }
    const std::size_t end = EndOfOther(formula, at);
    text += formula.substr(at, end - at);
    at = end;
  }
  return text;
}

}  // namespace excelexp::formula
