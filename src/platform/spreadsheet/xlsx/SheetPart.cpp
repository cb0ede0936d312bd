#include "platform/spreadsheet/xlsx/SheetPart.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/spreadsheet/CellName.h"
#include "platform/spreadsheet/ColumnWidth.h"
#include "platform/spreadsheet/FormatCensus.h"
#include "platform/spreadsheet/xlsx/Package.h"
#include "platform/spreadsheet/xlsx/SharedStrings.h"
#include "platform/spreadsheet/xlsx/XmlText.h"

namespace excelexp::xlsx {
namespace {

/// One worksheet: its steps in the order of the elements that the format prescribes (ECMA-376 part 1,
/// 18.3.1.99).
class SheetWriter {
 public:
  SheetWriter(SheetContext& context, std::size_t number)
      : context_(context), number_(number), sheet_(*context.workbook.Sheets()[number - 1]) {
    xml_.reserve(kBufferBytes + kBufferBytes / 4);
    for (int column = 1; column <= sheet_.LastColumn(); ++column) letters_.push_back(ColumnLetters(column));
  }

  void Write() {
    context_.package.BeginPart("xl/" + SheetPartName(number_));
    xml_ += kXmlHeader;
    xml_ += "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
    WriteDimension();
    xml_ += number_ == 1 ? "<sheetViews><sheetView tabSelected=\"1\" workbookViewId=\"0\"/></sheetViews>"
                         : "<sheetViews><sheetView workbookViewId=\"0\"/></sheetViews>";
    xml_ += "<sheetFormatPr defaultRowHeight=\"12.75\"/>";  // the height of a line in Arial 10
    WriteColumns();
    WriteRows();
    WriteMerges();
    xml_ +=
        "<pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" "
        "footer=\"0.3\"/>";
    xml_ += "</worksheet>";
    Flush();
  }

 private:
  void Flush() {
    context_.package.Write(xml_);
    xml_.clear();
  }

  void AppendName(int row, int column) {
    xml_ += ColumnLetters(column);
    AppendNumber(xml_, row);
  }

  void AppendRange(const CellRange& range) {
    AppendName(range.first_row, range.first_col);
    xml_ += ':';
    AppendName(range.last_row, range.last_col);
  }

  void WriteDimension() {
    xml_ += "<dimension ref=\"";
    AppendRange({1, 1, std::max(sheet_.LastRow(), 1), std::max(sheet_.LastColumn(), 1)});
    xml_ += "\"/>";
  }

  bool ColumnIsSized(int column) const {
    return sheet_.ColumnHidden(column) || sheet_.ColumnWidth(column) > 0.0;
  }

  void WriteColumns() {
    bool any = false;
    for (int first = 1; first <= sheet_.LastSizedColumn();) {
      const double width = sheet_.ColumnWidth(first);
      const bool hidden = sheet_.ColumnHidden(first);
      int next = first + 1;
      while (next <= sheet_.LastSizedColumn() && sheet_.ColumnWidth(next) == width &&
             sheet_.ColumnHidden(next) == hidden) {
        ++next;
      }
      if (ColumnIsSized(first)) {
        if (!any) xml_ += "<cols>";
        any = true;
        WriteColumnStretch(first, next - 1, width, hidden);
      }
      first = next;
    }
    if (any) xml_ += "</cols>";
  }

  void WriteColumnStretch(int first, int last, double width, bool hidden) {
    xml_ += "<col min=\"";
    AppendNumber(xml_, first);
    xml_ += "\" max=\"";
    AppendNumber(xml_, last);
    xml_ += "\" width=\"";
    AppendNumber(xml_, StoredColumnWidth(width) / 256.0);
    xml_ += hidden ? "\" hidden=\"1\" customWidth=\"1\"/>" : "\" customWidth=\"1\"/>";
  }

  void WriteRows() {
    xml_ += "<sheetData>";
    const int last = std::max(sheet_.LastRow(), sheet_.LastSizedRow());
    for (row_ = 1; row_ <= last; ++row_) {
      WriteRow();
      if (xml_.size() >= kBufferBytes) Flush();
    }
    xml_ += "</sheetData>";
  }

