#include <gsf/gsf-infile-zip.h>
#include <gsf/gsf-input-memory.h>

#include <cstdlib>
#include <limits>

#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/xlsx/XmlText.h"

namespace excelexp {
namespace {

TEST(XmlText, CarriesEveryCharacter) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"plain", "plain", "plain"},
      {"<a & \"b\">", "&lt;a &amp; \"b\"&gt;", "&lt;a &amp; &quot;b&quot;&gt;"},
      {"\t\n", "\t\n", "_x0009__x000A_"},
      {"a\rb\x01\x1F", "a_x000D_b_x0001__x001F_", "a_x000D_b_x0001__x001F_"},
      {"_x0041_ _xAbCd_", "_x005F_x0041_ _x005F_xAbCd_", "_x005F_x0041_ _x005F_xAbCd_"},
      {"_x005F_x0041_", "_x005F_x005F_x005F_x0041_", "_x005F_x005F_x005F_x0041_"},
      {"_x004 _x00G1_ _X0041_", "_x004 _x00G1_ _X0041_", "_x004 _x00G1_ _X0041_"},
      {"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD\xEF", "_xFFFE__xFFFF_\xEF\xBF\xBD\xEF",
       "_xFFFE__xFFFF_\xEF\xBF\xBD\xEF"},
  };
  for (const auto& [text, element, attribute] : cases) {
    std::string xml;
    xlsx::AppendText(xml, text);
    EXPECT_EQ(xml, element);
    xml.clear();
    xlsx::AppendAttribute(xml, text);
    EXPECT_EQ(xml, attribute);
  }
}

TEST(XmlText, NumbersReadBackAsTheSame) {
  for (const double number : {0.1 + 0.2, 1.0 / 3.0, 1e300, 5e-324, -12345678.91, 9007199254740993.0,
                              std::numeric_limits<double>::max()}) {
    std::string xml;
    xlsx::AppendNumber(xml, number);
    EXPECT_EQ(std::strtod(xml.c_str(), nullptr), number) << xml;
    EXPECT_LE(xml.size(), 24u);
  }
}

std::string ReadPart(const std::string& file, const std::vector<const char*>& path) {
  GsfInput* part = gsf_input_memory_new(reinterpret_cast<const guint8*>(file.data()),
                                        static_cast<gsf_off_t>(file.size()), FALSE);
  GsfInput* const memory = part;
  part = GSF_INPUT(gsf_infile_zip_new(memory, nullptr));
  g_object_unref(memory);
  for (const char* name : path) {
    GsfInput* const folder = part;
    part = gsf_infile_child_by_name(GSF_INFILE(folder), name);
    g_object_unref(folder);
  }
  const auto size = static_cast<std::size_t>(gsf_input_size(part));
  const guint8* bytes = gsf_input_read(part, size, nullptr);
  std::string text(reinterpret_cast<const char*>(bytes), size);
  g_object_unref(part);
  return text;
}

class XlsxWriter : public ::testing::Test {
 protected:
  XlsxWriter() { workbook_.Sheets().push_back(std::make_unique<Sheet>("A & B")); }
  Sheet& TheSheet() { return *workbook_.Sheets()[0]; }

  Cell& Put(int row, int column, CellType type) {
    Cell& cell = TheSheet().At(row, column);
    cell.type = type;
    return cell;
  }
  void Text(int row, int column, std::string_view text) {
    Put(row, column, CellType::kText).text = workbook_.InternText(text);
  }
  void AddFormula(int row, int column, const std::string& text, FormulaResult result) {
    Put(row, column, CellType::kFormula).formula =
        workbook_.AddFormula({text, formula::Parse(text), std::move(result)});
  }
  /// A part without the header and the elements that every part of its kind has.
  std::string SheetData() {
    const std::string xml = ReadPart(SerializeXlsx(workbook_), {"xl", "worksheets", "sheet1.xml"});
    const std::size_t begin = xml.find("<sheetData>");
    return xml.substr(begin, xml.find("<pageMargins") - begin);
  }

  Workbook workbook_;
};

