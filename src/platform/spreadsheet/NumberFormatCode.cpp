#include "platform/spreadsheet/NumberFormatCode.h"

namespace excelexp {
namespace {

/// Characters that make the next one a literal, a width or a filling (ECMA-376 Part 1, 18.8.31).
constexpr std::string_view kTakesNext = "\\_*";
constexpr int kMaxSections = 4;  // positive, negative, zero, text

}  // namespace

const char* NumberFormatProblem(std::string_view code) {
  if (code.empty()) return "is empty";
  int sections = 1;
  for (std::size_t i = 0; i < code.size(); ++i) {
    if (code[i] == '"' || code[i] == '[') {
      const char closing = code[i] == '[' ? ']' : '"';
      i = code.find(closing, i + 1);
      if (i == std::string_view::npos)
        return closing == ']' ? "has an open bracket" : "has an open quotation mark";
    } else if (kTakesNext.find(code[i]) != std::string_view::npos) {
      if (++i == code.size()) return "ends in the middle of an escape";
    } else if (code[i] == ';' && ++sections > kMaxSections) {
      return "has more than four sections";
    }
  }
  return nullptr;
}

}  // namespace excelexp
