#include "platform/spreadsheet/CellName.h"

#include <gtest/gtest.h>

namespace excelexp {
namespace {

TEST(CellName, EndsWithTheLastColumnAndRow) {
  const struct {
    int row, column;
    const char* name;
  } cases[] = {{1, 1, "A1"},   {9, 26, "Z9"},    {10, 27, "AA10"},
               {1, 52, "AZ1"}, {1, 53, "BA1"},   {1048576, 256, "IV1048576"},
               {1, 257, ""},   {1048577, 1, ""}, {0, 1, ""},
               {1, 0, ""},     {-1, 5, ""}};
  for (const auto& c : cases) EXPECT_EQ(GetCellName(c.row, c.column), c.name) << c.row << "," << c.column;
  EXPECT_EQ(ColumnLetters(702), "ZZ");
  EXPECT_EQ(ColumnLetters(703), "AAA");
  EXPECT_EQ(ColumnLetters(16384), "XFD");
}

TEST(CellName, EveryNameReadsBack) {
  for (int column = 1; column <= kLastNamedColumn; ++column) {
    EXPECT_EQ(ParseRange(GetCellName(column * 256, column)),
              (CellRange{column * 256, column, column * 256, column}));
  }
}

TEST(CellName, ReadsRangesInAnyCornerOrder) {
  const CellRange block{2, 2, 9, 4};
  for (const char* text : {"B2:D9", "D9:B2", "B9:D2", "D2:B9", "$B$2:$D$9", "b2:d9"}) {
    EXPECT_EQ(ParseRange(text), block) << text;
  }
  EXPECT_EQ(ParseRange("XFD1048576"), (CellRange{1048576, 16384, 1048576, 16384}));
}

TEST(CellName, RefusesWhatIsNoRange) {
  for (const char* text : {"",
                           "A",
                           "1",
                           "A0",
                           "A01",
                           "XFE1",
                           "A1048577",
                           "A1:",
                           ":A1",
                           "A1:B",
                           "A1:B2:C3",
                           "A1 ",
                           " A1",
                           "A-1",
                           "$A$",
                           "A$$1",
                           "A1B",
                           "Sheet1!A1",
                           "A:B",
                           "AAAAAAAAAAAAAAAAAAAA1",
                           "A99999999999999999999",
                           "@1",
                           "[1"}) {
    EXPECT_FALSE(ParseRange(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace excelexp
