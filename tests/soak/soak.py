r"""soak.py [--minutes M] [--seed N]: a long day of random users, with an engine that ends at random.

The user selects, opens, closes, edits, types, clicks and scrolls. The engine gives orders, is killed (also inside a
call), suspended and disconnected on either side. After each such burst both come to rest, and the item that is chosen
then must arrive. Every complete document must have the item's texts; only if the user typed or clicked in its burst may
the last ones be missing. At twenty points of the run all windows but one are closed and the resources of Outlook's
process are counted. The first quarter is the warm-up; after it, no count may grow, unless the run is too short to tell.

Runs in a Wine prefix (./dev soak). A seed repeats the choices, not the timing.
"""

import argparse
import os
import random
import re
import signal
import statistics
import sys
import tempfile
import time
from pathlib import Path

import adapter as a
import beacon_harness as h
from model import Model

DELAY = 50  # ms
GOALS = {"selections": 10_000, "item windows": 1_000, "kills": 100}
SAMPLES = 20
LONG_ENOUGH = 10  # minutes, to judge growth
# Wine keeps some memory on the host's side for each window, link and dead server.
ALLOWED = {"memory KB": 10_000, "heap KB": 100, "handles": 20, "GDI objects": 20}  # growth in a run; 5 of the others
MOST_LOST = 120  # handles per kill: Wine loses one with each call whose server is gone, and there are up to seven links


