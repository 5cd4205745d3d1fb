"""The pages: links and commands are valid, and tables match the sources.

A fenced block that begins with "```sh run" is run in a copy of the sources.
"""

import os
import re
import shutil
import subprocess
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
FOLDERS = sorted(path.name for path in ROOT.iterdir() if path.is_dir() and path.name not in ("build", ".git"))
PAGES = sorted(page for folder in ["", *FOLDERS] for page in (ROOT / folder).glob("**/*.md" if folder else "*.md"))
FENCED = re.compile(r"^```(.*?)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def prose(page):
    return FENCED.sub("", page.read_text(encoding="utf-8"))


def anchors(page):
    """The anchors of the headings, as the usual viewers make them."""
    titles = re.findall(r"^#+ +(.*?) *$", prose(page), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}


def is_there(place):
    """A path of the clone; it may be a pattern."""
    path = os.path.normpath(place)
    return not path.startswith("..") and any(ROOT.glob(path))


@pytest.mark.parametrize("page", PAGES, ids=lambda page: str(page.relative_to(ROOT)))
def test_what_a_page_points_to_is_there(page):
    text = prose(page)
    lost = []
    for target in re.findall(r"\]\(([^)\s]+)\)", text):
        path, _, anchor = target.partition("#")
        if re.match(r"\w+:", target):
            continue
        goal = page.parent / path if path else page
        if not is_there(goal.relative_to(ROOT)) or (anchor and anchor not in anchors(goal)):
            lost.append(target)
    ours = "|".join(map(re.escape, ["..", *FOLDERS]))
    lost += [path for path in re.findall(rf"`((?:{ours})/[^`\s<]*)", text) if not is_there(path)]
    commands = subprocess.run([ROOT / "dev"], stdout=subprocess.PIPE, text=True, check=True).stdout
    for command in re.findall(r"\./dev +([\w-]+)", page.read_text(encoding="utf-8")):
        if not re.search(rf"^ +{command}\b", commands, re.MULTILINE):
            lost.append(f"./dev {command}")
    if page.name == "DEVELOPERS.md":  # the only page that may name files outside the clone
        lost = [path for path in lost if not path.startswith("../")]
    assert lost == []


def runnable():
    for page in PAGES:
        for number, block in enumerate(FENCED.finditer(page.read_text(encoding="utf-8")), 1):
            if block[1].split() == ["sh", "run"]:
                yield pytest.param(block[2], id=f"{page.relative_to(ROOT)}:{number}")


@pytest.fixture(name="copy", scope="module")
def fixture_copy(tmp_path_factory):
    copy = tmp_path_factory.mktemp("clone") / "sources"
    shutil.copytree(ROOT, copy, ignore=shutil.ignore_patterns("build", ".git"))
    (copy / "build").mkdir()
    return copy


@pytest.mark.parametrize("commands", runnable())
def test_commands_do_as_they_stand(commands, copy):
    environment = {"PATH": "/usr/bin:/bin", "HOME": str(copy.parent)}
    bash = ["bash", "-euo", "pipefail", "-c", commands]
    done = subprocess.run(bash, cwd=copy, timeout=60, env=environment, stdin=subprocess.DEVNULL, capture_output=True)
    assert done.returncode == 0, done.stderr.decode()


def test_findings_of_beacon_check_are_documented():
    source = (ROOT / "src/check/finding_texts.h").read_text(encoding="utf-8")
    page = (ROOT / "docs/install.md").read_text(encoding="utf-8")
    identifier = "([a-z]+(?:-[a-z]+)+)"
    assert set(re.findall(f'"{identifier}"', source)) == set(re.findall(f"`{identifier}`", page))


def test_settings_are_documented():
    names = re.findall(r'k\w+\[\] = L"(\w[\w ]*)";', (ROOT / "src/support/settings.h").read_text(encoding="utf-8"))
    page = (ROOT / "docs/settings.md").read_text(encoding="utf-8")
    assert len(names) > 8 and [name for name in names if f"`{name}`" not in page] == ["Beacon Toolbar"]
