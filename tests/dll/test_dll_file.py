"""The files that users install: what they need of the system, how they are protected, and how large they are."""

import os
import pathlib

import pefile
import pytest

BIN = pathlib.Path(os.environ["BEACON_BIN"])
IS_64 = os.environ["BEACON_BITS"] == "64"
LARGEST = {  # bytes
    "BeaconOLKAdapter.dll": 450_000 if IS_64 else 520_000,
    "BeaconMapiProp.dll": 140_000 if IS_64 else 200_000,
}


@pytest.fixture(name="name", scope="module", params=LARGEST)
def file_name(request):
    return request.param


@pytest.fixture(name="dll", scope="module")
def opened(name):
    with pefile.PE(BIN / name) as file:
        yield file


def allowed():
    """The library's name in lower case, to the set of its functions."""
    names, library = {}, ""
    for line in (pathlib.Path(__file__).parent / "imports.txt").read_text().splitlines():
        if line.startswith("#") or (line.startswith("+") and not IS_64):
            continue
        head, colon, rest = line.lstrip("+").partition(":")
        library, functions = (head, rest) if colon else (library, line)
        names.setdefault(library, set()).update(functions.split())
    return names


def test_imports_only_what_windows_2000_exports(dll):
    known = allowed()
    for entry in dll.DIRECTORY_ENTRY_IMPORT:
        functions = {symbol.name.decode() for symbol in entry.imports}
        assert functions - known.get(entry.dll.decode().lower(), set()) == set(), entry.dll


def test_names_a_system_and_an_image_that_windows_2000_loads(dll):
    header = dll.OPTIONAL_HEADER
    oldest = (5, 2) if IS_64 else (5, 0)
    assert (header.MajorSubsystemVersion, header.MinorSubsystemVersion) <= oldest
    assert header.MajorOperatingSystemVersion <= oldest[0]


def test_is_protected_as_the_system_can(dll):
    header = dll.OPTIONAL_HEADER
    assert header.IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, "addresses are drawn anew at each load"
    assert header.IMAGE_DLLCHARACTERISTICS_NX_COMPAT, "data is not executed"
    assert header.IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA == IS_64
    assert hasattr(dll, "DIRECTORY_ENTRY_BASERELOC"), "without these the addresses stay where they are"
    assert not [s.Name for s in dll.sections if s.IMAGE_SCN_MEM_WRITE and s.IMAGE_SCN_MEM_EXECUTE]


def test_is_small(name):
    size = (BIN / name).stat().st_size
    print(f"{name}: {size} of {LARGEST[name]} bytes")
    assert size <= LARGEST[name]
