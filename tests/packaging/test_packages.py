"""The installer on a machine: what it writes, what it keeps and what it removes. It is made here, of what was built."""

import os
import re
import subprocess
import zipfile
from pathlib import Path

import adapter as a
import beacon_harness as h
import pytest

ROOT = Path(__file__).resolve().parent.parent.parent
BITS = 32 if h.IS_32_BIT else 64
DLL = "BeaconOLKAdapter.dll"
SERVERS = [DLL, "BeaconMapiProp.dll"]
READER = r"HKEY_LOCAL_MACHINE\Software\Classes\CLSID\{C3EEC785-E482-475A-BB9A-D368521FD50A}"
OTHER_READER = r"HKEY_LOCAL_MACHINE\Software\Classes\CLSID\{00000001-0002-0003-0004-000000000005}"
FOLDER = h.PREFIX / "drive_c/Program Files/Beacon Outlook Adapter"
OLD_VERSION = bytes([9, 0, 0, 0])  # 0.9, as a DLL's resources have it


def make(folder, build=h.BIN.parent, bits=BITS, version=()):
    """The installer and the archive that package.py makes of a build folder."""
    command = ["/usr/bin/python3", ROOT / "packaging/package.py", bits, build, folder, *version]
    environment = os.environ | {"SOURCE_DATE_EPOCH": "1790000000"}
    subprocess.run(list(map(str, command)), check=True, env=environment)
    return next(folder.glob("*.msi")), next(folder.glob("*.zip"))


@pytest.fixture(scope="module")
def packages(tmp_path_factory):
    return make(tmp_path_factory.mktemp("packages"))


@pytest.fixture
def install(packages, machine):
    """Installs a package with properties, this version's unless another is given; at the end it is removed."""
    installed = []

    def run(*properties, msi=packages[0]):
        machine.run("msiexec.exe", "/i", h.windows_path(msi), "/qn", *properties)
        installed[:] = [msi]

    yield run
    for msi in installed:
        machine.run("msiexec.exe", "/x", h.windows_path(msi), "/qn", check=False)


def older(folder):
    """An installer of version 0.9, with a DLL that says so."""
    build = folder / "build"
    data = (h.BIN / DLL).read_bytes()
    start = data.index(b"\xbd\x04\xef\xfe") + 8
    (build / "bin").mkdir(parents=True)
    for file in h.BIN.iterdir():
        (build / "bin" / file.name).symlink_to(file)
    (build / "bin" / DLL).unlink()
    (build / "bin" / DLL).write_bytes(data[:start] + OLD_VERSION + data[start + 4 :])
    (build / "contracts").symlink_to(h.BIN.parent / "contracts")
    return make(folder, build, version=["0.9.0"])[0]


def table(msi, name):
    """The rows of a table of an installer, each a dictionary."""
    text = subprocess.run(["msiinfo", "export", msi, name], check=True, capture_output=True, text=True).stdout
    names, _, _, *rows = (line.split("\t") for line in text.splitlines())
    return [dict(zip(names, row)) for row in rows]


def registry(machine, *keys):
    """Keys with what is below them: key and name (empty for the key itself) to the text of a registration file."""
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


def settings(values):
    """The adapter's own among them, by name."""
    return {name.strip('"'): text.strip('"') for (key, name), text in values.items() if name and SETTINGS.search(key)}


def all_settings(machine):
    keys = rf"HKEY_LOCAL_MACHINE\{h.OUTLOOK_KEY}", rf"HKEY_CURRENT_USER\{h.USER_OUTLOOK_KEY}"
    return settings(registry(machine, *keys))


DEFAULTS = {"StartAnalysisDelay": "2000", "MaxDocUnits": "3072", "Logging": "dword:00000000"}
SETTINGS = re.compile(r"\\(corvantis|tarnwell systems, inc)")
BOOKKEEPING = re.compile(r"\\(installer|currentversion\\uninstall|software\\wine)\b")


def difference(before, after):
    """What is new or other, without the records of the installer and of Wine."""
    changed = {place: text for place, text in after.items() if before.get(place) != text}
    return {place: text for place, text in changed.items() if not BOOKKEEPING.search(place[0])}


