#!/usr/bin/env python3
"""Draws the title page's picture of tiles, a PNG with an alpha channel, to the path given."""
import math
import struct
import sys
import zlib

WIDTH, HEIGHT, SIDE = 900, 360, 60
PALETTE = [(31, 78, 121), (58, 116, 164), (112, 160, 200), (222, 134, 52), (176, 202, 224)]


def tile_of(x, y):
    """Column, row and half (upper or lower triangle) of the tile under a pixel."""
    height = SIDE * math.sqrt(3) / 2
    row = int(y // height)
    across = (x + (SIDE / 2 if row % 2 else 0)) / SIDE
    rise = (y - row * height) / height
    column = int(across)
    inside = across - column
    if inside < rise / 2:
        return 2 * column - 1, row
    if inside > 1 - rise / 2:
        return 2 * column + 1, row
    return 2 * column, row


def pixel(x, y):
    column, row = tile_of(x, y)
    hashed = (column * 73 + row * 151 + column * row * 7) % 17
    colour = PALETTE[hashed % len(PALETTE)]
    shade = 0.92 + 0.08 * ((hashed * 5) % 7) / 6
    fade = max(0.0, min(1.0, 1.25 - x / WIDTH - 0.35 * y / HEIGHT))
    return bytes(int(part * shade) for part in colour) + bytes([int(255 * fade)])


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


rows = b"".join(b"\0" + b"".join(pixel(x, y) for x in range(WIDTH)) for y in range(HEIGHT))
header = struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 6, 0, 0, 0)
with open(sys.argv[1], "wb") as file:
    file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))
