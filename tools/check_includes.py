#!/usr/bin/env python3
"""Proves the layering: includes point down only.

A folder of src/ is a layer. The context stands low because everybody works through it, the driver in the
same folder stands on top; RANKS says so file by file where a folder is not one layer. Headers of other
makers may be included by platform sources only, never by a header."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SRC = ROOT / "src"

# Low to high. An entry is a folder or the stem of a file; the longest entry that fits a file counts.
RANKS = [
    ["platform"],
    ["services/BExcelExpEngCalcFields", "services/DefinitionMemory"],
    ["engine"],
    ["services"],
    ["layouts"],
    ["frames", "dataprep"],
    ["worksheet"],
    ["engine/BExcelExpEngine"],
    ["cli"],
]
FOREIGN = re.compile(r"^(sqlite3|gsf/|glib|xlsxwriter)")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def rank(path: str) -> int:
    fits = [(len(entry), level) for level, entries in enumerate(RANKS) for entry in entries
            if path == entry or path.startswith(entry + "/") or path.rsplit(".", 1)[0] == entry]
    if not fits:
        raise SystemExit(f"{path}: no layer is known for it; add it to {pathlib.Path(__file__).name}")
    return max(fits)[1]


def complaints(file: pathlib.Path):
    own = file.relative_to(SRC).as_posix()
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        kind, target = match.groups()
        where = f"src/{own}:{number}"
        if FOREIGN.match(target) and not (own.startswith("platform/") and own.endswith(".cpp")):
            yield f"{where}: <{target}> may be included by a source below src/platform only"
        if kind == '"' and target.startswith("demo/") and own.startswith("cli/"):
            continue  # the command carries the demo generator, the library does not
        if kind == '"' and not (SRC / target).exists():
            yield f'{where}: "{target}" is not a path below src/'
        elif kind == '"' and rank(target) > rank(own):
            yield f'{where}: "{target}" lies above src/{own}'


def main() -> int:
    found = [text for file in sorted(SRC.rglob("*")) if file.suffix in (".h", ".cpp") for text in complaints(file)]
    print("\n".join(found), file=sys.stderr, end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
