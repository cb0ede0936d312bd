"""Runs what is measured: the benchmark program, and whole programs as processes of their own."""

import json
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time
from typing import Callable, NamedTuple, Optional, TextIO

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
# What the library adds to a benchmark's name.
SETTINGS = re.compile(r"/(process_time|real_time|iterations:\d+|repeats:\d+)")
RUNNING = re.compile(r"Running (.+) for \d+$")


class Figures(NamedTuple):
    """Medians of one benchmark: nanoseconds by clock, its counters, and how far the CPU times scatter."""
    real: float
    cpu: float
    counters: dict
    scatter: float  # standard deviation over mean


class Progress:
    """Which part is running, on stderr: on a terminal one line that changes, elsewhere a line now and then."""

    def __init__(self, stream: TextIO = sys.stderr, every_seconds: float = 10):
        self.stream = stream
        self.every_seconds = every_seconds
        self.start = time.monotonic()
        self.last = -every_seconds

    def say(self, text: str) -> None:
        now = time.monotonic() - self.start
        if self.stream.isatty():
            self.stream.write(f"\r\x1b[K[{now:4.0f} s] {text}")
        elif now - self.last >= self.every_seconds:
            self.stream.write(f"[{now:4.0f} s] {text}\n")
            self.last = now
        self.stream.flush()

    def end(self) -> None:
        if self.stream.isatty():
            self.stream.write("\r\x1b[K")


def plain_name(name: str) -> str:
    return SETTINGS.sub("", name)


def run_benchmarks(program: list, name_filter: Optional[str], repetitions: int, progress: Progress) -> dict:
    """Name to Figures. The repetitions of all benchmarks run in random order."""
    command = program + ([f"--benchmark_filter={name_filter}"] if name_filter else [])
    listed = subprocess.run(command + ["--benchmark_list_tests"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                            text=True, check=False).stdout.splitlines()
    if not listed:
        return {}
    command += [f"--benchmark_repetitions={repetitions}", "--benchmark_enable_random_interleaving=true",
                "--benchmark_report_aggregates_only=true", "--benchmark_format=json", "--v=2"]
    with tempfile.TemporaryFile("w+") as output:
        with subprocess.Popen(command, stdout=output, stderr=subprocess.PIPE, text=True) as running:
            follow(running.stderr, len(listed) * repetitions, progress)
        if running.returncode != 0:
            raise SystemExit(f"{command[0]} ended with {running.returncode}")
        output.seek(0)
        figures = benchmark_figures(json.load(output))
    return {name: figures[name] for name in map(plain_name, listed)}


def follow(log: TextIO, total: int, progress: Progress) -> None:
    """Tells what the log says is running; a short benchmark has more runs than repetitions."""
    runs = 0
    for line in log:
        running = RUNNING.search(line.rstrip())
        if running:
            runs += 1
            progress.say(f"{plain_name(running.group(1))} (run {runs} of at least {total})")
        elif "LOG(" not in line:
            progress.end()
            sys.stderr.write(line)


def benchmark_figures(report: dict) -> dict:
    found: dict = {}
    scatter: dict = {}
    for entry in report["benchmarks"]:
        name = plain_name(entry["run_name"])
        if entry.get("error_occurred"):
            raise SystemExit(f"{name}: {entry.get('error_message', 'failed')}")
        if entry.get("aggregate_name") == "cv":
            scatter[name] = entry["cpu_time"]
        elif entry.get("aggregate_name", "median") == "median":
            scale = NANOSECONDS[entry["time_unit"]]
            found[name] = Figures(entry["real_time"] * scale, entry["cpu_time"] * scale, entry, 0)
    return {name: figures._replace(scatter=scatter.get(name, 0)) for name, figures in found.items()}


def run_programs(commands: dict, repetitions: int, progress: Progress) -> dict:
    """Name to Figures, for whole programs by name; what one prints, if anything, is a JSON object of counters.
    They take turns, so that a slow minute of the machine hits all of them."""
    runs: dict = {name: [] for name in commands}
    for repetition in range(1, repetitions + 1):
        for name, command in commands.items():
            progress.say(f"{name} (run {repetition} of {repetitions})")
            runs[name].append(run_once(command))
    return {name: middle(each) for name, each in runs.items()}


def run_once(command: list) -> Figures:
    start = time.monotonic()
    with tempfile.TemporaryFile("w+") as output:
        process = subprocess.Popen(command, stdout=output)  # pylint: disable=consider-using-with
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            raise SystemExit(f"{' '.join(command)} ended with {process.returncode}")
        output.seek(0)
        printed = output.read()
    return Figures(real=(time.monotonic() - start) * 1e9, cpu=(usage.ru_utime + usage.ru_stime) * 1e9,
                   counters=json.loads(printed) if printed else {}, scatter=0)


def middle(runs: list) -> Figures:
    def median(value: Callable[[Figures], float]) -> float:
        return statistics.median(map(value, runs))

    cpu = [run.cpu for run in runs]
    return Figures(real=median(lambda run: run.real), cpu=median(lambda run: run.cpu),
                   counters={name: median(lambda run, name=name: run.counters[name]) for name in runs[0].counters},
                   scatter=statistics.stdev(cpu) / statistics.mean(cpu) if len(cpu) > 1 else 0)
