#include <cmath>
#include <functional>
#include <limits>

#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/WorkbookFile.h"

namespace excelexp {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

std::string Times(const std::string& piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

/// "" for a workbook that is good.
std::string ErrorOf(const Workbook& workbook, const char* file_name = "a.xls") {
  try {
    CheckWorkbook(workbook, WorkbookFormatFor(file_name));
    return "";
  } catch (const SpreadsheetError& error) {
    return error.what();
  }
}

class WorkbookCheck : public ::testing::Test {
 protected:
  WorkbookCheck() { sheet_ = workbook_.Sheets().emplace_back(std::make_unique<Sheet>("Pay")).get(); }

  void PutText(int row, int column, const std::string& text) {
    Cell& cell = sheet_->At(row, column);
    cell.type = CellType::kText;
    cell.text = workbook_.InternText(text);
  }
  void PutFormat(int row, int column, const CellFormat& format) {
    sheet_->At(row, column).format = workbook_.InternFormat(format);
  }
  void ExpectError(const std::string& place, const std::string& what, const char* file_name = "a.xls") {
    EXPECT_THAT(ErrorOf(workbook_, file_name),
                AllOf(HasSubstr("Sheet \"Pay\", " + place + ": "), HasSubstr(what)));
  }

  Workbook workbook_;
  Sheet* sheet_;
};

TEST_F(WorkbookCheck, SheetNames) {
  const struct {
    std::string name;
    bool good;
  } cases[] = {{Times("x", 30), true},
               {Times("x", 31), true},
               {Times("x", 32), false},
               {Times("\xE4\xB8\xAD", 31), true},
               {Times("\xE4\xB8\xAD", 32), false},
               {Times("\xF0\x9F\x98\x80", 15) + "x", true},
               {Times("\xF0\x9F\x98\x80", 16), false},
               {"", false},
               {" ", true},
               {"a'b", true},
               {"'ab", false},
               {"ab'", false},
               {"a[b", false},
               {"a]b", false},
               {"a:b", false},
               {"a*b", false},
               {"a?b", false},
               {"a/b", false},
               {"a\\b", false},
               {"a\nb", false},
               {"a\xFF", false},
               {"hISTORY", false},
               {"History 1", true}};
  for (const auto& c : cases) {
    Workbook workbook;
    workbook.Sheets().push_back(std::make_unique<Sheet>(c.name));
    const std::string error = ErrorOf(workbook);
    EXPECT_EQ(error.empty(), c.good) << c.name << ": " << error;
    if (c.good) continue;
    EXPECT_THAT(error, HasSubstr("The sheet name \"" + c.name + "\""));
  }
}

TEST_F(WorkbookCheck, SheetNamesAreUniqueWithoutRegardToCase) {
  workbook_.Sheets().push_back(std::make_unique<Sheet>("Other"));
  EXPECT_EQ(ErrorOf(workbook_), "");
  workbook_.Sheets().push_back(std::make_unique<Sheet>("PAY"));
  EXPECT_THAT(ErrorOf(workbook_), HasSubstr("\"PAY\""));
  workbook_.Sheets().clear();
  EXPECT_THAT(ErrorOf(workbook_), HasSubstr("no sheet"));
}

TEST_F(WorkbookCheck, RowsAndColumnsOfTheFormat) {
  sheet_->At(65535, 255);
  EXPECT_EQ(ErrorOf(workbook_), "");
  sheet_->At(65536, 256);
  EXPECT_EQ(ErrorOf(workbook_), "");
  sheet_->At(1, 257);
  ExpectError("cell IW1", "column IV");
  EXPECT_EQ(ErrorOf(workbook_, "a.XLSX"), "");
  sheet_->At(1048576, 16384);
  EXPECT_EQ(ErrorOf(workbook_, "a.xlsx"), "");
}

TEST_F(WorkbookCheck, RowsBeyondTheFormat) {
  sheet_->SetRowHeight(65536, 20);
  EXPECT_EQ(ErrorOf(workbook_), "");
  sheet_->SetRowHeight(65537, 20);
  ExpectError("cell A65537", "row 65536");
  EXPECT_EQ(ErrorOf(workbook_, "a.xlsx"), "");
}

TEST_F(WorkbookCheck, TextLengthsCountUtf16Units) {
  const struct {
    std::string text;
    bool good;
  } cases[] = {{Times("a", 32766), true},
               {Times("a", 32767), true},
               {Times("a", 32768), false},
               {Times("\xE4\xB8\xAD", 32767), true},
               {Times("\xE4\xB8\xAD", 32768), false},
               {Times("\xF0\x9F\x98\x80", 16383) + "a", true},
               {Times("\xF0\x9F\x98\x80", 16384), false}};
  for (const auto& c : cases) {
    PutText(3, 2, c.text);
    if (c.good) {
      EXPECT_EQ(ErrorOf(workbook_), "") << c.text.size();
    } else {
      ExpectError("cell B3", "32767 characters");
    }
  }
}

TEST_F(WorkbookCheck, TextsThatNoFileHolds) {
  for (const std::string& text :
       {std::string("\xFF"), std::string("a\xC3"), std::string("\xC0\xAF"), std::string("\xE0\x80\xAF"),
        std::string("\xED\xA0\x80"), std::string("\xED\xBF\xBF"), std::string("\xF4\x90\x80\x80"),
        std::string("\xEF\xBF\xBF"), std::string("\xEF\xBF\xBE"), std::string("a\0b", 3), std::string("\x01"),
        std::string("\x1F"), std::string("\x0B")}) {
    PutText(9, 4, text);
    ExpectError("cell D9", "the text ");
  }
  for (const std::string& text :
       {std::string("\t\r\n"), std::string("\xEF\xBF\xBD"), std::string("\xED\x9F\xBF"),
        std::string("\xEE\x80\x80"), std::string("\xF4\x8F\xBF\xBF"), std::string("\x7F")}) {
    PutText(9, 4, text);
    EXPECT_EQ(ErrorOf(workbook_), "");
  }
  workbook_.InternText("\xFF");
  EXPECT_EQ(ErrorOf(workbook_), "") << "a text that no cell shows";
}

TEST_F(WorkbookCheck, NumbersAndResultsAreFinite) {
  Cell& cell = sheet_->At(2, 2);
  cell.type = CellType::kNumber;
  for (const double number : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    cell.number = number;
    ExpectError("cell B2", "not finite");
  }
  cell.number = std::numeric_limits<double>::max();
  EXPECT_EQ(ErrorOf(workbook_), "");
  cell.type = CellType::kFormula;
  cell.formula =
      workbook_.AddFormula({"=1/0", nullptr, {FormulaResult::Type::kNumber, std::nan(""), "", {}}});
  ExpectError("cell B2", "result is not finite");
  workbook_.FormulaAt(cell.formula).result = {FormulaResult::Type::kText, 0, Times("a", 32768), {}};
  ExpectError("cell B2", "result is longer");
}

TEST_F(WorkbookCheck, OverlappingMerges) {
  sheet_->AddMerge({1, 1, 2, 2});
  sheet_->AddMerge({3, 1, 3, 2});
  EXPECT_EQ(ErrorOf(workbook_), "");
  sheet_->AddMerge({2, 2, 4, 4});
  ExpectError("cells B2:D4", "overlaps");
}

TEST_F(WorkbookCheck, SizesAndFormatProperties) {
  const std::vector<std::pair<std::function<void(CellFormat&)>, bool>> changes = {
      {[](CellFormat& f) { f.font_size = 1; }, true},
      {[](CellFormat& f) { f.font_size = 0.5; }, false},
      {[](CellFormat& f) { f.font_size = 409; }, true},
      {[](CellFormat& f) { f.font_size = 409.5; }, false},
      {[](CellFormat& f) { f.font_size = std::nan(""); }, false},
      {[](CellFormat& f) { f.font_colour = 0; }, true},
      {[](CellFormat& f) { f.font_colour = 56; }, true},
      {[](CellFormat& f) { f.font_colour = 57; }, false},
      {[](CellFormat& f) { f.font_colour = -1; }, false},
      {[](CellFormat& f) { f.underline = static_cast<Underline>(3); }, false},
      {[](CellFormat& f) { f.font_name = Times("n", 31); }, true},
      {[](CellFormat& f) { f.font_name = Times("n", 32); }, false},
      {[](CellFormat& f) { f.font_name = ""; }, false},
      {[](CellFormat& f) { f.number_format = Times("0", 255); }, true},
      {[](CellFormat& f) { f.number_format = Times("0", 256); }, false},
      {[](CellFormat& f) { f.number_format = ""; }, false},
      {[](CellFormat& f) { f.number_format = "\xFF"; }, false},
      {[](CellFormat& f) { f.number_format = "#,0.00;-#,0.00;\"-;\"_);[Red]@\\;"; }, true},
      {[](CellFormat& f) { f.number_format = "0;0;0;0;0"; }, false},
      {[](CellFormat& f) { f.number_format = "0\" kg"; }, false},
      {[](CellFormat& f) { f.number_format = "[Red0"; }, false},
      {[](CellFormat& f) { f.number_format = "0\\"; }, false},
      {[](CellFormat& f) { f.number_format = "0_"; }, false},
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    CellFormat format;
    changes[i].first(format);
    PutFormat(5, 3, format);
    if (changes[i].second) {
      EXPECT_EQ(ErrorOf(workbook_), "") << i;
    } else {
      ExpectError("cell C5", "");
    }
  }
}

TEST_F(WorkbookCheck, ColumnWidthsAndRowHeights) {
  sheet_->SetColumnWidth(3, 255);
  sheet_->SetRowHeight(7, 409);
  EXPECT_EQ(ErrorOf(workbook_), "");
  sheet_->SetColumnWidth(3, 255.5);
  ExpectError("cell C1", "too wide");
  sheet_->SetColumnWidth(3, 1);
  sheet_->SetRowHeight(7, 409.5);
  ExpectError("cell A7", "too high");
}

/// Makes `count` cells below each other, each with a format of its own by `vary`.
void FillFormats(Workbook& workbook, Sheet& sheet, int count,
                 const std::function<void(CellFormat&, int)>& vary) {
  for (int i = 1; i <= count; ++i) {
    CellFormat format;
    vary(format, i);
    sheet.At(i, 1).format = workbook.InternFormat(format);
  }
}

TEST_F(WorkbookCheck, CountsOfFormatsFontsAndNumberFormats) {
  // The default format and the four fonts that every file begins with count as well.
  const struct {
    int limit;
    const char* what;
    std::function<void(CellFormat&, int)> vary;
  } cases[] = {
      {3999, "cell formats",
       [](CellFormat& f, int i) {
         f.font_size = 20 + i % 400 * 0.5;
         f.number_format = Times("0", 1 + i / 400);
         f.word_wrap = true;
       }},
      {506, "fonts", [](CellFormat& f, int i) { f.font_size = 20 + i * 0.5; }},
      {200, "number formats", [](CellFormat& f, int i) { f.number_format = "0" + Times("#", i); }},
  };
  for (const auto& c : cases) {
    for (const int count : {c.limit - 1, c.limit, c.limit + 1}) {
      SCOPED_TRACE(c.what + std::to_string(count));
      Workbook workbook;
      Sheet& sheet = *workbook.Sheets().emplace_back(std::make_unique<Sheet>("Pay"));
      FillFormats(workbook, sheet, count, c.vary);
      const std::string error = ErrorOf(workbook);
      if (count <= c.limit) {
        EXPECT_EQ(error, "");
      } else {
        EXPECT_THAT(error, AllOf(HasSubstr("Sheet \"Pay\", cell A" + std::to_string(count) + ":"),
                                 HasSubstr(c.what)));
      }
    }
  }
}

TEST_F(WorkbookCheck, FormatsThatCellsPassedThroughDoNotCount) {
  for (int i = 1; i <= 5000; ++i) {
    CellFormat format;
    format.font_size = 1 + i * 0.05;
    PutFormat(1, 1, format);
  }
  EXPECT_EQ(ErrorOf(workbook_), "");
}

TEST(WorkbookFormats, AreFoundByExtension) {
  EXPECT_EQ(WorkbookFormatFor("a.xls").extension, ".xls");
  EXPECT_EQ(WorkbookFormatFor("folder.xlsx/b.XLS").extension, ".xls");
  EXPECT_EQ(WorkbookFormatFor(".XlsX").extension, ".xlsx");
  for (const char* name : {"", "xls", "a.xls ", "a.xlsm", "a.xls/b", "a"}) {
    try {
      WorkbookFormatFor(name);
      FAIL() << name;
    } catch (const SpreadsheetError& error) {
      EXPECT_THAT(error.what(), HasSubstr(".xls, .xlsx"));
    }
  }
}

}  // namespace
}  // namespace excelexp
