"""The readers that the tests compare with, behind one small interface.

A book has sheet_names() and, per sheet name:
  cells(sheet)                the (row, column) of every cell with a value, numbered from 1
  value(sheet, row, column)   (kind, value); kinds are number, text, boolean, error and blank
  formula(sheet, row, column) the formula text without "=", "" for a value, None where the reader cannot tell
  format(sheet, row, column)  a dictionary, None where the reader cannot tell
  merges(sheet)               a set of (first row, first column, last row, last column)
  width(sheet, column)        in 1/256 of a character as stored, 0 for hidden, None where none was stored
  height(sheet, row)          in points, 0 for hidden, None where none was stored
and title(). The formats are described in workbook_json.cpp."""

import re
import warnings

import openpyxl
import openpyxl.utils.datetime
import xlrd

warnings.filterwarnings("ignore", module="openpyxl")  # what other programs leave out of their files

UNDERLINES = {0: "none", 1: "single", 2: "double", 0x21: "singleAccounting", 0x22: "doubleAccounting"}
SCRIPTS = {0: "none", 1: "superscript", 2: "subscript"}
CENTRED = 2
BOLD_WEIGHT = 700
AUTOMATIC_COLOUR = 0x7FFF


class XlsBook:
    """An .xls file as xlrd reads it."""

    KINDS = {xlrd.XL_CELL_NUMBER: "number", xlrd.XL_CELL_DATE: "number", xlrd.XL_CELL_TEXT: "text",
             xlrd.XL_CELL_BOOLEAN: "boolean", xlrd.XL_CELL_ERROR: "error"}

    def __init__(self, path):
        self.book = xlrd.open_workbook(str(path), formatting_info=True)
        self.sheets = {sheet.name: sheet for sheet in self.book.sheets()}

    def sheet_names(self):
        return self.book.sheet_names()

    def cells(self, name):
        sheet = self.sheets[name]
        return {(row + 1, column + 1) for row in range(sheet.nrows)
                for column, kind in enumerate(sheet.row_types(row)) if kind in self.KINDS}

    def value(self, name, row, column):
        sheet = self.sheets[name]
        if row > sheet.nrows or column > sheet.row_len(row - 1):
            return "blank", None
        cell = sheet.cell(row - 1, column - 1)
        kind = self.KINDS.get(cell.ctype, "blank")
        if kind == "boolean":
            return kind, bool(cell.value)
        if kind == "error":
            return kind, xlrd.error_text_from_code[cell.value]
        return kind, None if kind == "blank" else cell.value

    def formula(self, name, row, column):
        return None

    def format(self, name, row, column):
        cell_format = self.book.xf_list[self.sheets[name].cell_xf_index(row - 1, column - 1)]
        font = self.book.font_list[cell_format.font_index]
        colour = self.book.colour_map.get(font.colour_index)
        return {
            "font": font.name,
            "size": font.height / 20,
            "colour": "automatic" if font.colour_index == AUTOMATIC_COLOUR else "%02X%02X%02X" % colour,
            "bold": font.weight >= BOLD_WEIGHT,
            "italic": bool(font.italic),
            "strikethrough": bool(font.struck_out),
            "script": SCRIPTS[font.escapement],
            "underline": UNDERLINES[font.underline_type],
            "number_format": self.book.format_map[cell_format.format_key].format_str,
            "wrap": bool(cell_format.alignment.text_wrapped),
            "centred": cell_format.alignment.hor_align == CENTRED,
        }

    def merges(self, name):
        return {(row + 1, column + 1, end_row, end_column)
                for row, end_row, column, end_column in self.sheets[name].merged_cells}

    def width(self, name, column):
        info = self.sheets[name].colinfo_map.get(column - 1)
        return None if info is None else 0 if info.hidden else info.width

    def height(self, name, row):
        info = self.sheets[name].rowinfo_map.get(row - 1)
        return None if info is None else 0 if info.hidden else info.height / 20

    def title(self):
        return None


class XlsxBook:
    """An .xlsx file as openpyxl reads it, once for the formulas and once for their stored results."""

    KINDS = {"n": "number", "d": "number", "s": "text", "str": "text", "inlineStr": "text", "b": "boolean",
             "e": "error"}

    def __init__(self, path):
        self.book = openpyxl.load_workbook(path)
        self.results = openpyxl.load_workbook(path, data_only=True)
        self.widths = {name: self._widths(name) for name in self.book.sheetnames}
        self.covered = {name: {cell for merge in self.book[name].merged_cells.ranges
                               for cell in list(merge.cells)[1:]} for name in self.book.sheetnames}

    def _widths(self, name):
        widths = {}
        for stretch in self.book[name].column_dimensions.values():
            for column in range(stretch.min or 0, (stretch.max or -1) + 1):
                widths[column] = 0 if stretch.hidden else round(stretch.width * 256)
        return widths

    def sheet_names(self):
        return self.book.sheetnames

    def cells(self, name):
        return {(cell.row, cell.column) for cell in self.book[name]._cells.values() if cell.value is not None}

    def value(self, name, row, column):
        cell = self.results[name]._cells.get((row, column))
        if cell is None or cell.value is None:
            return ("text", "") if self.formula(name, row, column) else ("blank", None)
        value = cell.value
        kind = self.KINDS[cell.data_type]
        if kind == "number" and not isinstance(value, (int, float)):
            value = openpyxl.utils.datetime.to_excel(value)
        if kind == "text":  # openpyxl leaves the escapes of control characters to its callers
            value = re.sub("_x00([01][0-9A-F])_", lambda escape: chr(int(escape[1], 16)), value)
        return kind, value

    def formula(self, name, row, column):
        cell = self.book[name]._cells.get((row, column))
        is_formula = cell is not None and cell.data_type == "f"
        return cell.value[1:] if is_formula else ""

    def format(self, name, row, column):
        if (row, column) in self.covered[name]:
            return None  # openpyxl gives covered cells a format of its own making
        cell = self.book[name].cell(row, column)
        font = cell.font
        return {
            "font": font.name,
            "size": font.size,
            "colour": "automatic" if font.color is None else font.color.rgb[2:],
            "bold": bool(font.bold),
            "italic": bool(font.italic),
            "strikethrough": bool(font.strike),
            "script": font.vertAlign or "none",
            "underline": font.underline or "none",
            "number_format": cell.number_format,
            "wrap": bool(cell.alignment.wrap_text),
            "centred": cell.alignment.horizontal == "center",
        }

    def merges(self, name):
        return {(merge.min_row, merge.min_col, merge.max_row, merge.max_col)
                for merge in self.book[name].merged_cells.ranges}

    def width(self, name, column):
        return self.widths[name].get(column)

    def height(self, name, row):
        if row not in self.book[name].row_dimensions:
            return None
        dimension = self.book[name].row_dimensions[row]
        return 0 if dimension.hidden else dimension.height

    def title(self):
        return self.book.properties.title


def open_book(path):
    return XlsBook(path) if path.suffix == ".xls" else XlsxBook(path)
