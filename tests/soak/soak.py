r"""soak.py [--minutes M] [--seed N]: a long day of random users, with an engine that ends at random.

The user selects, opens, closes, edits, types, clicks and scrolls. The engine gives orders, is killed (also inside a
call), suspended and disconnected on either side. After each such burst both come to rest, and the item that is chosen
then must arrive. Every complete document must have the texts that the item had before the bursts, in one of its last
versions; only if the user typed or clicked in its burst may the last ones be missing. At twenty points of the run all
windows but one are closed and the resources of Outlook's process are counted. The first quarter is the warm-up; after
it, no count may grow, unless the run is too short to tell.

Runs in a Wine prefix (./dev soak). A seed repeats the choices, not the timing.
"""

import argparse
import collections
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

DELAY = 50  # ms
ITEMS = 40
WORDS = "order plan & <draft> figures \"north\" ship 'x' print a on it budget spring hall contract twelve".split()
SAMPLES = 20
LONG_ENOUGH = 10  # minutes, to judge growth
# Growth in a run; 5 of the others. Wine keeps some memory on the host's side for each window, link and dead server.
ALLOWED = {"memory KB": 10_000, "heap KB": 100, "handles": 20, "GDI objects": 20}
HEAP_OF_A_LINK = 2  # KB; a plain client, which only passes an object to a server and takes it back, loses as much
# Per kill: Wine loses a handle and its memory with each call whose server is gone, and there are up to seven links.
MOST_LOST = {"handles": 120, "heap KB": 50}


class Item:
    """One item of the mailbox. Each edit makes a new version."""

    texts = ()  # emphasis and text of each message, in version 0
    newest = 0

    def __init__(self, number, chance):
        self.number = number
        self.is_contact = number % 7 == 0
        if self.is_contact:
            self.fields = a.contact(number, "Ann", f"Lee {number}", chance.choice(["", "Lee & Co"]), "CFO")
            self.name = self.fields["fullName"]
        else:
            self.name = chance.choice(["RE:", "Re: re:", ""]) + f" Subject {number} & more"
            self.fields = a.mail(number, self.name)
        # The middle of a mail decides whether it has changed.
        half = [" ".join(chance.choices(WORDS, k=chance.randrange(12))) for _ in range(chance.randrange(1, 10))]
        self.fields["body"] = "\r\n".join([*half, f"counted {self.word(0)} counted", *half[::-1], ""])

    @staticmethod
    def word(version):
        return f"e{version:04}"

    def edit(self):
        """Makes the next version and returns the command that tells Outlook."""
        self.newest += 1
        return f"edit {self.number} replace {self.word(self.newest - 1)} {self.word(self.newest)}"

    def texts_of(self, version):
        return [(emphasis, text.replace(self.word(0), self.word(version))) for emphasis, text in self.texts]


