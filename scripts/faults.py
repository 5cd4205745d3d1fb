#!/usr/bin/python3
"""Lets each call of the adapter fail or be entered again, in turn, and says what fell short.

faults.py [--seconds N] [--seed N]     all runs, or as many as fit, drawn with the seed, one for each call first
faults.py run SCENARIO CALL RESULT|EVENT [before|after]     that one, with all that the stand-ins say
faults.py calls SCENARIO | events

Called by ./dev faults. Status 1 when anything fell short. Runs are shared out to processes, each in a Wine prefix of
its own: one waits for the Wine server more than it works.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import queue
import random
import subprocess
import sys
import threading
import time
from pathlib import Path

IN_WINE = Path(__file__).parents[1] / "tests/in_wine"
PROGRAM = Path(os.environ["BEACON_BIN"]) / "fault_harness.exe"
SCENARIOS = ["mails", "items", "toolbar", "loops"]
# E_FAIL, disconnected, server unavailable, rejected, busy in another call
RESULTS = ["0x80004005", "0x80010108", "0x800706BA", "0x80010001", "0x80010005"]
LONGEST_RUN = 30  # seconds; then the process hangs


def command(*arguments):
    return [os.environ["WINE"], str(PROGRAM), *map(str, arguments)]


def lines_of(*arguments):
    done = subprocess.run(command(*arguments), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=60)
    return done.stdout.decode("utf-8", "replace").replace("\r", "").splitlines()


class Worker:
    """A process that carries out runs one after the other; a new one takes its place when it is damaged or dies."""

    process = None

    def start(self):
        self.process = subprocess.Popen(command("serve"), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.answers = queue.Queue()
        threading.Thread(target=self.read, args=[self.process.stdout, self.answers], daemon=True).start()

    @staticmethod
    def read(output, answers):
        for line in output:
            if line.count(b"\t") == 5:
                answers.put(line.decode("utf-8", "replace").rstrip("\r\n").split("\t"))
        answers.put(None)

    def run(self, order):
        """State, call met, shortfalls, what is listed apart."""
        if self.process is None:
            self.start()
        self.process.stdin.write((order + "\n").encode())
        self.process.stdin.flush()
        try:
            answer = self.answers.get(timeout=LONGEST_RUN)
            lost = "" if answer else f"Outlook has died, status {self.process.wait()}"
        except queue.Empty:
            answer, lost = None, "Outlook hangs"
        if answer is None or answer[0] == "damaged":
            self.end()
        if answer is None:
            return "lost", "", lost, ""
        state, _, _, met, shortfalls, apart = answer
        return state, met, shortfalls, apart

    def end(self):
        if self.process is not None:
            self.process.kill()
            self.process.wait()
        self.process = None


def orders(scenario, calls, events):
    """What each call meets; events come before the effect of one call and after that of the next."""
    for call in range(1, calls + 1):
        for what in RESULTS:
            yield call, f"{scenario} {call} {what}"
        for number, event in enumerate(events):
            yield call, f"{scenario} {call} {event} {'after' if (call + number) % 2 else 'before'}"


def chosen(all_orders, seed):
    """The same orders, one for each call first; each part in an order drawn with the seed."""
    if seed is None:
        return [order for _, order in all_orders]
    draw = random.Random(seed)
    draw.shuffle(all_orders)
    first, rest, seen = [], [], set()
    for call, order in all_orders:
        key = (order.split()[0], call)
        (rest if key in seen else first).append(order)
        seen.add(key)
    return first + rest


def sample(options):
    events = lines_of("events")
    all_orders, counts = [], {}
    for scenario in SCENARIOS:
        counts[scenario] = sum(line.split(" ", 1)[0].isdigit() for line in lines_of("calls", scenario))
        all_orders += orders(scenario, counts[scenario], events)
    worker, begin, done = Worker(), time.monotonic(), collections.Counter()
    short, apart = {}, collections.Counter()
    for order in chosen(all_orders, options.seed)[options.share :: options.shares]:
        if options.seconds and time.monotonic() - begin > options.seconds:
            break
        state, met, shortfalls, listed = worker.run(order)
        # Other work on the machine holds a thread, too, and a first time leaves what later ones use: hardly twice.
        if "thread held" in shortfalls or "GDI" in shortfalls:
            state, met, shortfalls, listed = worker.run(order)
        done[order.split()[0]] += 1
        if state != "good":
            short.setdefault(f"{met}: {shortfalls}", order)
            print(f"short: ./dev faults run {order}\n    {met}: {shortfalls}", flush=True)
        if listed:
            apart[f"{met}: {listed.split(':')[0].split(' 1')[0]}"] += 1
    worker.end()
    print(json.dumps({"calls": counts, "orders": len(all_orders), "done": done, "apart": apart, "short": short}))
    return 0


def share_of(arguments, share, shares):
    """One share in a prefix of its own, what falls short shown as it comes; its sum, or None when it failed."""
    total = None
    order = [IN_WINE, __file__, *arguments, "--shares", str(shares), "--share", str(share)]
    with subprocess.Popen(order, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True) as process:
        for line in process.stdout:
            if line.startswith("{"):
                total = json.loads(line)
            else:
                print(line, end="", flush=True)
    return total if process.returncode == 0 else None


def side_by_side(arguments):
    shares = 2 * os.cpu_count()
    begin, done, apart, short = time.monotonic(), collections.Counter(), collections.Counter(), {}
    with concurrent.futures.ThreadPoolExecutor(shares) as pool:
        totals = list(pool.map(lambda share: share_of(arguments, share, shares), range(shares)))
    if None in totals:
        return 1
    for total in totals:
        done.update(total["done"])
        apart.update(total["apart"])
        short.update(total["short"])
    for line, times in sorted(apart.items()):
        print(f"apart: {times} x {line}")
    for scenario, calls in total["calls"].items():
        print(f"{scenario}: {calls} calls, {done[scenario]} runs")
    took = time.monotonic() - begin
    print(f"{sum(done.values())} of {total['orders']} runs in {took:.0f} s, {len(short)} kinds fell short")
    return 1 if short else 0


def main():
    inside = "WINE" in os.environ
    if len(sys.argv) > 1 and not sys.argv[1].startswith("-"):
        if not inside:
            return subprocess.run([IN_WINE, __file__, *sys.argv[1:]]).returncode
        print("\n".join(lines_of(*sys.argv[1:])))
        return 0
    parser = argparse.ArgumentParser(prog="faults")
    parser.add_argument("--seconds", type=float)
    parser.add_argument("--seed", type=int)
    parser.add_argument("--shares", type=int, help=argparse.SUPPRESS)
    parser.add_argument("--share", type=int, help=argparse.SUPPRESS)
    options = parser.parse_args()
    if not inside:
        return side_by_side(sys.argv[1:])
    # Windows that nobody sees cost half the time.
    subprocess.run([os.environ["WINE"], "reg.exe", "add", r"HKCU\Software\Wine\Drivers", "/v", "Graphics", "/d", "null",
                    "/f"], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)  # fmt: skip
    return sample(options)


sys.exit(main())