TEST_F(XlsxWriter, StoresResultsByTheirKind) {
  using Type = FormulaResult::Type;
  AddFormula(1, 1, "=sum(B1,2)", {Type::kNumber, 0.1 + 0.2, "", {}});
  AddFormula(2, 1, "=1>2", {Type::kBoolean, 0.0, "", {}});
  AddFormula(3, 1, "=1/0", {Type::kError, 0.0, "", ErrorCode::kDivZero});
  AddFormula(4, 1, "=\"<\"", {Type::kText, 0.0, " <", {}});
  AddFormula(5, 1, "=Unheard(1)", {Type::kUnknown, 0.0, "", {}});
  AddFormula(6, 1, "=IFNA(1,2)", {Type::kNumber, 1.0, "", {}});
  EXPECT_EQ(SheetData(),
            "<sheetData>"
            "<row r=\"1\"><c r=\"A1\"><f>SUM(B1,2)</f><v>0.30000000000000004</v></c></row>"
            "<row r=\"2\"><c r=\"A2\" t=\"b\"><f>1&gt;2</f><v>0</v></c></row>"
            "<row r=\"3\"><c r=\"A3\" t=\"e\"><f>1/0</f><v>#DIV/0!</v></c></row>"
            "<row r=\"4\"><c r=\"A4\" t=\"str\"><f>\"&lt;\"</f><v> &lt;</v></c></row>"
            "<row r=\"5\"><c r=\"A5\" t=\"str\"><f>UNHEARD(1)</f><v></v></c></row>"
            "<row r=\"6\"><c r=\"A6\"><f>_xlfn.IFNA(1,2)</f><v>1</v></c></row>"
            "</sheetData>");
}

TEST_F(XlsxWriter, WritesRowsThatHaveSomethingToSay) {
  CellFormat bold;
  bold.bold = true;
  const FormatId id = workbook_.InternFormat(bold);
  Put(2, 3, CellType::kEmpty).format = id;
  TheSheet().SetRowHeight(4, 20.25);
  TheSheet().SetRowHeight(5, 0);
  TheSheet().At(6, 1);
  TheSheet().AddMerge({2, 3, 3, 28});
  EXPECT_EQ(SheetData(),
            "<sheetData><row r=\"2\"><c r=\"C2\" s=\"1\"/></row>"
            "<row r=\"4\" ht=\"20.25\" customHeight=\"1\"></row><row r=\"5\" hidden=\"1\"></row></sheetData>"
            "<mergeCells count=\"1\"><mergeCell ref=\"C2:AB3\"/></mergeCells>");
}

/// A text that was overwritten may have been a salary of somebody else.
TEST_F(XlsxWriter, KeepsNoTextThatNoCellShows) {
  Text(1, 1, "secret");
  Text(1, 1, "shown");
  Text(2, 1, "shown");
  const std::string strings = ReadPart(SerializeXlsx(workbook_), {"xl", "sharedStrings.xml"});
  EXPECT_THAT(strings, ::testing::HasSubstr("count=\"2\" uniqueCount=\"1\"><si><t>shown</t></si></sst>"));
}

TEST_F(XlsxWriter, MovesPiecesOfALongTotalIntoHiddenNames) {
  std::string sum = "=SUM(A3";
  for (int row = 5; row <= 9999; row += 2) sum += ",A" + std::to_string(row);
  AddFormula(1, 1, sum + ")", {FormulaResult::Type::kNumber, 7.0, "", {}});
  const std::string file = SerializeXlsx(workbook_);
  EXPECT_THAT(
      ReadPart(file, {"xl", "workbook.xml"}),
      ::testing::HasSubstr("</sheets><definedNames><definedName name=\"_TOTAL_S1R1C1_1\" hidden=\"1\">"));
  EXPECT_THAT(SheetData(), ::testing::EndsWith("</f><v>7</v></c></row></sheetData>"));
  EXPECT_LT(SheetData().size(), 8400u);
}

TEST_F(XlsxWriter, ManyRowsPassThroughTheBuffer) {
  for (int row = 1; row <= 20000; ++row) Put(row, 1, CellType::kNumber).number = row + 0.25;
  const std::string data = SheetData();
  std::size_t cells = 0;
  for (std::size_t at = data.find("<c r="); at != std::string::npos; at = data.find("<c r=", at + 1)) ++cells;
  EXPECT_EQ(cells, 20000u);
  EXPECT_THAT(data, ::testing::HasSubstr("<c r=\"A20000\"><v>20000.25</v></c></row></sheetData>"));
}

}  // namespace
}  // namespace excelexp