def alike(values):
    """With one name for the DLL wherever it is; of the library's flags Wine, unlike Windows, keeps its own mark."""
    texts = {}
    for (key, name), text in values.items():
        text = re.sub(r'"[^"]*\\(Beacon\w+\.dll)"', r"\1", text)
        texts[key, name] = "any" if key.endswith((r"\flags", r"\helpdir")) and name else text
    return texts


def test_writes_what_registering_writes_and_leaves_what_is_the_users(machine, packages, install):
    before = registry(machine)
    for server in SERVERS:
        machine.run("regsvr32.exe", "/s", h.windows_path(h.BIN / server))
    registered = difference(before, registry(machine))
    for server in SERVERS:
        machine.run("regsvr32.exe", "/s", "/u", h.windows_path(h.BIN / server))
    install()
    installed = difference(before, registry(machine))
    servers = {place: text for place, text in installed.items() if not SETTINGS.search(place[0])}
    assert alike(servers) == alike(registered)
    of_users = {place: text for place, text in installed.items() if r"\corvantis" in place[0]}
    assert settings(of_users) == {"DefaultAutoUpdate": "True", "EnableToolbar": "1"}
    machine.run("msiexec.exe", "/x", h.windows_path(packages[0]), "/qn")
    assert difference(before, registry(machine)) == of_users
    assert not FOLDER.exists()


def test_both_bitnesses_hold_the_same(packages, tmp_path):
    msi = {BITS: packages[0], 96 - BITS: make(tmp_path, bits=96 - BITS)[0]}

    def rows(bits, view):
        views = {row["Component"]: 64 if int(row["Attributes"]) & 256 else 32 for row in table(msi[bits], "Component")}
        found = [row for row in table(msi[bits], "Registry") if views[row["Component_"]] == view]
        return {(row["Root"], row["Key"].replace("win64", "win32"), row["Name"], row["Value"]) for row in found}

    user, machine = "1", "2"
    assert rows(32, 64) == set()
    assert rows(32, 32) == rows(64, 64) | {row for row in rows(64, 32) if row[0] == user}
    assert {row for row in rows(64, 32) if row[0] == machine} == {row for row in rows(64, 64) if "Interface" in row[1]}
    for bits, template in (32, "Intel;1033"), (64, "x64;1033"):
        assert template in [row["Value"] for row in table(msi[bits], "_SummaryInformation")]
        searches = {int(row["Type"]) & 16 for row in table(msi[bits], "RegLocator") if row["Root"] == machine}
        assert searches == {16 if bits == 64 else 0}, "settings are searched where they are written"


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


@pytest.mark.skipif(BITS == 32, reason="there is no other one on a system of 32 bits")
def test_the_package_of_the_other_bitness_takes_its_place(machine, install):
    machine.configure({}, {})
    install("AUTOUPDATE=0", "TOOLBAR=0")
    switched_off = {"DefaultAutoUpdate": "False", "EnableToolbar": "0"}
    assert all_settings(machine) == DEFAULTS | switched_off
    assert (FOLDER / DLL).exists()
    install(msi=make(machine.folder, bits=32)[0])
    assert all_settings(machine) == switched_off, "the machine's are elsewhere now"
    assert not FOLDER.exists()
    assert (h.PREFIX / "drive_c/Program Files (x86)" / FOLDER.name / DLL).exists()
    _, found = machine.run("reg.exe", "query", r"HKLM\Software\Microsoft\Office\Outlook\Addins", check=False)
    assert h.PROG_ID not in found
    _, found = machine.run("reg.exe", "query", r"HKLM\Software\Microsoft\Office\Outlook\Addins", "/reg:32")
    assert h.PROG_ID in found