class Soak:
    def __init__(self, seed, model, machine):
        self.chance = random.Random(seed)
        self.model = model
        self.machine = machine
        self.counts = dict.fromkeys([*GOALS, "bursts", "edits", "orders", "suspensions", "reconnections"], 0)
        self.samples = []
        self.minutes = 0  # that the run took
        self.lost_handles = self.kills_then = 0
        a.prepare(machine, delay=DELAY, Logging=0)
        self.engine = h.Engine()
        self.read = 0  # lines of the engine's that were judged
        self.open_documents = {}
        self.arrived = []
        store = machine.store([item.fields for item in model.items])
        self.outlook = h.Outlook(store=store)
        self.tell = self.outlook.send
        self.engine.connected("AppToEngine")
        self.windows = []  # numbers of the items with a window
        self.explorers = [1]  # their numbers
        self.disturbed = self.interrupted = False

    def order(self, command):
        self.counts["orders"] += 1
        if self.engine.is_running:
            self.engine.send(command)

    # The actions of a burst.

    def select(self):
        self.counts["selections"] += 1
        self.tell(f"activate explorer {self.chance.choice(self.explorers)}")
        self.tell(f"select {self.chance.choice(self.model.items).number}")

    def open(self):
        item = self.chance.choice(self.model.items)
        if len(self.windows) < 4 and item.number not in self.windows:
            self.counts["item windows"] += 1
            self.tell(f"open {item.number}")
            self.outlook.expect(r"^opened inspector ", 30)
            self.windows.append(item.number)

    def close(self):
        if self.windows:
            self.tell(f"close {self.windows.pop()}")

    def activate(self):
        if self.windows:
            self.tell(f"activate {self.chance.choice(self.windows)}")

    def another_explorer(self):
        if len(self.explorers) < 3:
            self.tell("new explorer")
            self.explorers.append(int(self.outlook.expect(r"^opened explorer (\d+) ", 30).group(1)))

    def edit(self):
        self.counts["edits"] += 1
        self.tell(self.chance.choice(self.model.items).edit())

    def hands_on(self):
        self.interrupted = True
        self.tell(self.chance.choice(["key left", "click 5 5", "wheel", "move", "key tab"]))

    def orders(self):
        self.order(self.chance.choice(["button_click 1", "set_autoupdate true", "set_autoupdate false"]))

    def end_of_the_link(self):
        self.disturbed = True
        self.order(self.chance.choice(["exit", "disconnect controller all", "disconnect engine all"]))

    def kill(self):
        self.disturbed = True
        if not self.engine.is_running:
            return
        self.counts["kills"] += 1
        if self.chance.random() < 0.5:
            self.engine.send("die_in_call")
            self.select()
            time.sleep(3 * DELAY / 1000)
        self.judge_all()
        self.engine.kill()

    def suspend(self):
        if not self.engine.is_running:
            return
        self.counts["suspensions"] += 1
        os.kill(self.engine.process_id, signal.SIGSTOP)
        for _ in range(3):
            self.select()
        time.sleep(self.chance.choice([0.2, 1, 3]))
        os.kill(self.engine.process_id, signal.SIGCONT)

    BURST = [(select, 60), (open, 8), (close, 6), (activate, 6), (another_explorer, 1), (edit, 6), (hands_on, 8),
             (orders, 6), (end_of_the_link, 1), (kill, 0.7), (suspend, 0.4)]  # fmt: skip

    def burst(self):
        self.counts["bursts"] += 1
        kinds, weights = zip(*self.BURST)
        for action in self.chance.choices(kinds, weights, k=self.chance.randint(5, 40)):
            action(self)
            time.sleep(self.chance.choice([0, 0, 0, 0.01, 0.02, 3 * DELAY / 1000]))

    # The checks.

    def judge_all(self):
        """Reads the engine's new lines and checks the documents that they complete."""
        messages = [re.match(r"message (-?\d+) (.*)", line) for line in self.engine.lines[self.read :]]
        self.read += len(messages)
        for handle, text in (match.groups() for match in messages if match):
            if text.startswith("<pre_send_document"):
                self.model.incomplete += handle in self.open_documents
                self.open_documents[handle] = []
            if handle in self.open_documents:
                self.open_documents[handle].append(h.unescape(text))
            if text.startswith("<eod ") and (document := self.open_documents.pop(handle, None)):
                self.arrived.append(self.model.judge(handle, document, self.interrupted))

    def settle(self):
        """Waits for rest; then one mail that is changed and chosen must arrive complete.

        Not a contact: the one that was last in view is not sent again, even if it has changed.
        """
        self.quiet()
        if not self.engine.is_running:
            self.judge_all()
            self.engine.kill()
            self.engine, self.read, self.open_documents = h.Engine(), 0, {}
        self.engine.send("set_autoupdate true")
        for attempt in range(8 if self.disturbed else 1):
            item = self.chance.choice([item for item in self.model.items if not item.is_contact])
            self.tell(item.edit())
            self.tell(f"activate explorer {self.explorers[-1]}")
            self.tell(f"select {item.number}")
            self.counts["selections"] += 1
            if self.wait_for(item, 2 if self.disturbed else 10):
                self.counts["reconnections"] += attempt > 0
                break
        else:
            raise AssertionError(f"item {item.number} was chosen and did not arrive")
        self.disturbed = self.interrupted = False

    def wait_for(self, item, seconds):
        deadline = time.monotonic() + seconds * h.PATIENCE
        while time.monotonic() < deadline:
            self.arrived.clear()
            self.judge_all()
            if (item, item.newest) in self.arrived:
                return True
            time.sleep(0.01)
        return False

    def quiet(self):
        """Waits until Outlook has carried out everything and its timers have run."""
        self.tell(f"wait {4 * DELAY}")
        self.tell(f"say at rest {self.counts['bursts']}")
        self.outlook.expect(rf"^say at rest {self.counts['bursts']}$", 60)
        self.judge_all()

    def sample(self):
        while self.windows:
            self.close()
        while len(self.explorers) > 1:
            self.tell(f"close explorer {self.explorers.pop()}")
        self.quiet()
        self.tell("resources")
        line = self.outlook.expect(r"^resources: (.*)", 30).group(1)
        held = {name: int(value) for name, value in re.findall(r"(\w[A-Za-z ]*) (\d+)", line)}
        # Counted separately: Wine itself loses a handle for each call whose server is gone.
        if self.samples and self.counts["kills"] > self.kills_then:
            self.lost_handles += max(0, held["handles"] - self.lost_handles - self.samples[-1]["handles"])
        self.kills_then = self.counts["kills"]
        held["handles"] -= self.lost_handles
        self.samples.append(held)

    def share(self, minutes, began):
        """The part of the run that is done, 0 to 1."""
        passed = (time.monotonic() - began) / 60
        return passed / minutes if minutes else min(self.counts[name] / goal for name, goal in GOALS.items())

    def run(self, minutes):
        began = time.monotonic()
        while (done := self.share(minutes, began)) < 1:
            if done >= len(self.samples) / SAMPLES:
                self.sample()
                print(f"{done:4.0%}", self.counts, self.samples[-1], flush=True)
            self.burst()
            self.settle()
        self.sample()
        self.minutes = (time.monotonic() - began) / 60
        if self.engine.is_running:
            self.engine.send("away")
        a.check_nothing_left(self.outlook)
        self.engine.quit()

    def report(self):
        """Prints the results; returns the names of the resources that grew."""
        print("counts:", ", ".join(f"{value} {name}" for name, value in self.counts.items()))
        print(
            f"documents: {self.model.whole} complete, {self.model.cut_short} cut short by the user, "
            f"{self.model.incomplete} without an end"
        )
        print("resources of Outlook's process after the warm-up:")
        settled = self.samples[len(self.samples) // 4 :]
        grown = [name for name in self.samples[0] if self.grows(name, [sample[name] for sample in settled])]
        kills = max(1, self.counts["kills"])
        print(f"  lost by Wine when a server died: {self.lost_handles} handles, {self.lost_handles / kills:.0f} a kill")
        if self.lost_handles > MOST_LOST * kills:
            grown.append("handles lost with an engine")
        if self.minutes >= LONG_ENOUGH:
            return grown
        print(f"growth is not judged: the run took {self.minutes:.0f} minutes, and that takes {LONG_ENOUGH}")
        return []

    @staticmethod
    def grows(name, values):
        """Whether the values have a slope that exceeds its own noise, and together grow by more than is allowed."""
        times = range(len(values))
        if len(values) < 3:
            return False
        slope, start = statistics.linear_regression(times, values)
        rest = sum((value - start - slope * time) ** 2 for time, value in zip(times, values)) / (len(values) - 2)
        noise = (rest / sum((time - statistics.mean(times)) ** 2 for time in times)) ** 0.5
        print(f"  {name:14} {values[0]:>8} to {values[-1]:>8}, {slope:+.1f} ± {noise:.1f} a sample")
        return slope > 3 * noise and slope * (len(values) - 1) > ALLOWED.get(name, 5)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--minutes", type=float)
    parser.add_argument("--seed", type=int, default=time.localtime().tm_yday)
    options = parser.parse_args()
    print(f"soak: seed {options.seed}", flush=True)
    with tempfile.TemporaryDirectory() as folder:
        soak = Soak(options.seed, Model(options.seed), h.Machine(Path(folder)))
        try:
            soak.run(options.minutes)
        except AssertionError:
            for program in soak.outlook, soak.engine:
                print(f"the last lines of {program.name}:", *(line[:200] for line in program.lines[-25:]), sep="\n  ")
            raise
        finally:
            soak.outlook.kill()
            soak.engine.kill()
        grown = soak.report()
    if grown:
        sys.exit(f"soak: grew: {', '.join(grown)}")


if __name__ == "__main__":
    main()
