#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// A text as an SQL literal: between single quotes, a quote inside it doubled.
inline std::string SqlText(std::string_view text) {
  std::string literal;
  literal.reserve(text.size() + 2);
  literal += '\'';
  for (std::size_t quote = 0; (quote = text.find('\'')) != std::string_view::npos;) {
    literal.append(text.substr(0, quote + 1)).push_back('\'');
    text.remove_prefix(quote + 1);
  }
  literal.append(text).push_back('\'');
  return literal;
}

}  // namespace excelexp
