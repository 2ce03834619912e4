#!/usr/bin/env python3
"""Writes src/compound/upper_case_table.inc: Unicode's simple upper-case mappings of the Basic
Multilingual Plane, as a two-stage table of 256 pages of 256 UTF-16 units. Pages without a mapping
share page 0, the identity is stored as a difference of 0."""

import sys
import unicodedata


def simple_upper(unit):
    # str.upper() gives the full mapping; the simple one is the full one where that has one unit.
    # Letters with a longer one may have a simple one as well, the same as their title case.
    upper = chr(unit).upper()
    if len(upper) != 1:
        upper = chr(unit).title()
    if len(upper) != 1 or ord(upper) > 0xFFFF or unicodedata.category(chr(unit)) == "Cs":
        return unit
    return ord(upper)


def main(path):
    pages = [tuple([0] * 256)]
    index = []
    for high in range(256):
        page = tuple((simple_upper(high * 256 + low) - (high * 256 + low)) & 0xFFFF
                     for low in range(256))
        if page not in pages:
            pages.append(page)
        index.append(pages.index(page))
    with open(path, "w", encoding="ascii") as out:
        out.write("// Made by tools/make_upper_case.py from Unicode %s.\n" % unicodedata.unidata_version)
        out.write("constexpr std::array<std::uint8_t, 256> kPageOf = {\n")
        for start in range(0, 256, 16):
            out.write("    " + " ".join("%d," % n for n in index[start:start + 16]) + "\n")
        out.write("};\nconstexpr std::array<std::array<char16_t, 256>, %d> kDifference = {{\n" % len(pages))
        for page in pages:
            out.write("    {{\n")
            for start in range(0, 256, 12):
                out.write("        " + " ".join("%d," % n for n in page[start:start + 12]) + "\n")
            out.write("    }},\n")
        out.write("}};\n")


main(sys.argv[1])
