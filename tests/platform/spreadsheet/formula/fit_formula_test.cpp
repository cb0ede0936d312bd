#include "platform/spreadsheet/formula/FitFormula.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/formula/Tokens.h"

namespace excelexp::formula {
namespace {

const FormulaPosition kPosition = {1, "Pay roll", 12, 3};

/// "SUM(B1:B2,B4:B5,...)"
std::string CallOfRanges(const std::string& function, int ranges) {
  std::string text = function + "(";
  for (int i = 0; i < ranges; ++i) {
    text +=
        (i == 0 ? "B" : ",B") + std::to_string(3 * i % 65000 + 1) + ":B" + std::to_string(3 * i % 65000 + 2);
  }
  return text + ")";
}

std::size_t MostArguments(const Node& node) {
  std::size_t most = node.type == NodeType::kCall ? node.children.size() : 0;
  for (const auto& child : node.children) most = std::max(most, MostArguments(*child));
  return most;
}

void ExpectWithin(const FittedFormula& fitted, const FormulaLimits& limits) {
  std::vector<const Expression*> parts = {fitted.expression.get()};
  for (const HiddenName& name : fitted.names) parts.push_back(name.expression.get());
  for (const Expression* part : parts) {
    EXPECT_LE(limits.measure(part->Root()), limits.max_size);
    EXPECT_LE(MostArguments(part->Root()), static_cast<std::size_t>(limits.max_arguments));
  }
}

TEST(FitFormula, LeavesAloneWhatFits) {
  for (const char* text : {"SUM(A1:A3)", "IF(A1,SUM(B1,C1),\"\")"}) {
    const auto parsed = Parse(text);
    EXPECT_EQ(FitFormula(parsed, kXlsLimits, kPosition).expression, parsed);
  }
  const auto thirty = Parse(CallOfRanges("SUM", 30));
  EXPECT_EQ(FitFormula(thirty, kXlsLimits, kPosition).expression, thirty);
}

// A range on a named sheet weighs 15 and 1 between two, so a name of .xls holds about 110 of them.
TEST(FitFormula, NestsCallsAndThenDefinesNames) {
  const struct {
    int ranges;
    const FormulaLimits* limits;
    std::size_t names;
  } cases[] = {
      {31, &kXlsLimits, 0},    {100, &kXlsLimits, 0},     {200, &kXlsLimits, 2}, {1000, &kXlsLimits, 10},
      {5000, &kXlsLimits, 46}, {50000, &kXlsLimits, 457}, {31, &kXlsxLimits, 0}, {300, &kXlsxLimits, 0},
      {1000, &kXlsxLimits, 4}, {5000, &kXlsxLimits, 18},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.ranges) + (c.limits == &kXlsLimits ? " .xls" : " .xlsx"));
    const FittedFormula fitted =
        FitFormula(Parse("IF(A1=\"x\"," + CallOfRanges("SUM", c.ranges) + ",\"\")"), *c.limits, kPosition);
    ExpectWithin(fitted, *c.limits);
    EXPECT_EQ(fitted.names.size(), c.names);
  }
}

TEST(FitFormula, ShowsItsShapes) {
  const FormulaLimits three = {3, 1000, TokenSize};
  const struct {
    const char* formula;
    const char* fitted;
  } cases[] = {
      {"SUM(A1,B1,C1,D1)", "SUM(SUM(A1,B1,C1),SUM(D1))"},
      {"SUM(A1,B1,C1,D1,E1,F1,G1,H1,I1,J1)",
       "SUM(SUM(SUM(A1,B1,C1),SUM(D1,E1,F1),SUM(G1,H1,I1)),SUM(SUM(J1)))"},
      {"COUNT(A1,B1,C1,D1)", "SUM(COUNT(A1,B1,C1),COUNT(D1))"},
      {"1+COUNTA(A1,B1,C1,\"x\")", "1+SUM(COUNTA(A1,B1,C1),COUNTA(\"x\"))"},
      {"MIN(A1,B1,C1,D1)", "MIN((A1,B1,C1,D1))"},
      {"MAX(A1,5,C1,D1)", "MAX(5,(A1,C1,D1))"},
      {"SUM(A1,B1,MIN(A1,A2,A3,A4),D1)", "SUM(SUM(A1,B1,MIN((A1,A2,A3,A4))),SUM(D1))"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Print(*FitFormula(Parse(c.formula), three, kPosition).expression), c.fitted) << c.formula;
  }
}

TEST(FitFormula, NamesHoldAbsoluteReferencesOfTheirSheet) {
  const FormulaLimits small = {30, 60, TokenSize};
  const FittedFormula sum = FitFormula(Parse("SUM(A1,$B$2:C3,T!D4,E5,F6,G7,H8)"), small, kPosition);
  ASSERT_EQ(sum.names.size(), 2U);
  EXPECT_EQ(Print(*sum.expression), "SUM(_TOTAL_S1R12C3_1,_TOTAL_S1R12C3_2)");
  EXPECT_EQ(sum.names[0].name, "_TOTAL_S1R12C3_1");
  EXPECT_EQ(Print(*sum.names[0].expression), "SUM('Pay roll'!$A$1,'Pay roll'!$B$2:$C$3,T!$D$4)");
  EXPECT_EQ(Print(*sum.names[1].expression),
            "SUM('Pay roll'!$E$5,'Pay roll'!$F$6,'Pay roll'!$G$7,'Pay roll'!$H$8)");

  const FittedFormula least = FitFormula(Parse("MIN(A1,B2,C3,D4,E5,F6,G7,H8,7)"), small, kPosition);
  ASSERT_EQ(least.names.size(), 2U);
  EXPECT_EQ(Print(*least.expression), "MIN(7,_TOTAL_S1R12C3_1,_TOTAL_S1R12C3_2)");
  EXPECT_EQ(Print(*least.names[0].expression),
            "('Pay roll'!$A$1,'Pay roll'!$B$2,'Pay roll'!$C$3,'Pay roll'!$D$4)");
}

TEST(FitFormula, SaysWhatCannotFit) {
  std::string chain = "A1";
  for (int i = 0; i < 500; ++i) chain += "+A1";
  EXPECT_THROW(FitFormula(Parse(chain), kXlsLimits, kPosition), SpreadsheetError);
  EXPECT_NO_THROW(FitFormula(Parse(chain), kXlsxLimits, kPosition));
  EXPECT_THROW(FitFormula(Parse(CallOfRanges("AND", 31)), kXlsLimits, kPosition), SpreadsheetError);
  EXPECT_NO_THROW(FitFormula(Parse(CallOfRanges("AND", 31)), kXlsxLimits, kPosition));
  EXPECT_THROW(FitFormula(Parse("SUM(\"" + std::string(255, 'x') + "\")"), {30, 100, TokenSize}, kPosition),
               SpreadsheetError);
}

}  // namespace
}  // namespace excelexp::formula
