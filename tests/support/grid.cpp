#include "support/grid.h"

#include <utility>
#include <vector>

namespace excelexp {
namespace {

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end != std::string_view::npos) text.remove_prefix(end + 1);
  }
  return parts;
}

std::string CanonicalLine(std::string_view line) {
  std::string canonical;
  std::string pending;
  for (const std::string_view part : Split(line, '|')) {
    const std::string_view cell = Trimmed(part);
    if (!cell.empty()) canonical += std::exchange(pending, "") + std::string(cell);
    pending += " | ";
  }
  return canonical;
}

}  // namespace

std::string Canonical(std::string_view grid) {
  std::string canonical;
  std::string pending;
  for (const std::string_view raw : Split(grid, '\n')) {
    const std::string line = CanonicalLine(raw);
    if (line.empty()) continue;
    const bool blank_row =
        raw.find('|') != std::string_view::npos && line.find_first_not_of("0123456789") == std::string::npos;
    if (blank_row) {
      pending += line + "\n";
    } else {
      canonical += (raw.find('|') != std::string_view::npos ? std::exchange(pending, "") : "") + line + "\n";
    }
  }
  return canonical;
}

}  // namespace excelexp
