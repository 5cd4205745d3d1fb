"""What the tests of the packages share: packages of what was built, installed into the Wine prefix of the test."""

import os
import re
import subprocess
from pathlib import Path

import beacon_harness as h

ROOT = Path(__file__).resolve().parent.parent.parent

BITS = 32 if h.IS_32_BIT else 64
DLL = "BeaconOLKAdapter.dll"
READER_DLL = "BeaconMapiProp.dll"
READER_ID = "{C3EEC785-E482-475A-BB9A-D368521FD50A}"
CLASSES = r"HKEY_LOCAL_MACHINE\Software\Classes"
READER = rf"{CLASSES}\CLSID\{READER_ID}"
FOLDER = h.PREFIX / "drive_c/Program Files/Beacon Outlook Adapter"
OLD_VERSION = bytes([9, 0, 0, 0])  # 0.9 in the resources of a DLL


def make(folder, build=h.BIN.parent, bits=BITS, version=()):
    """The installer and the archive that package.py makes of a build folder."""
    command = ["/usr/bin/python3", ROOT / "packaging/package.py", bits, build, folder, *version]
    environment = os.environ | {"SOURCE_DATE_EPOCH": "1790000000"}
    subprocess.run(list(map(str, command)), check=True, env=environment)
    return next(folder.glob("*.msi")), next(folder.glob("*.zip"))


def older(folder, bits=BITS):
    """An installer of version 0.9, whose DLL has that version, too."""
    build = folder / "build"
    data = (h.BIN / DLL).read_bytes()
    start = data.index(b"\xbd\x04\xef\xfe") + 8
    (build / "bin").mkdir(parents=True)
    for file in h.BIN.iterdir():
        (build / "bin" / file.name).symlink_to(file)
    (build / "bin" / DLL).unlink()
    (build / "bin" / DLL).write_bytes(data[:start] + OLD_VERSION + data[start + 4 :])
    (build / "contracts").symlink_to(h.BIN.parent / "contracts")
    return make(folder, build, bits, version=["0.9.0"])[0]


def table(msi, name):
    """The rows of a table of an installer, as dictionaries."""
    text = subprocess.run(["msiinfo", "export", msi, name], check=True, capture_output=True, text=True).stdout
    names, _, _, *rows = (line.split("\t") for line in text.splitlines())
    return [dict(zip(names, row)) for row in rows]


def registry(machine, *keys):
    """The values below these keys by key and name, as regedit exports them. A key itself has an empty name."""
    values = {}
    for root in keys or (r"HKEY_LOCAL_MACHINE\Software", "HKEY_CURRENT_USER"):
        file = machine.folder / "dump.reg"
        machine.run("regedit.exe", "/E", h.windows_path(file), root)
        key = ""
        for line in file.read_text("utf-16").replace("\\\n", "").splitlines():
            if line.startswith("["):
                key = line.strip("[]").lower()
                values[key, ""] = ""
            elif "=" in line:
                name, _, text = line.partition("=")
                values[key, name] = text
    return values


def all_settings(machine):
    """The settings of the adapter, by name."""
    keys = rf"HKEY_LOCAL_MACHINE\{h.OUTLOOK_KEY}", rf"HKEY_CURRENT_USER\{h.USER_OUTLOOK_KEY}"
    values = registry(machine, *keys)
    return {name.strip('"'): text.strip('"') for (_, name), text in values.items() if name not in ("", '"InstallDir"')}


DEFAULTS = {"StartAnalysisDelay": "2000", "MaxDocUnits": "3072", "Logging": "dword:00000000"}
SETTINGS = re.compile(r"\\(corvantis|tarnwell systems, inc)")
BOOKKEEPING = re.compile(r"\\(installer|currentversion\\uninstall|software\\wine)\b")


def difference(before, after):
    """New and changed values, without the records of the installer and of Wine."""
    changed = {place: text for place, text in after.items() if before.get(place) != text}
    return {place: text for place, text in changed.items() if not BOOKKEEPING.search(place[0])}
