#!/usr/bin/env python3
"""Checks that includes between the folders point one way, and that driver headers stay in their rooms."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What a folder of src/ may include of the others. The public headers are open to all.
ALLOWED = {
    "db": {"db"},
    "expr": {"db", "expr"},
    "design": {"db", "expr", "design"},
    "engine": {"db", "expr", "design", "engine"},
    "commands": {"db", "expr", "design", "engine", "commands"},
    "check": {"db", "expr", "design", "engine", "commands", "check"},
    "host": {"host"},
    "adapters": {"adapters", "db/schema.h"},
    "late_bound": {"late_bound"},
    "component": {"component"},
}
# The component itself knows no adapter and no reference host.
PURE = {"db", "expr", "design", "engine", "commands", "check"}
FORBIDDEN_IN_PURE = ("talm_flow/adapters/", "talm_flow/host/reference_host.h", "talm_flow/late_bound.h")
DRIVER_HEADERS = re.compile(r"(sqlite3|libpq-fe|sql|sqlext)\.h$")

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')


def faults(path: pathlib.Path):
    relative = path.relative_to(ROOT)
    room = relative.parts[1] if relative.parts[0] == "src" else None
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        name = match.group(1)
        folder = name.split("/")[0]
        where = f"{relative}:{number}"
        if DRIVER_HEADERS.search(name) and room != "adapters" and relative.parts[0] not in ("bench", "fuzz"):
            yield f"{where}: the driver header {name} belongs to src/adapters only"
        if room is None:
            if relative.parts[0] in ("apps", "examples", "include") and folder in ALLOWED and "/" in name:
                yield f"{where}: {relative.parts[0]} uses public headers only, not {name}"
            continue
        if folder in ALLOWED and folder not in ALLOWED[room] and name not in ALLOWED[room]:
            yield f"{where}: {room} must not use {name}"
        if room in PURE and name.startswith(FORBIDDEN_IN_PURE):
            yield f"{where}: the component must not know {name}"
    if room in PURE and re.search(r"\bcatch\s*\(", path.read_text(encoding="utf-8")):
        yield f"{relative}: the component catches no error"


def main() -> int:
    found = []
    for top in ("include", "src", "apps", "examples", "bench", "fuzz"):
        for path in sorted((ROOT / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                found.extend(faults(path))
    for fault in found:
        print(fault, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
