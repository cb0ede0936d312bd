#!/usr/bin/env python3
"""The month-end listing as an .xlsx file, by XlsxWriter. usage: xlsxwriter_script.py DATABASE WORKBOOK"""

import xlsxwriter

import month_end as listing


def format_of(workbook: xlsxwriter.Workbook, name: str, number_format: str = "General", centred: bool = False):
    look = listing.STYLES[name]
    properties = {"font_name": "Arial", "font_size": 9, "font_color": look.rgb, "bold": look.bold,
                  "italic": look.italic, "num_format": number_format}
    if look.accounting_underline:
        properties["underline"] = 33
    if centred:
        properties["align"] = "center"
    return workbook.add_format(properties)


def set_widths(sheet) -> None:
    names = [name for _, name in listing.MAIN_COLUMNS] + [column.style for column in listing.COLUMNS] * 3
    for column, name in enumerate(names):
        sheet.set_column(column, column, listing.STYLES[name].width)


def write_headings(workbook: xlsxwriter.Workbook, sheet) -> None:
    centred = format_of(workbook, "Title", centred=True)
    plain = format_of(workbook, "Title")
    for row in (*listing.HEADING_ROWS, listing.TITLE_ROW):
        sheet.set_row(row, listing.TITLE_HEIGHT)
    for column, (title, _) in enumerate(listing.MAIN_COLUMNS):
        sheet.write_string(listing.TITLE_ROW, column, title, plain)
    first = len(listing.MAIN_COLUMNS)
    for month in listing.MONTHS:
        for row, text in zip(listing.HEADING_ROWS, listing.headings(month)):
            sheet.merge_range(row, first, row, first + len(listing.COLUMNS) - 1, text, centred)
        for i, column in enumerate(listing.COLUMNS):
            sheet.write_string(listing.TITLE_ROW, first + i, column.title, plain)
        first += len(listing.COLUMNS)


def main() -> None:
    database, workbook_file = listing.files()
    workbook = xlsxwriter.Workbook(workbook_file)
    sheet = workbook.add_worksheet(listing.SHEET)
    set_widths(sheet)
    write_headings(workbook, sheet)
    text_formats = [format_of(workbook, name) for _, name in listing.MAIN_COLUMNS]
    figure_formats = [format_of(workbook, column.style, column.number_format) for column in listing.COLUMNS] * 3
    for row, (texts, figures) in enumerate(listing.rows(database), listing.FIRST_ROW):
        sheet.set_row(row, listing.ROW_HEIGHT)
        for column, (text, look) in enumerate(zip(texts, text_formats)):
            sheet.write_string(row, column, text, look)
        for column, (figure, look) in enumerate(zip(figures, figure_formats), len(texts)):
            sheet.write_number(row, column, figure, look)
    workbook.close()


if __name__ == "__main__":
    main()
