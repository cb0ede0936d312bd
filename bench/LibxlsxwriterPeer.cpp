#include "bench/LibxlsxwriterPeer.h"

#include <xlsxwriter.h>

#include <stdexcept>

#include "platform/spreadsheet/Palette.h"

namespace excelexp {
namespace {

struct UnderlineName {
  Underline kind;
  lxw_format_underlines theirs;
};

constexpr UnderlineName kUnderlines[] = {
    {Underline::kSingle, LXW_UNDERLINE_SINGLE},
    {Underline::kDouble, LXW_UNDERLINE_DOUBLE},
    {Underline::kSingleAccounting, LXW_UNDERLINE_SINGLE_ACCOUNTING},
    {Underline::kDoubleAccounting, LXW_UNDERLINE_DOUBLE_ACCOUNTING},
};

/// The library takes 0 for no colour.
lxw_color_t ColourOf(int palette_index) {
  const std::uint32_t colour = PaletteColour(palette_index);
  return colour == 0 ? static_cast<lxw_color_t>(LXW_COLOR_BLACK) : colour;
}

lxw_format* AddFormat(lxw_workbook* workbook, const CellFormat& ours) {
  lxw_format* const format = workbook_add_format(workbook);
  format_set_font_name(format, ours.font_name.c_str());
  format_set_font_size(format, ours.font_size);
  if (ours.font_colour != 0) format_set_font_color(format, ColourOf(ours.font_colour));
  if (ours.bold) format_set_bold(format);
  if (ours.italic) format_set_italic(format);
  if (ours.strikethrough) format_set_font_strikeout(format);
  if (ours.superscript) format_set_font_script(format, LXW_FONT_SUPERSCRIPT);
  if (ours.subscript) format_set_font_script(format, LXW_FONT_SUBSCRIPT);
  for (const UnderlineName& name : kUnderlines) {
    if (name.kind == ours.underline) format_set_underline(format, name.theirs);
  }
  format_set_num_format(format, ours.number_format.c_str());
  if (ours.word_wrap) format_set_text_wrap(format);
  if (ours.centred) format_set_align(format, LXW_ALIGN_CENTER);
  return format;
}

lxw_row_t RowIndex(int row) {
  return static_cast<lxw_row_t>(row - 1);
}

lxw_col_t ColumnIndex(int column) {
  return static_cast<lxw_col_t>(column - 1);
}

}  // namespace

LibxlsxwriterPeer::LibxlsxwriterPeer(const Workbook& workbook) {
  for (FormatId id = 0; id < workbook.FormatCount(); ++id) formats_.push_back(workbook.Format(id));
  for (const auto& sheet : workbook.Sheets()) pages_.push_back(PageOf(workbook, *sheet));
}

LibxlsxwriterPeer::Page LibxlsxwriterPeer::PageOf(const Workbook& workbook, const Sheet& sheet) {
  Page page{sheet.Name(), {}, sheet.Merges(), {}, {}};
  for (int column = 1; column <= sheet.LastSizedColumn(); ++column) {
    if (sheet.ColumnWidth(column) > 0) page.column_widths.push_back({column, sheet.ColumnWidth(column)});
  }
  for (int row = 1; row <= sheet.LastSizedRow(); ++row) {
    if (sheet.RowHeight(row) > 0) page.row_heights.push_back({row, sheet.RowHeight(row)});
  }
  for (int row = 1; row <= sheet.LastRow(); ++row) {
    int column = 0;
    for (const Cell& cell : sheet.Row(row)) {
      ++column;
      Value value{row, column, cell.type, cell.format, 0, ""};
      switch (cell.type) {
        case CellType::kEmpty:
          if (cell.format == 0) continue;
          break;
        case CellType::kNumber:
          value.number = cell.number;
          break;
        case CellType::kText:
          value.text = workbook.Text(cell.text);
          break;
        case CellType::kFormula:
          value.text = workbook.FormulaAt(cell.formula).Text();
          value.number = workbook.FormulaAt(cell.formula).result.number;
      }
      page.values.push_back(std::move(value));
    }
  }
  return page;
}

void LibxlsxwriterPeer::Write(const std::string& file) const {
  lxw_workbook* const workbook = workbook_new(file.c_str());
  std::vector<lxw_format*> formats;
  for (const CellFormat& format : formats_) formats.push_back(AddFormat(workbook, format));
  for (const Page& page : pages_) {
    lxw_worksheet* const sheet = workbook_add_worksheet(workbook, page.name.c_str());
    for (const Size& width : page.column_widths) {
      worksheet_set_column(sheet, ColumnIndex(width.number), ColumnIndex(width.number), width.size, nullptr);
    }
    for (const Size& height : page.row_heights) {
      worksheet_set_row(sheet, RowIndex(height.number), height.size, nullptr);
    }
    for (const CellRange& merge : page.merges) {
      worksheet_merge_range(sheet, RowIndex(merge.first_row), ColumnIndex(merge.first_col),
                            RowIndex(merge.last_row), ColumnIndex(merge.last_col), "", nullptr);
    }
    for (const Value& value : page.values) {
      const lxw_row_t row = RowIndex(value.row);
      const lxw_col_t column = ColumnIndex(value.column);
      lxw_format* const format = formats[value.format];
      switch (value.type) {
        case CellType::kEmpty:
          worksheet_write_blank(sheet, row, column, format);
          break;
        case CellType::kNumber:
          worksheet_write_number(sheet, row, column, value.number, format);
          break;
        case CellType::kText:
          worksheet_write_string(sheet, row, column, value.text.c_str(), format);
          break;
        case CellType::kFormula:
          worksheet_write_formula_num(sheet, row, column, value.text.c_str(), format, value.number);
      }
    }
  }
  if (workbook_close(workbook) != LXW_NO_ERROR) throw std::runtime_error("libxlsxwriter failed");
}

}  // namespace excelexp
