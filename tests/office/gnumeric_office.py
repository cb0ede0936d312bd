#!/usr/bin/env python3
"""gnumeric_office.py TEST_BINARY: Gnumeric opens our files, recalculates them, and every cell equals what we
stored."""

import pathlib
import re
import subprocess
import sys
import tempfile

from openpyxl.utils import column_index_from_string

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from checks import Checks, fixture_folder  # noqa: E402
from office import compare_results, workbooks  # noqa: E402
from readers import XlsxBook  # noqa: E402


# Gnumeric 1.12.55 neither reads nor writes the escapes of texts in .xlsx files.
NOT_READ = {"escapes.xls", "escapes.xlsx"}
REFERENCE = re.compile(r"(?:('(?:[^']|'')+'|\w+)!)?\$?([A-Z]{1,3})\$?(\d+)(?::\$?([A-Z]{1,3})\$?(\d+))?(?![\w(])")


class GnumericBook:
    """What Gnumeric made of a file, as it saves it after computing everything."""

    def __init__(self, path, folder):
        saved = pathlib.Path(folder) / f"gnumeric-{path.suffix[1:]}-{path.stem}.xlsx"
        subprocess.run(["ssconvert", "--recalc", "-T", "Gnumeric_Excel:xlsx2",
                        str(path), str(saved)], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.book = XlsxBook(saved)

    def value(self, sheet, row, column, ours):
        return self.book.value(sheet, row, column)

    def formula(self, sheet, row, column):
        return "=" + self.book.formula(sheet, row, column)

    def count(self, sheet):
        return len(self.book.cells(sheet))

    def led_by_cell_format(self):
        """The cells whose formulas ask for CELL("format") and those that depend on them. Gnumeric answers by a
        list of built-in number formats and knows no others: "#,0.00;-#,0.00" is "G" to it, not ",2"."""
        formulas = {(sheet, row, column): self.book.formula(sheet, row, column)
                    for sheet in self.book.sheet_names() for row, column in self.book.cells(sheet)}
        formulas = {cell: formula for cell, formula in formulas.items() if formula}
        led = {cell for cell, formula in formulas.items() if 'CELL("format"' in formula}
        found = led
        while found:
            found = {cell for cell, formula in formulas.items()
                     if cell not in led and refers_to_any(formula, cell[0], led)}
            led |= found
        return led


def refers_to_any(formula, own_sheet, cells):
    for sheet, first_column, first_row, last_column, last_row in REFERENCE.findall(formula):
        sheet = sheet.strip("'").replace("''", "'") or own_sheet
        columns = range(column_index_from_string(first_column),
                        column_index_from_string(last_column or first_column) + 1)
        rows = range(int(first_row), int(last_row or first_row) + 1)
        if any(name == sheet and row in rows and column in columns for name, row, column in cells):
            return True
    return False


def main():
    checks = Checks()
    with fixture_folder(sys.argv[1]) as folder, tempfile.TemporaryDirectory() as saved_folder:
        not_compared = 0
        for path in workbooks(folder):
            if path.name in NOT_READ:
                continue
            book = GnumericBook(path, saved_folder)
            led = book.led_by_cell_format()
            not_compared += len(led)
            compare_results(checks, path, book, "Gnumeric", led)
    print(f'{not_compared} cells not compared: Gnumeric knows CELL("format") of built-in number formats only')
    return checks.finish()


if __name__ == "__main__":
    sys.exit(main())
