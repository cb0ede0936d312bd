#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// A text as an SQL literal: between single quotes, a quote inside it doubled.
inline std::string SqlText(std::string_view text) {
  std::string literal = "'";
  for (const char c : text) {
    literal += c;
    if (c == '\'') literal += c;
  }
  literal += '\'';
  return literal;
}

}  // namespace excelexp
