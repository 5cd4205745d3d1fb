#!/usr/bin/python3
"""Measures the adapter and prints tables of ratios to a reference that ran in the same process, in turn (A B A B).

bench.py [--no-verdicts]: status 1 if a target is missed, unless there are no verdicts. Called by ./dev bench, which has
built the programs.
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

# Row of adapter_bench, title, most that the ratio may be.
SENDS = [
    ("mail, engine in process", "mail sent, engine in process", 1.5),
    ("mail, engine's process", "mail sent, engine's process", 1.05),
    ("start", "start of Outlook, without add-in", None),
]
USUAL = ("prose", "quoted reply")
USUAL_TEXT, CRAFTED_TEXT, GROWTH = 4, 14, 1.2  # ratios; growth is from 1,024 to 32,767 characters
SIZES = [("x64", "DLL, 64 bits, stripped", 450), ("x86", "DLL, 32 bits, stripped", 520)]  # KB of 1,000 bytes


def inside():
    """Runs in the Wine prefix that in_wine has made; prints lines of JSON."""
    wine = os.environ["WINE"]

    def run(program, *arguments):
        subprocess.run([wine, program, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)

    def start(*arguments):
        command = [wine, BIN / "adapter_bench.exe", *arguments]
        return subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def windows(path):
        return "Z:" + str(path).replace("/", "\\")

    run(BIN / "standin_engine.exe", "--register")
    bench = start()
    for line in bench.stdout:
        if not line.startswith("engine?"):
            print(line, end="")
            continue
        engine = start("engine")
        engine.stdout.readline()
        bench.stdin.write("\n")
        bench.stdin.flush()
    engine.kill()
    if bench.wait() != 0:
        sys.exit("bench: adapter_bench failed")
    with tempfile.TemporaryDirectory() as folder:
        script = Path(folder) / "script"
        script.write_text("quit\n")
        times = {"ours": [], "reference": []}
        for turn in range(10):
            run("regsvr32.exe", "/s", *(["/u"] if turn % 2 else []), windows(BIN / "BeaconOLKAdapter.dll"))
            began = time.perf_counter()
            run(BIN / "standin_outlook.exe", "--script", windows(script))
            times["reference" if turn % 2 else "ours"].append((time.perf_counter() - began) * 1e9)
    print(json.dumps({"row": "start", **times}))


def measure():
    """The rows, by name."""
    output = subprocess.run(
        [ROOT / "scripts/in_wine", sys.executable, __file__, "--inside"],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        text=True,
        check=True,
        env={**os.environ, "BEACON_TIME_LIMIT": "600", "WINEDEBUG": "-all"},
    ).stdout
    rows = [json.loads(line) for line in output.splitlines() if line.startswith("{")]
    return {row["row"]: row for row in rows}


def stripped_size(preset):
    strip = {"x64": "x86_64", "x86": "i686"}[preset] + "-w64-mingw32-strip"
    with tempfile.NamedTemporaryFile() as file:
        subprocess.run([strip, "-o", file.name, ROOT / "build" / preset / "bin/BeaconOLKAdapter.dll"], check=True)
        return Path(file.name).stat().st_size / 1000


def quartiles(row):
    return statistics.quantiles((a / b for a, b in zip(row["ours"], row["reference"])), n=4)


class Table:
    """Prints the rows and remembers which targets are missed."""

    def __init__(self, has_verdicts):
        self.has_verdicts = has_verdicts
        self.missed = []

    def head(self, *names):
        print()
        self.line(*names)
        print("|" + "---|" * len(names))

    @staticmethod
    def line(first, *rest):
        print(f"| {first:34} | " + " | ".join(f"{cell:>12}" for cell in rest) + " |")

    def target(self, name, value, most):
        """The last cell."""
        if most is None or not self.has_verdicts:
            return ""
        if value > most:
            self.missed.append(name)
        return f"{'≤' if value <= most else 'MISSED:'} {most:g}"


def main(arguments):
    if arguments == ["--inside"]:
        return inside()
    rows = measure()
    table = Table("--no-verdicts" not in arguments)
    table.head("against its bare calls", "adapter", "bare calls", "ratio", "quartiles", "target")
    for name, title, most in SENDS:
        low, ratio, high = quartiles(rows[name])
        times = [f"{statistics.median(rows[name][side]) / 1e3:,.1f} µs" for side in ("ours", "reference")]
        table.line(title, *times, f"{ratio:.2f}", f"{low:.2f}–{high:.2f}", table.target(title, ratio, most))
    table.head("text, against a plain copy", "ns/character", "ratio", "target", "growth", "target")
    for name in (name for name in rows if name.endswith("/32767")):
        kind = name.split("/")[0]
        # The shortest times: these passes only compute, so whatever takes longer is the machine's other work.
        long, short = (min(rows[f"{kind}/{size}"]["ours"]) for size in (32767, 1024))
        ratio = long / min(rows[name]["reference"])
        target = table.target(kind, ratio, USUAL_TEXT if kind in USUAL else CRAFTED_TEXT)
        growth = table.target(f"{kind}, growth", long / short, GROWTH)
        table.line(kind, f"{long:.2f}", f"{ratio:.2f}", target, f"{long / short:.2f}", growth)
    table.head("size", "KB", "target")
    for preset, title, most in SIZES:
        size = stripped_size(preset)
        table.line(title, f"{size:.1f}", table.target(title, size, most))
    if table.missed:
        sys.exit(f"{len(table.missed)} targets are missed: {', '.join(table.missed)}")


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
