"""Packages of what was built, and their installation into the Wine prefix of the test."""

import pytest

from packages import h, make


@pytest.fixture(scope="module")
def packages(tmp_path_factory):
    return make(tmp_path_factory.mktemp("packages"))


@pytest.fixture
def install(packages, machine):
    """Installs a package, by default this version's, with properties. Removes it at the end of the test."""
    installed = []

    def run(*properties, msi=packages[0], check=True):
        code, _ = machine.run("msiexec.exe", "/i", h.windows_path(msi), "/qn", *properties, check=check)
        if code == 0:
            installed[:] = [msi]
        return code

    yield run
    for msi in installed:
        machine.run("msiexec.exe", "/x", h.windows_path(msi), "/qn", check=False)
