"""The remedies of beacon-check, followed to the letter on machines that are broken in every known way."""

import json
import re
from pathlib import Path

import pefile

from packages import BITS, CLASSES, DLL, FOLDER, READER_DLL, READER_ID, ROOT, h

OTHER_ID = "{00000001-0002-0003-0004-000000000005}"
READER_NAME = rf"{CLASSES}\Mapiprop.MAPIPropWrapper"
ADD_IN_SERVER = rf"{CLASSES}\CLSID\{{6E547C94-44EC-474B-AC54-1B05A2E339B9}}\InprocServer32"


keep, remove = Path.touch, Path.unlink


def make_other_bitness(file):
    image = pefile.PE(data=file.read_bytes(), fast_load=True)
    image.FILE_HEADER.Machine = 0x14C if BITS == 64 else 0x8664
    file.write_bytes(image.write())


def clear(file):
    file.write_bytes(b"")


def clear_code(file):
    """As a bad disk may do; the version in the resources stays."""
    image = pefile.PE(data=file.read_bytes(), fast_load=True)
    code = next(section for section in image.sections if section.Name.startswith(b".text"))
    image.set_bytes_at_offset(code.PointerToRawData, bytes(code.SizeOfRawData))
    file.write_bytes(image.write())


def foreign_reader(class_id, file):
    """Registry rows of another product's reader."""
    escaped = file.replace("\\", "\\\\")
    return [
        *(f"[{READER_NAME}\\CLSID]", f'@="{class_id}"'),
        *(f"[{CLASSES}\\CLSID\\{class_id}\\InprocServer32]", f'@="{escaped}"'),
    ]


WRONG_VALUES = [
    f"[-{READER_NAME}]",
    r"[-HKEY_LOCAL_MACHINE\Software\Microsoft\Office\Outlook\Addins\BeaconOLKAdapter.Connect]",
    rf"[-{CLASSES}\TypeLib\{{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}}]",
    f"[{ADD_IN_SERVER}]",
    '"ThreadingModel"="Free"',
]
TEXT = h.windows_path(ROOT / "README.md")

# What happens to the add-in, to the reader, and in the registry; what beacon-check must find then.
BROKEN = [
    (remove, keep, foreign_reader(OTHER_ID, TEXT), {"addin-file-missing", "reader-not-a-library"}),
    (make_other_bitness, keep, foreign_reader(OTHER_ID, "ole32.dll"), {"addin-other-bitness", "reader-does-not-load"}),
    (clear, keep, foreign_reader(READER_ID, r"C:\gone.dll"), {"addin-not-a-library", "reader-file-missing"}),
    (clear_code, make_other_bitness, [], {"addin-does-not-load", "reader-other-bitness"}),
    (keep, clear_code, [f"[-{CLASSES}\\{h.PROG_ID}]"], {"addin-not-registered", "reader-does-not-load"}),
    (keep, keep, WRONG_VALUES,
     {"addin-threading-model", "outlook-key-missing", "addin-type-library", "reader-not-registered"}),
]  # fmt: skip


def findings(machine):
    _, text = machine.run(h.windows_path(FOLDER / "beacon-check.exe"), "--json", check=False)
    return {finding["id"]: finding["remedy"] for finding in json.loads(text)["findings"]}


def follow(machine, packages, remedy):
    """Does what the remedy says, in its order."""
    done = 0
    for step in re.finditer(r'Delete the file "(?P<file>.*?)"|Delete the key "(?P<key>.*?)"|repair "Beacon', remedy):
        if step["file"]:
            (h.PREFIX / "drive_c" / step["file"].removeprefix("C:\\").replace("\\", "/")).unlink()
        elif step["key"]:
            machine.run("reg.exe", "delete", step["key"], "/f")
        else:
            machine.run("msiexec.exe", "/i", h.windows_path(packages[0]), "/qn", "REINSTALL=ALL", "REINSTALLMODE=omus")
        done += 1
    assert done, remedy


def test_remedies_repair_every_broken_machine(machine, packages, install):
    install()
    whole = set(findings(machine))  # no Outlook, no engine
    script = machine.folder / "broken.reg"
    for break_add_in, break_reader, rows, expected in BROKEN:
        break_add_in(FOLDER / DLL)
        break_reader(FOLDER / READER_DLL)
        script.write_text("\n".join(["REGEDIT4", *rows, ""]))
        machine.run("regedit.exe", "/S", h.windows_path(script))
        told = findings(machine)
        assert set(told) - whole == expected
        for remedy in dict.fromkeys(told[one] for one in sorted(expected)):
            follow(machine, packages, remedy)
        assert set(findings(machine)) == whole, f"after {sorted(expected)}"
