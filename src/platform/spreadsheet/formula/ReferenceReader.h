#pragma once

#include <optional>
#include <string_view>

#include "platform/spreadsheet/formula/Expression.h"

namespace excelexp::formula {

/// What stands at the front of a formula text: the thing read and the bytes it takes.
struct ReadReference {
  Reference reference;
  std::size_t length = 0;
};

/// A cell, a block of cells, whole columns or whole rows ("A1", "$B$2:C7", "A:C", "3:$5"), without a sheet;
/// nothing when the text begins with something else, such as a name that merely starts like a cell.
std::optional<ReadReference> ReadCells(std::string_view text);

/// "Sheet2!", "'It''s'!" or "Sheet1:Sheet3!"; fills in the sheets only, and the length includes the "!".
std::optional<ReadReference> ReadSheetPrefix(std::string_view text);

}  // namespace excelexp::formula
