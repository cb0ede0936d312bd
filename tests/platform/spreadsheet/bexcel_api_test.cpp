#include "platform/spreadsheet/BExcelAPI.h"

#include <cmath>
#include <functional>

#include "platform/spreadsheet/formula/Expression.h"

namespace excelexp {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class BExcelApi : public ::testing::Test {
 protected:
  BExcelApi() : workbook_(api_.CreateWorkbook(1)) { api_.CreateNewTable(workbook_, "Pay"); }

  Workbook& Book() { return *workbook_.Get(); }
  const Sheet& PaySheet() { return *Book().FindSheet("Pay"); }
  const Cell& At(int row, int column) {
    static const Cell kNone;
    const Cell* cell = PaySheet().Find(row, column);
    return cell == nullptr ? kNone : *cell;
  }
  const CellFormat& FormatOf(int row, int column) { return Book().Format(At(row, column).format); }

  static void ExpectError(const std::function<void()>& action, const std::vector<std::string>& parts) {
    try {
      action();
      ADD_FAILURE() << "no error; expected " << parts.front();
    } catch (const SpreadsheetError& error) {
      for (const std::string& part : parts) EXPECT_THAT(error.what(), HasSubstr(part));
    }
  }

  BExcelAPI api_;
  Handle workbook_;
};

TEST_F(BExcelApi, ValuesKeepTheFormatOfTheirCell) {
  api_.SetFontStyle(workbook_, "Pay", "B2", true, false, false);
  for (const Variant& value : {Variant(3), Variant(2.5), Variant(std::string("=1+1")), Variant()}) {
    api_.WriteTableCell(workbook_, "Pay", 2, 2, value);
    EXPECT_TRUE(FormatOf(2, 2).bold);
  }
  EXPECT_EQ(At(2, 2).type, CellType::kEmpty);
  api_.WriteTableCell(workbook_, "pay", 1, 1, 7);
  EXPECT_EQ(At(1, 1).number, 7.0);
  api_.WriteTableCell(workbook_, "Pay", 1, 1, -0.0);
  EXPECT_FALSE(std::signbit(At(1, 1).number));
}

TEST_F(BExcelApi, TextsStayTexts) {
  for (const char* text : {"=1+1", "+x", "-x", "@x", "12", "TRUE", "#N/A", " "}) {
    api_.WriteTableCellText(workbook_, "Pay", 1, 1, text);
    ASSERT_EQ(At(1, 1).type, CellType::kText);
    EXPECT_EQ(Book().Text(At(1, 1).text), text);
  }
  api_.WriteTableCellText(workbook_, "Pay", 1, 1, "");
  EXPECT_EQ(At(1, 1).type, CellType::kEmpty);
}

TEST_F(BExcelApi, EveryFormatOperationReachesEveryCellOfTheBlock) {
  const std::string block = "D5:B2";
  api_.NumberFormatOnRange(workbook_, "Pay", block, "#,0;-#,0");
  api_.SetWordWrap(workbook_, "Pay", block, true);
  api_.SetFontNameSize(workbook_, "Pay", block, "Courier New", 12.5);
  api_.SetFontColour(workbook_, "Pay", block, 56);
  api_.SetFontStyle(workbook_, "Pay", block, true, true, true);
  api_.SetFontEffects(workbook_, "Pay", block, true, true, false);
  CellFormat expected;
  expected.font_name = "Courier New";
  expected.font_size = 12.5;
  expected.font_colour = 56;
  expected.bold = expected.italic = expected.strikethrough = expected.superscript = expected.word_wrap = true;
  expected.underline = Underline::kSingle;
  expected.number_format = "#,0;-#,0";
  for (int row = 1; row <= 6; ++row) {
    for (int column = 1; column <= 5; ++column) {
      const bool inside = row >= 2 && row <= 5 && column >= 2 && column <= 4;
      EXPECT_EQ(FormatOf(row, column), inside ? expected : CellFormat()) << row << "," << column;
    }
  }
}

TEST_F(BExcelApi, FontStylesLeaveAnUnderlineAlone) {
  api_.SetFontUnderline(workbook_, "Pay", "A1", 5);
  api_.SetFontStyle(workbook_, "Pay", "A1", false, false, true);
  EXPECT_EQ(FormatOf(1, 1).underline, Underline::kDoubleAccounting);
  api_.SetFontUnderline(workbook_, "Pay", "A1", -4142);
  EXPECT_EQ(FormatOf(1, 1).underline, Underline::kNone);
  api_.SetFontEffects(workbook_, "Pay", "A1", false, true, true);
  EXPECT_FALSE(FormatOf(1, 1).superscript);
  EXPECT_TRUE(FormatOf(1, 1).subscript);
  api_.SetFontColour(workbook_, "Pay", "A1", 3);
  api_.SetFontColour(workbook_, "Pay", "A1", -4105);
  EXPECT_EQ(FormatOf(1, 1).font_colour, 0);
}

TEST_F(BExcelApi, ManyDifferentChangesDoNotDisturbEachOther) {
  for (int i = 0; i < 3000; ++i) {
    const std::string cell = GetCellName(1 + i, 1);
    api_.SetFontNameSize(workbook_, "Pay", cell, i % 2 == 0 ? "Arial" : "Verdana", 1 + i % 400);
    api_.SetFontColour(workbook_, "Pay", cell, i % 57);
    api_.NumberFormatOnRange(workbook_, "Pay", cell, i % 3 == 0 ? "0" : "0.0");
  }
  for (int i = 0; i < 3000; ++i) {
    const CellFormat& format = FormatOf(1 + i, 1);
    ASSERT_EQ(format.font_name, i % 2 == 0 ? "Arial" : "Verdana");
    ASSERT_EQ(format.font_size, 1 + i % 400);
    ASSERT_EQ(format.font_colour, i % 57);
    ASSERT_EQ(format.number_format, i % 3 == 0 ? "0" : "0.0");
  }
}

TEST_F(BExcelApi, WidthsAndHeightsReachEveryColumnAndRow) {
  api_.SetColumnWidth(workbook_, "Pay", "B1:D9", 20);
  api_.SetRowHeight(workbook_, "Pay", "B3:C4", 0);
  for (int column = 1; column <= 5; ++column) {
    EXPECT_EQ(PaySheet().ColumnWidth(column), column >= 2 && column <= 4 ? 20 : 0);
  }
  for (int row = 2; row <= 5; ++row) EXPECT_EQ(PaySheet().RowHidden(row), row == 3 || row == 4);
}

TEST_F(BExcelApi, FormulasMoveAlongABlock) {
  api_.FormulaOnRange(workbook_, "Pay", "C2:D3", "SUM(A1:$F$9)");
  const char* expected[] = {"=SUM(A1:$F$9)", "=SUM(B1:$F$9)", "=SUM(A2:$F$9)", "=SUM(B2:$F$9)"};
  int i = 0;
  for (int row = 2; row <= 3; ++row) {
    for (int column = 3; column <= 4; ++column) {
      ASSERT_EQ(At(row, column).type, CellType::kFormula);
      EXPECT_EQ(Book().FormulaAt(At(row, column).formula).Text(), expected[i++]);
    }
  }
  ExpectError([&] { api_.FormulaOnRange(workbook_, "Pay", "B7", "=SUM(A1,"); },
              {"Sheet \"Pay\", cell B7", "at character 9"});
  for (const auto& [text, moved] :
       {std::pair("=SUM(A1:B2, $C1)", "=SUM(B1:C2, $C1)"), std::pair("=sum(a1)", "=SUM(B1)"),
        std::pair("=Pay!A1", "=Pay!B1"), std::pair("=XFD1+A1", "=#REF!+B1")}) {
    api_.FormulaOnRange(workbook_, "Pay", "C8", text);
    api_.FillRight(workbook_, "Pay", 8, 4);
    EXPECT_EQ(Book().FormulaAt(At(8, 4).formula).Text(), moved);
  }
  ExpectError([&] { api_.FillRight(workbook_, "Pay", 8, 1); }, {"Sheet \"Pay\", cell A8", "no formula"});
}

TEST_F(BExcelApi, MergesCentreAndKeepTheirFirstValue) {
  api_.WriteTableCellText(workbook_, "Pay", 1, 1, "title");
  api_.MergeRangeCells(workbook_, "Pay", "A1:C2", false, true);
  api_.MergeRangeCells(workbook_, "Pay", "E5", false, true);
  api_.MergeRangeCells(workbook_, "Pay", "E6:F7", true, false);
  EXPECT_EQ(PaySheet().Merges(), (std::vector<CellRange>{{1, 1, 2, 3}, {6, 5, 6, 6}, {7, 5, 7, 6}}));
  for (const auto& [row, column] : {std::pair{1, 1}, {1, 3}, {2, 1}, {5, 5}})
    EXPECT_TRUE(FormatOf(row, column).centred);
  EXPECT_FALSE(FormatOf(6, 5).centred);
  api_.WriteTableCellText(workbook_, "Pay", 1, 1, "new title");
  api_.WriteTableCellText(workbook_, "Pay", 2, 2, "");
  const auto write = [&](const Variant& value) { api_.WriteTableCell(workbook_, "Pay", 2, 2, value); };
  ExpectError([&] { write(1); }, {"cell B2", "covers"});
  ExpectError([&] { write(std::string("x")); }, {"cell B2", "covers"});
  ExpectError([&] { api_.FormulaOnRange(workbook_, "Pay", "B2", "=1"); }, {"cell B2", "covers"});
  ExpectError([&] { api_.MergeRangeCells(workbook_, "Pay", "C2:D3", false, true); },
              {"cells C2:D3", "overlaps"});
  api_.WriteTableCell(workbook_, "Pay", 9, 2, 1);
  ExpectError([&] { api_.MergeRangeCells(workbook_, "Pay", "A9:B9", false, true); }, {"cell B9", "hide"});
  EXPECT_EQ(PaySheet().Merges().size(), 3U);
}

TEST_F(BExcelApi, ErrorsNameSheetAndCell) {
  ExpectError([&] { api_.WriteTableCell({}, "Pay", 1, 1, 1); }, {"no open workbook"});
  ExpectError([&] { api_.WriteTableCell(workbook_, "Elsewhere", 1, 1, 1); }, {"\"Elsewhere\""});
  ExpectError([&] { api_.SetWordWrap(workbook_, "Pay", "", true); }, {"\"Pay\"", "\"\""});
  ExpectError([&] { api_.SetWordWrap(workbook_, "Pay", "B", true); }, {"\"Pay\"", "\"B\""});
  for (const auto& [row, column] : {std::pair{0, 1}, {1, 0}, {-1, 1}, {1048577, 1}, {1, 16385}}) {
    ExpectError([&, r = row, c = column] { api_.WriteTableCell(workbook_, "Pay", r, c, 1); },
                {"\"Pay\"", "row " + std::to_string(row), "column " + std::to_string(column)});
  }
  for (const double number : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    ExpectError([&] { api_.WriteTableCell(workbook_, "Pay", 3, 2, number); },
                {"Sheet \"Pay\", cell B3", "finite"});
  }
  const auto expect_refused = [&](const std::function<void()>& action) {
    ExpectError(action, {"Sheet \"Pay\", cell C4: "});
  };
  for (const Variant& value :
       {Variant(-1), Variant(57), Variant(2.5), Variant(), Variant(std::string("3"))}) {
    expect_refused([&] { api_.SetFontColour(workbook_, "Pay", "C4", value); });
  }
  for (const Variant& value : {Variant(-1), Variant(255.5), Variant(std::nan("")), Variant()}) {
    expect_refused([&] { api_.SetColumnWidth(workbook_, "Pay", "C4", value); });
  }
  expect_refused([&] { api_.SetRowHeight(workbook_, "Pay", "C4", 409.5); });
  expect_refused([&] { api_.SetFontNameSize(workbook_, "Pay", "C4", "Arial", 0.5); });
  expect_refused([&] { api_.SetFontNameSize(workbook_, "Pay", "C4", "Arial", 410); });
  expect_refused([&] { api_.SetFontUnderline(workbook_, "Pay", "C4", 1); });
  EXPECT_EQ(PaySheet().LastRow(), 0) << "a refused call leaves nothing behind";
}

TEST_F(BExcelApi, ABlankSheetGivesWayToTheFirstRealOne) {
  const auto names = [](const Handle& workbook) {
    std::vector<std::string> found;
    for (const auto& sheet : workbook.Get()->Sheets()) found.push_back(sheet->Name());
    return found;
  };
  EXPECT_EQ(names(workbook_), std::vector<std::string>{"Pay"});
  const Handle blank = api_.CreateWorkbook(2);
  EXPECT_EQ(names(blank), (std::vector<std::string>{"Sheet1", "Sheet2"}));
  api_.WriteTableCell(blank, "Sheet2", 1, 1, 1);
  api_.CreateNewTable(blank, "Sheet1");
  EXPECT_EQ(names(blank), (std::vector<std::string>{"Sheet2", "Sheet1"}));
  ExpectError([&] { api_.CreateNewTable(blank, "SHEET2"); }, {"\"SHEET2\""});
  ExpectError([&] { api_.CreateNewTable(blank, "a/b"); }, {"\"a/b\""});
  EXPECT_THROW(api_.CreateWorkbook(-1), SpreadsheetError);
}

TEST_F(BExcelApi, TerminatingTwiceLeavesAKeptHandleGood) {
  api_.TerminateExcel();
  api_.TerminateExcel();
  EXPECT_EQ(PaySheet().Name(), "Pay");
}

}  // namespace
}  // namespace excelexp
