#!/usr/bin/env python3
"""Checks that what the documents show is what the project holds: quoted files, links and make targets, and the
documents that sources and headers send their readers to."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
DOCUMENTS = sorted([*ROOT.glob("*.md"), *(ROOT / "docs").glob("*.md")])

# A fenced block that follows a line such as <!-- file: examples/first_flow/main.cpp --> holds that file whole.
QUOTED = re.compile(r"<!-- file: (\S+) -->\n```\w*\n(.*?)```\n", re.S)
LINK = re.compile(r"\[[^\]]+\]\(([^)#\s]+)(?:#[^)]*)?\)")
# A document named in a comment or a message of a source.
NAMED = re.compile(r"\bdocs/[a-z_]+\.md\b")
TARGET = re.compile(r"\bmake ([a-z][a-z-]*)\b")


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
        for link in LINK.findall(text):
            if "://" not in link and not (document.parent / link).exists():
                yield f"{name}: links to {link}, which does not exist"
        for code in re.findall(r"`([^`\n]+)`", text) + re.findall(r"```\w*\n(.*?)```", text, re.S):
            for target in TARGET.findall(code):
                if target not in targets:
                    yield f"{name}: shows make {target}, which the Makefile lacks"


def dead_ends():
    for top in ("include", "src", "apps", "bench", "tests"):
        for source in sorted((ROOT / top).rglob("*")):
            if source.suffix not in (".h", ".cpp"):
                continue
            for document in NAMED.findall(source.read_text(encoding="utf-8")):
                if not (ROOT / document).is_file():
                    yield f"{source.relative_to(ROOT)}: sends its reader to {document}, which does not exist"


def main() -> int:
    found = [*faults(), *dead_ends()]
    for fault in found:
        print(fault, file=sys.stderr)
    print(f"{len(DOCUMENTS)} documents read")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
