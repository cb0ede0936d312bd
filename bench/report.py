#!/usr/bin/env python3
"""Measures and prints what that says: a table of all, then one line for each ratio or figure.

usage: report.py [--divide N] [--repetitions N] BENCH_PROGRAM [FILTER]

Everything runs five times, in turns with the rest; the median counts. With a FILTER (a regular expression for
names of the table) only what matches is measured, and only the lines whose parts were measured are printed.
--divide makes every database N times smaller, to try something out. docs/performance.md explains every line."""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile
from typing import NamedTuple, Optional

from peers.same_workbook import first_difference
from runs import Figures, Progress, run_benchmarks, run_programs

PYTHON = [sys.executable, "-B"]
PEERS = pathlib.Path(__file__).resolve().parent / "peers"
TRIAL_DIVISOR = 50  # of the month-end on which the peers prove that they write the same


class Promise(NamedTuple):
    """`bench` in `unit`, or, when `against` is given, `bench` divided by that.

    What is compared is the time by `clock`: "cpu" is what all threads of the program compute (other programs on the
    machine do not count), "real" also waits for the disk or for other processes. With a `counter` it is the
    counter of that name instead, counted in `unit`. `per` divides both sides by a counter of theirs."""
    name: str
    bench: str
    goal: Optional[float] = None  # at most
    against: Optional[str] = None
    unit: str = "us"
    clock: str = "cpu"
    counter: Optional[str] = None
    per: Optional[str] = None


# What is compared. A new promise is a new row.
PROMISES = [
    Promise("export_xls/libxlsxwriter_raw", "Export/Xls", goal=2.0, against="Export/Libxlsxwriter"),
    Promise("print_xls/libxlsxwriter_raw", "Export/PrintXls", goal=1.0, against="Export/Libxlsxwriter"),
    Promise("print_xls_stored/libxlsxwriter_raw", "Export/PrintStoredXls", against="Export/Libxlsxwriter"),
    Promise("export_xlsx/libxlsxwriter_raw", "Export/Xlsx", goal=2.5, against="Export/Libxlsxwriter"),
    Promise("export_xls/xlwt_script", "Program/ExportXls", goal=0.33, against="Program/XlwtScript"),
    Promise("export_xlsx/xlsxwriter_script", "Program/ExportXlsx", against="Program/XlsxWriterScript"),
    Promise("per_cell_40k/per_cell_1k", "Export/Large", goal=1.2, against="Export/Small", per="cells"),
    Promise("grouped_2000/ungrouped", "Export/Grouped", goal=1.5, against="Export/Xls"),
    Promise("peak_bytes_per_cell", "Program/ExportXls", goal=100, counter="peak_bytes", per="cells",
            unit="bytes a cell"),
    Promise("definition_query_again", "DefinitionQueryAgain", goal=1.0),
    Promise("locate_four_fields_10000_rows", "LocateFourFields", goal=0.5),
    Promise("read_400000_records_result_set_to_bare", "ReadRecordsResultSet", goal=1 / 0.7, against="ReadRecordsBare"),
    Promise("xls_400000_cells_to_libxlsxwriter", "WorkbookBytes/XlsCents", goal=0.5,
            against="WorkbookLibxlsxwriter/Cents"),
    Promise("xls_400000_cells_published_to_libxlsxwriter", "WorkbookPublished/XlsCents", goal=0.5,
            against="WorkbookLibxlsxwriter/Cents"),
    Promise("xlsx_400000_cells_to_libxlsxwriter", "WorkbookBytes/XlsxCents", goal=1.3,
            against="WorkbookLibxlsxwriter/Cents"),
    Promise("xls_peak_memory_cents", "WorkbookBytes/XlsCents", goal=64, counter="peak_bytes_per_cell",
            unit="bytes a cell"),
    Promise("xls_peak_memory_doubles", "WorkbookBytes/XlsDoubles", goal=64, counter="peak_bytes_per_cell",
            unit="bytes a cell"),
]

BREAKDOWN = "Layout/Payroll"
LAYOUT_GOAL = 2.0
# Worksheets of one company, however many employees there are: what is fixed in a run is most of it.
COMPANY_LEVEL = {"Layout/Company", "Layout/Company Year"}


def layout_promises(times: dict) -> list:
    """One for each worksheet of the demo beside the breakdown."""
    return [Promise(f"layout_{name.removeprefix('Layout/').lower().replace(' ', '_')}/breakdown", name,
                    against=BREAKDOWN, goal=None if name in COMPANY_LEVEL else LAYOUT_GOAL, per="cells")
            for name in times if name.startswith("Layout/") and name != BREAKDOWN]


class Whole(NamedTuple):
    """A program that writes the listing from a database: our export, or the script of a peer."""
    name: str
    workbook: str
    script: Optional[str] = None


PROGRAMS = [
    Whole("Program/ExportXls", "Payroll.xls"),
    Whole("Program/XlwtScript", "Xlwt.xls", "xlwt_script.py"),
    Whole("Program/ExportXlsx", "Payroll.xlsx"),
    Whole("Program/XlsxWriterScript", "XlsxWriter.xlsx", "xlsxwriter_script.py"),
]


