#include "platform/spreadsheet/formula/Tokens.h"

#include <gtest/gtest.h>

#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp::formula {
namespace {

/// Numbers what it is asked for and notes it.
class NotingContext : public TokenContext {
 public:
  std::uint16_t Sheets(const std::string& sheet, const std::string& last_sheet) override {
    noted += "[" + sheet + (last_sheet.empty() ? "" : ":" + last_sheet) + "]";
    return 3;
  }
  std::uint16_t Name(const std::string& name, NameKind kind) override {
    noted += (kind == NameKind::kFunction ? "[call " : "[name ") + name + "]";
    return 5;
  }
  ExternalName AddInFunction(const std::string& name) override {
    noted += "[add-in " + name + "]";
    return {1, 2};
  }

  std::string noted;
};

std::string Hex(const std::vector<std::uint8_t>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const std::uint8_t byte : bytes) hex += {kDigits[byte >> 4], kDigits[byte & 15]};
  return hex;
}

// The bytes of the first group were written by another writer (xlwt 1.3.0) for the same formulas; those of
// the second follow the published tables, as the comments say.
TEST(FormulaTokens, AreWhatTheFormatAsksFor) {
  const struct {
    const char* formula;
    const char* bytes;
    const char* noted = "";
  } cases[] = {
      {"1+2", "1e01001e020003"},
      {"A1", "44000000c0"},
      {"$A$1:B2", "4500000100000001c0"},
      {"OR(CELL(\"format\",A1)=\",2\",CELL(\"format\",A1)=\",0\")",
       "19010000170600666f726d617424000000c042027d001702002c320b170600666f726d617424000000c042027d001702002c3"
       "00b42022500"},
      {"SUMPRODUCT(A1:A3*B1:B3)", "650000020000c000c0650000020001c001c0054201e400"},
      {"ABS(A1)", "44000000c0411800"},
      {"-A1^2", "44000000c0131e020007"},
      {"50%", "1e320014"},
      {"ROUND(A1,2)", "44000000c01e0200411b00"},
      {"VLOOKUP(A1,B1:C9,2,FALSE)", "44000000c0250000080001c002c01e02001d0042046600"},
      {"1.5", "1f000000000000f83f"},
      {"70000", "1f000000000017f140"},
      {"65535", "1effff"},
      {"\"ä\"", "170100e4"},
      {"\"€\"", "170101ac20"},
      {"A1&\"x\"", "44000000c01701007808"},
      {"SUMIF(A1:A9,\">1\",B1:B9)", "250000080000c000c01702003e31250000080001c001c042035901"},
      {"SUM(INDEX(A1:C3,1,1),2)", "250000020000c002c01e01001e010022031d001e020042020400"},
      {"(A1+B1)*2", "44000000c044000001c003151e020005"},

      // Arguments of the class R are references, also inside IF and CHOOSE (function table).
      {"SUM(A1,B1)", "24000000c024000001c042020400"},
      {"SUM(IF(A1,B1,C1))",
       "44000000c01902090024000001c019080c0024000002c019080300220301004201"
       "0400"},
      // IF gives a reference where one is wanted; a cell wants a value.
      {"IF(A1>1,\"x\",\"y\")", "44000000c01e01000d190208001701007819080b00170100791908030042030100"},
      {"IF(A1,B1)", "44000000c01902090024000001c01908030042020100"},
      // tAttrChoose: jumps from the start of the table; tAttrSkip: behind the call, less one (3.10).
      {"CHOOSE(2,1,2,3)",
       "1e02001904030008000f0016001d00"
       "1e010019081100"
       "1e020019080a00"
       "1e030019080300"
       "42046400"},
      {"SUMPRODUCT(ABS(A1:A3))", "650000020000c000c06118004201e400"},
      {"NOW()", "19010000414a00"},
      {"TRUE", "1d01"},
      {"#DIV/0!", "1c07"},
      {"IF(A1,,2)",
       "44000000c01902050016"
       "19080a00"
       "1e0200190803004203"
       "0100"},
      // A union is announced with its size and shown in parentheses (3.9, tMemFunc).
      {"SUM((A1,B2))", "290b0024000000c024010001c0101542010400"},
      {"A1:B2 B2:C3", "491300250000010000c001c0250100020001c002c00f"},
      {"Sheet2!A1+Sheet1:Sheet3!$B$2:C3",
       "5a0300000000c05b03000100020001"
       "0002c003",
       "[Sheet2][Sheet1:Sheet3]"},
      {"A:A",
       "450000ffff0040"
       "0040"},
      {"$3:$3", "45020002000000ff00"},
      {"my_name+1", "43050000001e010003", "[name MY_NAME]"},
      {"IFERROR(A1,0)", "230500000024000000c01e00004203ff00", "[call _xlfn.IFERROR]"},
      {"FOO(1)", "23050000001e01004202ff00", "[call FOO]"},
      {"EDATE(A1,1)",
       "390100020000"
       "0024000000c01e01004203ff00",
       "[add-in EDATE]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.formula);
    NotingContext context;
    EXPECT_EQ(Hex(EncodeTokens(*Parse(c.formula), context)), c.bytes);
    EXPECT_EQ(context.noted, c.noted);
  }
}

TEST(FormulaTokens, NamesTakeFixedReferencesOnly) {
  NotingContext context;
  EXPECT_EQ(Hex(EncodeTokens(*Parse("SUM(T!$A$1:$A$3)"), context, FormulaPlace::kName)),
            "3b030000000200000000004201"
            "0400");
  for (const char* formula : {"SUM(T!A$1)", "$A$1", "SUM(T!$A$1:$A3)"}) {
    EXPECT_THROW(EncodeTokens(*Parse(formula), context, FormulaPlace::kName), SpreadsheetError) << formula;
  }
}

std::string SumOf(int arguments) {
  std::string text = "SUM(A1";
  for (int i = 1; i < arguments; ++i) text += ",A1";
  return text + ")";
}

TEST(FormulaTokens, RefusesWhatTheFormatDoesNotHold) {
  NotingContext context;
  EXPECT_NO_THROW(EncodeTokens(*Parse("IV65536"), context));
  EXPECT_THROW(EncodeTokens(*Parse("IW1"), context), SpreadsheetError);
  EXPECT_THROW(EncodeTokens(*Parse("A65537"), context), SpreadsheetError);
  EXPECT_NO_THROW(EncodeTokens(*Parse(SumOf(30)), context));
  EXPECT_THROW(EncodeTokens(*Parse(SumOf(31)), context), SpreadsheetError);
  std::string chain = "A1";
  for (int i = 1; i < 225; ++i) chain += "+A1";  // 225 cells of 7 and 224 operators of 1: 1,799
  EXPECT_NO_THROW(EncodeTokens(*Parse(chain), context));
  EXPECT_THROW(EncodeTokens(*Parse(chain + "+1"), context), SpreadsheetError);
}

TEST(FormulaTokens, SizesAreThoseOfTheApplication) {
  const struct {
    const char* formula;
    std::size_t size;
  } cases[] = {{"A1", 7},      {"A1:B2", 13}, {"T!A1", 9}, {"T!A1:B2", 15},
               {"\"abc\"", 9}, {"\"€\"", 5},  {"1+2", 7}};
  for (const auto& c : cases) EXPECT_EQ(TokenSize(Parse(c.formula)->Root()), c.size) << c.formula;
}

}  // namespace
}  // namespace excelexp::formula
