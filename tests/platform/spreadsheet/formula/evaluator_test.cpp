#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "platform/spreadsheet/formula/FitFormula.h"
#include "platform/spreadsheet/formula/Recalculate.h"
#include "platform/spreadsheet/formula/Tokens.h"

namespace excelexp::formula {
namespace {

using Type = FormulaResult::Type;

/// 2024-02-29 10:20.
const DateTime kNow = {45351.0 + 10.0 / 24.0 + 20.0 / 1440.0};

/// A workbook whose cells are given by name, "Other!B2" or "B2" for the first sheet.
class TestBook {
 public:
  Workbook book;

  void Number(const std::string& cell, double number) {
    At(cell).number = number;
    At(cell).type = CellType::kNumber;
  }
  void Text(const std::string& cell, const std::string& text) {
    At(cell).text = book.InternText(text);
    At(cell).type = CellType::kText;
  }
  void Formula(const std::string& cell, const std::string& text) {
    At(cell).formula = book.AddFormula({text, Parse(text), {}});
    At(cell).type = CellType::kFormula;
  }
  void NumberFormat(const std::string& cell, const std::string& format) {
    CellFormat cell_format;
    cell_format.number_format = format;
    At(cell).format = book.InternFormat(cell_format);
  }

  /// "5", "text", "TRUE", "#N/A" or "?" for a result nobody knows.
  std::string Shown(const std::string& cell) { return Shown(book.FormulaAt(At(cell).formula).result); }
  static std::string Shown(const FormulaResult& result) {
    switch (result.type) {
      case Type::kUnknown:
        return "?";
      case Type::kNumber: {
        std::ostringstream out;
        out.precision(15);
        out << result.number;
        return out.str();
      }
      case Type::kText:
        return result.text;
      case Type::kBoolean:
        return result.number != 0.0 ? "TRUE" : "FALSE";
      case Type::kError:
        return std::string(ErrorText(result.error));
    }
    return "";
  }

