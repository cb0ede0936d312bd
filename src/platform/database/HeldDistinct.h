#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/database/HeldTable.h"

namespace excelexp {

/// Of the rows in a range that are alike in some columns the first ones, in their order; nothing where that
/// would be dear to know (numbers held as they are, a great many combinations). Bit i stands for column i,
/// the highest bit for all columns from there on.
std::optional<std::vector<std::uint32_t>> FirstOfAlike(const HeldRows& rows, const HeldRows::Range& range,
                                                       std::uint64_t columns);

}  // namespace excelexp
