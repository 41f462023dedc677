#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Draws the backup window's animation strip (bitmap 1720): 24 frames of 60 x 36 pixels side by side,
two tape reels turning 15 degrees a frame with the tape running between them. The background is the
key colour RGB(0, 191, 191), which the window draws transparent; nothing is anti-aliased, so no pixel
is a blend of the key and a drawn colour.

    scripts/draw-backup-strip.py vexasens/res/bitmap1720.png
"""
import math
import struct
import sys
import zlib

FRAMES, WIDTH, HEIGHT = 24, 60, 36
KEY = (0, 191, 191)
RIM = (64, 64, 72)
BODY = (200, 200, 208)
HOLE = KEY  # the window's background shows through the reel's holes
TAPE = (96, 56, 24)
HUB = (32, 32, 40)


def reel(pixels, left, cx, cy, radius, angle):
    """One reel: rim, body, three holes at `angle`, a hub."""
    for y in range(HEIGHT):
        for x in range(WIDTH):
            dx, dy = x + 0.5 - cx, y + 0.5 - cy
            r = math.hypot(dx, dy)
            if r > radius:
                continue
            colour = RIM if r > radius - 1.6 else BODY
            if r < radius * 0.28:
                colour = HUB
            elif radius * 0.38 < r < radius * 0.78:
                a = math.atan2(dy, dx) - angle
                if math.cos(3 * a) > 0.55:
                    colour = HOLE
            pixels[y][left + x] = colour


def tape(pixels, left, x0, y0, x1, y1):
    """The tape between the reels: a line two pixels thick."""
    for x in range(x0, x1 + 1):
        y = round(y0 + (y1 - y0) * (x - x0) / (x1 - x0))
        pixels[y][left + x] = TAPE
        pixels[y + 1][left + x] = TAPE


def draw():
    pixels = [[KEY] * (WIDTH * FRAMES) for _ in range(HEIGHT)]
    for frame in range(FRAMES):
        left = frame * WIDTH
        angle = math.radians(15 * frame)
        tape(pixels, left, 16, 2, 46, 6)
        tape(pixels, left, 16, 32, 46, 28)
        reel(pixels, left, 16, 18, 15.5, angle)
        reel(pixels, left, 46, 18, 11.5, -angle * 15.5 / 11.5)
    return pixels


def png(pixels):
    raw = b"".join(b"\0" + bytes(c for px in row for c in px) for row in pixels)

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", len(pixels[0]), len(pixels), 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


if __name__ == "__main__":
    with open(sys.argv[1], "wb") as out:
        out.write(png(draw()))
