#!/usr/bin/env python3
"""Checks that a library keeps no state: none of its objects has memory that may be written to and outlives a call.

The argument is the static library, built without sanitizers and without coverage, which keep counters in it. Constants
that are made, or whose addresses are put right, when the library is loaded stand in memory that is writable until then:
their names tell that they are constants."""

import re
import subprocess
import sys

CONSTANT = re.compile(r"(^|::)k[A-Z]\w*$")
# objdump -t: address, flags in seven columns, section, size, name.
SYMBOL = re.compile(r"^[0-9a-f]{16} .{6}. (?P<section>\S+)\s+(?P<size>[0-9a-f]{16})\s+(?:\.hidden )?(?P<name>.+)$")
WRITABLE = re.compile(r"^\.(t?bss|t?data|COM)|^\*COM\*")


def faults(table: str):
    file = ""
    for line in table.splitlines():
        if ":     file format " in line:
            file = line.split(":")[0]
        match = SYMBOL.match(line)
        if not match or not WRITABLE.match(match["section"]) or int(match["size"], 16) == 0:
            continue
        # Tables of virtual functions, and what finds the handlers of exceptions.
        if match["section"].startswith(".data.rel.ro") or match["name"].startswith("DW.ref."):
            continue
        if CONSTANT.search(match["name"]):
            continue
        yield f"{file}: {match['name']} is kept in {match['section']} between calls"


def main() -> int:
    table = subprocess.run(["objdump", "-t", "-C", sys.argv[1]], check=True, capture_output=True, text=True).stdout
    if "SYMBOL TABLE" not in table:
        sys.exit(f"{sys.argv[1]} has no symbols to look at")
    found = list(faults(table))
    print("\n".join(found) if found else "no state")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
