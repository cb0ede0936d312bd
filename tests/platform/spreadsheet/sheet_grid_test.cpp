#include "platform/spreadsheet/SheetGrid.h"

#include "support/grid.h"

namespace excelexp {
namespace {

class SheetGrid : public ::testing::Test {
 protected:
  SheetGrid() { workbook_.Sheets().push_back(std::make_unique<Sheet>("S")); }
  Sheet& TheSheet() { return *workbook_.Sheets()[0]; }

  void Number(int row, int column, double number) {
    Cell& cell = TheSheet().At(row, column);
    cell.type = CellType::kNumber;
    cell.number = number;
  }
  void Text(int row, int column, std::string_view text) {
    const std::uint32_t index = workbook_.InternText(text);
    Cell& cell = TheSheet().At(row, column);
    cell.type = CellType::kText;
    cell.text = index;
  }
  void AddFormula(int row, int column, const std::string& text, FormulaResult result) {
    const std::uint32_t index = workbook_.AddFormula({text, nullptr, std::move(result)});
    Cell& cell = TheSheet().At(row, column);
    cell.type = CellType::kFormula;
    cell.formula = index;
  }
  std::string Dump(GridOptions options = {}) { return DumpSheet(workbook_, TheSheet(), options); }

  Workbook workbook_;
};

TEST_F(SheetGrid, ShowsCellsAligned) {
  Text(1, 1, "Payroll");
  Text(3, 1, "T\xC3\xB6tal");
  Number(3, 2, 0.1 + 0.2);
  AddFormula(3, 3, "=A1+B2", {FormulaResult::Type::kNumber, 12.0, "", {}});
  TheSheet().At(9, 9).format = 0;  // a blank cell shows nothing
  EXPECT_EQ(Dump({.formulas = true}),
            "     | A       | B                   | C            |\n"
            "   1 | Payroll |                     |              |\n"
            "   2 |         |                     |              |\n"
            "   3 | T\xC3\xB6tal   | 0.30000000000000004 | =A1+B2 -> 12 |\n");
  EXPECT_EQ(Dump({.range = CellRange{3, 2, 8, 3}}),
            "     | B                   | C  |\n"
            "   3 | 0.30000000000000004 | 12 |\n");
}

TEST_F(SheetGrid, TellsEveryKindOfValueApart) {
  using Type = FormulaResult::Type;
  const char* texts[] = {"12", "-1e5", "=A1", "'x", "a\nb", "\x01\x7F", "a12", " 12"};
  for (int i = 0; i < 8; ++i) Text(i + 1, 1, texts[i]);
  Number(1, 2, -0.0);
  Number(2, 2, 1e300);
  Number(3, 2, 1e15);
  AddFormula(4, 2, "=1", {Type::kBoolean, 1.0, "", {}});
  AddFormula(5, 2, "=1", {Type::kError, 0.0, "", ErrorCode::kDivZero});
  AddFormula(6, 2, "=1", {Type::kUnknown, 0.0, "", {}});
  AddFormula(7, 2, "=1", {Type::kText, 0.0, "5", {}});
  AddFormula(8, 2, "=1", {Type::kText, 0.0, "", {}});
  EXPECT_GRID(Dump(), R"(
        | A        | B
      1 | '12      | -0
      2 | '-1e5    | 1e+300
      3 | '=A1     | 1e+15
      4 | ''x      | TRUE
      5 | a\nb     | #DIV/0!
      6 | \x01\x7F | ?
      7 | a12      | '5
      8 | 12       |)");
}

TEST_F(SheetGrid, ListsFormats) {
  CellFormat title;
  title.bold = title.centred = true;
  title.font_size = 12.5;
  title.font_colour = 3;
  title.underline = Underline::kDouble;
  CellFormat amount;
  amount.number_format = "#,0.00;-#,0.00";
  for (const int column : {1, 2, 3}) TheSheet().At(1, column).format = workbook_.InternFormat(title);
  for (const int row : {2, 3, 5}) TheSheet().At(row, 2).format = workbook_.InternFormat(amount);
  Text(1, 1, "Title");
  TheSheet().AddMerge({1, 1, 1, 3});
  for (const int column : {1, 2, 4}) TheSheet().SetColumnWidth(column, 20);
  TheSheet().SetColumnWidth(6, 0);
  TheSheet().SetRowHeight(1, 15.75);
  EXPECT_GRID(Dump({.formats = true}), R"(
        | A
      1 | Title
    A1:C1 - Arial 12.5 colour 3 bold centred double-underline General
    B2:B3 B5 - Arial 10 #,0.00;-#,0.00
    merged A1:C1
    widths A:B=20 D=20 F=hidden
    heights 1=15.75)");
}

TEST_F(SheetGrid, ComparisonIgnoresBlanksAndNothingElse) {
  EXPECT_EQ(Canonical(" | A | B |  \n 1 | x |  \n 2 |  \n\n"), Canonical("|A|B\n1|x"));
  EXPECT_NE(Canonical("| A\n1 | \n2 | x"), Canonical("| A\n2 | x"));
  EXPECT_NE(Canonical("| A | B\n1 | | x"), Canonical("| A | B\n1 | x"));
  EXPECT_NE(Canonical("| A\n1 | a b"), Canonical("| A\n1 | a  b"));
  EXPECT_EQ(Dump(), "     |\n");
}

}  // namespace
}  // namespace excelexp