def test_upgrade_and_repair_keep_what_was_chosen(machine, packages, install, engine, outlook):
    machine.configure({}, {})
    install("STARTANALYSISDELAY=200", msi=older(machine.folder))
    beacon = engine()
    mail = outlook(store=machine.store([a.mail(1, "One")]))
    beacon.connected("AppToEngine")
    mail.send("select 1")
    assert 'docName="One"' in a.document(beacon)[0][0]
    a.check_nothing_left(mail)
    of_user = {"DefaultAutoUpdate": "True", "EnableToolbar": "1"}
    assert all_settings(machine) == DEFAULTS | {"StartAnalysisDelay": "200"} | of_user

    machine.configure({"DefaultAutoUpdate": "False", "EnableToolbar": "0"}, {"Logging": 1, "MaxDocUnits": "100"})
    chosen = {"DefaultAutoUpdate": "False", "EnableToolbar": "0", "Logging": "dword:00000001", "MaxDocUnits": "100"}
    install()
    assert all_settings(machine) == chosen | {"StartAnalysisDelay": "2000"}
    assert (FOLDER / DLL).read_bytes() == machine.dll.read_bytes()
    assert "BeaconMapiProp.dll" in str(registry(machine, READER)), "its own reader is no other"

    (FOLDER / DLL).unlink()
    machine.run("reg.exe", "delete", rf"HKLM\Software\Classes\{h.PROG_ID}", "/f")
    install("REINSTALL=ALL", "REINSTALLMODE=omus")  # as msiexec /f has it
    assert all_settings(machine) == chosen | {"StartAnalysisDelay": "2000"}
    assert (FOLDER / DLL).exists()
    machine.run("reg.exe", "query", rf"HKLM\Software\Classes\{h.PROG_ID}\CLSID")

    machine.run("msiexec.exe", "/x", h.windows_path(packages[0]), "/qn")
    assert all_settings(machine) == {"DefaultAutoUpdate": "False", "EnableToolbar": "0"}
    assert not FOLDER.exists()


@pytest.mark.parametrize(
    "comes_first, key",
    [(True, READER), (False, READER), (False, OTHER_READER)],
    ids=["first", "later", "later with a class of its own"],
)
def test_another_property_reader_stays(machine, packages, install, comes_first, key):
    script = machine.folder / "reader.reg"
    name = r"HKEY_LOCAL_MACHINE\Software\Classes\Mapiprop.MAPIPropWrapper"
    class_id = key.rpartition("\\")[2]
    rows = f'[{name}\\CLSID]\n@="{class_id}"\n\n[{key}\\InprocServer32]\n@="C:\\\\Other\\\\reader.dll"\n'
    script.write_text(f"REGEDIT4\n\n{rows}")
    if not comes_first:
        install()
        assert "BeaconMapiProp.dll" in str(registry(machine, READER))
    machine.run("regedit.exe", "/S", h.windows_path(script))
    before = registry(machine, key, name)
    install(*([] if comes_first else ["REINSTALL=ALL", "REINSTALLMODE=omus"]))
    assert registry(machine, key, name) == before
    machine.run("msiexec.exe", "/x", h.windows_path(packages[0]), "/qn")
    assert registry(machine, key, name) == before
    code, _ = machine.run("reg.exe", "query", r"HKLM\Left to another", check=False)
    assert code != 0, "rows were written where only their removal may look"
    for own in key, name:
        machine.run("reg.exe", "delete", own, "/f")
    code, _ = machine.run("reg.exe", "query", READER, check=False)
    assert code != 0, "a class without its file was left"


def test_the_rows_of_the_reader_are_guarded_twice(packages):
    """Against another reader that is there, and one that came later: Windows asks no condition when it removes."""
    conditions = {row["Component"]: row["Condition"] for row in table(packages[0], "Component")}
    for row in table(packages[0], "Registry"):
        assert row["Key"].startswith("[OTHER") == conditions[row["Component_"]].startswith("NOT OTHERREADER"), row


def test_what_was_found_before_the_consent_is_known_behind_it(packages):
    """With its progress bar shown, only the user's half of the installer searches the registry."""
    secure = next(row["Value"] for row in table(packages[0], "Property") if row["Property"] == "SecureCustomProperties")
    assert {row["Property"] for row in table(packages[0], "AppSearch")} <= set(secure.split(";"))