  void WriteRow() {
    static const std::vector<Cell> kNoCells;
    const std::vector<Cell>& cells = row_ <= sheet_.LastRow() ? sheet_.Row(row_) : kNoCells;
    const double height = sheet_.RowHeight(row_);
    const bool hidden = sheet_.RowHidden(row_);
    const std::size_t begin = xml_.size();
    row_digits_ = std::to_string(row_);
    xml_ += "<row r=\"";
    xml_ += row_digits_;
    if (height > 0.0) {
      xml_ += "\" ht=\"";
      AppendNumber(xml_, height);
      xml_ += "\" customHeight=\"1";
    }
    xml_ += hidden ? "\" hidden=\"1\">" : "\">";
    const std::size_t content = xml_.size();
    for (column_ = 1; column_ <= static_cast<int>(cells.size()); ++column_) {
      WriteCell(cells[static_cast<std::size_t>(column_ - 1)]);
    }
    if (xml_.size() == content && height == 0.0 && !hidden) {
      xml_.resize(begin);  // a row that says nothing
    } else {
      xml_ += "</row>";
    }
  }

  void WriteCell(const Cell& cell) {
    if (cell.type == CellType::kEmpty && cell.format == 0) return;
    xml_ += "<c r=\"";
    xml_ += letters_[static_cast<std::size_t>(column_ - 1)];
    xml_ += row_digits_;
    if (const std::uint32_t style = context_.formats.IndexOf(cell.format); style != 0) {
      xml_ += "\" s=\"";
      AppendNumber(xml_, static_cast<int>(style));
    }
    switch (cell.type) {
      case CellType::kEmpty:
        xml_ += "\"/>";
        return;
      case CellType::kNumber:
        xml_ += "\"><v>";
        AppendNumber(xml_, cell.number);
        break;
      case CellType::kText:
        xml_ += "\" t=\"s\"><v>";
        AppendNumber(xml_, static_cast<int>(context_.strings.Use(cell.text)));
        break;
      case CellType::kFormula:
        WriteFormula(context_.workbook.FormulaAt(cell.formula));
        break;
    }
    xml_ += "</v></c>";
  }

  /// The formula and the result that readers show which do not calculate. A result that is not known is an
  /// empty text: readers that calculate compute it then, where no value at all would show 0.
  void WriteFormula(const Formula& formula) {
    const FormulaResult& result = formula.result;
    using Type = FormulaResult::Type;
    switch (result.type) {
      case Type::kNumber:
        xml_ += "\"><f>";
        break;
      case Type::kBoolean:
        xml_ += "\" t=\"b\"><f>";
        break;
      case Type::kError:
        xml_ += "\" t=\"e\"><f>";
        break;
      case Type::kText:
      case Type::kUnknown:
        xml_ += "\" t=\"str\"><f>";
        break;
    }
    AppendText(xml_, StoredText(formula));
    xml_ += "</f><v>";
    switch (result.type) {
      case Type::kNumber:
        AppendNumber(xml_, result.number);
        break;
      case Type::kBoolean:
        xml_ += result.number != 0.0 ? '1' : '0';
        break;
      case Type::kError:
        xml_ += ErrorText(result.error);
        break;
      case Type::kText:
        AppendText(xml_, result.text);
        break;
      case Type::kUnknown:
        break;
    }
  }

  std::string StoredText(const Formula& formula) {
    formula::FittedFormula fitted = formula::FitFormula(formula::ExpressionOf(formula), formula::kXlsxLimits,
                                                        {number_, sheet_.Name(), row_, column_});
    std::move(fitted.names.begin(), fitted.names.end(), std::back_inserter(context_.names));
    return formula::Print(*fitted.expression, formula::NameStyle::kStored);
  }

  void WriteMerges() {
    if (sheet_.Merges().empty()) return;
    xml_ += "<mergeCells count=\"" + std::to_string(sheet_.Merges().size()) + "\">";
    for (const CellRange& merge : sheet_.Merges()) {
      xml_ += "<mergeCell ref=\"";
      AppendRange(merge);
      xml_ += "\"/>";
      if (xml_.size() >= kBufferBytes) Flush();
    }
    xml_ += "</mergeCells>";
  }

  SheetContext& context_;
  const std::size_t number_;
  const Sheet& sheet_;
  std::string xml_;
  std::vector<std::string> letters_;  ///< of the columns, from column 1 on
  int row_ = 0;                       ///< that is being written
  int column_ = 0;                    ///< that is being written
  std::string row_digits_;
};

}  // namespace

void WriteSheet(SheetContext& context, std::size_t number) {
  SheetWriter(context, number).Write();
}

std::string SheetPartName(std::size_t number) {
  return "worksheets/sheet" + std::to_string(number) + ".xml";
}

}  // namespace excelexp::xlsx
