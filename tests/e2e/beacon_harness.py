r"""Runs the real programs: the add-in in the stand-in Outlook, with the stand-in engine.

Each test file in this folder has its own Wine prefix; the files run in parallel.

Fixtures (../conftest.py): `machine` is the prefix, `engine` and `outlook` start the stand-ins with options given as
keywords: engine(toolbar=True, state=3), outlook(outlook_version=9). An underscore stands for a hyphen, True for a
switch without a value. At the end of a test, programs that still run are killed; if the test failed, their output is
shown.

`expect` searches the lines after the last match, and waits for more; `lines` has all of them. `kill` ends a program
as TerminateProcess does. `wait` returns the exit code modulo 256.
"""

import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

WINE = os.environ["WINE"]
PREFIX = Path(os.environ["WINEPREFIX"])
BIN = Path(os.environ["BEACON_BIN"])
IS_32_BIT = os.environ.get("BEACON_BITS") == "32"
PATIENCE = 4 if IS_32_BIT else 1  # factor for time limits, since emulated programs are slower

OF_OUTLOOK = r"\Beacon\AppAdapters\Outlook"
USER_OUTLOOK_KEY = r"Software\Corvantis" + OF_OUTLOOK
OUTLOOK_KEY = r"Software\Tarnwell Systems, Inc" + OF_OUTLOOK
PROG_ID = "BeaconOLKAdapter.Connect"


def windows_path(path):
    """The path by which Windows programs find this file."""
    return "Z:" + str(path).replace("/", "\\")


def wait_until(condition, timeout=10, what="the condition"):
    """Polls the condition until it is true, and returns its value; fails after the time-out."""
    deadline = time.monotonic() + timeout * PATIENCE
    while not (value := condition()):
        assert time.monotonic() < deadline, f"{what} did not become true within {timeout * PATIENCE} s"
        time.sleep(0.02)
    return value


class Program:
    """A Windows program with redirected input and output. Options are given as keywords."""

    started = []  # by this test

    def __init__(self, executable, *arguments, **options):
        path = BIN / executable
        self.name = path.stem
        self._lines = []
        self._begun = b""  # line
        self._seen = 0  # lines before this one were consumed by expect
        # Not a pipe: Wine keeps it open for another second after the program has ended.
        with tempfile.NamedTemporaryFile() as file:
            self._output = open(file.name, "rb")
            self._process = subprocess.Popen(
                [WINE, str(path), *arguments, *_words(options)],
                stdin=subprocess.PIPE, stdout=file, stderr=subprocess.STDOUT,
            )  # fmt: skip
        Program.started.append(self)

    @property
    def lines(self):
        """All lines so far."""
        *whole, self._begun = (self._begun + self._output.read()).split(b"\n")
        self._lines += [line.decode("utf-8", "replace").rstrip("\r") for line in whole]
        return self._lines

    def send(self, line):
        """Writes one line to the program."""
        self._process.stdin.write((line + "\n").encode("utf-8"))
        self._process.stdin.flush()

    def expect(self, pattern, timeout=10):
        """Waits for a line with this pattern after the last match, and returns the match; fails after the time-out."""
        match = self._find(pattern, timeout * PATIENCE)
        if match is None:
            state = "is running" if self.is_running else "has ended"
            raise AssertionError(f"{self.name} ({state}) did not say /{pattern}/, but:\n" + self._rest())
        return match

    def expect_nothing(self, pattern, seconds):
        """Fails if a line with this pattern comes within the time; consumes nothing."""
        seen = self._seen
        match = self._find(pattern, seconds)
        self._seen = seen
        assert match is None, f"{self.name} said {match.string!r}"

    def _find(self, pattern, seconds):
        deadline = time.monotonic() + seconds
        position = self._seen
        while True:
            is_last = time.monotonic() > deadline or not self.is_running
            for index, line in enumerate(self.lines[position:], position):
                if match := re.search(pattern, line):
                    self._seen = index + 1
                    return match
            if is_last:
                return None
            position = len(self._lines)
            time.sleep(0.01)

    def _rest(self):
        return "\n".join(f"    {line}" for line in self.lines[self._seen :]) or "    (nothing)"

    def matching(self, pattern):
        """All lines so far that have this pattern."""
        return [line for line in self.lines if re.search(pattern, line)]

    @property
    def is_running(self):
        return self._process.poll() is None

    def signal(self, number):
        self._process.send_signal(number)

    def wait(self, timeout=20):
        """Waits for the end of the program; returns the exit code modulo 256."""
        try:
            return self._process.wait(timeout * PATIENCE)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"{self.name} does not end; since the last match it said:\n" + self._rest()) from None

    def kill(self):
        """Ends the program at once."""
        if self.is_running:
            self.signal(signal.SIGKILL)
        self._process.wait(20)

    def quit(self, timeout=20):
        """Asks the program to end; returns the exit code."""
        self.send("quit")
        return self.wait(timeout)


