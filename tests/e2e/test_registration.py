"""What DllRegisterServer writes, and that DllUnregisterServer leaves nothing of it."""

import difflib

from beacon_harness import ADDINS_KEY, PROG_ID

CLASS_ID = "{6E547C94-44EC-474B-AC54-1B05A2E339B9}"


def classes_and_addins(machine):
    machine.run("reg.exe", "add", f"HKEY_LOCAL_MACHINE\\{ADDINS_KEY}", "/f")  # may be there already, so it is, always
    return machine.export("HKLM", r"Software\Classes") + machine.export("HKLM", ADDINS_KEY)


def test_registers_class_and_add_in(machine):
    machine.register()

    key = f"{ADDINS_KEY}\\{PROG_ID}"
    assert machine.get_value("HKLM", key, "LoadBehavior") == 3
    assert machine.get_value("HKLM", key, "FriendlyName")
    assert machine.get_value("HKLM", key, "Description")
    server = rf"Software\Classes\CLSID\{CLASS_ID}\InprocServer32"
    assert machine.get_value("HKLM", server, "ThreadingModel") == "Apartment"
    assert ("HKCR", rf"{PROG_ID}\CLSID") in machine


def test_unregistering_leaves_nothing(machine):
    before = classes_and_addins(machine)
    machine.register()
    machine.register()  # a repair installs over what is there
    assert ("HKCR", PROG_ID) in machine
    machine.unregister()
    assert list(difflib.unified_diff(before, classes_and_addins(machine), "before", "after", lineterm="")) == []
