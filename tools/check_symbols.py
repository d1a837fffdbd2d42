#!/usr/bin/env python3
"""Checks that a shared library shows what the public headers declare, all of it and nothing else. What they declare is
asked of clang, with the names that linkers know."""

import argparse
import json
import pathlib
import subprocess
import sys
import tempfile

FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl"}
# A constructor or destructor has one name a variant.
VARIANTS = {"C1E": ("C1E", "C2E"), "D1E": ("D0E", "D1E", "D2E")}


class Declared:
    """What headers declare: names that must be shown, and names that may."""

    def __init__(self):
        self.required = set()
        self.allowed = set()

    def add_function(self, node):
        name = node.get("mangledName")
        if not name or node.get("explicitlyDeleted"):
            return
        names = {name}
        for one, all_of_them in VARIANTS.items():
            if node["kind"] in ("CXXConstructorDecl", "CXXDestructorDecl") and one in name:
                names = {name.replace(one, variant, 1) for variant in all_of_them}
        self.allowed |= names
        defined_here = any(child["kind"] == "CompoundStmt" for child in node.get("inner", []))
        inline = defined_here or node.get("inline") or node.get("isImplicit") or node.get("explicitlyDefaulted")
        if not inline and not node.get("pure"):
            self.required.add(name)

    def add_class(self, node, scope):
        """Types of errors must be known by all, or nobody catches them."""
        nested = "".join(f"{len(part)}{part}" for part in [*scope, node["name"]])
        kinds = {kind: f"_ZT{kind}N{nested}E" for kind in "VIS"}
        self.allowed |= set(kinds.values())
        bases = [base["type"]["qualType"] for base in node.get("bases", [])]
        if any(base.endswith("Error") or base.endswith("runtime_error") for base in bases):
            self.required |= {kinds["I"], kinds["S"], kinds["V"]}

    def add(self, node, scope=()):
        kind = node.get("kind")
        if kind in FUNCTIONS:
            self.add_function(node)
        if kind == "CXXRecordDecl" and node.get("completeDefinition") and node.get("name") and scope:
            self.add_class(node, scope)
        if kind in ("NamespaceDecl", "LinkageSpecDecl", "TranslationUnitDecl", "CXXRecordDecl"):
            inside = [*scope, node["name"]] if node.get("name") else scope
            for child in node.get("inner", []):
                self.add(child, inside)


def parsed(folder: pathlib.Path, source: str, arguments):
    with tempfile.NamedTemporaryFile("w", suffix=".cpp", encoding="utf-8") as file:
        file.write(source)
        file.flush()
        text = subprocess.run(["clang++", "-std=c++20", f"-I{folder}", "-fsyntax-only", "-Xclang", "-ast-dump=json",
                               *arguments, file.name], capture_output=True, check=True, encoding="utf-8").stdout
    decoder = json.JSONDecoder()
    position = 0
    while text[position:].strip():
        position += len(text[position:]) - len(text[position:].lstrip())
        node, position = decoder.raw_decode(text, position)
        yield node


def declared(folder: pathlib.Path, namespace: str, c_header: str, c_functions) -> Declared:
    """`c_functions` chooses by name from the plain C header."""
    found = Declared()
    if namespace:
        headers = sorted(header.relative_to(folder) for header in folder.rglob("*.h"))
        everything = "".join(f'#include "{header}"\n' for header in headers)
        for node in parsed(folder, everything, ["-Xclang", f"-ast-dump-filter={namespace}"]):
            found.add(node)
    if c_header:
        (unit,) = parsed(folder, f'#include "{c_header}"\n', [])
        everything = Declared()
        everything.add(unit)
        found.required |= {name for name in everything.required if c_functions(name)}
    found.allowed |= found.required
    return found


def shown(library: pathlib.Path):
    lines = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, check=True,
                           encoding="utf-8").stdout.splitlines()
    return {line.split()[-1].split("@")[0] for line in lines if " A " not in line}


def readable(names):
    return subprocess.run(["c++filt"], input="\n".join(sorted(names)), capture_output=True, check=True,
                          encoding="utf-8").stdout.splitlines()


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("library", type=pathlib.Path)
    parser.add_argument("headers", type=pathlib.Path, help="the folder of all public headers")
    parser.add_argument("--namespace", default="", help="everything of this namespace is shown")
    parser.add_argument("--c-header", default="", help="functions of this header are shown ...")
    parser.add_argument("--c-only", default="", help="... those that begin like this")
    parser.add_argument("--c-without", action="append", default=[], help="... but for this one")
    given = parser.parse_args()

    public = declared(given.headers, given.namespace, given.c_header,
                      lambda name: name.startswith(given.c_only) and name not in given.c_without)
    there = shown(given.library)
    missing, extra = public.required - there, there - public.allowed
    for name in readable(missing):
        print(f"{given.library.name}: {name} is declared and not shown", file=sys.stderr)
    for name in readable(extra):
        print(f"{given.library.name}: {name} is shown and in no public header", file=sys.stderr)
    print(f"{given.library.name}: {len(there)} symbols shown, {len(public.required)} must be")
    return 1 if missing or extra or not public.required else 0


if __name__ == "__main__":
    sys.exit(main())
