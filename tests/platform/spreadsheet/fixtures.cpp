#include "platform/spreadsheet/fixtures.h"

#include <limits>

namespace excelexp {
namespace {

/// Writes downwards in column A of a sheet, with a formula on demand beside what it refers to.
class ColumnWriter {
 public:
  ColumnWriter(BExcelAPI& api, const Handle& workbook, std::string sheet)
      : api_(api), workbook_(workbook), sheet_(std::move(sheet)) {
    api_.CreateNewTable(workbook_, sheet_);
  }
  void Number(double number) { api_.WriteTableCell(workbook_, sheet_, ++row_, 1, number); }
  void Text(const std::string& text) { api_.WriteTableCellText(workbook_, sheet_, ++row_, 1, text); }
  void Formula(const std::string& formula) {
    api_.FormulaOnRange(workbook_, sheet_, GetCellName(++row_, 1), formula);
  }
  int Row() const { return row_; }

 private:
  BExcelAPI& api_;
  const Handle& workbook_;
  const std::string sheet_;
  int row_ = 0;
};

/// A small report as the engine prints one: headings, bands, subtotals that depend on the number format of a
/// cell, a second sheet in another script that refers to the first.
void BuildPayroll(BExcelAPI& api, const Handle& workbook) {
  const std::string sheet = "Payroll 2024";
  api.CreateNewTable(workbook, sheet);
  api.WriteTableCellText(workbook, sheet, 1, 1,
                         "Payroll \xE2\x80\x93 d\xC3\xA9partement \xE8\xB2\xA1\xE5\x8B\x99");
  api.MergeRangeCells(workbook, sheet, "A1:D1", false, true);
  api.SetFontNameSize(workbook, sheet, "A1:D1", "Times New Roman", 16);
  api.SetFontColour(workbook, sheet, "A1:D1", 5);
  api.SetFontStyle(workbook, sheet, "A1:D1", true, false, true);
  api.SetFontUnderline(workbook, sheet, "A1", static_cast<int>(Underline::kDouble));
  api.SetRowHeight(workbook, sheet, "A1", 30);
  const char* headings[] = {"Employee", "Basic", "Bonus", "Remark"};
  for (int column = 1; column <= 4; ++column) {
    api.WriteTableCellText(workbook, sheet, 2, column, headings[column - 1]);
  }
  api.SetFontStyle(workbook, sheet, "A2:D2", true, false, false);
  api.SetFontColour(workbook, sheet, "A2:D2", 3);
  api.SetColumnWidth(workbook, sheet, "A1", 24);
  api.SetColumnWidth(workbook, sheet, "B1:C1", 14);
  api.SetColumnWidth(workbook, sheet, "D1", 9);
  const char* names[] = {"Ad\xC3\xA8le O'Neill", "\xE5\xBC\xA0\xE4\xBC\x9F",
                         "\xD0\x98\xD0\xB2\xD0\xB0\xD0\xBD", "\xD7\x93\xD7\xA0\xD7\x94",
                         "\xF0\xA0\xAE\xB7\xE9\x87\x8E"};
  for (int i = 0; i < 5; ++i) {
    const int row = 3 + i;
    api.WriteTableCellText(workbook, sheet, row, 1, names[i]);
    api.WriteTableCell(workbook, sheet, row, 2, 1234.56 * (i + 1));
    api.WriteTableCell(workbook, sheet, row, 3, -100 * i);
    api.WriteTableCellText(workbook, sheet, row, 4, "paid in two\nparts");
  }
  api.NumberFormatOnRange(workbook, sheet, "B3:B8", "#,0.00;-#,0.00");
  api.NumberFormatOnRange(workbook, sheet, "C3:C8", "#,0;-#,0");
  api.SetWordWrap(workbook, sheet, "D3:D7", true);
  api.WriteTableCellText(workbook, sheet, 8, 1, "Grand Total ");
  for (const char* column : {"B", "C", "D"}) {
    const std::string first = column + std::string("3");
    api.FormulaOnRange(workbook, sheet, column + std::string("8"),
                       "=IF(OR(CELL(\"format\"," + first + ")=\",2\", CELL(\"format\"," + first +
                           ")=\",0\"),SUM(" + first + ":" + column + "7), \"\")");
  }
  api.SetFontUnderline(workbook, sheet, "B8:C8", static_cast<int>(Underline::kDoubleAccounting));
  const std::string other = "\xE7\xB5\xA6\xE4\xB8\x8E";
  api.CreateNewTable(workbook, other);
  api.WriteTableCellText(workbook, other, 1, 1, "\xE5\x90\x88\xE8\xA8\x88");
  api.FormulaOnRange(workbook, other, "B1", "='Payroll 2024'!B8+'Payroll 2024'!C8");
  api.FormulaOnRange(workbook, other, "B2:B4", "=ROUND($B$1/ROW(),2)");
}

void BuildNumbers(BExcelAPI& api, const Handle& workbook) {
  ColumnWriter column(api, workbook, "Numbers");
  using Limits = std::numeric_limits<double>;
  for (const double number : {0.0,
                              1.0,
                              -1.0,
                              0.1 + 0.2,
                              1.0 / 3.0,
                              0.01,
                              123.45,
                              -123.45,
                              100.0,
                              12345678.9,
                              536870911.0,
                              536870912.0,
                              -536870912.0,
                              -536870913.0,
                              5368709.11,
                              5368709.12,
                              -5368709.12,
                              2147483647.0,
                              4294967296.0,
                              1e15,
                              1e16,
                              9007199254740993.0,
                              123456789012345680.0,
                              1e100,
                              1e300,
                              -1e-300,
                              0.5,
                              0.25,
                              1.0000000000000002,
                              2.2250738585072014e-308,
                              Limits::max(),
                              -Limits::max(),
                              99999.995,
                              2.675}) {
    column.Number(number);
  }
}

void BuildTexts(BExcelAPI& api, const Handle& workbook) {
  ColumnWriter column(api, workbook, "Texts");
  for (const char* text : {"=1+1",
                           "+1",
                           "-1",
                           "@SUM(1)",
                           "'quoted",
                           "12",
                           "1e5",
                           "TRUE",
                           "#N/A",
                           "2024-01-01",
                           " leading",
                           "trailing ",
                           "  ",
                           "\ttab\t",
                           "two\nlines",
                           "\n",
                           "<&>\"'",

                           "_x004",
                           "]]>",
                           "e\xCC\x81 combining",
                           "\xC3\xA9 composed",
                           "\xF0\x9F\x98\x80 beyond the first plane",
                           "\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB joined",
                           "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D right to left",
                           "\xEF\xBB\xBF mark",
                           "\xC2\xA0no-break\xC2\xA0",
                           "\xEF\xBF\xBD",
                           "x|y",
                           "\\n",
                           "Total: {0}%"}) {
    column.Text(text);
  }
}

/// Texts that .xlsx files must escape: they look like escapes themselves.
void BuildEscapes(BExcelAPI& api, const Handle& workbook) {
  ColumnWriter column(api, workbook, "Escapes");
  for (const char* text : {"_x0041_", "_xAbCd_", "a_x0041_b_xFFFF_"}) column.Text(text);
}

std::string Repeated(const std::string& piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

/// Lengths around the 8,224 bytes of an .xls record, of one and of two bytes a character, in sequences that
/// move the boundary through every part of a text.
void BuildLongTexts(BExcelAPI& api, const Handle& workbook) {
  ColumnWriter column(api, workbook, "Long texts");
  for (int length = 8205; length <= 8230; ++length) column.Text(Repeated("a", length));
  for (int length = 4100; length <= 4118; ++length) column.Text(Repeated("\xD0\xB6", length));
  for (int length = 2050; length <= 2058; ++length) {
    column.Text(std::to_string(length) + Repeated("\xF0\x9F\x98\x80", length));
  }
  column.Text(Repeated("b", 32767));
  column.Text(Repeated("\xE4\xB8\xAD", 32767));
  column.Text(Repeated("\xF0\x9F\x98\x80", 16383) + "c");
}

void BuildFormats(BExcelAPI& api, const Handle& workbook) {
  const std::string sheet = "Formats";
  api.CreateNewTable(workbook, sheet);
  int row = 0;
  const auto next = [&] {
    api.WriteTableCell(workbook, sheet, ++row, 1, 1234.5);
    return GetCellName(row, 1);
  };
  for (int colour = 1; colour <= 56; ++colour) api.SetFontColour(workbook, sheet, next(), colour);
  for (const Underline kind : {Underline::kNone, Underline::kSingle, Underline::kDouble,
                               Underline::kSingleAccounting, Underline::kDoubleAccounting}) {
    api.SetFontUnderline(workbook, sheet, next(), static_cast<int>(kind));
  }
  for (int flags = 0; flags < 8; ++flags) {
    api.SetFontStyle(workbook, sheet, next(), (flags & 1) != 0, false, (flags & 2) != 0);
    api.SetFontEffects(workbook, sheet, GetCellName(row, 1), (flags & 4) != 0, (flags & 3) == 1,
                       (flags & 3) == 2);
  }
  for (const double size : {1.0, 7.5, 10.0, 11.0, 72.0, 409.0}) {
    api.SetFontNameSize(workbook, sheet, next(), "Courier New", size);
  }
  api.SetFontNameSize(workbook, sheet, next(), "\xEF\xBC\xAD\xEF\xBC\xB3 \xE3\x82\xB4\xE3\x82\xB7", 12);
  for (const char* code : {"General", "0.00", "#,##0.00", "#,0.00;-#,0.00", "#,0;-#,0", "dd/mm/yyyy", "0%",
                           "@", "[Red]-0.0;\"<\"0\">\"", "#,##0.00\" \xE2\x82\xAC\"", "mmm"}) {
    api.NumberFormatOnRange(workbook, sheet, next(), code);
  }
  api.SetWordWrap(workbook, sheet, next(), true);
  api.MergeRangeCells(workbook, sheet, "C1:E3", false, true);
  api.WriteTableCellText(workbook, sheet, 1, 3, "merged");
  api.SetFontColour(workbook, sheet, "C1:E3", 10);
  api.SetFontStyle(workbook, sheet, "G1:H2", true, false, false);  // formatted blanks
  const double widths[] = {20, 0.5, 1, 8.43, 255, 0, 12.71};
  for (int i = 0; i < 7; ++i) api.SetColumnWidth(workbook, sheet, GetCellName(1, 10 + i), widths[i]);
  const double heights[] = {12.75, 15, 0.75, 409, 0, 20.25};
  for (int i = 0; i < 6; ++i) api.SetRowHeight(workbook, sheet, GetCellName(10 + i, 1), heights[i]);
  api.SetRowHeight(workbook, sheet, GetCellName(row + 5, 1), 33);  // a row without cells
}

void BuildFormulas(BExcelAPI& api, const Handle& workbook) {
  ColumnWriter column(api, workbook, "Formulas");
  for (const double number : {3.0, 4.0, 0.1, 0.2, -7.5}) column.Number(number);
  column.Text("text");
  column.Text("12");
  const int inputs = column.Row();
  for (const char* formula : {
           "=A1+A2",
           "=A3+A4",
           "=A1/3",
           "=SUM(A1:A7)",
           "=A1>A2",
           "=A1<A2",
           "=A6&\"!\"",
           "=A6&\" \"",
           "=\"\"",
           "=\"<&>\"\"\"",
           "=1/0",
           "=NA()",
           "=A6+1",
           "=A7+1",
           "=SQRT(A5)",
           "=#REF!+1",
           "=NoSuchName",

           "=IF(A1>0,\"yes\",\"no\")",
           "=IF(A1<0,1)",
           "=SUBTOTAL(9,A1:A5)",
           "=AVERAGE(A1:A5)",
           "=COUNT(A1:A7)",
           "=COUNTA(A1:A7,Y1:Z9)",
           "=ROUND(A1/7,2)",
           "=MAX(A1:A5)-MIN(A1:A5)",

           "=(A1+A2)*10%",
           "=-A1^2",
           "=A1=A1",
           "=NOT(TRUE)",
           "=CONCATENATE(A6,\"\xC3\xA9\")",
           "=Z1",
           "=Z1&\"\"",
           "=SUM(Z1:Z9)",
           "=ISBLANK(Z1)",
           "=IFERROR(1/0,5)",

           "=DATE(2024,2,29)",
           "=MEDIAN(A1,A2,A5)",
           "=\"a\"\"b\"",

       }) {
    column.Formula(formula);
  }
  api.NumberFormatOnRange(workbook, "Formulas", GetCellName(inputs + 1, 1), "#,0.00;-#,0.00");
}

/// Totals over more ranges than one call or one formula may hold.
void BuildLongSums(BExcelAPI& api, const Handle& workbook) {
  ColumnWriter column(api, workbook, "Values");
  for (int i = 1; i <= 10000; ++i) column.Number(i * 0.5);
  ColumnWriter totals(api, workbook, "Totals");
  for (const int ranges : {2, 30, 31, 200, 1000, 5000}) {
    std::string sum;
    for (int i = 0; i < ranges; ++i) {
      sum += (sum.empty() ? "=SUM(Values!" : ",Values!") + GetCellName(2 * i + 1, 1);
    }
    totals.Formula(sum + ")");
  }
}

/// The corners that both formats have, and as many merges as need a second record.
void BuildLimits(BExcelAPI& api, const Handle& workbook) {
  const std::string sheet = "A name of thirty-one characters";
  api.CreateNewTable(workbook, sheet);
  api.WriteTableCell(workbook, sheet, 65536, 256, 1);
  api.WriteTableCell(workbook, sheet, 1, 256, 2);
  api.WriteTableCellText(workbook, sheet, 65536, 1, "last");
  for (int i = 0; i < 1100; ++i) {
    const int row = 1 + 2 * i;
    api.MergeRangeCells(workbook, sheet, GetCellName(row, 3) + ":" + GetCellName(row + 1, 4), false, true);
  }
  api.CreateNewTable(workbook, "Empty & <odd> 'name\" \xE7\xA9\xBA");
}

}  // namespace

const std::vector<Fixture>& Fixtures() {
  static const std::vector<Fixture> kFixtures = {
      {"payroll", BuildPayroll},   {"numbers", BuildNumbers},      {"texts", BuildTexts},
      {"escapes", BuildEscapes},   {"long_texts", BuildLongTexts}, {"formats", BuildFormats},
      {"formulas", BuildFormulas}, {"long_sums", BuildLongSums},   {"limits", BuildLimits},
  };
  return kFixtures;
}

}  // namespace excelexp
