#!/usr/bin/env python3
"""Has LibreOffice calculate tests/data/formulas.tsv and compares its results with the expected ones.

    formulas_office.py            compare; lists every difference, exit code 1 when there is one
    formulas_office.py --show     print what LibreOffice makes of every formula, for writing new rows

The file's lines, columns separated by tabs:
    cell     NAME  TYPE  CONTENT [NUMBER FORMAT]     an input cell; TYPE is number, text or formula
    formula  TEXT  TYPE  RESULT  [REASON]            TYPE is number, text, boolean, error or unknown
A row with a REASON is not compared here: LibreOffice and the application differ, and the reason says how."""

import os
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml

import openpyxl

TABLE = pathlib.Path(__file__).resolve().parent.parent / "data" / "formulas.tsv"
FORMULA_COLUMN = 26
TEXT = "{urn:oasis:names:tc:opendocument:xmlns:text:1.0}"
CELLS = "{urn:oasis:names:tc:opendocument:xmlns:table:1.0}"
OFFICE = "{urn:oasis:names:tc:opendocument:xmlns:office:1.0}"
EXTENSION = "{urn:org:documentfoundation:names:experimental:calc:xmlns:calcext:1.0}"
LATER_FUNCTIONS = ("IFNA(",)


def rows():
    for number, line in enumerate(TABLE.read_text(encoding="utf-8").split("\n"), 1):
        if line and not line.startswith("#"):
            yield number, line.split("\t") + ["", "", "", ""]


def stored(formula: str) -> str:
    for function in LATER_FUNCTIONS:
        formula = formula.replace(function, "_xlfn." + function)
    return formula


def write_workbook(path):
    book = openpyxl.Workbook()
    sheets = {"Data": book.active, "Other": book.create_sheet("Other")}
    book.active.title = "Data"
    place = 0
    for _, row in rows():
        if row[0] == "cell":
            sheet, _, name = row[1].rpartition("!")
            cell = sheets[sheet or "Data"][name]
            cell.value = float(row[3]) if row[2] == "number" else row[3]
            cell.data_type = {"number": "n", "text": "s", "formula": "f"}[row[2]]
            if row[4]:
                cell.number_format = row[4]
        else:
            place += 1
            cell = sheets["Data"].cell(place, FORMULA_COLUMN)
            cell.value = stored(row[1])
            cell.data_type = "f"
    book.save(path)


def repeated(elements, attribute):
    for element in elements:
        for _ in range(min(int(element.get(CELLS + attribute, "1")), 5000)):
            yield element


def result(cell):
    kind = cell.get(EXTENSION + "value-type", cell.get(OFFICE + "value-type"))
    text = "\n".join("".join(p.itertext()) for p in cell.iter(TEXT + "p"))
    if kind == "error":
        return "error", text
    if kind == "boolean":
        return "boolean", cell.get(OFFICE + "boolean-value").upper()
    if kind in ("float", "percentage", "currency"):
        return "number", cell.get(OFFICE + "value")
    if kind in ("date", "time"):
        return "date", cell.get(OFFICE + kind + "-value")
    return "text", cell.get(OFFICE + "string-value") or text


def calculate(folder):
    source = os.path.join(folder, "formulas.xlsx")
    write_workbook(source)
    subprocess.run(["soffice", "--headless", "-env:UserInstallation=file://" + folder + "/profile", "--convert-to",
                    "fods", "--outdir", folder, source], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, env={**os.environ, "LC_ALL": "C.UTF-8"})
    table = xml.parse(os.path.join(folder, "formulas.fods")).getroot().find(".//" + CELLS + "table")
    results = []
    for line in repeated(table.iter(CELLS + "table-row"), "number-rows-repeated"):
        cells = list(repeated([c for c in line if c.tag.endswith("table-cell")], "number-columns-repeated"))
        results.append(result(cells[FORMULA_COLUMN - 1]) if len(cells) >= FORMULA_COLUMN else ("text", ""))
    return results


def same(expected_type, expected, kind, value):
    # These files carry no format for logical values, so LibreOffice shows 1 and 0.
    if expected_type == "boolean" and kind == "number":
        return expected == {"1": "TRUE", "0": "FALSE"}.get(value)
    # Errors that the application has no name for.
    if expected_type == kind == "error" and value.startswith("Err:"):
        return True
    if expected_type != kind:
        return False
    if kind != "number":
        return expected == value
    wanted, given = float(expected), float(value)
    return abs(wanted - given) <= 1e-12 * max(abs(wanted), abs(given))


def main() -> int:
    show = sys.argv[1:] == ["--show"]
    with tempfile.TemporaryDirectory() as folder:
        results = calculate(folder)
    formulas = [(number, row) for number, row in rows() if row[0] == "formula"]
    compared = different = 0
    for (number, (_, formula, kind, expected, reason, *_)), (office_kind, office_value) in zip(formulas, results):
        if show:
            print(formula, office_kind, office_value, reason, sep="\t")
            continue
        if reason or kind == "unknown":
            continue
        compared += 1
        if not same(kind, expected, office_kind, office_value):
            different += 1
            print(f"{TABLE.name}:{number}: {formula} expected {kind} {expected}, LibreOffice has {office_kind} {office_value}")
    if not show:
        print(f"{compared} formulas compared with LibreOffice, {different} differ, {len(formulas) - compared} not compared")
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
