"""Checks whether the packages in a folder can be released: release.py [OUT].

Without OUT it checks the changelog, before anything is built.

Ends with status 1 unless CMakeLists.txt, the newest entry of the changelog, the programs and the installers name one
version. Otherwise prints the remaining steps.
"""

import re
import sys
from pathlib import Path

from package import CONTENTS, ROOT, run, version_of_file


def changelog_problems(version):
    newest = re.search(r"^## \[(.*)\] - (.*)$", (ROOT / "CHANGELOG.md").read_text(), re.MULTILINE)
    if newest[1] != version:
        yield f"the newest entry of CHANGELOG.md is {newest[1]}"
    if not re.fullmatch(r"\d{4}-\d\d-\d\d", newest[2]):
        yield f"the newest entry of CHANGELOG.md has '{newest[2]}' instead of a date"


def package_problems(version, out):
    for machine in "x64", "x86":
        for origin, pattern, folder in CONTENTS:
            file = ROOT / "build" / machine / pattern
            if (origin, folder) == ("build", ".") and version_of_file(file) != f"{version}.0":
                yield f"{file} has version {version_of_file(file)}"
        msi = out / f"beacon-outlook-adapter-{version}-{machine}.msi"
        if f"ProductVersion\t{version}\n" not in run("msiinfo", "export", msi, "Property"):
            yield f"{msi} has another version"


def main(out=None):
    version = re.search(r"^project\(.* VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
    found = list(package_problems(version, Path(out)) if out else changelog_problems(version))
    for problem in found:
        print(f"release: CMakeLists.txt has version {version}, but {problem}", file=sys.stderr)
    if out and not found:
        print(f"To release: git tag -a v{version} -m 'Version {version}', push it, and publish the files in {out}.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
