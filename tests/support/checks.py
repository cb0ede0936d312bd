"""What the reader tests share: making the fixture files, counting, and the comparison with a description."""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

SHOWN_FAILURES = 40


class Checks:
    """Counts; a failure is told on stderr at once."""

    def __init__(self):
        self.passed = 0
        self.failed = 0

    def equal(self, where, ours, theirs, same=None):
        if ours == theirs if same is None else same(ours, theirs):
            self.passed += 1
            return
        self.failed += 1
        if self.failed <= SHOWN_FAILURES:
            print(f"{where}: ours {shortened(ours)}, theirs {shortened(theirs)}", file=sys.stderr)

    def finish(self):
        """The exit code, after the line that says how it went. Having checked nothing is a failure."""
        print(f"{self.passed} passed, {self.failed} failed")
        return 1 if self.failed or not self.passed else 0


def shortened(value):
    text = repr(value)
    return text if len(text) <= 160 else f"{text[:120]}... ({len(text)} characters)"


def column_letters(column):
    letters = ""
    while column:
        column, digit = divmod(column - 1, 26)
        letters = chr(ord("A") + digit) + letters
    return letters


def cell_name(row, column):
    return column_letters(column) + str(row)


def fixture_folder(test_binary):
    """A temporary folder with every fixture in every format and its description as .json."""
    folder = tempfile.TemporaryDirectory(prefix="excelexp-fixtures-")
    subprocess.run([test_binary, "--gtest_filter=*FixtureFiles*", "--gtest_brief=1"], check=True,
                   stdout=subprocess.DEVNULL, env={**os.environ, "EXCELEXP_FIXTURES": folder.name})
    return folder


def stored_width(characters):
    """1/256 of a character; a character is 7 pixels wide and a cell has 5 pixels of margin."""
    return int((7 * characters + 5 * min(characters, 1)) / 7 * 256)


def plain_formula(text):
    """Without what may differ between a formula as written and as stored; texts in quotes keep their case."""
    pieces = re.split('("(?:[^"]|"")*")', text.lstrip("="))
    return "".join(piece if piece.startswith('"') else piece.upper().replace(" ", "").replace("_XLFN.", "")
                   for piece in pieces)


def compare(checks, description, book, where):
    """One comparison for every file format and reader."""
    sheets = description["sheets"]
    checks.equal(f"{where} sheets", [sheet["name"] for sheet in sheets], book.sheet_names())
    if book.title() is not None:
        checks.equal(f"{where} title", description["title"], book.title())
    for sheet in sheets:
        compare_sheet(checks, description["formats"], sheet, book, f"{where} {sheet['name']}")


def compare_sheet(checks, formats, sheet, book, where):
    name = sheet["name"]
    for row, column, kind, value, formula, format_id in sheet["cells"]:
        at = f"{where}!{cell_name(row, column)}"
        if kind != "unknown":
            checks.equal(at, (kind, value), book.value(name, row, column))
        compare_formula(checks, formula, book.formula(name, row, column), at)
        seen = book.format(name, row, column)
        if seen is not None:
            checks.equal(f"{at} format", formats[format_id], seen)
    with_value = {(cell[0], cell[1]) for cell in sheet["cells"] if cell[2] != "blank"}
    checks.equal(f"{where} cells that should be empty", set(), book.cells(name) - with_value)
    checks.equal(f"{where} merges", {tuple(merge) for merge in sheet["merges"]}, book.merges(name))
    for column, width in sheet["widths"].items():
        checks.equal(f"{where} width of column {column}", stored_width(width), book.width(name, int(column)))
    for row, height in sheet["heights"].items():
        checks.equal(f"{where} height of row {row}", height, book.height(name, int(row)))


def compare_formula(checks, ours, theirs, where):
    """A formula too long for one call is stored in another form; its value still has to be right."""
    if theirs is None or (ours is not None and ours.count(",") > 200):
        return
    checks.equal(f"{where} formula", plain_formula(ours or ""), plain_formula(theirs))


def compare_fixtures(test_binary, extension, open_book):
    """Compares every fixture in one file format; the exit code."""
    checks = Checks()
    with fixture_folder(test_binary) as folder:
        for path in sorted(pathlib.Path(folder).glob("*" + extension)):
            description = json.loads(path.with_suffix(".json").read_text(encoding="utf-8"))
            compare(checks, description, open_book(path), path.name)
    return checks.finish()
