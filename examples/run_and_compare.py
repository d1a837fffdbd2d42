#!/usr/bin/env python3
"""Runs a program and compares what it prints with a file: run_and_compare.py EXPECTED PROGRAM [ARGUMENT...]"""

import difflib
import pathlib
import subprocess
import sys


def main() -> int:
    expected_file, *command = sys.argv[1:]
    expected = pathlib.Path(expected_file).read_text(encoding="utf-8")
    run = subprocess.run(command, capture_output=True, encoding="utf-8", timeout=120, check=False)
    sys.stderr.write(run.stderr)
    differences = list(
        difflib.unified_diff(expected.splitlines(True), run.stdout.splitlines(True), expected_file, "printed"))
    sys.stderr.writelines(differences)
    return 1 if differences or run.returncode != 0 else 0


if __name__ == "__main__":
    sys.exit(main())
