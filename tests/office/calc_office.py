#!/usr/bin/env python3
"""calc_office.py TEST_BINARY: LibreOffice Calc opens our files, recalculates them, and every cell equals what
we stored."""

import contextlib
import pathlib
import subprocess
import sys
import tempfile
import time

import uno
from com.sun.star.beans import PropertyValue
from com.sun.star.connection import NoConnectException

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from checks import Checks, fixture_folder  # noqa: E402
from office import compare_results, workbooks  # noqa: E402

START_SECONDS = 60
CONTENT = 1 | 2 | 4 | 16  # com.sun.star.sheet.CellFlags: VALUE, DATETIME, STRING, FORMULA
# What Calc shows for errors that it has no common name for. 502, an invalid argument, is one error to Calc and
# two to the formats; 520 is what it makes of an error constant in an .xls file.
ERRORS = {"Err:502": ("#NUM!", "#VALUE!"), "Err:503": ("#NUM!",), "Err:520": ("#REF!", "#NAME?"),
          "Err:521": ("#NULL!",)}


class CalcBook:
    """A file that Calc has open."""

    def __init__(self, document):
        self.sheets = document.getSheets()
        self.last_columns = {}
        self.row = None
        self.row_values = ()

    def _cell(self, sheet, row, column):
        return self.sheets.getByName(sheet).getCellByPosition(column - 1, row - 1)

    def _row(self, name, row):
        """The values of a row at once: asking cell by cell takes minutes."""
        if self.row != (name, row):
            sheet = self.sheets.getByName(name)
            if name not in self.last_columns:
                cursor = sheet.createCursor()
                cursor.gotoEndOfUsedArea(False)
                self.last_columns[name] = cursor.getRangeAddress().EndColumn
            self.row = name, row
            cells = sheet.getCellRangeByPosition(0, row - 1, self.last_columns[name], row - 1)
            self.row_values = cells.getDataArray()[0]
        return self.row_values

    def value(self, sheet, row, column, ours):
        expected_kind, expected = ours
        value = self._row(sheet, row)[column - 1]
        if value is None or (value == "" and self._cell(sheet, row, column).getError()):
            shown = self._cell(sheet, row, column).getString()
            return "error", expected if expected in ERRORS.get(shown, ()) else shown
        if isinstance(value, str):
            return "text", value
        # Calc knows booleans as numbers that are shown in another way.
        return ("boolean", bool(value)) if expected_kind == "boolean" and value in (0, 1) else ("number", value)

    def formula(self, sheet, row, column):
        return self._cell(sheet, row, column).getFormula()

    def count(self, sheet):
        ranges = self.sheets.getByName(sheet).queryContentCells(CONTENT).getRangeAddresses()
        return sum((area.EndColumn - area.StartColumn + 1) * (area.EndRow - area.StartRow + 1) for area in ranges)


def connect(pipe):
    context = uno.getComponentContext()
    resolver = context.ServiceManager.createInstance("com.sun.star.bridge.UnoUrlResolver")
    for _ in range(10 * START_SECONDS):
        try:
            remote = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
            return remote.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", remote)
        except NoConnectException:
            time.sleep(0.1)
    raise SystemExit(f"LibreOffice did not answer within {START_SECONDS} s")


class Calc:
    """LibreOffice with a profile of its own, so that neither settings nor a running copy matter."""

    def __enter__(self):
        self.profile = tempfile.TemporaryDirectory(prefix="excelexp-calc-")
        pipe = pathlib.Path(self.profile.name).name
        self.program = subprocess.Popen(
            ["soffice", "--headless", "--norestore", "--nologo", "--nodefault",
             f"-env:UserInstallation=file://{self.profile.name}", f"--accept=pipe,name={pipe};urp;"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            self.desktop = connect(pipe)
        except BaseException:
            self.program.kill()
            raise
        return self

    def recalculated(self, path):
        hidden = PropertyValue(Name="Hidden", Value=True)
        document = self.desktop.loadComponentFromURL(path.resolve().as_uri(), "_blank", 0, (hidden,))
        document.calculateAll()
        return document

    def __exit__(self, *_):
        with contextlib.suppress(Exception):  # the connection ends with the program
            self.desktop.terminate()
        try:
            self.program.wait(timeout=START_SECONDS)
        except subprocess.TimeoutExpired:
            self.program.kill()
        self.profile.cleanup()


def main():
    checks = Checks()
    with fixture_folder(sys.argv[1]) as folder, Calc() as calc:
        for path in workbooks(folder):
            document = calc.recalculated(path)
            compare_results(checks, path, CalcBook(document), "Calc")
            document.close(True)
    return checks.finish()


if __name__ == "__main__":
    sys.exit(main())
