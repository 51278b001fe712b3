#!/usr/bin/env python3
"""Makes the two data files that the library embeds: make_embedded_data.py design|icon FILE"""
import os
import struct
import sys
import zlib

DESIGN_SIZE = 7_963_963
ICON_SIZE = 4_676
ICON_EDGE = 32


def design_image():
    """A stand-in with the design's exact size: a readable first line, then incompressible bytes."""
    head = b"Grab_TwinLaneLineColor.tsl stand-in for the virtual board\n"
    state, body = 0x2545F491, bytearray(head)
    block = bytearray()
    for _ in range(4096):
        state = (state * 1103515245 + 12345) & 0x7FFFFFFF
        block.append(state >> 16 & 0xFF)
    while len(body) < DESIGN_SIZE:
        body += block
    return bytes(body[:DESIGN_SIZE])


def icon_pixel(x, y):
    """Two lanes of a red, green and blue line scan on a dark, rounded tile."""
    corner_x, corner_y = min(x, ICON_EDGE - 1 - x), min(y, ICON_EDGE - 1 - y)
    if corner_x + corner_y < 3:
        return (0, 0, 0, 0)
    for left in (6, 18):
        if left <= x < left + 8 and 4 <= y < 28:
            shade = 255 - 4 * (y - 4)
            return [(shade, 60, 60, 255), (60, shade, 60, 255), (60, 90, shade, 255)][(y - 4) // 2 % 3]
    return (34, 40, 49, 255)


def png_chunk(name, data):
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def icon():
    rows = b"".join(b"\0" + bytes(c for x in range(ICON_EDGE) for c in icon_pixel(x, y)) for y in range(ICON_EDGE))
    head = b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", struct.pack(">IIBBBBB", ICON_EDGE, ICON_EDGE, 8, 6, 0, 0, 0))
    tail = png_chunk(b"IDAT", zlib.compress(rows, 0)) + png_chunk(b"IEND", b"")
    # The applet's icon has a fixed size; a comment pads the picture to it.
    comment = b"Comment\0Grab_TwinLaneLineColor applet icon"
    comment = comment.ljust(ICON_SIZE - len(head) - len(tail) - 12, b" ")
    picture = head + png_chunk(b"tEXt", comment) + tail
    assert len(picture) == ICON_SIZE, len(picture)
    return picture


def main():
    makers = {"design": design_image, "icon": icon}
    if len(sys.argv) != 3 or sys.argv[1] not in makers:
        sys.exit(__doc__)
    os.makedirs(os.path.dirname(os.path.abspath(sys.argv[2])), exist_ok=True)
    with open(sys.argv[2], "wb") as file:
        file.write(makers[sys.argv[1]]())


main()
