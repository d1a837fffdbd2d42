#!/usr/bin/env python3
"""Parses what the component handed to its connections as the dialect that its texts are in, T-SQL.

    parse_statements.py FOLDER FILE...

The files of FOLDER are those that the test programs wrote (tests/support/recording_connection.h). Each text that a
database took is parsed once a shape, by the grammar of sqlfluff. The status is 1 when

- a text does not parse, or holds another number of statements than one; it is told with the test that it came from;
- a file is missing or holds no text, so that part of the tests wrote nothing down;
- no text of an operation is there that is expected to have some, or no operation is expected at all.

Texts that no database took (a test handed over a broken number) are counted only: an engine told what is wrong.
"""

import json
import os
import sys
from pathlib import Path

# Debian's interpreter has the package; another one that comes first on the PATH may not have it.
SYSTEM_PYTHON = "/usr/bin/python3"

try:
    from sqlfluff.core import FluffConfig, Lexer, Parser
    from sqlfluff.core.errors import SQLBaseError
except ImportError:
    if sys.executable != SYSTEM_PYTHON and os.access(SYSTEM_PYTHON, os.X_OK):
        os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, *sys.argv])
    sys.exit("parse_statements.py needs Python's sqlfluff; `tools/setup test` installs it")


class Dialect:
    """The grammar of T-SQL."""

    def __init__(self):
        self.config = FluffConfig(overrides={"dialect": "tsql"})

    def fault_of(self, text):
        """What is wrong with a text; None when it is one statement."""
        try:
            tokens, errors = Lexer(config=self.config).lex(text)
            tree = Parser(config=self.config).parse(tokens)
        except SQLBaseError as error:
            return error.desc()
        if errors:
            return errors[0].desc()
        if tree is None:
            return "there is no statement"
        for part in tree.recursive_crawl("unparsable"):
            return f"no T-SQL at: {part.raw}"
        statements = sum(1 for _ in tree.recursive_crawl("statement", recurse_into=False))
        return None if statements == 1 else f"{statements} statements"


class Collection:
    """What the files of a folder hold."""

    def __init__(self):
        self.expected = set()  # operations
        self.operations = set()  # that statements were seen of
        self.texts = {}  # by shape: a text that a database took, and the test it came from
        self.refused = {}  # the same of texts that no database took
        self.faults = []

    def read(self, folder, name):
        try:
            lines = (folder / name).read_text(encoding="utf-8", errors="replace").splitlines()
        except OSError as error:
            self.faults.append(f"{name}: {error.strerror}: {error.filename}")
            return
        ran = 0
        for line in lines:
            entry = json.loads(line)
            if "expected" in entry:
                self.expected.add(entry["expected"])
                continue
            kept = self.texts if entry["ran"] else self.refused
            kept.setdefault(entry["shape"], (entry["text"], f"{name}: {entry['place']}"))
            if entry["ran"]:
                ran += 1
                self.operations.add(entry["operation"])
        if ran == 0:
            self.faults.append(f"{name}: holds no statement")

    def incompleteness(self):
        if not self.expected:
            yield "no operation is expected to have statements: the file that tells them is not among those read"
        for operation in sorted(self.expected - self.operations):
            yield f"{operation}: no statement of it was seen"


def main(folder, names):
    collection = Collection()
    for name in names:
        collection.read(Path(folder), name)
    faults = [*collection.faults, *collection.incompleteness()]
    dialect = Dialect()
    for text, place in collection.texts.values():
        fault = dialect.fault_of(text)
        if fault:
            faults.append(f"{place}\n  {text}\n  {fault}")
    for fault in faults:
        print(fault)
    refused = len(collection.refused.keys() - collection.texts.keys())
    print(
        f"{len(collection.texts)} shapes of statements from {len(names)} files, {len(collection.expected)} operations;"
        f" {refused} more shapes were refused by every database; {len(faults)} faults"
    )
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit("usage: parse_statements.py FOLDER FILE...")
    sys.exit(main(sys.argv[1], sys.argv[2:]))
