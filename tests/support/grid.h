#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace excelexp {

/// A grid, as DumpSheet makes it or as it stands in a test, with what must not matter taken out: indentation,
/// blanks around cells, blank cells at the end of a row, blank lines, and rows at the end that show nothing.
std::string Canonical(std::string_view grid);

}  // namespace excelexp

/// Compares DumpSheet's text with a grid that stands in the test; on failure gtest shows the differing lines.
#define EXPECT_GRID(dump, expected) EXPECT_EQ(::excelexp::Canonical(dump), ::excelexp::Canonical(expected))
