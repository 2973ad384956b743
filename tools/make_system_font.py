#!/usr/bin/env python3
"""Makes the system font's table from a console font of 8 by 16 pixels (PSF version 1, gzipped).

    make_system_font.py FONT.psf.gz TABLE.inc

TABLE.inc gets one row for each character that the font's Unicode table names alone (not only as part of a sequence), in
ascending order: {code, {19 row bytes}}.
"""

import gzip
import struct
import sys

# The firmware's cell is 19 rows high. One empty row above and two below centre the letters in it as firmware fonts do.
ROWS_ABOVE = 1
ROWS = 16
ROWS_BELOW = 2

HAS_512_GLYPHS = 0x01
HAS_UNICODE_TABLE = 0x02 | 0x04
BEGINS_SEQUENCE = 0xFFFE
ENDS_GLYPH = 0xFFFF


def read_font(path):
    """The bitmaps of the font at path by character code."""
    with gzip.open(path) as file:
        data = file.read()
    if data[:2] != b"\x36\x04":
        raise ValueError("not a PSF font of version 1")
    mode, size = data[2], data[3]
    if size != ROWS or not mode & HAS_UNICODE_TABLE:
        raise ValueError("not a font of 8 by 16 pixels with a Unicode table")
    count = 512 if mode & HAS_512_GLYPHS else 256
    place = 4 + count * size
    glyphs = {}
    for index in range(count):
        bitmap = data[4 + index * size : 4 + (index + 1) * size]
        in_sequence = False
        while True:
            (code,) = struct.unpack_from("<H", data, place)
            place += 2
            if code == ENDS_GLYPH:
                break
            if code == BEGINS_SEQUENCE:
                in_sequence = True
            elif not in_sequence:
                glyphs.setdefault(code, bitmap)
    return glyphs


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    try:
        glyphs = read_font(sys.argv[1])
    except (OSError, ValueError, struct.error) as error:
        sys.exit(f"{sys.argv[1]}: {error}")
    needed = [*range(0x20, 0x7F), *range(0xA0, 0x100)]
    missing = [f"U+{code:04X}" for code in needed if code not in glyphs]
    if missing:
        sys.exit(f"{sys.argv[1]}: no glyph for {' '.join(missing)}")
    with open(sys.argv[2], "w", encoding="ascii") as file:
        for code in sorted(glyphs):
            rows = bytes(ROWS_ABOVE) + glyphs[code] + bytes(ROWS_BELOW)
            file.write(f"{{0x{code:04X}, {{{', '.join(f'0x{row:02X}' for row in rows)}}}}},\n")


main()
