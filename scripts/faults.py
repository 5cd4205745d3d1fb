#!/usr/bin/python3
"""Injects a fault into each call of the adapter, or into each of its requests for resources, and reports failures.

faults.py [calls]    each call fails, or an event happens inside it
faults.py memory     each request for memory or a system object is refused, alone or with those that follow
faults.py pairs      two faults of a run, drawn at random without end: needs --seconds
    --seconds N      stops after N seconds; --seed N: draws the order of the runs
    --all            every call or request, not only the first of those with the same path through the adapter's code
    --stride N       only every Nth run; --workers N: processes side by side
faults.py run SCENARIO FAULT [+ FAULT]    one run, with everything that the stand-ins print
faults.py calls SCENARIO    its calls, by number
faults.py events | help

SCENARIO/log switches logging on. A FAULT is one of
    CALL RESULT|EVENT [before|after]   the effect of the call
    CALL hang MS
    memory|system NUMBER [COUNT]       refuses COUNT requests (1) from this number on

Called by ./dev faults. Status 1 if a run fails. Each worker has a Wine prefix of its own: a run waits for the Wine
server more than it computes.
"""

import argparse
import collections
import concurrent.futures
import os
import queue
import random
import re
import struct
import subprocess
import sys
import threading
import time
from pathlib import Path

# COM complains about references that the adapter has taken back; the prefix lasts as long as the harness.
os.environ.update(WINEDEBUG="-all", BEACON_TIME_LIMIT="0")
ROOT = Path(__file__).resolve().parents[1]
BIN = Path(os.environ["BEACON_BIN"])
SETTINGS = ROOT / "tests/faults/plain_windows.reg"
START = '"$WINE" regedit.exe /S "Z:$1" </dev/null; shift; exec "$WINE" "$@"'
# E_FAIL, disconnected, server unavailable, rejected, busy in another call
RESULTS = ["0x80004005", "0x80010108", "0x800706BA", "0x80010001", "0x80010005"]
REFUSED = [1, 10, 100]  # requests in a row
LONGEST_START = 240  # seconds
LONGEST_RUN = 30  # seconds; after that the process hangs
MOST_RUNS = 1000  # of one process; what Wine loses at each run makes later ones slower


def start_harness(logs):
    command = [ROOT / "scripts/in_wine", "sh", "-c", START, "sh", SETTINGS, BIN / "fault_harness.exe", *["logs"] * logs]
    return subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE)


def answer_to(order):
    """What the harness prints for one order, or before all orders."""
    with start_harness("/log" in order) as process:
        output = process.communicate(order.encode(), LONGEST_START)[0].decode("utf-8", "replace").replace("\r", "")
    before, _, after = with_sources(output).partition("ready\n")
    return after if order else before


def source_of(match):
    """Replaces the address in a DLL by the line of the sources, if the line is ours."""
    name, offset = match.group(1), int(match.group(2), 16)
    image = (BIN / name).read_bytes()[:1024]
    header = struct.unpack_from("<I", image, 0x3C)[0]
    is_64 = struct.unpack_from("<H", image, header + 24)[0] == 0x20B
    base = struct.unpack_from("<Q" if is_64 else "<I", image, header + (48 if is_64 else 52))[0]
    tool = ["x86_64-w64-mingw32-addr2line", "-Cie", str(BIN / f"{name}.debug"), hex(base + offset - 1)]
    found = subprocess.run(tool, stdout=subprocess.PIPE, text=True).stdout
    line = re.search(r"^(?:\./)?src/(\S+:\d+)", found, re.M)
    return f" {line.group(1)}" if line else ""


def with_sources(text):
    return re.sub(r" (\w+\.dll)\+0x([0-9a-f]+)", source_of, text)


class Worker:
    """A process that carries out runs one after the other. A new one replaces it when it is damaged or dies."""

    process = None

    def __init__(self, logs):
        self.logs = logs

    def start(self):
        self.process = start_harness(self.logs)
        self.answers = queue.Queue()
        threading.Thread(target=self.read, args=[self.process.stdout, self.answers], daemon=True).start()
        self.counts, self.events, self.runs = {}, [], 0
        while (answer := self.answers.get(timeout=LONGEST_START)) != ["ready"]:
            if answer[0] == "event":
                self.events.append(answer[1])
                continue
            failures = answer[6] if len(answer) == 8 else "crash"
            assert not failures or "blocked" in failures, f"a run without faults fails: {answer}"
            numbers = [[int(number) for number in column.split()] for column in answer[1:4]]
            self.counts[answer[0]] = dict(zip(["calls", "memory", "system"], numbers))

    @staticmethod
    def read(output, answers):
        for line in output:
            answers.put(line.decode("utf-8", "replace").rstrip("\r\n").split("\t"))
        answers.put(["end"])

    def run(self, order):
        """State, what had faults, failures, what was left unavoidably."""
        if self.process is None:
            self.start()
        self.process.stdin.write((order + "\n").encode())
        self.process.stdin.flush()
        try:
            answer = self.answers.get(timeout=LONGEST_RUN)
        except queue.Empty:
            answer = ["hang"]
        self.runs += 1
        if answer[0] not in ("good", "failed") or self.runs == MOST_RUNS:
            self.end()
        if len(answer) == 4:
            return answer
        met, where = answer[1:] if answer[0] == "crash" else ("", "")
        return "lost", met, f"Outlook has died ({answer[0]} {where})", ""

    def end(self):
        if self.process is not None:
            self.process.terminate()
            self.process.wait()
        self.process = None