class MonthEnd:
    """The databases of the whole programs: one as it is, for our exports, and one with the analysis records
    stored, which is where the scripts read."""

    def __init__(self, bench: list, folder: str, divide: int):
        self.bench = bench
        self.folder = pathlib.Path(folder)
        self.database = self.folder / "payroll.db"
        self.with_records = self.folder / "records.db"
        for database, records in ((self.database, []), (self.with_records, ["--records=stored"])):
            subprocess.run(bench + [f"--month-end={database}", f"--divide={divide}"] + records, check=True)

    def export(self, database: pathlib.Path, workbook: str) -> list:
        return self.bench + ["--export=FLAT", f"--database={database}", f"--output={self.folder / workbook}"]

    def command(self, program: Whole) -> list:
        if program.script is None:
            return self.export(self.database, program.workbook)
        return PYTHON + [str(PEERS / program.script), str(self.with_records), str(self.folder / program.workbook)]

    @staticmethod
    def run(command: list) -> None:
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def check_peers(bench: list) -> None:
    """Ends the run when a peer's workbook does not show what ours shows."""
    with tempfile.TemporaryDirectory() as folder:
        month_end = MonthEnd(bench, folder, TRIAL_DIVISOR)
        for program in PROGRAMS:
            month_end.run(month_end.command(program))
        month_end.run(month_end.export(month_end.database, "Ours.xlsx")
                      + [f"--libxlsxwriter={month_end.folder / 'Libxlsxwriter.xlsx'}"])
        for ours, theirs in (("Payroll.xls", "Xlwt.xls"), ("Payroll.xlsx", "XlsxWriter.xlsx"),
                             ("Payroll.xlsx", "Libxlsxwriter.xlsx")):
            difference = first_difference(str(month_end.folder / ours), str(month_end.folder / theirs))
            if difference:
                raise SystemExit(f"a peer does not write what we write: {difference}")


def measure_programs(bench: list, arguments: argparse.Namespace, progress: Progress) -> dict:
    chosen = [program for program in PROGRAMS if re.search(arguments.filter, program.name)]
    if not chosen:
        return {}
    progress.say("whether the peers write what we write")
    check_peers(bench)
    with tempfile.TemporaryDirectory() as folder:
        month_end = MonthEnd(bench, folder, arguments.divide)
        return run_programs({program.name: month_end.command(program) for program in chosen}, arguments.repetitions,
                            progress)


def print_table(times: dict) -> None:
    width = max(map(len, times), default=0)
    print(f"{'':<{width}}  {'real':>14}  {'cpu':>14}  {'scatter':>7}")
    for name, figures in times.items():
        print(f"{name:<{width}}  {figures.real / 1e3:>11.3f} us  {figures.cpu / 1e3:>11.3f} us"
              f"  {figures.scatter * 100:>5.1f} %")


def amount(promise: Promise, figures: Figures) -> float:
    value = figures.counters[promise.counter] if promise.counter else getattr(figures, promise.clock)
    return value / figures.counters[promise.per] if promise.per else value


def line(promise: Promise, times: dict) -> Optional[str]:
    """None when a part of the promise was not measured."""
    needed = [promise.bench] + ([promise.against] if promise.against else [])
    if any(name not in times for name in needed):
        return None
    value = amount(promise, times[promise.bench])
    if promise.against:
        value /= amount(promise, times[promise.against])
    elif not promise.counter:
        value /= {"us": 1e3, "ms": 1e6}[promise.unit]
    kind, unit = ("ratio", "") if promise.against else ("figure", f" {promise.unit}")
    what = "" if promise.counter else f"{promise.clock} time"
    return f"{kind} {promise.name} = {value:.3f}{unit} ({verdict(promise.goal, value, what)})"


def verdict(goal: Optional[float], value: float, what: str) -> str:
    if goal is None:
        return f"no goal, {what}"
    return f"goal: at most {goal:.3f}{', ' if what else ''}{what}: {'met' if value <= goal else 'MISSED'}"


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--divide", type=int, default=1, metavar="N")
    parser.add_argument("--repetitions", type=int, default=5, metavar="N")
    parser.add_argument("program", metavar="BENCH_PROGRAM")
    parser.add_argument("filter", nargs="?", default="", metavar="FILTER")
    return parser.parse_intermixed_args()


def main() -> int:
    arguments = parse_arguments()
    bench = [arguments.program]
    progress = Progress()
    times = measure_programs(bench, arguments, progress)
    times |= run_benchmarks(bench + [f"--divide={arguments.divide}"], arguments.filter, arguments.repetitions, progress)
    progress.end()
    print_table(times)
    print()
    if arguments.divide != 1:
        print(f"Sizes divided by {arguments.divide}, to try something out: these ratios are no result.")
    missing = []
    for promise in PROMISES + layout_promises(times):
        text = line(promise, times)
        if text:
            print(text)
        else:
            missing.append(promise.name)
    if missing and not arguments.filter:
        print("not measured: " + ", ".join(missing), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
