#pragma once

#include <cstdint>

namespace excelexp {

inline constexpr int kPaletteColours = 56;

/// The application's default colour for a colour index from 1 to 56, as 0xRRGGBB.
std::uint32_t PaletteColour(int index);

}  // namespace excelexp