class Soak:
    def __init__(self, seed, machine):
        self.chance = random.Random(seed)
        self.items = [Item(number, self.chance) for number in range(1, ITEMS + 1)]
        self.by_name = {item.name: item for item in self.items}
        self.counts = collections.Counter()
        self.documents = collections.Counter()
        self.samples = []
        self.lost = collections.Counter()
        self.kills_then = 0
        a.prepare(machine, delay=DELAY, Logging=0)
        self.engine = h.Engine()
        self.open_documents = {}
        self.arrived = set()  # items and versions
        self.outlook = h.Outlook(store=machine.store([item.fields for item in self.items]))
        self.tell = self.outlook.send
        self.engine.connected("AppToEngine")
        for item in self.items:
            self.tell(f"select {item.number}")
            item.texts = a.texts(a.document(self.engine)[0])
        self.read = len(self.engine.lines)  # lines of the engine's that were judged
        self.windows = []  # numbers of the items with a window
        self.explorers = [1]  # their numbers
        self.disturbed = self.interrupted = False

    # The actions of a burst.

    def select(self, explorer=None, item=None):
        self.counts["selections"] += 1
        self.tell(f"activate explorer {explorer or self.chance.choice(self.explorers)}")
        self.tell(f"select {(item or self.chance.choice(self.items)).number}")

    def open(self):
        item = self.chance.choice(self.items)
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
        self.tell(self.chance.choice(self.items).edit())

    def hands_on(self):
        self.interrupted = True
        self.tell(self.chance.choice(["key left", "click 5 5", "wheel", "move", "key tab"]))

    def order(self, *commands):
        self.counts["orders"] += 1
        self.engine.send(
            self.chance.choice(commands or ["button_click 1", "set_autoupdate true", "set_autoupdate false"])
        )

    def end_the_link(self):
        self.disturbed = True
        self.order("exit", "disconnect controller all", "disconnect engine all")

    def kill(self):
        self.disturbed = True
        self.counts["kills"] += 1
        if self.chance.random() < 0.5:
            self.engine.send("die_in_call")
            self.select()
            time.sleep(3 * DELAY / 1000)
        self.judge_all()
        self.engine.kill()

    def suspend(self):
        self.counts["suspensions"] += 1
        self.engine.signal(signal.SIGSTOP)
        for _ in range(3):
            self.select()
        time.sleep(self.chance.choice([0.2, 1, 3]))
        self.engine.signal(signal.SIGCONT)

    BURST = [(select, 60), (open, 8), (close, 6), (activate, 6), (another_explorer, 1), (edit, 6), (hands_on, 8),
             (order, 6), (end_the_link, 1), (kill, 1.4), (suspend, 0.4)]  # fmt: skip
    OF_THE_ENGINE = {order, end_the_link, kill, suspend}

    def burst(self):
        self.counts["bursts"] += 1
        kinds, weights = zip(*self.BURST)
        for action in self.chance.choices(kinds, weights, k=self.chance.randint(5, 40)):
            is_spared = action is Soak.kill and len(self.samples) % 2
            if not is_spared and (self.engine.is_running or action not in self.OF_THE_ENGINE):
                action(self)
            time.sleep(self.chance.choice([0, 0, 0, 0.01, 0.02, 3 * DELAY / 1000]))

    # The checks.

    def judge_all(self):
        """Reads the engine's new lines and checks the documents that they complete."""
        messages = [re.match(r"message (-?\d+) (.*)", line) for line in self.engine.lines[self.read :]]
        self.read += len(messages)
        for handle, text in (match.groups() for match in messages if match):
            if text.startswith("<pre_send_document"):
                self.documents["without an end"] += handle in self.open_documents
                self.open_documents[handle] = []
            if handle in self.open_documents:
                self.open_documents[handle].append(h.unescape(text))
            if text.startswith("<eod ") and (document := self.open_documents.pop(handle, None)):
                self.judge(handle, document)

    def judge(self, handle, document):
        assert f' docId="{handle};' in document[0], document[0]
        item = self.by_name[re.search(r' docName="([^"]*)"', document[0])[1]]
        received = a.texts(document)
        versions = {version: item.texts_of(version) for version in range(item.newest, max(-1, item.newest - 3), -1)}
        for version, texts in versions.items():
            if received == texts:
                self.documents["complete"] += 1
                self.arrived.add((item, version))
                return
        is_begun = any(received == texts[: len(received)] for texts in versions.values())
        if not (self.interrupted and is_begun):
            print("expected:", *versions[item.newest], "received:", *received, sep="\n  ")
            raise AssertionError(f"item {item.number} did not arrive as it is")
        self.documents["cut short by the user"] += 1

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
            item = self.chance.choice([item for item in self.items if not item.is_contact])
            self.tell(item.edit())
            self.select(self.explorers[-1], item)
            if self.arrives(item, 2 if self.disturbed else 10):
                self.counts["reconnections"] += attempt > 0
                break
        else:
            raise AssertionError(f"item {item.number} was chosen and did not arrive")
        self.disturbed = self.interrupted = False

    def arrives(self, item, seconds):
        deadline = time.monotonic() + seconds * h.PATIENCE
        while (item, item.newest) not in self.arrived and time.monotonic() < deadline:
            time.sleep(0.01)
            self.judge_all()
        return (item, item.newest) in self.arrived

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
        self.disturbed = True  # the link of the window that stays may still be that of an engine that has died
        self.settle()
        self.quiet()
        self.tell("resources")
        line = self.outlook.expect(r"^resources: (.*)", 30).group(1)
        held = {name: int(value) for name, value in re.findall(r"(\w[A-Za-z ]*) (\d+)", line)}
        # Counted separately: what Wine itself loses when a server dies.
        for name in MOST_LOST:
            if self.samples and self.counts["kills"] > self.kills_then:
                self.lost[name] += max(0, held[name] - self.lost[name] - self.samples[-1][name])
            held[name] -= self.lost[name]
        self.kills_then = self.counts["kills"]
        self.samples.append(held)

    def run(self, minutes):
        began = time.monotonic()
        while (passed := (time.monotonic() - began) / 60) < minutes:
            if passed / minutes >= len(self.samples) / SAMPLES:
                self.sample()
                print(f"{passed / minutes:4.0%}", dict(self.counts), self.samples[-1], flush=True)
            self.burst()
            self.settle()
        self.sample()
        if self.engine.is_running:
            self.engine.send("away")
        a.check_nothing_left(self.outlook)
        self.engine.quit()
        return self.report(minutes)

    def report(self, minutes):
        """Prints the results; returns the names of the resources that grew."""
        print("counts:", ", ".join(f"{value} {name}" for name, value in self.counts.items()))
        print("documents:", ", ".join(f"{value} {name}" for name, value in self.documents.items()))
        print("resources of Outlook's process after the warm-up:")
        settled = self.samples[len(self.samples) // 4 :]
        grown = [name for name in self.samples[0] if self.grows(name, [sample[name] for sample in settled])]
        kills = max(1, self.counts["kills"])
        for name, lost in self.lost.items():
            print(f"  lost by Wine when a server died: {lost} {name}, {lost / kills:.0f} a kill")
            if lost > MOST_LOST[name] * kills:
                grown.append(f"{name} lost with an engine")
        if minutes >= LONG_ENOUGH:
            return grown
        print(f"growth is not judged: that takes {LONG_ENOUGH} minutes")
        return []

    def grows(self, name, values):
        """Whether the values have a slope that exceeds its own noise, and together grow by more than is allowed."""
        times = range(len(values))
        if len(values) < 3:
            return False
        slope, start = statistics.linear_regression(times, values)
        rest = sum((value - start - slope * time) ** 2 for time, value in zip(times, values)) / (len(values) - 2)
        noise = (rest / sum((time - statistics.mean(times)) ** 2 for time in times)) ** 0.5
        print(f"  {name:14} {values[0]:>8} to {values[-1]:>8}, {slope:+.1f} ± {noise:.1f} a sample")
        allowed = ALLOWED.get(name, 5) + HEAP_OF_A_LINK * self.counts["item windows"] * (name == "heap KB")
        return slope > 3 * noise and slope * (len(values) - 1) > allowed


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--minutes", type=float, default=60)
    parser.add_argument("--seed", type=int, default=time.localtime().tm_yday)
    options = parser.parse_args()
    print(f"soak: seed {options.seed}", flush=True)
    with tempfile.TemporaryDirectory() as folder:
        soak = Soak(options.seed, h.Machine(Path(folder)))
        try:
            grown = soak.run(options.minutes)
        except AssertionError:
            for program in soak.outlook, soak.engine:
                print(f"the last lines of {program.name}:", *(line[:200] for line in program.lines[-25:]), sep="\n  ")
            raise
    if grown:
        sys.exit(f"soak: grew: {', '.join(grown)}")


if __name__ == "__main__":
    main()
