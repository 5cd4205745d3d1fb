"""A property reader of another product stays."""

import pytest
from packages import CLASSES, READER, READER_DLL, h, registry

OTHER_READER = rf"{CLASSES}\CLSID\{{00000001-0002-0003-0004-000000000005}}"


@pytest.mark.parametrize(
    "comes_first, key",
    [(True, READER), (False, READER), (False, OTHER_READER)],
    ids=["first", "later", "later with a class of its own"],
)
def test_another_property_reader_stays(machine, packages, install, comes_first, key):
    script = machine.folder / "reader.reg"
    name = rf"{CLASSES}\Mapiprop.MAPIPropWrapper"
    class_id = key.rpartition("\\")[2]
    rows = f'[{name}\\CLSID]\n@="{class_id}"\n\n[{key}\\InprocServer32]\n@="C:\\\\Other\\\\reader.dll"\n'
    script.write_text(f"REGEDIT4\n\n{rows}")
    if not comes_first:
        install()
        assert READER_DLL in str(registry(machine, READER))
    machine.run("regedit.exe", "/S", h.windows_path(script))
    before = registry(machine, key, name)
    install(*([] if comes_first else ["REINSTALL=ALL", "REINSTALLMODE=omus"]))
    assert registry(machine, key, name) == before
    machine.run("msiexec.exe", "/x", h.windows_path(packages[0]), "/qn")
    assert registry(machine, key, name) == before
    for own in key, name:
        machine.run("reg.exe", "delete", own, "/f")
    for left in READER, r"HKLM\Left to another":  # the latter exists only to protect the other reader's rows
        assert machine.run("reg.exe", "query", left, check=False)[0] != 0, left
