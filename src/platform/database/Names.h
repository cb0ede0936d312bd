#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace excelexp {

/// Names of tables, columns and SQL words are compared without regard to ASCII letter case, as SQLite does.
constexpr char FoldLetter(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool SameName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, FoldLetter, FoldLetter);
}

inline std::string FoldName(std::string_view name) {
  std::string folded(name);
  std::ranges::transform(folded, folded.begin(), FoldLetter);
  return folded;
}

}  // namespace excelexp
