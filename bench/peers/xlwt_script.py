#!/usr/bin/env python3
"""The month-end listing as an .xls file, by xlwt. usage: xlwt_script.py DATABASE WORKBOOK"""

import xlwt

import month_end as listing


def style_of(name: str, number_format: str = "General", centred: bool = False) -> xlwt.XFStyle:
    look = listing.STYLES[name]
    style = xlwt.XFStyle()
    style.font.name = "Arial"
    style.font.height = 9 * 20
    style.font.bold = look.bold
    style.font.italic = look.italic
    style.font.colour_index = look.colour
    if look.accounting_underline:
        style.font.underline = xlwt.Font.UNDERLINE_SINGLE_ACC
    style.num_format_str = number_format
    if centred:
        style.alignment.horz = xlwt.Alignment.HORZ_CENTER
    return style


def set_height(sheet: xlwt.Worksheet, row: int, points: int) -> None:
    sheet.row(row).height_mismatch = True
    sheet.row(row).height = points * 20


def set_widths(sheet: xlwt.Worksheet) -> None:
    names = [name for _, name in listing.MAIN_COLUMNS] + [column.style for column in listing.COLUMNS] * 3
    for column, name in enumerate(names):
        sheet.col(column).width = int((listing.STYLES[name].width * 7 + 5) / 7 * 256)


def write_headings(sheet: xlwt.Worksheet) -> None:
    centred = style_of("Title", centred=True)
    plain = style_of("Title")
    for row in (*listing.HEADING_ROWS, listing.TITLE_ROW):
        set_height(sheet, row, listing.TITLE_HEIGHT)
    for column, (title, _) in enumerate(listing.MAIN_COLUMNS):
        sheet.write(listing.TITLE_ROW, column, title, plain)
    first = len(listing.MAIN_COLUMNS)
    for month in listing.MONTHS:
        for row, text in zip(listing.HEADING_ROWS, listing.headings(month)):
            sheet.write_merge(row, row, first, first + len(listing.COLUMNS) - 1, text or None, centred)
        for i, column in enumerate(listing.COLUMNS):
            sheet.write(listing.TITLE_ROW, first + i, column.title, plain)
        first += len(listing.COLUMNS)


def main() -> None:
    database, workbook_file = listing.files()
    workbook = xlwt.Workbook()
    sheet = workbook.add_sheet(listing.SHEET)
    set_widths(sheet)
    write_headings(sheet)
    text_styles = [style_of(name) for _, name in listing.MAIN_COLUMNS]
    figure_styles = [style_of(column.style, column.number_format) for column in listing.COLUMNS] * 3
    for row, (texts, figures) in enumerate(listing.rows(database), listing.FIRST_ROW):
        set_height(sheet, row, listing.ROW_HEIGHT)
        cells = sheet.row(row)
        for column, (text, style) in enumerate(zip(texts, text_styles)):
            cells.set_cell_text(column, text, style)
        for column, (figure, style) in enumerate(zip(figures, figure_styles), len(texts)):
            cells.set_cell_number(column, figure, style)
    workbook.save(workbook_file)


if __name__ == "__main__":
    main()
