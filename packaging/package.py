"""Makes the installer (.msi) and the archive (.zip) for one bitness. The same sources produce the same bytes.

package.py BITS BUILD OUT [VERSION]: 32 or 64, the build folder, and the folder to write to. VERSION replaces that of
the build in tests of upgrades. All files get the time SOURCE_DATE_EPOCH, by default that of the last commit. Prints
size, SHA-256 and name of both files.
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import time
import uuid
import zipfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent
# What is packed: origin, files, folder in the package.
CONTENTS = [
    ("build", "bin/BeaconOLKAdapter.dll", "."),
    ("build", "bin/BeaconMapiProp.dll", "."),
    ("build", "bin/beacon-check.exe", "."),
    ("sources", "CHANGELOG.md", "."),
    ("sources", "LICENSE", "."),
    ("sources", "docs/install.md", "docs"),
    ("sources", "docs/settings.md", "docs"),
    ("sources", "docs/toolbar.md", "docs"),
    ("sources", "docs/protocol.md", "docs"),
    ("sources", "docs/security.md", "docs"),
    ("sources", "contracts/*.idl", "contracts"),
    ("sources", "contracts/platform/*.idl", "contracts/platform"),
    ("build", "contracts/*.tlb", "contracts"),
    ("sources", "examples/README.md", "examples"),
    ("sources", "examples/*.vbs", "examples"),
    ("sources", "examples/smallest_engine/*.cpp", "examples/smallest_engine"),
    ("build", "bin/smallest_engine.exe", "examples"),
    ("build", "contracts/beacon_util.tlb", "examples"),  # the example needs it in its folder
]
TEXTS = {"", ".md", ".idl", ".vbs", ".cpp"}
# The COM servers, which have rows in beacon.wxs: the property before their keys there, and their type libraries.
SERVERS = {
    "BeaconOLKAdapter.dll": ("", "beacon_olk_adapter.idl"),
    "BeaconMapiProp.dll": ("[OTHERREADER]", "mapi_prop.idl"),
}
NAMES = uuid.UUID("F5DA6BEB-1BAC-44E2-8CA0-DB3F4B362691")  # never change it: other identifiers are derived from it


def identifier(*words):
    return str(uuid.uuid5(NAMES, " ".join(map(str, words)))).upper()


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)
    if done.returncode != 0 or done.stderr:  # wixl only warns of most mistakes
        sys.exit(f"package: {command[0]}: {done.stderr}")
    return done.stdout


def version_of_build(build):
    return re.search("^CMAKE_PROJECT_VERSION:STATIC=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE)[1]


def version_of_file(file):
    """The version in the resources of a program or DLL, such as "1.0.0.0"; None if it has none."""
    found = re.search(rb"\xbd\x04\xef\xfe\0\0\x01\0(.{8})", file.read_bytes(), re.DOTALL)
    return found and ".".join(str(int.from_bytes(found[1][i : i + 2], "little")) for i in (2, 0, 6, 4))


def time_of_sources():
    return int(os.environ.get("SOURCE_DATE_EPOCH") or run("git", "-C", ROOT, "log", "-1", "--format=%ct"))


def stage(build, folder, seconds):
    """Copies what is packed. Texts get CRLF line ends, and all files the same time."""
    for origin, pattern, target in CONTENTS:
        files = list((build if origin == "build" else ROOT).glob(pattern))
        if not files:
            sys.exit(f"package: {pattern} is missing in the {origin}")
        (folder / target).mkdir(parents=True, exist_ok=True)
        for file in files:
            data = file.read_bytes()
            if file.suffix in TEXTS:
                data = data.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")
            copy = folder / target / file.name
            copy.write_bytes(data)
            copy.chmod(0o644)
            os.utime(copy, (seconds, seconds))


def place_text(name, version, bits, folder, seconds):
    """Copies a text of this folder with version and bitness filled in."""
    text = (HERE / name).read_text().replace("@VERSION@", version).replace("@BITS@", str(bits))
    (folder / name).write_text(text, newline="\r\n")
    (folder / name).chmod(0o644)
    os.utime(folder / name, (seconds, seconds))


def library_rows(idl, dll, bits):
    """What RegisterTypeLib writes below Software\\Classes: registry view (32 or 64), key, name and text of each row.
    Interfaces are registered for both bitnesses if the installer can."""
    text = (ROOT / "contracts" / idl).read_text()
    library = re.search(r'\[uuid\((.*)\), version\((.*)\), helpstring\("(.*)"\)\]\s*library ', text)
    key = rf"TypeLib\{{{library[1]}}}\{library[2]}"
    yield bits, rf"{key}\0\win{bits}", "", f"[#{dll}]"
    yield bits, key, "", library[3]
    yield bits, rf"{key}\FLAGS", "", "0"
    yield bits, rf"{key}\HELPDIR", "", "[INSTALLDIR]"
    for interface in re.finditer(r"\buuid\(([-0-9A-F]+)\)[^;{]*?\]\s*(dispinterface|interface) (\w+)", text):
        stub = (
            "00020420" if interface[2] == "dispinterface" else "00020424"
        )  # the system's stubs for dispinterfaces and for dual interfaces
        key = rf"Interface\{{{interface[1]}}}"
        for view in {bits, 32}:
            yield view, key, "", interface[3]
            yield view, rf"{key}\ProxyStubClsid", "", f"{{{stub}-0000-0000-C000-000000000046}}"
            yield view, rf"{key}\ProxyStubClsid32", "", f"{{{stub}-0000-0000-C000-000000000046}}"
            yield view, rf"{key}\TypeLib", "", f"{{{library[1]}}}"
            yield view, rf"{key}\TypeLib", "Version", library[2]


def fragment(group, folders, components):
    """A source of wixl with folders (parent, identifier, name) and a group of components (folder, identifier, registry
    view, GUID, content)."""
    text = "".join(
        f'<DirectoryRef Id="{parent}"><Directory Id="{folder}" Name="{name}"/></DirectoryRef>'
        for parent, folder, name in folders
    )
    for folder, key, view, guid, content in components:
        attributes = f'Id="{key}" Guid="{guid}" Win64="{"yes" if view == 64 else "no"}"'
        text += f'<DirectoryRef Id="{folder}"><Component {attributes}>{content}</Component></DirectoryRef>'
    text += f'<ComponentGroup Id="{group}">'
    text += "".join(f'<ComponentRef Id="{key}"/>' for _, key, *_ in components)
    return f'<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi"><Fragment>{text}</ComponentGroup></Fragment></Wix>'


def libraries(bits):
    """The components of the type libraries, one for each library and registry view."""
    components = []
    for dll, (before, idl) in SERVERS.items():
        for view in sorted({bits, 32}):
            rows = [row for row in library_rows(idl, dll, bits) if row[0] == view]
            content = ""
            for _, key, name, text in rows:
                attributes = f'Key="{before}Software\\Classes\\{key}" Value="{text}"'
                attributes += (f' Name="{name}"' if name else "") + (' KeyPath="yes"' if not content else "")
                content += f'<RegistryValue Root="HKLM" Type="string" {attributes}/>'
            key = f"{Path(dll).stem}.Library{view}"
            components.append(("INSTALLDIR", key, view, identifier(key, bits), content))
    return fragment("Libraries", [], components)


def file_key(name):
    """The identifier of a file or folder. Servers have their file names."""
    return name if name in SERVERS else "INSTALLDIR" if name == "." else re.sub(r"\W", "_", name)


def files(folder, bits):
    """The components of files, one for each that beacon.wxs does not list."""
    folders, components = [], []
    for path in sorted(folder.rglob("*")):
        name = path.relative_to(folder)
        key, parent = file_key(str(name)), file_key(str(name.parent))
        if path.is_dir():
            folders.append((parent, key, name.name))
        elif path.name not in SERVERS:
            content = f'<File Id="{key}" Source="stage/{name}" KeyPath="yes"/>'
            components.append((parent, key, bits, identifier(name, bits), content))
    return fragment("Files", folders, components)


def amendments(folder):
    """SQL for what wixl cannot express. Without a version in the table, an upgrade would keep the old program."""
    lines = (HERE / "amendments.sql").read_text().splitlines()
    yield from (line for line in lines if not line.startswith("--"))
    for file in sorted(folder.glob("*")):
        version = version_of_file(file) if file.suffix in (".dll", ".exe") else None
        if version:
            key = file_key(file.name)
            yield f"UPDATE `File` SET `Version`='{version}', `Language`='1033' WHERE `File`='{key}'"
            yield f"DELETE FROM `MsiFileHash` WHERE `File_`='{key}'"


def make_msi(bits, version, work, out, seconds):
    """Makes the installer from work/stage. wixl needs paths relative to the working folder."""
    folder = work / "stage"
    (work / "files.wxs").write_text(files(folder, bits))
    (work / "libraries.wxs").write_text(libraries(bits))
    shutil.copy(HERE / "beacon.wxs", work)
    product = identifier("product", version, bits)
    *numbers, patch = version.split(".")
    following = ".".join([*numbers, str(int(patch) + 1)])  # wixl has no inclusive maximum of versions
    variables = {"Bits": bits, "Version": version, "NextVersion": following, "ProductCode": product}
    defines = [word for name, value in variables.items() for word in ("-D", f"{name}={value}")]
    run("wixl", "--arch", f"x{86 if bits == 32 else 64}", *defines, "-o", out.resolve(),
        "beacon.wxs", "libraries.wxs", "files.wxs", cwd=work)  # fmt: skip

    # wixl uses the time of day and a random package code. The code must differ exactly if the content does.
    statements = list(amendments(folder))
    content = hashlib.sha256(str([variables, statements, seconds]).encode())
    for file in sorted(file for file in work.rglob("*") if file.is_file()):
        content.update(file.read_bytes())
    summary = run("msiinfo", "export", out, "_SummaryInformation")
    summary = re.sub(r"(?m)^9\t.*$", f"9\t{{{identifier('package', content.hexdigest())}}}", summary)
    moment = time.strftime("%Y/%m/%d %H:%M:%S", time.gmtime(seconds))
    (work / "summary.idt").write_text(re.sub(r"(?m)^(1[23])\t.*$", rf"\1\t{moment}", summary))
    run("msibuild", out, "-i", work / "summary.idt")
    for statement in statements:
        run("msibuild", out, "-q", statement)


def make_zip(bits, version, folder, out, seconds):
    place_text("INSTALL.txt", version, bits, folder, seconds)
    with zipfile.ZipFile(out, "w") as archive:
        for file in sorted(file for file in folder.rglob("*") if file.is_file()):
            entry = zipfile.ZipInfo(str(file.relative_to(folder)), time.gmtime(seconds)[:6])
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, file.read_bytes(), zipfile.ZIP_DEFLATED)


def main(bits, build, out, version=None):
    os.environ["TZ"] = "UTC"
    bits, build, out = int(bits), Path(build), Path(out)
    version = version or version_of_build(build)
    seconds = time_of_sources()
    name = f"beacon-outlook-adapter-{version}-x{86 if bits == 32 else 64}"
    work = out / name
    shutil.rmtree(work, ignore_errors=True)
    stage(build, work / "stage", seconds)
    place_text("README.txt", version, bits, work / "stage", seconds)
    msi, archive = out / f"{name}.msi", out / f"{name}.zip"
    make_msi(bits, version, work, msi, seconds)
    make_zip(bits, version, work / "stage", archive, seconds)
    shutil.rmtree(work)
    for file in msi, archive:
        print(f"{file.stat().st_size:>8} {hashlib.sha256(file.read_bytes()).hexdigest()} {file.name}")


if __name__ == "__main__":
    if len(sys.argv) not in (4, 5):
        sys.exit(__doc__)
    main(*sys.argv[1:])
