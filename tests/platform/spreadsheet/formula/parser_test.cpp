#include <gtest/gtest.h>

#include <random>

#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/formula/FunctionTable.h"

namespace excelexp::formula {
namespace {

TEST(FormulaParser, PrintsWhatItRead) {
  const struct {
    const char* text;
    const char* printed;
  } cases[] = {
      {"=1", "1"},
      {"1.50", "1.5"},
      {" = 1e3 + .5", "1000+0.5"},
      {"1E+20*1e-7", "1E+20*1E-07"},
      {"a1", "A1"},
      {"$a$1:b2", "$A$1:B2"},
      {"B2:$A$1", "$A$1:B2"},
      {"$B1:A$2", "A1:$B$2"},
      {"XFD1048576", "XFD1048576"},
      {"XFE1", "XFE1"},          // beyond the last column: a name
      {"A1048577", "A1048577"},  // beyond the last row: a name
      {"A:C", "A:C"},
      {"$C:A", "A:$C"},
      {"3:$5", "3:$5"},
      {"Sheet2!A1", "Sheet2!A1"},
      {"'It''s'!A1:B2", "'It''s'!A1:B2"},
      {"Sheet1:Sheet3!A1", "Sheet1:Sheet3!A1"},
      {"'Jan 1:Dec 1'!B2:B3", "'Jan 1:Dec 1'!B2:B3"},
      {"'Sheet2'!A:A", "Sheet2!A:A"},
      {"AB12!A1", "'AB12'!A1"},
      {"Löhne!A1", "'Löhne'!A1"},
      {"sum( A1 , B2:C3 )", "SUM(A1,B2:C3)"},
      {"SUM (A1)", "SUM(A1)"},
      {"SUM((A1,B2),C3)", "SUM((A1,B2),C3)"},
      {"A1:C3 B2:D4", "A1:C3 B2:D4"},
      {"SUM(A1:C3  B2:D4 )", "SUM(A1:C3 B2:D4)"},
      {"A1 : B2", "A1:B2"},
      {"INDEX(A1:A9,2):A5", "INDEX(A1:A9,2):A5"},
      {"LOG10(100)", "LOG10(100)"},
      {"LOG10+1", "LOG10+1"},  // a cell
      {"\"say \"\"hi\"\"\"", "\"say \"\"hi\"\"\""},
      {"\"\"", "\"\""},
      {"\"ä,(\"&A1", "\"ä,(\"&A1"},
      {"--A1", "--A1"},
      {"- + -2", "-+-2"},
      {"-2^2", "-2^2"},
      {"2^-2", "2^-2"},
      {"5%%", "5%%"},
      {"A1<>B1", "A1<>B1"},
      {"A1>=B1", "A1>=B1"},
      {"true", "TRUE"},
      {"TRUE()", "TRUE()"},
      {"#ref!", "#REF!"},
      {"#DIV/0!+#N/A", "#DIV/0!+#N/A"},
      {"Sheet1!#REF!", "#REF!"},
      {"IF(A1,,2)", "IF(A1,,2)"},
      {"IF(A1,)", "IF(A1,)"},
      {"NOW()", "NOW()"},
      {"my_name.x", "MY_NAME.X"},
      {"foo(1)", "FOO(1)"},
      {"_xlfn.IFNA(A1,2)", "IFNA(A1,2)"},
      {"STDEV.S(A1:A2)", "STDEV.S(A1:A2)"},
      {"(1+2)*3", "(1+2)*3"},
      {"((A1))", "((A1))"},
      {"=IF(OR(CELL(\"format\",F7)=\",2\", CELL(\"format\",F7)=\",0\"),SUM(F7:F9, F12:F20), \"\")",
       "IF(OR(CELL(\"format\",F7)=\",2\",CELL(\"format\",F7)=\",0\"),SUM(F7:F9,F12:F20),\"\")"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const std::string printed = Print(*Parse(c.text));
    EXPECT_EQ(printed, c.printed);
    EXPECT_EQ(Print(*Parse(printed)), printed);
  }
}

/// Shows which operand each operator takes.
std::string Grouped(const Node& node) {
  if (node.type == NodeType::kUnary) {
    const std::string inside = Grouped(*node.children[0]);
    if (node.op == Operator::kPercent) return "(" + inside + "%)";
    return (node.op == Operator::kMinus ? "(-" : "(+") + inside + ")";
  }
  if (node.type != NodeType::kBinary) return Print(node);
  Node bare;
  bare.type = node.type;
  bare.op = node.op;
  for (int i = 0; i < 2; ++i) bare.children.push_back(MakeName(""));
  return "(" + Grouped(*node.children[0]) + Print(bare) + Grouped(*node.children[1]) + ")";
}

TEST(FormulaParser, BindsAsTheApplicationDoes) {
  const struct {
    const char* text;
    const char* grouped;
  } cases[] = {
      {"1+2*3", "(1+(2*3))"},
      {"1-2-3", "((1-2)-3)"},
      {"2^3^2", "((2^3)^2)"},
      {"-2^2", "((-2)^2)"},
      {"2*-3", "(2*(-3))"},
      {"-5%", "((-5)%)"},
      {"2^5%", "(2^(5%))"},
      {"A1&B1=C1", "((A1&B1)=C1)"},
      {"1+2&3", "((1+2)&3)"},
      {"A1=B1<>C1", "((A1=B1)<>C1)"},
      {"8/4/2", "((8/4)/2)"},
      {"--A1", "(-(-A1))"},
      {"A1:B2 B1:C3:C4", "(A1:B2 (B1:C3:C4))"},
  };
  for (const auto& c : cases) EXPECT_EQ(Grouped(Parse(c.text)->Root()), c.grouped) << c.text;
}

TEST(FormulaParser, NamesThePositionOfAnError) {
  const struct {
    const char* text;
    int position;
    const char* message;
  } cases[] = {
      {"", 1, "the formula is empty"},
      {"=", 2, "the formula is empty"},
      {"=1+", 4, "the formula ends where an operand is expected"},
      {"=(1+2", 2, "'(' is never closed"},
      {"=SUM(A1", 5, "'(' is never closed"},
      {"=1+2)", 5, "unexpected ')'"},
      {"=A1,B1", 4, "unexpected ','"},
      {"=1 2", 4, "unexpected '2'"},
      {"=\"a", 2, "the text has no closing quote"},
      {"=ä+~", 4, "unexpected '~'"},
      {"=\"ä\"+;", 6, "unexpected ';'"},
      {"=*2", 2, "unexpected '*'"},
      {"=1+*2", 4, "unexpected '*'"},
      {"=#FOO!", 2, "'#' begins no error value"},
      {"={1,2}", 2, "array constants are not supported"},
      {"=[Book]S!A1", 2, "references to other workbooks and to tables are not supported"},
      {"=Sheet1!", 9, "a cell is expected after the sheet name"},
      {"='Sheet1'A1", 2, "a sheet name in quotes and '!' are expected"},
      {"=ABS(1,2)", 8, "too many arguments for ABS"},
      {"=ROUND(1)", 2, "too few arguments for ROUND"},
      {"=IF(1,2,3,4)", 11, "too many arguments for IF"},
      {"=PI(1)", 5, "too many arguments for PI"},
      {"=SUM()", 2, "too few arguments for SUM"},
      {"=(A1,1)", 5, "both sides of ',' must be cells"},
      {"=1:A1", 3, "both sides of ':' must be cells"},
      {"=1A", 3, "a number is followed by 'A'"},
      {"=1e400", 2, "the number is too large or too small"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    try {
      Parse(c.text);
      ADD_FAILURE() << "it parsed";
    } catch (const ParseError& error) {
      EXPECT_EQ(error.Position(), c.position);
      EXPECT_STREQ(error.what(), c.message);
    }
  }
}

std::string Repeated(std::string_view part, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

TEST(FormulaParser, BoundsItsDepth) {
  EXPECT_NO_THROW(Parse(Repeated("(", 256) + "1" + Repeated(")", 256)));
  EXPECT_THROW(Parse(Repeated("(", 257) + "1" + Repeated(")", 257)), ParseError);
  EXPECT_THROW(Parse(Repeated("(", 1000000)), ParseError);
  EXPECT_THROW(Parse(Repeated("ABS(", 1000000)), ParseError);
  EXPECT_NO_THROW(Parse(Repeated("1+", 1000) + "1"));
  EXPECT_THROW(Parse(Repeated("1+", 1000000) + "1"), ParseError);
  EXPECT_THROW(Parse(Repeated("-", 1000000) + "1"), ParseError);
  EXPECT_THROW(Parse("1" + Repeated("%", 1000000)), ParseError);
  EXPECT_NO_THROW(Parse("SUM(" + Repeated("A1,", 100000) + "A1)"));
}

TEST(FormulaParser, TextsHaveAtMost255Units) {
  EXPECT_NO_THROW(Parse("\"" + Repeated("ä", 255) + "\""));
  EXPECT_THROW(Parse("\"" + Repeated("ä", 256) + "\""), ParseError);
  EXPECT_THROW(Parse("\"" + Repeated("😀", 128) + "\""), ParseError);
}

TEST(FormulaParser, TokenSoupParsesTheSameAgainOrIsRefused) {
  const std::string_view pieces[] = {"A1",    "$B$2",       "A:C",  "1:3", "SUM(", "IF(",  "ABS(", "(",
                                     ")",     ",",          ":",    " ",   "+",    "-",    "*",    "/",
                                     "^",     "&",          "=",    "<>",  "%",    "1",    "2.5",  "1E5",
                                     "\"x\"", "\"",         "#N/A", "#",   "TRUE", "name", "!",    "'S 1'!",
                                     "T!",    "Sheet1:S2!", "{",    "ä",   ".",    "FOO(", "\x80", "\n"};
  std::mt19937 random(20240229);
  int parsed = 0;
  for (int round = 0; round < 60000; ++round) {
    std::string text;
    for (auto left = 1 + random() % 9; left > 0; --left) text += pieces[random() % std::size(pieces)];
    try {
      const std::string printed = Print(*Parse(text));
      ++parsed;
      ASSERT_EQ(Print(*Parse(printed)), printed) << text;
    } catch (const ParseError& error) {
      ASSERT_GE(error.Position(), 1) << text;
      ASSERT_LE(error.Position(), static_cast<int>(text.size()) + 1) << text;
    }
  }
  EXPECT_GT(parsed, 1000);
}

TEST(FormulaMoved, MovesRelativeReferences) {
  const struct {
    const char* text;
    int rows;
    int columns;
    const char* moved;
  } cases[] = {
      {"A1+$A1+A$1+$A$1", 2, 3, "D3+$A3+D$1+$A$1"},
      {"SUM(B2:C3)", -1, -1, "SUM(A1:B2)"},
      {"SUM(B2:C3)", -2, 0, "SUM(#REF!)"},
      {"Sheet2!A1*2", 1, 0, "Sheet2!A2*2"},
      {"A:B", 5, 1, "B:C"},
      {"1:2", 3, 9, "4:5"},
      {"A$1:A5", 0, 1, "B$1:B5"},
      {"A$3:A4", -2, 0, "A2:A$3"},
      {"XFD1", 0, 1, "#REF!"},
      {"A1048576", 1, 0, "#REF!"},
      {"A1", 2147483647, 0, "#REF!"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Print(*Moved(*Parse(c.text), c.rows, c.columns)), c.moved) << c.text;
  }
}

TEST(FormulaPrinter, StoredNamesOfLaterFunctionsHaveAPrefix) {
  EXPECT_EQ(Print(*Parse("IFNA(IFERROR(STDEV.S(A1:A2),1),EDATE(A1,1))"), NameStyle::kStored),
            "_xlfn.IFNA(IFERROR(_xlfn.STDEV.S(A1:A2),1),EDATE(A1,1))");
}

TEST(FunctionTable, KnowsNumbersAndStorage) {
  const struct {
    const char* name;
    int index;
  } cases[] = {{"COUNT", 0},    {"IF", 1},         {"SUM", 4},    {"AVERAGE", 5},  {"MIN", 6},
               {"MAX", 7},      {"ROUND", 27},     {"AND", 36},   {"OR", 37},      {"CELL", 125},
               {"COUNTA", 169}, {"SUBTOTAL", 344}, {"VARA", 367}, {"IFERROR", 255}};
  for (const auto& c : cases) {
    const FunctionInfo* function = FindFunction(c.name);
    ASSERT_NE(function, nullptr) << c.name;
    EXPECT_EQ(function->index, c.index) << c.name;
    EXPECT_EQ(function->index == kCalledByName, function->storage != FunctionStorage::kBuiltIn) << c.name;
  }
  EXPECT_EQ(FindFunction("sum"), nullptr);
  EXPECT_EQ(FindFunction("SUMM"), nullptr);
  EXPECT_EQ(FindFunction(""), nullptr);
}

}  // namespace
}  // namespace excelexp::formula
