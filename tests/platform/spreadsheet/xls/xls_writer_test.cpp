#include "platform/spreadsheet/BExcelAPI.h"
#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/xls/RecordStream.h"
#include "platform/spreadsheet/xls/RecordTypes.h"
#include "platform/spreadsheet/xls/xls_reader.h"

namespace excelexp::xls {
namespace {

class XlsWriter : public ::testing::Test {
 protected:
  Sheet& AddSheet(const std::string& name) {
    return *workbook_.Sheets().emplace_back(std::make_unique<Sheet>(name));
  }
  static void PutNumber(Sheet& sheet, int row, int column, double number) {
    Cell& cell = sheet.At(row, column);
    cell.type = CellType::kNumber;
    cell.number = number;
  }
  Formula& PutFormula(Sheet& sheet, int row, int column, const std::string& text) {
    Cell& cell = sheet.At(row, column);
    cell.type = CellType::kFormula;
    cell.formula = workbook_.AddFormula({text, formula::Parse(text), {}});
    return workbook_.FormulaAt(cell.formula);
  }
  FormatId Bold() {
    CellFormat format;
    format.bold = true;
    return workbook_.InternFormat(format);
  }

  Workbook workbook_;
};

/// The cell records as "type first-last" with 0-based columns.
std::string CellText(const std::vector<ReadRecord>& records) {
  const std::map<std::uint16_t, const char*> kinds = {
      {kRk, "RK"},          {kMulRk, "MULRK"},       {kNumber, "NUMBER"},
      {kBlank, "BLANK"},    {kMulBlank, "MULBLANK"}, {kLabelSst, "TEXT"},
      {kFormula, "FORMULA"}};
  std::string text;
  for (const ReadRecord& record : records) {
    const auto kind = kinds.find(record.type);
    if (kind == kinds.end()) continue;
    const bool several = record.type == kMulRk || record.type == kMulBlank;
    const std::uint32_t last = several ? record.U16(record.data.size() - 2) : record.U16(2);
    text +=
        std::string(kind->second) + " " + std::to_string(record.U16(2)) + "-" + std::to_string(last) + "\n";
  }
  return text;
}

TEST_F(XlsWriter, CellsShareRecordsInRuns) {
  Sheet& sheet = AddSheet("S");
  const FormatId bold = Bold();
  for (const int column : {1, 2, 3, 5, 7, 8}) PutNumber(sheet, 1, column, column);
  PutNumber(sheet, 1, 6, 1.0 / 3);
  sheet.At(1, 9).format = bold;
  for (const int column : {11, 12, 13}) sheet.At(1, column).format = bold;
  PutFormula(sheet, 1, 14, "=A1");
  for (int column = 15; column <= 256; ++column) PutNumber(sheet, 1, column, 0.01);
  EXPECT_EQ(
      CellText(SavedRecords(workbook_)),
      "MULRK 0-2\nRK 4-4\nNUMBER 5-5\nMULRK 6-7\nBLANK 8-8\nMULBLANK 10-12\nFORMULA 13-13\nMULRK 14-255\n");
}

TEST_F(XlsWriter, AnEmptySheetHasNoRows) {
  AddSheet("S");
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  EXPECT_TRUE(OfType(records, kRow).empty());
  EXPECT_EQ(OfType(records, kDimensions).at(0).data, std::string(14, '\0'));
  EXPECT_EQ(OfType(records, kIndex).at(0).data.size(), 16U);
  EXPECT_TRUE(OfType(records, kSst).empty());
}

/// Follows INDEX to each block's DBCELL, from there to its first ROW and on to the first cell of each row.
void ExpectBlocksLeadToTheirCells(const std::vector<ReadRecord>& records) {
  std::map<std::size_t, const ReadRecord*> by_position;
  for (const ReadRecord& record : records) by_position[record.position] = &record;
  const ReadRecord index = OfType(records, kIndex).at(0);
  EXPECT_EQ(by_position.at(index.U32(12))->type, kDefColWidth);
  EXPECT_EQ(OfType(records, kDbCell).size(), (index.data.size() - 16) / 4);
  std::uint32_t rows_found = 0;
  for (std::size_t at = 16; at < index.data.size(); at += 4) {
    const ReadRecord& block = *by_position.at(index.U32(at));
    ASSERT_EQ(block.type, kDbCell);
    if (block.U32(0) == 0) continue;
    std::size_t position = block.position - block.U32(0);
    ASSERT_EQ(by_position.at(position)->type, kRow);
    position += 20;
    std::uint32_t last_row = 0;
    for (std::size_t i = 4; i < block.data.size(); i += 2) {
      position += block.U16(i);
      const ReadRecord& cell = *by_position.at(position);
      ASSERT_TRUE(cell.type == kRk || cell.type == kMulRk) << cell.type;
      ASSERT_TRUE(i == 4 || cell.U16(0) > last_row);
      last_row = cell.U16(0);
      ++rows_found;
    }
  }
  EXPECT_EQ(rows_found, OfType(records, kRow).size());
}

TEST_F(XlsWriter, RowBlocksLeadToTheirCells) {
  for (const int rows : {1, 31, 32, 33, 64, 65536}) {
    SCOPED_TRACE(rows);
    workbook_.Sheets().clear();
    Sheet& sheet = AddSheet("S");
    for (int row = 1; row <= rows; ++row) PutNumber(sheet, row, 1 + row % 3, row);
    PutNumber(sheet, rows, 1, 1);
    const std::vector<ReadRecord> records = SavedRecords(workbook_);
    EXPECT_EQ(OfType(records, kRow).size(), static_cast<std::size_t>(rows));
    EXPECT_EQ(OfType(records, kIndex).at(0).U32(8), static_cast<std::uint32_t>(rows));
    ExpectBlocksLeadToTheirCells(records);
  }
}

TEST_F(XlsWriter, EmptyBlocksKeepTheirPlaceInTheIndex) {
  Sheet& sheet = AddSheet("S");
  PutNumber(sheet, 5, 1, 1);
  PutNumber(sheet, 200, 1, 1);
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  EXPECT_EQ(OfType(records, kDbCell).size(), 7U);
  EXPECT_EQ(OfType(records, kIndex).at(0).U32(4), 4U);
  ExpectBlocksLeadToTheirCells(records);
}

TEST_F(XlsWriter, MergesFillRecordsAndStartNewOnes) {
  for (const int merges : {1, 1025, 1026, 1027, 2052, 2053}) {
    workbook_.Sheets().clear();
    Sheet& sheet = AddSheet("S");
    for (int i = 1; i <= merges; ++i) sheet.AddMerge({i, 1, i, 2});
    std::uint32_t count = 0;
    for (const ReadRecord& record : OfType(SavedRecords(workbook_), kMergedCells)) {
      EXPECT_EQ(record.data.size(), 2 + 8 * record.U16(0));
      EXPECT_EQ(record.U16(2), count);
      count += record.U16(0);
    }
    EXPECT_EQ(count, static_cast<std::uint32_t>(merges));
  }
}

TEST_F(XlsWriter, SheetsStandWhereTheGlobalsSay) {
  const std::vector<std::string> names = {"One", "\xD0\x94\xD0\xB2\xD0\xB0", "Three"};
  for (const std::string& name : names) PutNumber(AddSheet(name), 1, 1, 1);
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  std::vector<std::size_t> starts;
  for (const ReadRecord& bof : OfType(records, kBof)) starts.push_back(bof.position);
  const std::vector<ReadRecord> sheets = OfType(records, kBoundSheet);
  ASSERT_EQ(starts.size(), 4U);
  ASSERT_EQ(sheets.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(sheets[i].U32(0), starts[i + 1]);
  const std::vector<ReadRecord> windows = OfType(records, kWindow2);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_EQ((windows[i].U16(0) & 0x0600) != 0, i == 0) << "only the first is selected";
}

TEST_F(XlsWriter, FormulasCarryTheirResults) {
  Sheet& sheet = AddSheet("S");
  using Type = FormulaResult::Type;
  const struct {
    FormulaResult result;
    std::string bytes;
  } cases[] = {
      {{Type::kNumber, 1.5, {}, {}}, {"\0\0\0\0\0\0\xF8\x3F", 8}},
      {{Type::kBoolean, 1, {}, {}}, {"\1\0\1\0\0\0\xFF\xFF", 8}},
      {{Type::kBoolean, 0, {}, {}}, {"\1\0\0\0\0\0\xFF\xFF", 8}},
      {{Type::kError, 0, {}, ErrorCode::kNull}, {"\2\0\0\0\0\0\xFF\xFF", 8}},
      {{Type::kError, 0, {}, ErrorCode::kDivZero}, {"\2\0\x07\0\0\0\xFF\xFF", 8}},
      {{Type::kError, 0, {}, ErrorCode::kNotAvailable}, {"\2\0\x2A\0\0\0\xFF\xFF", 8}},
      {{Type::kText, 0, "", {}}, {"\3\0\0\0\0\0\xFF\xFF", 8}},
      {{Type::kText, 0, "ab", {}}, {"\0\0\0\0\0\0\xFF\xFF", 8}},
  };
  int row = 0;
  for (const auto& c : cases) PutFormula(sheet, ++row, 1, "=A99").result = c.result;
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  const std::vector<ReadRecord> formulas = OfType(records, kFormula);
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(formulas[i].data.substr(6, 8), cases[i].bytes) << i;
    EXPECT_EQ(formulas[i].U16(14), 0U);
  }
  ASSERT_EQ(OfType(records, kString).size(), 1U);
  EXPECT_EQ(OfType(records, kString)[0].data, std::string("\2\0\0ab", 5));
  EXPECT_TRUE(OfType(records, kRecalcId).empty());
  EXPECT_TRUE(OfType(records, kUncalced).empty());
}

TEST_F(XlsWriter, AnUnknownResultAsksForRecalculation) {
  PutFormula(AddSheet("S"), 1, 1, "=A99");
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  EXPECT_EQ(OfType(records, kRecalcId).at(0).U32(4), 0U);
  EXPECT_EQ(OfType(records, kUncalced).size(), 1U);
  EXPECT_EQ(OfType(records, kFormula).at(0).U16(14), 3U);
}

TEST_F(XlsWriter, LongResultsContinue) {
  PutFormula(AddSheet("S"), 1, 1, "=A99").result = {
      FormulaResult::Type::kText, 0, std::string(32767, 'x'), {}};
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  std::size_t characters = OfType(records, kString).at(0).data.size() - 3;
  for (const ReadRecord& record : OfType(records, RecordStream::kContinue))
    characters += record.data.size() - 1;
  EXPECT_EQ(characters, 32767U);
}

TEST_F(XlsWriter, LinksAndNamesAreThereForTheTokens) {
  Sheet& first = AddSheet("First");
  AddSheet("Second");
  PutFormula(first, 1, 1, "=Second!A1+First!B2+Second!C3");
  PutFormula(first, 2, 1, "=EDATE(A1,1)");
  std::string sum = "=SUM(Second!A1";
  for (int i = 1; i < 400; ++i) sum += ",Second!" + GetCellName(2 * i + 1, 1);
  PutFormula(first, 3, 1, sum + ")");
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  EXPECT_EQ(OfType(records, kSupBook).size(), 2U) << "this workbook and the add-ins";
  EXPECT_EQ(OfType(records, kExternName).size(), 1U);
  const ReadRecord spans = OfType(records, kExternSheet).at(0);
  EXPECT_EQ(spans.U16(0), 3U);
  EXPECT_EQ(spans.data.size(), 2 + 6 * 3U);
  EXPECT_EQ(spans.U16(4), 1U) << "the second sheet comes first";
  const std::vector<ReadRecord> names = OfType(records, kName);
  ASSERT_FALSE(names.empty());
  for (const ReadRecord& name : names) {
    EXPECT_EQ(name.U16(0), 1U) << "hidden";
    EXPECT_EQ(name.data.size(), 15U + static_cast<unsigned char>(name.data[3]) + name.U16(4));
  }
}

TEST_F(XlsWriter, AFormulaThatCannotBeStoredNamesItsCell) {
  PutFormula(AddSheet("Totals"), 7, 2, "=Elsewhere!A1");
  try {
    SerializeXls(workbook_);
    FAIL() << "no error";
  } catch (const SpreadsheetError& error) {
    EXPECT_THAT(error.what(), ::testing::AllOf(::testing::HasSubstr("Sheet \"Totals\", cell B7"),
                                               ::testing::HasSubstr("Elsewhere")));
  }
}

TEST_F(XlsWriter, FontsBeginWithTheFourOfEveryFileAndSkipTheFifth) {
  CellFormat format;
  format.font_name = "\xD0\xA8\xD1\x80\xD0\xB8\xD1\x84\xD1\x82";
  format.font_colour = 56;
  format.underline = Underline::kDoubleAccounting;
  format.strikethrough = format.subscript = true;
  Sheet& sheet = AddSheet("S");
  sheet.At(1, 1).format = workbook_.InternFormat(format);
  sheet.At(1, 2).format = Bold();
  const std::vector<ReadRecord> records = SavedRecords(workbook_);
  const std::vector<ReadRecord> fonts = OfType(records, kFont);
  ASSERT_EQ(fonts.size(), 5U);
  const std::uint32_t weights[] = {400, 700, 400, 700, 400};
  const std::uint32_t flags[] = {0, 1, 2, 3, 8};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(fonts[i].U16(6), weights[i]);
    EXPECT_EQ(fonts[i].U16(2), flags[i]);
  }
  EXPECT_EQ(fonts[4].U16(4), 63U);
  EXPECT_EQ(fonts[4].U16(8), 2U);
  EXPECT_EQ(fonts[4].data[10], 0x22);
  const std::vector<ReadRecord> xfs = OfType(records, kXf);
  ASSERT_EQ(xfs.size(), 18U) << "15 styles, the default format and two more";
  EXPECT_EQ(xfs[16].U16(0), 5U) << "the fifth font has number 5";
  EXPECT_EQ(xfs[17].U16(0), 1U);
}

TEST_F(XlsWriter, WrappedTextGetsTheHeightOfItsLines) {
  CellFormat format;
  format.word_wrap = true;
  const FormatId wrapped = workbook_.InternFormat(format);
  Sheet& sheet = AddSheet("S");
  sheet.SetColumnWidth(1, 10);
  int row = 0;
  for (const char* text : {"one line", "two\nlines", "thirty characters in 10 a line"}) {
    Cell& cell = sheet.At(++row, 1);
    cell.type = CellType::kText;
    cell.text = workbook_.InternText(text);
    cell.format = wrapped;
  }
  const std::vector<ReadRecord> rows = OfType(SavedRecords(workbook_), kRow);
  EXPECT_EQ(rows[0].U16(6), 255U);
  EXPECT_EQ(rows[1].U16(6), 510U);
  EXPECT_EQ(rows[2].U16(6), 765U);
}

TEST_F(XlsWriter, PropertiesDoNotDependOnTheLocale) {
  workbook_.title = "L\xC3\xB8n \xE2\x82\xAC";
  workbook_.created = EncodeDateTime({2024, 3, 5, 12, 34, 56, 0});
  AddSheet("S");
  const std::string bytes = ReadStream(SerializeXls(workbook_), "\005SummaryInformation");
  EXPECT_NE(bytes.find(workbook_.title + std::string(1, '\0')), std::string::npos);
  // 133541156960000000 hundred-nanoseconds from 1601-01-01 to 2024-03-05 12:34:56.
  EXPECT_NE(bytes.find(std::string("\x40\0\0\0\x00\xD8\x7E\x87\xF9\x6E\xDA\x01", 12)), std::string::npos);
}

}  // namespace
}  // namespace excelexp::xls
