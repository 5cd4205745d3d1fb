"""Rules for the sources that need no compiler: which folder may include which, and how long lines and files may be.

check_sources.py FILE...: prints what breaks a rule; status 1 if anything does. scripts/lint passes all files.
"""

import os
import re
import sys

# The folders of src/, lowest first: a folder includes its own headers and those of lower levels.
LEVELS = {
    "com": 1, "support": 2, "property_reader": 3, "extract": 3, "engine": 3, "toolbar": 4, "observe": 5, "addin": 6,
    "check": 7,
}  # fmt: skip
MOST_LINES = 400
MOST_COLUMNS = 120
# Pages tell how things are, not how they came to be so.
PAGE = re.compile(r".*\.md|packaging/.*\.txt")
HISTORY = re.compile(
    r"\b(mended|anew|last (run|figures)|since then|was fixed|used to|until now|so far|formerly)\b", re.I
)
INCLUDE = re.compile(r'^#include (["<])([^">]+)[">]')


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def includes_of(name, known):
    """Yields for each include: line number, the name as written, and the file of this tree or None."""
    for number, line in enumerate(read(name).splitlines(), 1):
        if match := INCLUDE.match(line):
            places = [os.path.dirname(name), "src", "standins", ""] if match[1] == '"' else []
            paths = (os.path.normpath(os.path.join(place, match[2])) for place in places)
            yield number, match[2], next((path for path in paths if path in known), None)


def check_order(includes):
    """Includes in src/ go one way; stand-ins and their tests use nothing of it but com/."""
    for name, found in includes.items():
        folder = os.path.dirname(name)
        for line, _, file in found:
            target = os.path.dirname(file or "")
            if not target.startswith("src/") or target == folder:
                continue
            if name.startswith(("standins/", "tests/standins/")) and target != "src/com":
                yield f"{name}:{line}: stand-ins use only com/ of the adapter, not {file}"
            level = LEVELS.get(folder.removeprefix("src/"))
            if level and LEVELS[target.removeprefix("src/")] >= level:
                yield f"{name}:{line}: {folder} must not include {target}"


def check_text_rules(includes):
    """The text rules, and all that they include, use no Windows header. Those end with .h."""
    listed = re.findall(r"CMAKE_CURRENT_LIST_DIR}/(\S+\.cpp)", read("src/text_rules.cmake"))
    waiting = [f"src/{name}" for name in listed]
    seen = set(waiting)
    for name in waiting:
        for line, written, file in includes[name]:
            if file is None and written.endswith(".h"):
                yield f"{name}:{line}: a text rule includes <{written}>"
            elif file is not None and file not in seen:
                seen.add(file)
                waiting.append(file)


def check_lengths(names):
    for name in names:
        if not name.endswith((".cpp", ".h", ".py", ".md", ".idl", ".cmake", "CMakeLists.txt")):
            continue
        lines = read(name).splitlines()
        if len(lines) > MOST_LINES:
            yield f"{name} has {len(lines)} lines; at most {MOST_LINES} are allowed"
        if name.endswith((".cpp", ".h", ".idl")):
            continue  # clang-format limits the columns, and keeps a long literal in one piece
        fenced = False
        for number, line in enumerate(lines, 1):
            fenced ^= name.endswith(".md") and line.startswith("```")
            if name.endswith(".md") and (fenced or line.startswith(("|", "    "))):
                continue  # tables and verbatim text cannot be wrapped
            if len(line) > MOST_COLUMNS:
                yield f"{name}:{number}: {len(line)} columns; at most {MOST_COLUMNS} are allowed"


def check_history(names):
    for name in filter(PAGE.fullmatch, names):
        for number, line in enumerate(read(name).splitlines(), 1):
            if word := HISTORY.search(line):
                yield f'{name}:{number}: "{word[0]}": pages describe the present'


def main(names):
    known = set(names)
    includes = {name: list(includes_of(name, known)) for name in names if name.endswith((".cpp", ".h"))}
    findings = [*check_order(includes), *check_text_rules(includes), *check_lengths(names), *check_history(names)]
    for finding in findings:
        print(f"lint: {finding}")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main([name for name in sys.argv[1:] if os.path.isfile(name)]))
