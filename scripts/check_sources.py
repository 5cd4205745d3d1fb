"""Rules of the house that need no compiler: which folder may include which, and how long lines and files may be.

check_sources.py FILE...: prints what breaks a rule; 1 when anything does. Called by scripts/lint with all files.
"""

import itertools
import os
import re
import sys

# The folders of src/, lowest first: a folder includes its own headers and those of lower levels.
LEVELS = {
    "com": 1, "support": 2, "property_reader": 3, "extract": 3, "engine": 3, "toolbar": 4, "observe": 5, "addin": 6,
    "check": 7,
}  # fmt: skip
# What a folder of sources is as a library.
LIBRARIES = {f"src/{folder}": f"beacon_{folder}" for folder in LEVELS} | {
    "standins/common": "standin_common",
    "standins/engine": "standin_engine_parts",
    "standins/faults": "standin_faults",
    "standins/outlook/bars": "standin_bars",
    "standins/outlook/panes": "standin_panes",
}
for part in ("", "/commands", "/object_model", "/observation", "/program"):
    LIBRARIES[f"standins/outlook{part}"] = "standin_outlook_parts"
MOST_LINES = 400
MOST_COLUMNS = 120
ONE_COMPILERS = re.compile(
    r"\b__(attribute__|builtin_\w+|declspec|CRT_UUID_DECL|mingw\w*|MINGW\w*|typeof__|extension__|gnu_cxx|cxxabiv1)"
    r"|#pragma (GCC|clang|warning)|<(unistd|strings|cxxabi|sys/\w+|bits/[\w/+.]+)\.h>"
    r"|\b(ssize_t|strn?casecmp|_ReturnAddress)\b"
)
COMPILER = re.compile(r"_MSC_VER|__GNUC__|__GLIBCXX__|__clang__")
INCLUDE = re.compile(r'^#include (["<])([^">]+)[">]')


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class Sources:
    """C++ files and what they include of each other."""

    def __init__(self, names):
        self.names = sorted(name for name in names if name.endswith((".cpp", ".h")))
        known = set(names)
        self.includes = {}  # of each file: line, whether quoted, name as written, file of the tree or None
        self.doubtful = []
        for name in self.names:
            found = []
            for number, line in enumerate(read(name).splitlines(), 1):
                match = INCLUDE.match(line)
                if match:
                    quoted, written = match.group(1) == '"', match.group(2)
                    places = [os.path.dirname(name), "src", "standins", ""] if quoted else []
                    paths = {os.path.normpath(os.path.join(place, written)): None for place in places}
                    files = [path for path in paths if path in known]
                    found.append((number, quoted, written, next(iter(files), None)))
                    if len(files) > 1:
                        self.doubtful.append(f"{name}:{number}: {written} may be {' or '.join(files)}")
            self.includes[name] = found

    def libraries_included(self, library):
        """The other libraries whose headers the sources of this one include."""
        own = [name for name in self.names if LIBRARIES.get(os.path.dirname(name)) == library]
        files = [file for name in own for *_, file in self.includes[name] if file]
        return {LIBRARIES.get(os.path.dirname(file), library) for file in files} - {library}


def check_order(sources):
    """src goes one way; stand-ins and their tests know com/ alone of it."""
    for name in sources.names:
        folder = os.path.dirname(name)
        for line, _, _, file in sources.includes[name]:
            target = os.path.dirname(file or "")
            if not target.startswith("src/"):
                continue
            if name.startswith(("standins/", "tests/standins/")) and target != "src/com":
                yield f"{name}:{line}: stand-ins know only com/ of the adapter, not {file}"
            if folder.startswith("src/") and folder != target:
                if LEVELS[os.path.basename(target)] >= LEVELS[os.path.basename(folder)]:
                    yield f"{name}:{line}: {folder} must not include {target}"


def check_text_rules(sources):
    """The rules of text, and all that they include, are without Windows, whose headers end with .h."""
    listed = re.findall(r"CMAKE_CURRENT_LIST_DIR}/(\S+\.cpp)", read("src/text_rules.cmake"))
    waiting = [f"src/{name}" for name in listed]
    seen = set(waiting)
    for name in waiting:
        for line, quoted, written, file in sources.includes[name]:
            if file is None and (quoted or written.endswith(".h")):
                yield f"{name}:{line}: a rule of text includes <{written}>"
            elif file is not None and file not in seen:
                seen.add(file)
                waiting.append(file)


def links_of(cmake_lists):
    """Of each library in these lists: the libraries that it names."""
    links = {}
    for name in cmake_lists:
        for command, words in re.findall(r"(target_link_libraries|beacon_library)\(([^)]*)\)", read(name)):
            library, *rest = words.split()
            if command == "beacon_library":
                rest = rest[1:]
            links.setdefault(library, set()).update(rest)
    return links


def check_links(sources, names):
    """A library links what its folder includes: names nothing else, and reaches all of it."""
    links = links_of(name for name in names if re.match(r"(src|standins)/(.*/)?CMakeLists\.txt$", name))

    def reached(library):
        direct = links.get(library, set())
        return direct.union(*map(reached, direct))

    ours = set(LIBRARIES.values())
    for library in sorted(ours):
        included = sources.libraries_included(library)
        for other in sorted(links.get(library, set()) & ours - included):
            yield f"{library} links {other}, but includes nothing of it"
        for other in sorted(included - reached(library)):
            yield f"{library} includes headers of {other}, but does not link it"


def check_compilers(sources):
    """What only one compiler knows stands behind a condition that names it."""
    for name in sources.names:
        conditions = []
        for number, line in enumerate(read(name).splitlines(), 1):
            directive = re.match(r"\s*#\s*(ifn?def|if|elif|else|endif)\b(.*)", line)
            if directive and directive[1].startswith("if"):
                conditions.append(directive[2])
            elif directive and directive[1] == "endif":
                conditions.pop()
            found = ONE_COMPILERS.search(line.partition("//")[0])
            if found and not any(COMPILER.search(condition) for condition in conditions):
                yield f"{name}:{number}: {found[0]} is known to one compiler only"


def check_lengths(names):
    for name in names:
        if not name.endswith((".cpp", ".h", ".py", ".md", ".idl", ".cmake", "CMakeLists.txt")):
            continue
        lines = read(name).splitlines()
        if len(lines) > MOST_LINES:
            yield f"{name} has {len(lines)} lines; {MOST_LINES} are the most"
        if name.endswith((".cpp", ".h", ".idl")):
            continue  # clang-format keeps the sources narrow, and lets a long literal stand
        fenced = False
        for number, line in enumerate(lines, 1):
            if name.endswith(".md"):
                fenced ^= line.startswith("```")
                if fenced or line.startswith(("|", "    ")):
                    continue  # tables and verbatim text cannot be wrapped
            if len(line) > MOST_COLUMNS:
                yield f"{name}:{number}: {len(line)} columns; {MOST_COLUMNS} are the most"


def main(names):
    sources = Sources(names)
    failed = 0
    checks = [sources.doubtful, check_order(sources), check_text_rules(sources)]
    checks += [check_compilers(sources), check_links(sources, names), check_lengths(names)]
    for complaint in itertools.chain(*checks):
        print(f"lint: {complaint}")
        failed = 1
    return failed


if __name__ == "__main__":
    sys.exit(main([name for name in sys.argv[1:] if os.path.isfile(name)]))
