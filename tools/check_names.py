#!/usr/bin/env python3
"""Checks that a name in an anonymous namespace stands once among the sources that are compiled as one.

Presets join the sources of a folder. A helper of one source would then hide, without a word from the compiler, a function
of the same name that another source of the folder means."""

import collections
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ["src/*", "apps/*", "fuzz", "tests/*"]

# Sources of engines, and of platforms, are compiled apart from the others of their folder.
APART = re.compile(r"^(sqlite|postgresql|odbc|mariadb)_|_(windows|portable)\.")
NAME = re.compile(
    r"(?:(?:inline|constexpr|static) )*"
    r"(?:(?:struct|class|enum class) (?:TALM_FLOW_API )?(?P<type>\w+)[^;]*$"
    r"|(?:const |constexpr )?(?!return|using|namespace|template|TEST|INSTANTIATE|struct|class|enum)[A-Za-z_][\w:<>,&* ]*?[ &*]"
    r"(?:(?P<function>\w+)\((?!.*\);$)|(?P<constant>k[A-Z]\w*)\b))")


def names(path: pathlib.Path) -> tuple[set[str], set[str]]:
    """The names at the outermost level of a file: those in anonymous namespaces, and the others."""
    hidden: set[str] = set()
    shown: set[str] = set()
    inside = False
    for line in path.read_text(encoding="utf-8").splitlines():
        if line == "namespace {":
            inside = True
        elif line == "}  // namespace":
            inside = False
        elif match := NAME.match(line.removeprefix("[[nodiscard]] ")):
            (hidden if inside else shown).add(match["type"] or match["function"] or match["constant"])
    return hidden, shown


def problems(folder: pathlib.Path) -> list[str]:
    groups = collections.defaultdict(list)
    for path in sorted(folder.glob("*.cpp")):
        apart = APART.search(path.name)
        groups[apart[0] if apart else ""].append(path)
    headers = {path: names(path)[1] for path in sorted(folder.glob("*.h"))}
    found = []
    for paths in groups.values():
        places = collections.defaultdict(list)
        shown = collections.defaultdict(list)
        for path in paths:
            for name in names(path)[0]:
                places[name].append(path)
            for name in names(path)[1]:
                shown[name].append(path)
        for path, declared in headers.items():
            for name in declared:
                shown[name].append(path)
        for name, where in sorted(places.items()):
            others = [path for path in where[1:] + shown.get(name, []) if path != where[0]]
            found += [f"{where[0].relative_to(ROOT)}: {name} stands in {other.relative_to(ROOT)} too" for other in others]
    return found


def main() -> int:
    folders = [folder for pattern in FOLDERS for folder in sorted(ROOT.glob(pattern)) if folder.is_dir()]
    found = [problem for folder in folders for problem in problems(folder)]
    print("\n".join(found) if found else f"{len(folders)} folders: no name twice")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
