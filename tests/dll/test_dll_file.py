"""The files that users install: what they need of the system, how they are protected, and how large they are."""

import os
import pathlib

import pefile
import pytest

BUILD = pathlib.Path(os.environ["BEACON_BIN"]).parents[1]
LARGEST = {  # bytes
    "x64/bin/BeaconOLKAdapter.dll": 450_000,
    "x64/bin/BeaconMapiProp.dll": 140_000,
    "x86/bin/BeaconOLKAdapter.dll": 520_000,
    "x86/bin/BeaconMapiProp.dll": 200_000,
}


@pytest.fixture(name="name", scope="module", params=LARGEST)
def file_name(request):
    return request.param


@pytest.fixture(name="dll", scope="module")
def opened(name):
    with pefile.PE(BUILD / name) as file:
        yield file


def is_64(dll):
    return dll.OPTIONAL_HEADER.Magic == pefile.OPTIONAL_HEADER_MAGIC_PE_PLUS


def allowed(also_64):
    """The library's name in lower case, to the set of its functions."""
    names, library = {}, ""
    for line in (pathlib.Path(__file__).parent / "imports.txt").read_text().splitlines():
        if line.startswith("#") or (line.startswith("+") and not also_64):
            continue
        head, colon, rest = line.lstrip("+").partition(":")
        library, functions = (head, rest) if colon else (library, line)
        names.setdefault(library, set()).update(functions.split())
    return names


def test_imports_only_what_windows_2000_exports(dll):
    known = allowed(is_64(dll))
    for entry in dll.DIRECTORY_ENTRY_IMPORT:
        functions = {symbol.name.decode() for symbol in entry.imports}
        assert functions - known.get(entry.dll.decode().lower(), set()) == set(), entry.dll


def test_names_a_system_and_an_image_that_windows_2000_loads(dll):
    header = dll.OPTIONAL_HEADER
    oldest = (5, 2) if is_64(dll) else (5, 0)
    assert (header.MajorSubsystemVersion, header.MinorSubsystemVersion) <= oldest
    assert header.MajorOperatingSystemVersion <= oldest[0]


def test_is_protected_as_the_system_can(dll):
    header = dll.OPTIONAL_HEADER
    assert header.IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, "addresses are drawn anew at each load"
    assert header.IMAGE_DLLCHARACTERISTICS_NX_COMPAT, "data is not executed"
    assert header.IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA == is_64(dll)
    assert hasattr(dll, "DIRECTORY_ENTRY_BASERELOC"), "without these the addresses stay where they are"
    assert not [s.Name for s in dll.sections if s.IMAGE_SCN_MEM_WRITE and s.IMAGE_SCN_MEM_EXECUTE]


def test_is_small(name):
    size = (BUILD / name).stat().st_size
    print(f"{name}: {size} of {LARGEST[name]} bytes")
    assert size <= LARGEST[name]