def call_orders(counts, events, chosen):
    """What happens at each call; events come before the effect of one call and after that of the next."""
    for scenario, numbers in counts.items():
        for call in chosen(*numbers["calls"]):
            for number, result in enumerate(RESULTS):
                yield f"{scenario} {call} {result} {'after' if (call + number) % 3 == 0 else 'before'}"
            for number, event in enumerate(events):
                yield f"{scenario} {call} {event} {'after' if (call + number) % 2 else 'before'}"


def memory_orders(counts, chosen):
    for scenario, numbers in counts.items():
        for kind in ["memory", "system"]:
            for number in chosen(*numbers[kind]):
                for refused in REFUSED:
                    yield f"{scenario} {kind} {number} {refused}"


def pair_orders(counts, events, seed):
    draw = random.Random(seed)
    while True:
        scenario = draw.choice(list(counts))
        calls = sorted(draw.randint(1, counts[scenario]["calls"][0]) for _ in range(2))
        faults = [f"{call} {draw.choice(RESULTS + events)} {draw.choice(['before', 'after'])}" for call in calls]
        yield f"{scenario} {' + '.join(faults)}"


def chosen_orders(options, counts, events):
    """The runs, and how many there are (0: no end)."""
    if options.what == "pairs":
        return pair_orders(counts, events, options.seed), 0

    def chosen(count, *firsts):
        return range(1, count + 1) if options.all else firsts

    orders = list(call_orders(counts, events, chosen) if options.what == "calls" else memory_orders(counts, chosen))
    if options.seed is not None:
        random.Random(options.seed).shuffle(orders)
        # One of each call or request first.
        seen = set()
        orders.sort(key=lambda order: (key := tuple(order.split()[:3])[: 2 + (options.what == "memory")]) in seen
                    or seen.add(key) or False)  # fmt: skip
    orders = orders[:: options.stride]
    return iter(orders), len(orders)


def sample(options):
    workers = [Worker(options.what == "memory") for _ in range(options.workers)]
    done, unavoidable, failed, lock = collections.Counter(), collections.Counter(), {}, threading.Lock()

    def work(worker):
        while not options.seconds or time.monotonic() - begin < options.seconds:
            with lock:
                order = next(orders, None)
            if order is None:
                break
            # Other work on the machine can block a thread, and a first time can leave objects, but hardly every time.
            for _ in range(3):
                state, met, failures, left = worker.run(order)
                if not re.search("thread blocked|GDI|kernel handles", failures):
                    break
            with lock:
                done[order.split()[0]] += 1
                if state != "good":
                    kind = f"{with_sources(met)}: {with_sources(failures)}"
                    if failed.setdefault(kind, order) == order:
                        print(f"failed: ./dev faults run {order}\n    {kind}", flush=True)
                if left:
                    unavoidable[f"{order.split()[2]}: {re.split('[:0-9]', left)[0].strip()}"] += 1

    try:
        with concurrent.futures.ThreadPoolExecutor(options.workers) as pool:
            list(pool.map(Worker.start, workers))
            counts = workers[0].counts
            orders, total = chosen_orders(options, counts, workers[0].events)
            begin = time.monotonic()
            list(pool.map(work, workers))
    finally:
        for worker in workers:
            worker.end()
    for line, times in sorted(unavoidable.items()) if options.what == "calls" else []:
        print(f"left unavoidably: {times} x {line}")
    for scenario, numbers in counts.items():
        of_it = (f"{count} {what} by {len(firsts)} new paths" for what, (count, *firsts) in numbers.items())
        print(f"{scenario}: {', '.join(of_it)}, {done[scenario]} runs")
    took = time.monotonic() - begin
    print(f"{done.total()}{f' of {total}' if total else ''} runs in {took:.0f} s, {len(failed)} kinds of failures")
    return 1 if failed else 0


def main():
    order = " ".join(sys.argv[1:])
    if order == "help":
        print(__doc__.strip())
    elif order == "events":
        print("\n".join(re.findall("^event\t(.*)", answer_to(""), re.MULTILINE)))
    elif re.match(r"run \w|calls \w", order):
        print(answer_to(order), end="")
    else:
        parser = argparse.ArgumentParser(prog="faults")
        parser.add_argument("what", nargs="?", choices=["calls", "memory", "pairs"], default="calls")
        parser.add_argument("--seconds", type=float)
        parser.add_argument("--seed", type=int)
        parser.add_argument("--stride", type=int, default=1)
        parser.add_argument("--all", action="store_true")
        parser.add_argument("--workers", type=int, default=2 * (os.cpu_count() or 1))
        options = parser.parse_args()
        if options.what == "pairs" and not options.seconds:
            parser.error("pairs: --seconds is missing")
        return sample(options)
    return 0


sys.exit(main())