  Cell& At(const std::string& name) {
    const std::size_t mark = name.find('!');
    const std::string sheet = mark == std::string::npos ? "Data" : name.substr(0, mark);
    Sheet* found = book.FindSheet(sheet);
    if (found == nullptr) found = book.Sheets().emplace_back(std::make_unique<Sheet>(sheet)).get();
    const CellRange range = ParseRange(name.substr(mark == std::string::npos ? 0 : mark + 1)).value();
    return found->At(range.first_row, range.first_col);
  }
};

std::vector<std::string> Columns(const std::string& line) {
  std::vector<std::string> columns;
  std::istringstream in(line);
  for (std::string column; std::getline(in, column, '\t');) columns.push_back(column);
  columns.resize(5);
  return columns;
}

TEST(FormulaEvaluator, AgreesWithTheTable) {
  std::ifstream file(EXCELEXP_SOURCE_DIR "/tests/data/formulas.tsv");
  ASSERT_TRUE(file.is_open());
  TestBook test;
  test.At("Data!A1");
  std::vector<std::vector<std::string>> formulas;
  for (std::string line; std::getline(file, line);) {
    const std::vector<std::string> columns = Columns(line);
    if (columns[0] == "formula") {
      formulas.push_back(columns);
      test.Formula("Z" + std::to_string(formulas.size()), columns[1]);
    } else if (columns[0] == "cell") {
      if (columns[2] == "number") test.Number(columns[1], std::stod(columns[3]));
      if (columns[2] == "text") test.Text(columns[1], columns[3]);
      if (columns[2] == "formula") test.Formula(columns[1], columns[3]);
      if (!columns[4].empty()) test.NumberFormat(columns[1], columns[4]);
    }
  }
  ASSERT_GE(formulas.size(), 150U);
  Recalculate(test.book, kNow);

  const std::map<std::string, Type> types = {{"number", Type::kNumber},
                                             {"text", Type::kText},
                                             {"boolean", Type::kBoolean},
                                             {"error", Type::kError},
                                             {"unknown", Type::kUnknown}};
  for (std::size_t i = 0; i < formulas.size(); ++i) {
    const std::string cell = "Z" + std::to_string(i + 1);
    const FormulaResult& result = test.book.FormulaAt(test.At(cell).formula).result;
    const std::string& expected = formulas[i][3];
    SCOPED_TRACE(formulas[i][1]);
    EXPECT_EQ(static_cast<int>(result.type), static_cast<int>(types.at(formulas[i][2]))) << test.Shown(cell);
    if (result.type == Type::kNumber && formulas[i][2] == "number") {
      const double wanted = std::stod(expected);
      EXPECT_LE(std::fabs(result.number - wanted), 1e-13 * std::fabs(wanted)) << test.Shown(cell);
    } else if (result.type != Type::kUnknown) {
      EXPECT_EQ(test.Shown(cell), expected);
    }
  }
}

TEST(FormulaEvaluator, KnowsTheMomentAndItsOwnPlace) {
  TestBook test;
  test.Formula("B7", "ROW()*100+COLUMN()");
  test.Formula("A1", "NOW()");
  test.Formula("A2", "TODAY()");
  test.Formula("A3", "TEXT(NOW(),\"yyyy-mm-dd hh:mm\")");
  Recalculate(test.book, kNow);
  EXPECT_EQ(test.Shown("B7"), "702");
  EXPECT_EQ(test.Shown("A1"), "45351.4305555556");
  EXPECT_EQ(test.Shown("A2"), "45351");
  EXPECT_EQ(test.Shown("A3"), "2024-02-29 10:20");
}

TEST(FormulaEvaluator, WhatNobodyComputesStaysUnknownAndSoDoesWhatNeedsIt) {
  TestBook test;
  test.Formula("A1", "NPV(0.1,100)");
  test.Formula("A2", "A1+1");
  test.Formula("A3", "SUM(A1:A2,5)");
  test.Formula("A4", "IFERROR(A1,0)");
  test.Formula("A5", "IF(TRUE,5,A1)");
  test.Formula("A6", "COUNT(B1:B9)");
  test.Text("C1", "1/2/2003");
  test.Formula("A7", "C1+1");
  test.Formula("A8", "TEXT(0.5,\"# ?/?\")");
  test.Formula("A9", "MATCH(1,D1:D3)");
  for (const auto& [cell, number] : {std::pair{"D1", 3.0}, {"D2", 1.0}, {"D3", 2.0}})
    test.Number(cell, number);
  Recalculate(test.book, kNow);
  for (const char* cell : {"A1", "A2", "A3", "A4", "A7", "A8", "A9"})
    EXPECT_EQ(test.Shown(cell), "?") << cell;
  EXPECT_EQ(test.Shown("A5"), "5");
  EXPECT_EQ(test.Shown("A6"), "0");
}

TEST(FormulaEvaluator, CyclesShowZeroAndOthersGoOn) {
  TestBook test;
  test.Formula("A1", "B1+C1");
  test.Formula("B1", "C1+D1");  // B1, C1 and D1 form the cycle
  test.Formula("C1", "D1*2");
  test.Formula("D1", "B1+7");
  test.Formula("E1", "SUM(E1:E3)");  // a sum that holds itself
  test.Number("E2", 5);
  test.Formula("F1", "IF(TRUE,3,F1)");  // never reads itself
  test.Formula("G1", "E1+2");
  test.Formula("H1", "H2+1");
  test.Formula("H2", "SUM(H3:H5)");
  test.Formula("H3", "4");
  test.Formula("H4", "H2");
  test.Formula("H5", "H3+1");
  Recalculate(test.book, kNow);
  const std::map<std::string, std::string> expected = {{"A1", "0"}, {"B1", "0"}, {"C1", "0"}, {"D1", "0"},
                                                       {"E1", "0"}, {"F1", "3"}, {"G1", "2"}, {"H1", "1"},
                                                       {"H2", "0"}, {"H4", "0"}, {"H5", "5"}};
  for (const auto& [cell, shown] : expected) EXPECT_EQ(test.Shown(cell), shown) << cell;
}

TEST(FormulaEvaluator, LongChainsAndColumnsOfSumsAreNoTrouble) {
  constexpr int kRows = 60000;
  TestBook test;
  for (int row = 1; row <= kRows; ++row) {
    const std::string number = std::to_string(row);
    test.Formula("A" + number, row == kRows ? "1" : "A" + std::to_string(row + 1) + "+1");
    test.Formula("B" + number, row == 1 ? "1" : "B" + std::to_string(row - 1) + "+1");
    if (row <= 800) test.Formula("C" + number, "1+SUM(C" + std::to_string(row + 1) + ":C801)*0");
  }
  Recalculate(test.book, kNow);
  EXPECT_EQ(test.Shown("A1"), "60000");
  EXPECT_EQ(test.Shown("B60000"), "60000");
  EXPECT_EQ(test.Shown("C1"), "1");
}

TEST(FormulaEvaluator, SubtotalsLeaveOutHiddenRowsAndOtherSubtotals) {
  TestBook test;
  for (int row = 1; row <= 4; ++row) test.Number("A" + std::to_string(row), row);
  test.Formula("A5", "SUBTOTAL(9,A1:A4)+0");
  test.Formula("A6", "SUBTOTAL(9,A1:A5)");
  test.Formula("A7", "SUBTOTAL(109,A1:A6)");
  test.book.Sheets()[0]->SetRowHeight(2, 0.0);
  Recalculate(test.book, kNow);
  EXPECT_EQ(test.Shown("A6"), "10");
  EXPECT_EQ(test.Shown("A7"), "8");
}

std::string Ranges(const std::string& function, int count) {
  std::string text = function + "(";
  for (int i = 0; i < count; ++i) {
    text += (i == 0 ? "B" : ",B") + std::to_string(3 * i + 1) + ":B" + std::to_string(3 * i + 2);
  }
  return text + ")";
}

TEST(FormulaEvaluator, FittedFormulasShowTheSame) {
  TestBook test;
  for (int row = 1; row <= 15000; ++row) {
    if (row % 7 == 0) continue;
    test.Number("B" + std::to_string(row), 0.99 + 0.0000015 * row);
  }
  const CellPlace place = {test.book.FindSheet("Data"), 20, 4};
  for (const char* function : {"SUM", "COUNT", "COUNTA", "AVERAGE", "MIN", "MAX", "PRODUCT"}) {
    for (const int count : {31, 200, 1000, 5000}) {
      const auto whole = Parse("IF(B1<1," + Ranges(function, count) + ",\"\")");
      const FormulaResult expected = Evaluate(test.book, *whole, place, kNow);
      ASSERT_EQ(static_cast<int>(expected.type), static_cast<int>(Type::kNumber)) << function << count;
      for (const FormulaLimits* limits : {&kXlsLimits, &kXlsxLimits}) {
        const FittedFormula fitted = FitFormula(whole, *limits, {1, "Data", place.row, place.column});
        NameTable names;
        for (const HiddenName& name : fitted.names) names[name.name] = name.expression;
        const FormulaResult shown = Evaluate(test.book, *fitted.expression, place, kNow, names);
        EXPECT_EQ(static_cast<int>(shown.type), static_cast<int>(expected.type)) << function << count;
        EXPECT_NEAR(shown.number, expected.number, 1e-12 * std::fabs(expected.number)) << function << count;
      }
    }
  }
}

}  // namespace
}  // namespace excelexp::formula
