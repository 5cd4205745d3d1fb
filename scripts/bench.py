#!/usr/bin/python3
"""Measures the adapter and prints one table: each row against the bare calls, in one run and in turns (A B A B).

Called by ./dev bench, which has built the programs. Ends with status 1 when a goal is missed or a row is not there.
"""

import json
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BIN = ROOT / "build/x64/bin"
KB = 1000
UNITS = {"µs": 1e3, "ms": 1e6, "bytes": 1, "": 1, "KB": KB}

# Row of adapter_bench, what it is, unit of its figures, most that the ratio may be (None: no goal).
COMPARED = [
    ("mail, engine in process", "mail sent, engine in process", "µs", 9),
    ("mail, engine in process: search", "  of it the search for dialogs", "µs", None),
    ("mail, engine in process: rest", "  of it neither calls nor search", "µs", 2),
    ("contact, engine in process", "contact sent, engine in process", "µs", 9),
    ("contact, engine in process: search", "  of it the search for dialogs", "µs", None),
    ("contact, engine in process: rest", "  of it neither calls nor search", "µs", 2),
    ("mail, engine's process", "mail sent, engine's process", "ms", 1.1),
    ("contact, engine's process", "contact sent, engine's process", "ms", 1.1),
    ("mail, engine killed", "mail sent, engine killed", "ms", None),
    ("message hook", "message past the hook", "µs", 1.05),
    ("start, engine's process", "start, engine's process", "ms", 1.1),
    ("start, no engine", "start, no engine", "ms", 1.2),
    ("tick, 20 windows", "reconnect tick, 20 windows (1)", "µs", 1.2),
    ("tick, 200 windows", "reconnect tick, 200 windows (1)", "µs", 1.2),
    ("bytes, 20 windows", "a window among 20 (1)", "bytes", 1.2),
    ("bytes, 200 windows", "a window among 200 (1)", "bytes", 1.2),
    ("start of the demo", "stand-in Outlook's run (no add-in)", "ms", None),
]
# The same without another side: most that the figure may be.
ABSOLUTE = [
    ("bytes, 200 windows", "bytes of a window", "bytes", 2048),
    ("allocations a message", "allocations a message", "", 3),
    ("x64", "DLL, 64 bits, stripped", "KB", 450),
    ("x86", "DLL, 32 bits, stripped", "KB", 520),
]
PLAIN, CRAFTED, GROWTH = 2, 10, 1.2  # ns a character, and how much it may grow from 1,024 to 32,767 characters


def lines_of(output):
    return [json.loads(line) for line in output.splitlines() if line.startswith("{")]


