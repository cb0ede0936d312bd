#include "platform/spreadsheet/Workbook.h"

#include <gtest/gtest.h>

namespace excelexp {
namespace {

TEST(Workbook, KeepsEachTextAndFormatOnce) {
  Workbook workbook;
  std::vector<std::uint32_t> indices;
  for (int i = 0; i < 5000; ++i) indices.push_back(workbook.InternText("text " + std::to_string(i)));
  for (int i = 0; i < 5000; ++i) {
    ASSERT_EQ(workbook.InternText("text " + std::to_string(i)), indices[static_cast<std::size_t>(i)]);
    ASSERT_EQ(workbook.Text(indices[static_cast<std::size_t>(i)]), "text " + std::to_string(i));
  }
  EXPECT_EQ(workbook.TextCount(), 5000U);

  CellFormat format;
  EXPECT_EQ(workbook.InternFormat(format), 0U);
  format.subscript = true;
  const FormatId id = workbook.InternFormat(format);
  EXPECT_EQ(workbook.InternFormat(format), id);
  EXPECT_EQ(workbook.Format(id), format);
  EXPECT_EQ(workbook.FormatCount(), 2U);
}

TEST(Workbook, SheetNamesMatchWithoutRegardToCase) {
  Workbook workbook;
  for (const char* name : {"Payroll", "Zürich", "ΓΑΜΜΑ"})
    workbook.Sheets().push_back(std::make_unique<Sheet>(name));
  const struct {
    const char* asked;
    const char* found;
  } cases[] = {{"PAYROLL", "Payroll"}, {"ZÜRICH", "Zürich"}, {"γαμμα", "ΓΑΜΜΑ"},    {"Payrol", nullptr},
               {"Payroll ", nullptr},  {"", nullptr},        {"Z\xFCrich", nullptr}};
  for (const auto& c : cases) {
    const Sheet* sheet = workbook.FindSheet(c.asked);
    EXPECT_STREQ(sheet == nullptr ? nullptr : sheet->Name().c_str(), c.found) << c.asked;
  }
  workbook.FindSheet("ΓΑΜΜΑ");
  workbook.Sheets().pop_back();
  EXPECT_EQ(workbook.FindSheet("ΓΑΜΜΑ"), nullptr);
}

TEST(Sheet, GrowsWhereItIsWritten) {
  Sheet sheet("S");
  sheet.At(3, 4).type = CellType::kNumber;
  sheet.At(4, 2).format = 7;
  EXPECT_EQ(sheet.LastRow(), 4);
  EXPECT_EQ(sheet.LastColumn(), 4);
  EXPECT_EQ(sheet.Row(4).size(), 2U);
  EXPECT_EQ(sheet.Find(3, 4)->type, CellType::kNumber);
  for (const auto& [row, column] : {std::pair{1, 1}, {3, 5}, {4, 3}, {5, 1}, {0, 1}, {3, 0}}) {
    EXPECT_EQ(sheet.Find(row, column), nullptr) << row << "," << column;
  }
  EXPECT_EQ(sizeof(Cell), 16U);
}

TEST(Sheet, KnowsSizesHiddenAndOverlaps) {
  Sheet sheet("S");
  sheet.SetColumnWidth(3, 12.5);
  sheet.SetRowHeight(2, 0);
  EXPECT_EQ(sheet.ColumnWidth(3), 12.5);
  EXPECT_EQ(sheet.ColumnWidth(2), 0.0);
  EXPECT_FALSE(sheet.ColumnHidden(2));
  EXPECT_TRUE(sheet.RowHidden(2));
  EXPECT_FALSE(sheet.RowHidden(3));
  EXPECT_EQ(sheet.LastSizedColumn(), 3);

  sheet.AddMerge({5, 2, 7, 4});
  sheet.AddMerge({8, 2, 8, 4});
  EXPECT_EQ(sheet.FirstOverlap({7, 4, 9, 9}), 0U);
  EXPECT_EQ(sheet.FirstOverlap({8, 3, 8, 3}), 1U);
  EXPECT_EQ(sheet.FirstOverlap({8, 3, 8, 3}, 1), std::nullopt);
  for (const CellRange& free : {CellRange{1, 1, 4, 9}, {5, 1, 99, 1}, {5, 5, 8, 9}, {9, 1, 9, 9}}) {
    EXPECT_EQ(sheet.FirstOverlap(free), std::nullopt);
  }
}

}  // namespace
}  // namespace excelexp
