#!/usr/bin/env python3
"""gnumeric_office.py TEST_BINARY: Gnumeric opens our files, recalculates them, and every cell equals what we
stored."""

import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from checks import Checks, fixture_folder  # noqa: E402
from office import compare_results, workbooks  # noqa: E402
from readers import XlsxBook  # noqa: E402


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


def main():
    checks = Checks()
    with fixture_folder(sys.argv[1]) as folder, tempfile.TemporaryDirectory() as saved_folder:
        for path in workbooks(folder):
            compare_results(checks, path, GnumericBook(path, saved_folder), "Gnumeric")
    return checks.finish()


if __name__ == "__main__":
    sys.exit(main())
