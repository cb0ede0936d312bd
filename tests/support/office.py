"""What the office tests share: the files to open, and the comparison of one file's stored results with what
another program computes."""

import math
import pathlib

from checks import cell_name
from readers import open_book

RELATIVE_ROUNDING = 1e-12
DEMO_WORKBOOKS = ["out/Payroll.xls", "out/Payroll.xlsx"]


def workbooks(fixture_folder):
    """Every fixture file, and the demo's workbooks where the demo was made."""
    demo = [pathlib.Path(name) for name in DEMO_WORKBOOKS if pathlib.Path(name).exists()]
    return sorted(path for path in pathlib.Path(fixture_folder).iterdir() if path.suffix != ".json") + demo


def same_value(ours, theirs):
    (our_kind, our_value), (their_kind, their_value) = ours, theirs
    if our_kind == their_kind == "number":
        return math.isclose(our_value, their_value, rel_tol=RELATIVE_ROUNDING, abs_tol=0.0)
    return (our_kind, our_value) == (their_kind, their_value)


def compare_results(checks, path, theirs, program, not_compared=frozenset()):
    """`theirs` has value(sheet, row, column, ours), which knows our value where the program's kinds are fewer
    than ours, formula(sheet, row, column) and count(sheet), the number of cells with a value. `not_compared`
    holds the (sheet, row, column) where the program is known to compute something else."""
    ours = open_book(path)
    for sheet in ours.sheet_names():
        cells = sorted(ours.cells(sheet))
        checks.equal(f"{program} {path.name} {sheet}: number of cells", len(cells), theirs.count(sheet))
        for row, column in cells:
            if (sheet, row, column) in not_compared:
                continue
            our_value = ours.value(sheet, row, column)
            their_value = theirs.value(sheet, row, column, our_value)
            where = f"{program} {path.name} {sheet}!{cell_name(row, column)}"
            if not same_value(our_value, their_value):
                where += f" {theirs.formula(sheet, row, column)[:200]}"
            checks.equal(where, our_value, their_value, same_value)
