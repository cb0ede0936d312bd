#!/usr/bin/env python3
"""Whether two workbooks of one format show the same: the value, font and number format of every cell that is
not blank, the column widths, the row heights and the merges. usage: same_workbook.py WORKBOOK WORKBOOK

A comparison of speed between programs that write different cells would be none."""

import sys
from typing import Iterator, Optional

import openpyxl
import xlrd


def shown_xls(file: str) -> Iterator[tuple]:
    """What the file shows, as pairs of a place and what is there."""
    book = xlrd.open_workbook(file, formatting_info=True)
    for sheet in book.sheets():
        yield (sheet.name, "merges"), sorted(sheet.merged_cells)
        for column, info in sheet.colinfo_map.items():
            yield (sheet.name, "width", column), info.width
        for row, info in sheet.rowinfo_map.items():
            yield (sheet.name, "height", row), info.height
        for row in range(sheet.nrows):
            for column in range(sheet.row_len(row)):
                cell = sheet.cell(row, column)
                if cell.ctype in (xlrd.XL_CELL_EMPTY, xlrd.XL_CELL_BLANK):
                    continue
                look = book.xf_list[cell.xf_index]
                font = book.font_list[look.font_index]
                yield (sheet.name, row, column), (
                    cell.value, font.name, font.height, font.weight, font.italic, font.underline_type,
                    font.colour_index, book.format_map[look.format_key].format_str, look.alignment.hor_align)


def shown_xlsx(file: str) -> Iterator[tuple]:
    for sheet in openpyxl.load_workbook(file).worksheets:
        yield (sheet.title, "merges"), sorted(str(merge) for merge in sheet.merged_cells.ranges)
        for column, size in sheet.column_dimensions.items():
            for number in range(size.min, size.max + 1):
                yield (sheet.title, "width", number), size.width
        for row, size in sheet.row_dimensions.items():
            yield (sheet.title, "height", row), size.height
        for line in sheet.iter_rows():
            for cell in line:
                if cell.value is None:
                    continue
                font = cell.font
                colour = font.color.rgb[-6:] if font.color is not None and font.color.type == "rgb" else None
                yield (sheet.title, cell.row, cell.column), (
                    cell.value, font.name, font.size, font.bold, font.italic, font.underline, colour,
                    cell.number_format, cell.alignment.horizontal)


def first_difference(one: str, other: str) -> Optional[str]:
    """The first place, in its order, where the two differ; None for equal workbooks."""
    shown = shown_xlsx if one.endswith(".xlsx") else shown_xls
    ours, theirs = dict(shown(one)), dict(shown(other))
    for place in sorted(ours.keys() | theirs.keys(), key=str):
        if ours.get(place) != theirs.get(place):
            return f"{place}: {ours.get(place)} in {one}, {theirs.get(place)} in {other}"
    return None


def main() -> int:
    difference = first_difference(sys.argv[1], sys.argv[2])
    if difference:
        print(difference, file=sys.stderr)
    return 1 if difference else 0


if __name__ == "__main__":
    sys.exit(main())
