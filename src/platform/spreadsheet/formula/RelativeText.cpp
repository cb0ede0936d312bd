#include "platform/spreadsheet/formula/RelativeText.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/ReferenceReader.h"

namespace excelexp::formula {
namespace {

constexpr std::size_t kLongest = 512;
// A formula that is shared has none of its own: it names no sheet.
constexpr char kReferenceMark = '\'';

char* PutAxis(char* at, char* end, int position, bool absolute, int base) {
  *at++ = absolute ? '$' : 'r';
  return std::to_chars(at, end, absolute ? position : position - base).ptr;
}

void AppendReference(std::string& text, const Reference& reference, int row, int column) {
  std::array<char, 64> buffer;
  char* const end = buffer.data() + buffer.size();
  char* at = buffer.data();
  *at++ = kReferenceMark;
  *at++ = reference.single ? '1' : '2';
  at = PutAxis(at, end, reference.range.first_row, reference.row_absolute[0], row);
  at = PutAxis(at, end, reference.range.first_col, reference.column_absolute[0], column);
  if (!reference.single) {
    at = PutAxis(at, end, reference.range.last_row, reference.row_absolute[1], row);
    at = PutAxis(at, end, reference.range.last_col, reference.column_absolute[1], column);
  }
  text.append(buffer.data(), at);
}

std::size_t EndOfWord(std::string_view formula, std::size_t at) {
  while (at < formula.size() && IsWordCharacter(formula[at])) ++at;
  return at;
}

std::size_t EndOfText(std::string_view formula, std::size_t at) {
  return std::min(formula.find('"', at + 1), formula.size() - 1) + 1;
}

}  // namespace

std::optional<std::string> RelativeText(std::string_view formula, int row, int column) {
  constexpr std::size_t kNone = std::string_view::npos;
  if (formula.size() > kLongest || formula.find('!') != kNone || formula.find('\'') != kNone)
    return std::nullopt;
  std::string text;
  text.reserve(formula.size() + 32);
  std::size_t copied = 0;
  for (std::size_t at = 0; at < formula.size();) {
    const char first = formula[at];
    if (!IsWordCharacter(first) && first != '$') {
      at = first == '"' ? EndOfText(formula, at) : at + 1;
      continue;
    }
    const std::size_t end = EndOfWord(formula, at);
    const bool is_call = end < formula.size() && formula[end] == '(';
    const std::optional<ReadReference> read = is_call ? std::nullopt : ReadCells(formula.substr(at));
    if (!read) {
      at = std::max(end, at + 1);
      continue;
    }
    text.append(formula, copied, at - copied);
    AppendReference(text, read->reference, row, column);
    at += read->length;
    copied = at;
  }
  text.append(formula, copied);
  return text;
}

}  // namespace excelexp::formula