def inside():
    """In the Wine prefix that in_wine has made: rows as lines of JSON."""
    wine = os.environ["WINE"]

    def run(program, *arguments):
        subprocess.run([wine, program, *arguments], stdin=subprocess.DEVNULL, stdout=2, check=True)

    def windows(path):
        return "Z:" + str(path).replace("/", "\\")

    run(BIN / "standin_engine.exe", "--register")
    rows = subprocess.run(
        [wine, BIN / "adapter_bench.exe"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, check=True
    ).stdout
    print(rows, end="")
    with tempfile.TemporaryDirectory() as folder:
        script = Path(folder) / "script"
        script.write_text("quit\n")
        times = {"ours": [], "bare": []}
        for turn in range(10):
            side = "bare" if turn % 2 else "ours"
            run("regsvr32.exe", "/s", *(["/u"] if turn % 2 else []), windows(BIN / "BeaconOLKAdapter.dll"))
            start = time.perf_counter()
            run(BIN / "standin_outlook.exe", "--script", windows(script))
            times[side].append((time.perf_counter() - start) * 1e9)
    print(json.dumps({"row": "start of the demo", **times}))


def measure_in_wine():
    result = subprocess.run(
        [ROOT / "scripts/in_wine", sys.executable, __file__, "--inside"],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        text=True,
        check=True,
        env={**os.environ, "BEACON_TIME_LIMIT": "600", "WINEDEBUG": "-all"},
    )
    return {line["row"]: line for line in lines_of(result.stdout)}


def measure_texts():
    """Nanoseconds a character, by "kind/length"."""
    result = subprocess.run(
        [
            ROOT / "build/bench/bin/text_bench",
            "--benchmark_format=json",
            "--benchmark_min_time=0.02",
            "--benchmark_repetitions=9",
            "--benchmark_enable_random_interleaving=true",
        ],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        text=True,
        check=True,
    )
    times = {}
    for run in json.loads(result.stdout)["benchmarks"]:
        if run["run_type"] == "iteration":
            times.setdefault(run["run_name"], []).append(run["per_character"] * 1e9)
    return times


def stripped_size(preset, machine):
    with tempfile.NamedTemporaryFile() as file:
        dll = ROOT / "build" / preset / "bin/BeaconOLKAdapter.dll"
        subprocess.run([f"{machine}-w64-mingw32-strip", "-o", file.name, dll], check=True)
        return Path(file.name).stat().st_size


class Table:
    """Collects verdicts while it prints."""

    def __init__(self):
        self.missed = []

    def head(self, *names):
        print()
        self.line(*names)
        print("|" + "---|" * len(names))

    @staticmethod
    def line(first, *rest):
        print(f"| {first:34} | " + " | ".join(f"{cell:>10}" for cell in rest) + " |")

    def verdict(self, name, value, goal):
        """The last two cells."""
        if goal is None:
            return "", ""
        if value > goal:
            self.missed.append(name)
        return f"≤ {goal:g}", "met" if value <= goal else "MISSED"


def figure(values, unit):
    return f"{statistics.median(values) / UNITS[unit]:.4g} {unit}".strip()


def print_compared(table, rows):
    table.head("the adapter against the bare calls", "adapter", "bare", "ratio", "quartiles", "goal", "verdict")
    for name, title, unit, goal in COMPARED:
        ours, bare = rows[name]["ours"], rows[name]["bare"]
        ratios = [a / b for a, b in zip(ours, bare)]
        low, ratio, high = statistics.quantiles(ratios, n=4) if len(ratios) > 1 else ratios * 3
        spread = f"{low:.2f}–{high:.2f}"
        table.line(
            title, figure(ours, unit), figure(bare, unit), f"{ratio:.2f}", spread, *table.verdict(title, ratio, goal)
        )


def print_absolute(table, rows):
    table.head("figures", "median", "goal", "verdict")
    for name, title, unit, goal in ABSOLUTE:
        values = rows[name]["ours"]
        table.line(title, figure(values, unit), *table.verdict(title, statistics.median(values) / UNITS[unit], goal))


def print_texts(table, native, rows):
    table.head("text, ns a character at 32,767", "native", "DLL", "goal", "verdict", "growth", "goal", "verdict")
    for name in (name for name in rows if name.endswith("/32767")):
        kind = name.split("/")[0]
        value = statistics.median(native[name])
        goal = PLAIN if kind in ("prose", "quoted reply") else CRAFTED
        growth = value / statistics.median(native[f"{kind}/1024"])
        table.line(
            kind,
            f"{value:.2f}",
            f"{statistics.median(rows[name]['ours']):.2f}",
            *table.verdict(kind, value, goal),
            f"{growth:.2f}",
            *table.verdict(f"{kind}, growth", growth, GROWTH),
        )


def main():
    if sys.argv[1:] == ["--inside"]:
        inside()
        return 0
    native = measure_texts()
    rows = measure_in_wine()
    for count in (20, 200):
        rows[f"bytes, {count} windows"]["bare"] = rows["bytes, 1 windows"]["ours"]
    for preset, machine in (("x64", "x86_64"), ("x86", "i686")):
        rows[preset] = {"ours": [stripped_size(preset, machine)]}
    table = Table()
    print_compared(table, rows)
    print_absolute(table, rows)
    print_texts(table, native, rows)
    print(f"\n{len(table.missed)} goals are missed." if table.missed else "\nAll goals are met.")
    return 1 if table.missed else 0


if __name__ == "__main__":
    sys.exit(main())
