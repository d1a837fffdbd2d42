#!/usr/bin/env python3
"""Checks that what the documents show is what the project holds: quoted files and snippets, links, make targets, the
version, and the documents that sources and headers send their readers to, and the tests that documents name."""

import pathlib
import re
import sys
import textwrap

ROOT = pathlib.Path(__file__).resolve().parent.parent
DOCUMENTS = sorted([*ROOT.glob("*.md"), *(ROOT / "docs").glob("*.md")])

# A fenced block that follows a line such as <!-- file: examples/first_flow/main.cpp --> holds that file whole.
QUOTED = re.compile(r"<!-- file: (\S+) -->\n```\w*\n(.*?)```\n", re.S)
# A fenced block that follows <!-- snippet: examples/own_host/desk.cpp timers --> holds the lines of that file between
# "// snippet: timers" and "// snippet end".
SNIPPET_MARK = re.compile(r"<!-- snippet: .*? -->\n")
SNIPPET = re.compile(r"<!-- snippet: (\S+) (\w+) -->\n```\w*\n(.*?)```\n", re.S)
LINK = re.compile(r"\[[^\]]+\]\(([^)#\s]+)(?:#[^)]*)?\)")
# A document named in a comment or a message of a source.
NAMED = re.compile(r"\bdocs/[a-z_]+\.md\b")
# A test that a document names: `SuiteTest.ItsSentence`.
NAMED_TEST = re.compile(r"`([A-Z]\w*Test\.[A-Z]\w*)`")
TEST = re.compile(r"^TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)", re.M)
TARGET = re.compile(r"\bmake ([a-z][a-z-]*)\b")


def snippet(source: pathlib.Path, name: str):
    """The lines of a snippet without their common indentation, or None when the source has none of that name."""
    if not source.is_file():
        return None
    found = re.search(rf"^[ ]*// snippet: {name}\n(.*?)^[ ]*// snippet end\n", source.read_text(encoding="utf-8"),
                      re.S | re.M)
    return textwrap.dedent(found.group(1)) if found else None


def snippet_faults(name, text):
    quoted = SNIPPET.findall(text)
    if len(quoted) != len(SNIPPET_MARK.findall(text)):
        yield f"{name}: a snippet is named, and no block follows"
    for path, snippet_name, block in quoted:
        lines = snippet(ROOT / path, snippet_name)
        if lines is None:
            yield f"{name}: quotes the snippet {snippet_name} of {path}, which does not exist"
        elif lines != block:
            yield f"{name}: the snippet {snippet_name} differs from {path}"


def faults():
    targets = set(re.findall(r"^([a-z-]+):.*##", (ROOT / "Makefile").read_text(encoding="utf-8"), re.M))
    for document in DOCUMENTS:
        text = document.read_text(encoding="utf-8")
        name = document.relative_to(ROOT)
        for path, block in QUOTED.findall(text):
            source = ROOT / path
            if not source.is_file():
                yield f"{name}: quotes {path}, which does not exist"
            elif source.read_text(encoding="utf-8") != block:
                yield f"{name}: the block quoted from {path} differs from the file"
        yield from snippet_faults(name, text)
        for link in LINK.findall(text):
            if "://" not in link and not (document.parent / link).exists():
                yield f"{name}: links to {link}, which does not exist"
        for code in re.findall(r"`([^`\n]+)`", text) + re.findall(r"```\w*\n(.*?)```", text, re.S):
            for target in TARGET.findall(code):
                if target not in targets:
                    yield f"{name}: shows make {target}, which the Makefile lacks"


def version_faults():
    """The version is told where the build reads it; whatever tells it again must agree."""
    build = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    version = re.search(r"^project\(TALM_Flow VERSION ([0-9.]+) ", build, re.M).group(1)
    newest = re.search(r"^## (\S+)", (ROOT / "CHANGELOG.md").read_text(encoding="utf-8"), re.M).group(1).rstrip(",")
    if newest != version:
        yield f"CHANGELOG.md: the newest version is {newest}, in CMakeLists.txt it is {version}"


def named_tests():
    known = set()
    for source in (ROOT / "tests").rglob("*_test.cpp"):
        known.update(".".join(test) for test in TEST.findall(source.read_text(encoding="utf-8")))
    for document in DOCUMENTS:
        text = document.read_text(encoding="utf-8")
        for test in NAMED_TEST.findall(text):
            if test not in known:
                yield f"{document.relative_to(ROOT)}: names the test {test}, which does not exist"
    limits = (ROOT / "docs/limits.md").read_text(encoding="utf-8")
    for row in re.findall(r"^\| (?!What )[^|]+\|.*$", limits, re.M):
        if not NAMED_TEST.search(row):
            yield f"docs/limits.md: no test shows {row}"


def dead_ends():
    for top in ("include", "src", "apps", "bench", "tests"):
        for source in sorted((ROOT / top).rglob("*")):
            if source.suffix not in (".h", ".cpp"):
                continue
            for document in NAMED.findall(source.read_text(encoding="utf-8")):
                if not (ROOT / document).is_file():
                    yield f"{source.relative_to(ROOT)}: sends its reader to {document}, which does not exist"


def main() -> int:
    found = [*faults(), *version_faults(), *dead_ends(), *named_tests()]
    for fault in found:
        print(fault, file=sys.stderr)
    print(f"{len(DOCUMENTS)} documents read")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
