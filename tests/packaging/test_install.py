"""What an installation writes, refuses and removes."""

import re

import beacon_harness as h
import pytest

from packages import BITS, DEFAULTS, DLL, FOLDER, READER_DLL, SETTINGS, all_settings, difference, make, older, registry


def alike(values):
    """Values other than settings, with the names of DLLs instead of paths; Wine keeps its own mark among the flags."""
    texts = {}
    for (key, name), text in values.items():
        if SETTINGS.search(key):
            continue
        text = re.sub(r'"[^"]*\\(Beacon\w+\.dll)"', r"\1", text)
        texts[key, name] = "any" if key.endswith((r"\flags", r"\helpdir")) and name else text
    return texts


def test_writes_what_registering_writes_and_keeps_what_is_the_users(machine, packages, install):
    before = registry(machine)
    for server in DLL, READER_DLL:
        machine.run("regsvr32.exe", "/s", h.windows_path(h.BIN / server))
    registered = difference(before, registry(machine))
    for server in DLL, READER_DLL:
        machine.run("regsvr32.exe", "/s", "/u", h.windows_path(h.BIN / server))
    install()
    installed = difference(before, registry(machine))
    assert alike(installed) == alike(registered)
    assert all_settings(machine) == DEFAULTS | {"DefaultAutoUpdate": "True", "EnableToolbar": "1"}
    of_users = {place: text for place, text in installed.items() if r"\corvantis" in place[0]}
    machine.run("msiexec.exe", "/x", h.windows_path(packages[0]), "/qn")
    assert difference(before, registry(machine)) == of_users
    assert not FOLDER.exists()


@pytest.mark.skipif(BITS == 32, reason="a 32-bit system has no other bitness")
def test_replaces_the_other_bitness_unless_that_is_newer(machine, install):
    machine.configure({}, {})
    assert install("AUTOUPDATE=yes", check=False) and install("LOGGING=2", check=False) and not FOLDER.exists()
    install("AUTOUPDATE=False", "TOOLBAR=0", "LOGGING=true")
    switched_off = {"DefaultAutoUpdate": "False", "EnableToolbar": "0"}
    assert all_settings(machine) == DEFAULTS | switched_off | {"Logging": "dword:00000001"}

    other = h.PREFIX / "drive_c/Program Files (x86)" / FOLDER.name
    assert install(msi=older(machine.folder, bits=32), check=False), "the installed one is newer"
    assert (FOLDER / DLL).exists() and not other.exists()
    install(msi=make(machine.folder, bits=32)[0])
    assert all_settings(machine) == switched_off, "32-bit programs have other settings of the machine"
    assert (other / DLL).exists() and not FOLDER.exists()
    _, found = machine.run("reg.exe", "query", r"HKLM\Software\Microsoft\Office\Outlook\Addins", check=False)
    assert h.PROG_ID not in found
    _, found = machine.run("reg.exe", "query", r"HKLM\Software\Microsoft\Office\Outlook\Addins", "/reg:32")
    assert h.PROG_ID in found
