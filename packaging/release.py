"""Whether what was built and packed can be released: release.py OUT, the folder with the packages.

Complains, with status 1, unless CMake, the newest entry of the changelog, the programs, and the installers name one
version; otherwise says what is left to do.
"""

import re
import sys
from pathlib import Path

from package import CONTENTS, ROOT, run, version_of_build, version_of_file


def complaints(out):
    version = version_of_build(ROOT / "build/x64")
    newest = re.search(r"^## \[(.*)\] - (.*)$", (ROOT / "CHANGELOG.md").read_text(), re.MULTILINE)
    if newest[1] != version:
        yield f"the newest entry of CHANGELOG.md is {newest[1]}"
    if not re.fullmatch(r"\d{4}-\d\d-\d\d", newest[2]):
        yield f"the newest entry of CHANGELOG.md is of '{newest[2]}', which is no day"
    for machine in "x64", "x86":
        for origin, pattern, folder in CONTENTS:
            file = ROOT / "build" / machine / pattern
            if (origin, folder) == ("build", ".") and version_of_file(file) != f"{version}.0":
                yield f"{file} is of version {version_of_file(file)}"
        msi = out / f"beacon-outlook-adapter-{version}-{machine}.msi"
        if f"ProductVersion\t{version}\n" not in run("msiinfo", "export", msi, "Property"):
            yield f"{msi} is of another version"


def main(out):
    version = version_of_build(ROOT / "build/x64")
    found = list(complaints(Path(out)))
    for complaint in found:
        print(f"release: CMake says {version}, but {complaint}", file=sys.stderr)
    if found:
        return 1
    print(f"To release: git tag -a v{version} -m 'Version {version}', push it, and publish what is in {out}.")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
