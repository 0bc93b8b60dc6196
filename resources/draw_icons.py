#!/usr/bin/env python3
"""Draws the button icons of this folder: name.png (16 x 16) and name@2x.png (32 x 32).

Only needed to change an icon; the build uses the PNG files. Needs nothing but Python itself.
Every shape is a test "is this point inside?" on a grid of 16 x 16 units, sampled 16 x 16 times per pixel.
Straight edges lie on whole units, so they stay crisp at both sizes.
"""
import math
import pathlib
import struct
import zlib

UNITS = 16
SAMPLES = 16
INK = (0x2F, 0x4F, 0x6F)


def arrow_up(x, y):
    head = 2 <= y < 9 and abs(x - 8) <= y - 2
    shaft = 9 <= y < 14 and abs(x - 8) <= 2
    return head or shaft


def ring(x, y, outer, width):
    return outer - width <= math.hypot(x - 8, y - 8) <= outer


def bar(along, across, half_length):
    return abs(along - 8) <= half_length and abs(across - 8) <= 1


def larger(x, y):
    return ring(x, y, 7, 2) or bar(x, y, 3) or bar(y, x, 3)


def smaller(x, y):
    return ring(x, y, 5, 2) or bar(x, y, 2)


SHAPES = {
    "up": arrow_up,
    "down": lambda x, y: arrow_up(x, UNITS - y),
    "left": lambda x, y: arrow_up(y, x),
    "right": lambda x, y: arrow_up(y, UNITS - x),
    "large": larger,
    "small": smaller,
}


def coverage(inside, column, row, pixels):
    step = UNITS / (pixels * SAMPLES)
    hits = sum(
        inside((column * SAMPLES + i + 0.5) * step, (row * SAMPLES + j + 0.5) * step)
        for j in range(SAMPLES)
        for i in range(SAMPLES)
    )
    return round(255 * hits / SAMPLES**2)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(inside, pixels):
    rows = b"".join(
        b"\0" + b"".join(bytes((*INK, coverage(inside, x, y, pixels))) for x in range(pixels))
        for y in range(pixels)
    )
    header = struct.pack(">IIBBBBB", pixels, pixels, 8, 6, 0, 0, 0)
    return (
        b"\x89PNG\r\n\x1a\n"
        + chunk(b"IHDR", header)
        + chunk(b"IDAT", zlib.compress(rows, 9))
        + chunk(b"IEND", b"")
    )


if __name__ == "__main__":
    folder = pathlib.Path(__file__).resolve().parent
    for name, shape in SHAPES.items():
        (folder / f"{name}.png").write_bytes(png(shape, 16))
        (folder / f"{name}@2x.png").write_bytes(png(shape, 32))
