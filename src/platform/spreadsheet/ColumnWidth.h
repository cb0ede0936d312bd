#pragma once

namespace excelexp {

/// The width that files store for a column, in 1/256 of a character: the visible characters plus the margins
/// of a cell. For a default font whose digits are 7 pixels wide, as those of Arial 10 are, with 5 pixels of
/// margin (ECMA-376 part 1, 18.3.1.13, attribute width; both file formats store the same quantity).
/// `characters` is 0 to 255; a column narrower than one character has a margin in proportion.
constexpr int StoredColumnWidth(double characters) {
  constexpr double kDigitPixels = 7.0;
  constexpr double kMarginPixels = 5.0;
  const double margin = characters < 1.0 ? characters * kMarginPixels : kMarginPixels;
  return static_cast<int>((characters * kDigitPixels + margin) / kDigitPixels * 256.0);
}

}  // namespace excelexp
