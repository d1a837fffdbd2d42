#!/usr/bin/env python3
"""Writes src/db/case_table.h from what the machine's libutf8proc knows of the cases of characters."""

import ctypes
import ctypes.util
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent
SHARP_S = 0xDF


def ranges(mapping):
    """Runs of characters at even distances that are all mapped by the same difference: first, last, step, difference."""
    found = []
    for character, mapped in mapping:
        difference = mapped - character
        if found:
            first, last, step, known = found[-1]
            gap = character - last
            if known == difference and gap <= 2 and (step == gap or first == last):
                found[-1] = (first, character, gap, known)
                continue
        found.append((character, character, 1, difference))
    return found


def table(name, rows):
    lines = [f"inline constexpr CaseRange {name}[] = {{"]
    lines += [f"    {{0x{first:04X}, 0x{last:04X}, {step}, {difference}}}," for first, last, step, difference in rows]
    return "\n".join(lines + ["};"])


def main():
    library = ctypes.CDLL(ctypes.util.find_library("utf8proc"))
    library.utf8proc_unicode_version.restype = ctypes.c_char_p
    beyond_ascii = range(0x80, 0x110000)
    lower = [(c, library.utf8proc_tolower(c)) for c in beyond_ascii]
    upper = [(c, library.utf8proc_toupper(c)) for c in beyond_ascii if c != SHARP_S]
    target = ROOT / "src/db/case_table.h"
    target.write_text(f"""#pragma once

/// The one-to-one case mapping of all characters beyond ASCII; written by tools/case_table.py, not by hand.
///
/// The sharp s has no entry: the standard's one-to-one mapping leaves it as it is.

#include <cstdint>

namespace talm_flow {{

/// The characters first, first + step ... last are each mapped to the one `difference` further on.
struct CaseRange {{
  std::uint32_t first;
  std::uint32_t last;
  std::uint32_t step;
  std::int32_t difference;
}};

/// The version of the character standard that the tables follow.
inline constexpr char kCaseTableVersion[] = "{library.utf8proc_unicode_version().decode()}";

// In ascending order, as the search needs them.
{table("kToLower", ranges([pair for pair in lower if pair[0] != pair[1]]))}

{table("kToUpper", ranges([pair for pair in upper if pair[0] != pair[1]]))}

}}  // namespace talm_flow
""", encoding="utf-8")
    subprocess.run(["clang-format", "-i", target], check=True)


if __name__ == "__main__":
    main()
