#!/usr/bin/env python3
"""Names the classes and enumerators without documentation, which doxygen's own warnings pass over:
undocumented.py FOLDER_OF_XML"""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def is_told(element) -> bool:
    texts = (element.find(kind) for kind in ("briefdescription", "detaileddescription"))
    return any(text is not None and "".join(text.itertext()).strip() for text in texts)


def place(element) -> str:
    location = element.find("location")
    return f"{location.get('file')}:{location.get('line')}"


def undocumented(folder: pathlib.Path):
    for path in sorted(folder.glob("*.xml")):
        for compound in ElementTree.parse(path).getroot().iter("compounddef"):
            if compound.get("kind") in ("class", "struct", "union") and compound.get("prot") == "public":
                if not is_told(compound):
                    yield f"{place(compound)}: {compound.findtext('compoundname')} is not documented"
            if compound.get("kind") == "file":
                continue  # tells again what the namespace tells
            for member in compound.iter("memberdef"):
                for value in member.findall("enumvalue"):
                    if member.get("prot") == "public" and not is_told(value):
                        yield f"{place(member)}: the enumerator {value.findtext('name')} is not documented"


def main() -> int:
    found = list(undocumented(pathlib.Path(sys.argv[1])))
    for fault in found:
        print(fault, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
