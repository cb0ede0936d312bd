#!/usr/bin/env python3
"""Runs the benchmarks and prints what they say: a table of all, then one line for each figure we promise.

usage: report.py BENCH_PROGRAM [FILTER]

Each benchmark runs five times, in random order among the others; the median counts. With a FILTER (a regular
expression for benchmark names) only the promises whose benchmarks ran are printed."""

import json
import subprocess
import sys
from typing import NamedTuple, Optional

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


class Promise(NamedTuple):
    """`bench` in `unit`, or, when `against` is given, the time of `bench` divided by that of `against`.

    `clock` is "cpu" for what one thread computes (other programs on the machine do not count), "real" for
    what also waits for the disk or for other processes. With a `counter`, the figure is the benchmark's counter
    of that name and `unit` says what it counts."""
    name: str
    bench: str
    goal: float  # at most
    against: Optional[str] = None
    unit: str = "us"
    clock: str = "cpu"
    counter: Optional[str] = None


# What is compared. A new promise is a new row.
PROMISES = [
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
    Promise("export_grouped_2000_to_ungrouped", "Export/Grouped/10000/iterations:1", goal=1.5,
            against="Export/Xls/10000/iterations:1"),
]


def run(program: str, name_filter: Optional[str]) -> dict:
    command = [program, "--benchmark_repetitions=5", "--benchmark_enable_random_interleaving=true",
               "--benchmark_report_aggregates_only=true", "--benchmark_format=json"]
    if name_filter:
        command.append(f"--benchmark_filter={name_filter}")
    done = subprocess.run(command, stdout=subprocess.PIPE, check=False, text=True)
    if done.returncode != 0 or not done.stdout.strip():
        raise SystemExit(f"{program} ended with {done.returncode} and said nothing more")
    return json.loads(done.stdout)


def medians(report: dict) -> dict:
    """Benchmark name to its median in nanoseconds by clock, and to its counters."""
    found = {}
    for entry in report["benchmarks"]:
        if entry.get("error_occurred"):
            raise SystemExit(f"{entry['name']}: {entry.get('error_message', 'failed')}")
        if entry.get("aggregate_name") == "median":
            scale = NANOSECONDS[entry["time_unit"]]
            found[entry["run_name"]] = {**entry, "cpu": entry["cpu_time"] * scale, "real": entry["real_time"] * scale}
    return found


def print_table(times: dict) -> None:
    width = max(map(len, times), default=0)
    print(f"{'benchmark':<{width}}  {'real':>14}  {'cpu':>14}")
    for name, time in times.items():
        print(f"{name:<{width}}  {time['real'] / 1e3:>11.3f} us  {time['cpu'] / 1e3:>11.3f} us")


def line(promise: Promise, times: dict) -> Optional[str]:
    """None when a benchmark of the promise did not run."""
    needed = [promise.bench] + ([promise.against] if promise.against else [])
    if any(name not in times for name in needed):
        return None
    measure = promise.counter or promise.clock
    value = times[promise.bench][measure]
    if promise.against:
        value /= times[promise.against][measure]
    elif not promise.counter:
        value /= NANOSECONDS[promise.unit]
    kind, unit = ("ratio", "") if promise.against else ("figure", f" {promise.unit}")
    what = "" if promise.counter else f", {promise.clock} time"
    met = "met" if value <= promise.goal else "MISSED"
    return f"{kind} {promise.name} = {value:.3f}{unit} (goal: at most {promise.goal:.3f}{what}: {met})"


def main() -> int:
    if len(sys.argv) not in (2, 3):
        print(__doc__, file=sys.stderr)
        return 2
    name_filter = sys.argv[2] if len(sys.argv) == 3 else None
    report = run(sys.argv[1], name_filter)
    times = medians(report)
    print_table(times)
    print()
    missing = []
    for promise in PROMISES:
        text = line(promise, times)
        if text:
            print(text)
        else:
            missing.append(promise.name)
    if missing and not name_filter:
        print("no benchmark for: " + ", ".join(missing), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
