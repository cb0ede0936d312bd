#include "platform/spreadsheet/formula/FormulaText.h"

#include <gtest/gtest.h>

#include "platform/spreadsheet/BExcelAPI.h"
#include "platform/spreadsheet/formula/Expression.h"

namespace excelexp::formula {
namespace {

TEST(FormulaText, TellsApartWhatParsesDifferently) {
  struct Case {
    const char* in_c7;
    const char* in_e10;
    bool same;
    bool as_written = true;  ///< as the application writes it
  };
  const Case cases[] = {
      {"=A7+B7", "=C10+D10", true},
      {"=A7+B7", "=A7+B7", false},
      {"=$A7+B$2", "=$A10+D$2", true},
      {"=$A$1", "=A1", false},
      {"=SUM(C1:C6)", "=SUM(E4:E9)", true},
      {"=SUM(C1:C6)", "=SUM(E3:E9)", false},
      {"=SUM(C6:C6)", "=SUM(E9)", false},
      {"=SUM(A:A)", "=SUM(C:C)", true, false},
      {"=SUM(c1:C6)", "=SUM(E4:e9)", true, false},
      {"=A7+XFD1", "=C10+XFD4", false},
      {"=LOG10(A7)", "=LOG10(C10)", true},
      {"=LOG10(A7)", "=LOG11(C10)", false},
      {"=A7+1.5E8", "=C10+1.5E8", true},
      {"=A7+1", "=C10+2", false},
      {"=A7&\"A7\"", "=C10&\"A7\"", true},
      {"=A7&\"A7\"", "=C10&\"C10\"", false},
      {"=A7&\"a\"\"b\"", "=C10&\"a\"\"b\"", true},
      {"=TAX2024X+A7", "=TAX2024X+C10", true},
      {"=_A7+B7", "=_A7+D10", true},
      {"=A7:B7 B1:B9", "=C10:D10 D4:D12", true},
      {"=A7\n+B7", "=C10\n+D10", true},
  };
  for (const Case& c : cases) {
    const auto first = FormulaText(c.in_c7).RelativeTo(7, 3);
    const auto second = FormulaText(c.in_e10).RelativeTo(10, 5);
    ASSERT_TRUE(first && second) << c.in_c7;
    EXPECT_EQ(*first == *second, c.same) << c.in_c7 << " and " << c.in_e10;
    EXPECT_EQ(FormulaText(c.in_c7).Equals(c.in_e10, {3, 2}), c.same && c.as_written) << c.in_c7;
    if (c.same && c.as_written) {
      EXPECT_EQ(FormulaText(c.in_c7).Moved({3, 2}), c.in_e10);
    }
    const bool equal_when_moved = Print(*Moved(*Parse(c.in_c7), 3, 2)) == Print(*Parse(c.in_e10));
    EXPECT_EQ(equal_when_moved, c.same) << c.in_c7 << " and " << c.in_e10;
  }
  for (const char* formula : {"=Sheet2!A1", "='My sheet'!A1"})
    EXPECT_EQ(FormulaText(formula).RelativeTo(1, 1), std::nullopt) << formula;
}

/// Formulas of a column share what is parsed; each still says, computes and moves what was written for its
/// cell.
TEST(FormulaText, SharedFormulasAreTheirOwn) {
  BExcelAPI api;
  const Handle workbook = api.CreateWorkbook(1);
  const auto formula_at = [&](int row, int column) -> const Formula& {
    const Cell* cell = workbook.Get()->FindSheet("Sheet1")->Find(row, column);
    return workbook.Get()->FormulaAt(cell->formula);
  };
  for (int row = 1; row <= 3; ++row) {
    const std::string r = std::to_string(row);
    api.FormulaOnRange(workbook, "Sheet1", "C" + r, "=A" + r + "*$B$1+ROW()");
  }
  api.FormulaOnRange(workbook, "Sheet1", "C4", "a4*$B$1+ROW()");
  api.FormulaOnRange(workbook, "Sheet1", "D5:D6", "=B5*$B$1+ROW()");
  const auto& shared = formula_at(1, 3).source;
  EXPECT_EQ(formula_at(3, 3).source, shared);
  EXPECT_EQ(formula_at(5, 4).source, shared);
  for (const auto& [row, column, text, printed] : {std::tuple(3, 3, "=A3*$B$1+ROW()", "A3*$B$1+ROW()"),
                                                   std::tuple(4, 3, "=a4*$B$1+ROW()", "A4*$B$1+ROW()"),
                                                   std::tuple(6, 4, "=B6*$B$1+ROW()", "B6*$B$1+ROW()")}) {
    EXPECT_EQ(formula_at(row, column).Text(), text);
    EXPECT_EQ(Print(*ExpressionOf(formula_at(row, column))), printed);
  }
}

}  // namespace
}  // namespace excelexp::formula
