#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace excelexp::formula {

/// The formula with its references written as distances from a cell (row and column from 1), so that "=A1+B1"
/// in C1 and "=A2+B2" in C2 have one text: formulas of the same relative text parse to the same expression,
/// moved. Nothing for a formula that names sheets, or that is so long that hardly another one equals it.
std::optional<std::string> RelativeText(std::string_view formula, int row, int column);

}  // namespace excelexp::formula
