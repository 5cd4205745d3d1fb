"""The remedies of beacon-check, followed to the letter on machines that are broken in every known way."""

import json
import re
import struct

import pefile

from packages import BITS, CLASSES, DLL, FOLDER, READER, READER_DLL, h

OTHER_ID = "{00000001-0002-0003-0004-000000000005}"
READER_NAME = rf"{CLASSES}\Mapiprop.MAPIPropWrapper"


def edit(name, change):
    data = bytearray((FOLDER / name).read_bytes())
    change(data, pefile.PE(data=bytes(data), fast_load=True))
    (FOLDER / name).write_bytes(data)


def make_other_bitness(data, image):
    struct.pack_into("<H", data, image.FILE_HEADER.get_file_offset(), 0x14C if BITS == 64 else 0x8664)


def clear_code(data, image):
    """As a bad disk may do; the version in the resources stays."""
    code = next(section for section in image.sections if section.Name.startswith(b".text"))
    data[code.PointerToRawData : code.PointerToRawData + code.SizeOfRawData] = bytes(code.SizeOfRawData)


class Broken:
    """Ways to break an installed product; each returns what beacon-check must find then."""

    def __init__(self, machine):
        self.machine = machine

    def _values(self, *rows):
        script = self.machine.folder / "broken.reg"
        script.write_text("\n".join(["REGEDIT4", "", *rows, ""]))
        self.machine.run("regedit.exe", "/S", h.windows_path(script))

    def _foreign_reader(self, class_id, file):
        escaped = file.replace("\\", "\\\\")
        self._values(
            f"[{READER_NAME}\\CLSID]",
            f'@="{class_id}"',
            "",
            f"[{CLASSES}\\CLSID\\{class_id}\\InprocServer32]",
            f'@="{escaped}"',
        )

    def missing_add_in_and_foreign_class_without_library(self):
        (FOLDER / DLL).unlink()
        self._foreign_reader(OTHER_ID, h.windows_path(self.machine.store([])))
        return {"addin-file-missing", "reader-not-a-library"}

    def other_bitness_and_foreign_library_without_the_class(self):
        edit(DLL, make_other_bitness)
        self._foreign_reader(OTHER_ID, "ole32.dll")
        return {"addin-other-bitness", "reader-does-not-load"}

    def empty_add_in_and_own_class_with_missing_foreign_file(self):
        (FOLDER / DLL).write_bytes(b"")
        self._foreign_reader(READER.rpartition("\\")[2], r"C:\Other\reader.dll")
        return {"addin-not-a-library", "reader-file-missing"}

    def add_in_without_code_and_reader_of_other_bitness(self):
        edit(DLL, clear_code)
        edit(READER_DLL, make_other_bitness)
        return {"addin-does-not-load", "reader-other-bitness"}

    def keys_deleted_and_reader_without_code(self):
        self._values(f"[-{CLASSES}\\{h.PROG_ID}]")
        edit(READER_DLL, clear_code)
        return {"addin-not-registered", "reader-does-not-load"}

    def wrong_values(self):
        self._values(
            f"[-{READER_NAME}]",
            r"[-HKEY_LOCAL_MACHINE\Software\Microsoft\Office\Outlook\Addins\BeaconOLKAdapter.Connect]",
            rf"[-{CLASSES}\TypeLib\{{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}}]",
            rf"[{CLASSES}\CLSID\{{6E547C94-44EC-474B-AC54-1B05A2E339B9}}\InprocServer32]",
            '"ThreadingModel"="Free"',
        )
        return {"addin-threading-model", "outlook-key-missing", "addin-type-library", "reader-not-registered"}


def findings(machine):
    _, text = machine.run(h.windows_path(FOLDER / "beacon-check.exe"), "--json", check=False)
    return {finding["id"]: finding["remedy"] for finding in json.loads(text)["findings"]}


def follow(machine, packages, remedy):
    """Does what the remedy says, in its order."""
    done = 0
    for step in re.finditer(r'Delete the file "(?P<file>.*?)"|Delete the key "(?P<key>.*?)"|repair "Beacon', remedy):
        if step["file"]:
            (h.PREFIX / "drive_c" / step["file"].removeprefix("C:\\").replace("\\", "/")).unlink(missing_ok=True)
        elif step["key"]:
            machine.run("reg.exe", "delete", step["key"], "/f")
        else:
            machine.run("msiexec.exe", "/i", h.windows_path(packages[0]), "/qn", "REINSTALL=ALL", "REINSTALLMODE=omus")
        done += 1
    assert done, remedy


def test_remedies_repair_every_broken_machine(machine, packages, install):
    install()
    whole = set(findings(machine))  # no Outlook, no engine
    for name, breaks in vars(Broken).items():
        if name[0] == "_":
            continue
        found = breaks(Broken(machine))
        told = findings(machine)
        assert set(told) - whole == found, name
        for remedy in {told[one] for one in found}:
            follow(machine, packages, remedy)
        assert set(findings(machine)) == whole, name
