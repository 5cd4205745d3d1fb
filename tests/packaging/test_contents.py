"""What the installers and archives contain; nothing is installed."""

import os
import re
import zipfile

from packages import BITS, DLL, h, make, table


def test_each_bitness_is_declared_and_searches_its_own_settings(packages, tmp_path):
    """The tests of installations compare what each writes."""
    other = make(tmp_path, bits=96 - BITS)[0]
    for bits, msi in (BITS, packages[0]), (96 - BITS, other):
        template = "x64;1033" if bits == 64 else "Intel;1033"
        assert template in [row["Value"] for row in table(msi, "_SummaryInformation")]
        searches = {int(row["Type"]) & 16 for row in table(msi, "RegLocator") if row["Root"] == "2"}
        assert searches == {16 if bits == 64 else 0}, "settings are searched where they are written"
        views = {int(row["Attributes"]) & 256 for row in table(msi, "Component")}
        assert views == ({0, 256} if bits == 64 else {0}), "the type library is in both views of a 64-bit system"


def test_the_same_sources_give_the_same_bytes(packages, tmp_path, monkeypatch):
    monkeypatch.setenv("TZ", "Asia/Tokyo")
    (h.BIN / DLL).touch()
    for first, second in zip(packages, make(tmp_path)):
        assert first.read_bytes() == second.read_bytes()


def test_what_a_packed_page_points_to_is_packed(packages):
    archive = zipfile.ZipFile(packages[1])
    names = set(archive.namelist())
    lost = []
    for page in (name for name in names if name.endswith(".md")):
        for target in re.findall(r"\]\((?!\w+:)([^)\s#]+)", archive.read(page).decode()):
            if os.path.normpath(os.path.join(os.path.dirname(page), target)) not in names:
                lost.append(f"{page}: {target}")
    entry = archive.read("README.txt").decode()
    named = {name.replace("\\", "/") for name in re.findall(r"^    (\S+)", entry, re.MULTILINE)}
    assert lost == [] and named - names == {"contracts"}
    installed = {row["FileName"].rpartition("|")[2] for row in table(packages[0], "File")}
    assert installed == {os.path.basename(name) for name in names} - {"INSTALL.txt"}
    assert "Niels Lohmann" in entry, "whose code beacon-check.exe holds"


def test_the_rows_of_the_reader_are_guarded_twice(packages):
    """Against another reader that is there, and one that came later: Windows asks no condition when it removes."""
    conditions = {row["Component"]: row["Condition"] for row in table(packages[0], "Component")}
    for row in table(packages[0], "Registry"):
        assert row["Key"].startswith("[OTHER") == conditions[row["Component_"]].startswith("NOT OTHERREADER"), row


def test_what_was_found_before_the_consent_is_known_behind_it(packages):
    """With its progress bar shown, only the user's half of the installer searches the registry."""
    secure = next(row["Value"] for row in table(packages[0], "Property") if row["Property"] == "SecureCustomProperties")
    assert {row["Property"] for row in table(packages[0], "AppSearch")} <= set(secure.split(";"))