def _words(options):
    for name, value in options.items():
        if value is not None:
            yield "--" + name.replace("_", "-")
        if value is not None and value is not True:
            yield windows_path(value) if isinstance(value, Path) else str(value)


class Engine(Program):
    """The stand-in engine; prints `message HANDLE TEXT`, `control HANDLE TEXT` or `# EVENT` for each call."""

    serves_toolbar = False

    def __init__(self, **options):
        self.serves_toolbar = "toolbar" in options
        super().__init__("standin_engine.exe", raw=True, **options)
        self.expect("^# ready$")

    def connected(self, side="AppToController", timeout=20):
        """Waits for a client to connect; returns its handle."""
        return int(self.expect(rf"^# connected {side} (-?\d+)", timeout).group(1))

    def message(self, pattern="", timeout=10, kind="message"):
        """Waits for a message (or control) with this pattern; returns its text, unescaped."""
        line = self.expect(rf"^{kind} -?\d+ .*(?:{pattern})", timeout).string
        return unescape(line.split(" ", 2)[2])


def unescape(text):
    """Undoes the engine's escapes for backslash, CR and LF."""
    return re.sub(r"\\(.)", lambda match: {"r": "\r", "n": "\n"}.get(match.group(1), match.group(1)), text)


class Outlook(Program):
    """The stand-in Outlook; `send("help")` lists its commands."""

    def __init__(self, **options):
        super().__init__("standin_outlook.exe", **options)
        self.expect("^outlook ")


class Machine:
    """The Wine prefix as a machine: registry, files and the built DLLs."""

    dll = BIN / "BeaconOLKAdapter.dll"
    reader = BIN / "BeaconMapiProp.dll"
    _registered = False

    def __init__(self, folder):
        self.folder = folder  # for the test's own files

    def run(self, program, *arguments, check=True, timeout=60):
        """Runs a program, one of Wine's own if no folder is named; returns exit code and output."""
        if "\\" not in program:  # Wine itself would search it by starting another program
            program = rf"C:\windows\{'' if program == 'regedit.exe' else 'system32'}\{program}"
        done = subprocess.run(
            [WINE, program, *map(str, arguments)],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=timeout * PATIENCE,
        )  # fmt: skip
        output = done.stdout.decode("utf-8", "replace")
        assert not check or done.returncode == 0, f"{program} {arguments}: exit code {done.returncode}\n{output}"
        return done.returncode, output

    def install(self, user, of_machine, logs=True):
        """Registers the DLLs, replaces all settings by these, and empties or removes the logs folder."""
        if not Machine._registered:  # once: starting a program takes longer than most tests
            self.run("regsvr32.exe", "/s", windows_path(self.dll), windows_path(self.reader))
            Machine._registered = True
        self.configure(user, of_machine)
        shutil.rmtree(self.logs_folder, ignore_errors=True)
        if logs:
            self.logs_folder.mkdir(parents=True)

    def configure(self, user, of_machine):
        """Replaces all settings by these values ({name: int or str})."""
        lines = ["REGEDIT4", ""]
        for hive, key, values in ("CURRENT_USER", USER_OUTLOOK_KEY, user), ("LOCAL_MACHINE", OUTLOOK_KEY, of_machine):
            lines += [f"[-HKEY_{hive}\\{key.removesuffix(OF_OUTLOOK)}]", f"[HKEY_{hive}\\{key}]"]
            for name, value in values.items():
                lines.append(f'"{name}"=' + (f"dword:{value:08x}" if isinstance(value, int) else f'"{value}"'))
        script = self.folder / "settings.reg"
        script.write_text("\n".join([*lines, ""]), "cp1252")
        self.run("regedit.exe", "/S", windows_path(script))

    @property
    def logs_folder(self):
        [roaming] = PREFIX.glob("drive_c/users/*/AppData/Roaming")
        return roaming / "Corvantis" / "Beacon" / "logs"

    def log(self, level):
        """The add-in's log of this level (1 or 2); "" if there is none."""
        file = self.logs_folder / f"OlkLog{level}.txt"
        return file.read_bytes().decode("cp1252", "replace").replace("\r\n", "\n") if file.exists() else ""

    def store(self, items, **rest):
        """A file of items for the stand-in Outlook (see import_mail.py for the fields)."""
        file = self.folder / "store.json"
        file.write_text(json.dumps({"items": items, **rest}), "utf-8")
        return file
