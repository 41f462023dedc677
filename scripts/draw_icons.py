#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Draws the module's icons (the file manager's buttons and the tools) as PNG files at 16 and 32 pixels,
and the studio's application icon at the desktop's sizes (16 to 256 pixels) and as SVG.

Each icon is a list of shapes in a 32 x 32 design space; every size is rendered from it with 4 x 4
samples per pixel, so the small one is a true reduction rather than a scaled bitmap, and the SVG
draws the same shapes. Run it from the repository root after changing a drawing; the files it
writes are committed.
"""
import math
import os
import struct
import sys
import zlib

SAMPLES = 4
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
OUT = os.path.join(ROOT, "vexasens", "res", "icons")
APP_OUT = os.path.join(ROOT, "packaging", "icons")
APP_ID = "org.vexasens.VexaStudio"
APP_SIZES = (16, 22, 24, 32, 48, 64, 128, 256)


def rgba(hex_colour, alpha=255):
    value = int(hex_colour.lstrip("#"), 16)
    return ((value >> 16) & 255, (value >> 8) & 255, value & 255, alpha)


def svg_paint(colour, attribute="fill"):
    text = '%s="#%02x%02x%02x"' % ((attribute,) + colour[:3])
    if colour[3] != 255:
        text += ' %s-opacity="%.3g"' % (attribute, colour[3] / 255.0)
    return text


def svg_points(points):
    return " ".join("%.4g,%.4g" % point for point in points)


# ---- shapes: each is (inside(x, y) -> bool, colour, SVG element) in design units ----

def circle(cx, cy, r, colour):
    return (lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r, colour,
            '<circle cx="%g" cy="%g" r="%g" %s/>' % (cx, cy, r, svg_paint(colour)))


def ring(cx, cy, r, width, colour):
    inner, outer = (r - width / 2) ** 2, (r + width / 2) ** 2
    return (lambda x, y: inner <= (x - cx) ** 2 + (y - cy) ** 2 <= outer, colour,
            '<circle cx="%g" cy="%g" r="%g" fill="none" stroke-width="%g" %s/>'
            % (cx, cy, r, width, svg_paint(colour, "stroke")))


def rect(x0, y0, x1, y1, colour, radius=0.0):
    def inside(x, y):
        if not (x0 <= x <= x1 and y0 <= y <= y1):
            return False
        dx = max(x0 + radius - x, 0, x - (x1 - radius))
        dy = max(y0 + radius - y, 0, y - (y1 - radius))
        return dx * dx + dy * dy <= radius * radius
    return (inside, colour, '<rect x="%g" y="%g" width="%g" height="%g" rx="%g" %s/>'
            % (x0, y0, x1 - x0, y1 - y0, radius, svg_paint(colour)))


def polygon(points, colour):
    def inside(x, y):
        crossing = False
        j = len(points) - 1
        for i, (xi, yi) in enumerate(points):
            xj, yj = points[j]
            if (yi > y) != (yj > y) and x < (xj - xi) * (y - yi) / (yj - yi) + xi:
                crossing = not crossing
            j = i
        return crossing
    return (inside, colour, '<polygon points="%s" %s/>' % (svg_points(points), svg_paint(colour)))


def line(points, width, colour):
    half = width / 2

    def near(x, y, a, b):
        (ax, ay), (bx, by) = a, b
        dx, dy = bx - ax, by - ay
        length = dx * dx + dy * dy
        t = 0 if length == 0 else max(0, min(1, ((x - ax) * dx + (y - ay) * dy) / length))
        px, py = ax + t * dx, ay + t * dy
        return (x - px) ** 2 + (y - py) ** 2 <= half * half

    return (lambda x, y: any(near(x, y, points[i], points[i + 1]) for i in range(len(points) - 1)), colour,
            '<polyline points="%s" fill="none" stroke-width="%g" stroke-linecap="round" '
            'stroke-linejoin="round" %s/>' % (svg_points(points), width, svg_paint(colour, "stroke")))


# ---- shared parts ----

FOLDER = "#e9b949"
FOLDER_EDGE = "#a7761a"
PAPER = "#fbfbf8"
PAPER_EDGE = "#6f7780"
GREEN = "#2e8b3a"
BLUE = "#1f66b5"
RED = "#c8352b"
SLATE = "#4b5963"


def folder():
    return [
        polygon([(2, 8), (12, 8), (14, 11), (30, 11), (30, 27), (2, 27)], rgba(FOLDER_EDGE)),
        polygon([(3.2, 9.2), (11.4, 9.2), (13.4, 12.2), (28.8, 12.2), (28.8, 25.8), (3.2, 25.8)], rgba(FOLDER)),
        rect(3.2, 14, 28.8, 15.2, rgba("#f4d486")),
    ]


def page(x0, y0, x1, y1):
    return [rect(x0, y0, x1, y1, rgba(PAPER_EDGE), 1.5), rect(x0 + 1.1, y0 + 1.1, x1 - 1.1, y1 - 1.1, rgba(PAPER), 1)]


def gear(cx, cy, r, teeth, colour):
    points = []
    for i in range(teeth * 4):
        angle = 2 * math.pi * i / (teeth * 4)
        radius = r if (i % 4) in (0, 1) else r * 0.74
        points.append((cx + radius * math.cos(angle), cy + radius * math.sin(angle)))
    return polygon(points, colour)


def peaks(x0, x1, base, heights, colour, width=1.6):
    points = [(x0, base)]
    step = (x1 - x0) / (len(heights) * 2)
    x = x0
    for h in heights:
        points += [(x + step * 0.6, base), (x + step, base - h), (x + step * 1.4, base)]
        x += 2 * step
    points.append((x1, base))
    return line(points, width, colour)


# ---- the icons, by resource id ----

ICONS = {
    # Up one folder: a folder with an arrow pointing up.
    1705: folder() + [
        line([(16, 24), (16, 15)], 3.2, rgba(GREEN)),
        polygon([(10, 17), (16, 10), (22, 17)], rgba(GREEN)),
    ],
    # New folder: a folder with a bright star of lines.
    1706: folder() + [
        line([(23, 2), (23, 14)], 2.6, rgba(GREEN)),
        line([(17, 8), (29, 8)], 2.6, rgba(GREEN)),
        circle(23, 8, 2.2, rgba("#ffffff")),
    ],
    # Data review: a chromatogram on a sheet, with a magnifier.
    1707: page(3, 2, 25, 29) + [
        line([(6, 24), (22, 24)], 1.2, rgba(SLATE)),
        peaks(6, 22, 24, [6, 15, 4, 10], rgba(BLUE)),
        ring(23, 21, 5, 2.2, rgba(SLATE)),
        circle(23, 21, 3.9, rgba("#cfe3f5", 200)),
        line([(26.5, 24.5), (30, 28.5)], 3, rgba(SLATE)),
    ],
    # Run method: a play button.
    1708: [
        circle(16, 16, 14, rgba("#1e6b2a")),
        circle(16, 16, 12.6, rgba(GREEN)),
        polygon([(12, 8.5), (24, 16), (12, 23.5)], rgba("#ffffff")),
    ],
    # Manage files: a workstation sheet and an instrument sheet with arrows between them.
    1709: page(1, 3, 13, 19) + page(19, 13, 31, 29) + [
        line([(4, 8), (10, 8)], 1.2, rgba(SLATE)),
        line([(4, 11), (10, 11)], 1.2, rgba(SLATE)),
        line([(22, 18), (28, 18)], 1.2, rgba(SLATE)),
        line([(22, 21), (28, 21)], 1.2, rgba(SLATE)),
        line([(12, 24), (17, 24)], 2.4, rgba(BLUE)),
        polygon([(16, 20.5), (20, 24), (16, 27.5)], rgba(BLUE)),
        line([(15, 8), (20, 8)], 2.4, rgba(GREEN)),
        polygon([(16, 4.5), (12, 8), (16, 11.5)], rgba(GREEN)),
    ],
    # Method editor: a method sheet and a pencil.
    1711: page(3, 2, 23, 29) + [
        line([(6, 8), (19, 8)], 1.4, rgba(SLATE)),
        line([(6, 12), (19, 12)], 1.4, rgba(SLATE)),
        line([(6, 16), (15, 16)], 1.4, rgba(SLATE)),
        polygon([(27, 9), (31, 13), (17, 27), (13, 28), (14, 23)], rgba("#8a5a12")),
        polygon([(27.6, 9.6), (30.4, 12.4), (17, 25.8), (14.6, 26.6), (15.2, 23.6)], rgba("#f0a830")),
        polygon([(13, 28), (14, 23), (17, 27)], rgba("#3a3a3a")),
    ],
    # Service module: a gear with a hub.
    1714: [
        gear(16, 16, 14.5, 9, rgba("#3b454d")),
        gear(16, 16, 13.2, 9, rgba("#8f9ba5")),
        circle(16, 16, 5, rgba("#3b454d")),
        circle(16, 16, 3.4, rgba("#f2f2f2")),
    ],
    # Status: a dial with its needle.
    1715: [
        circle(16, 17, 14, rgba("#2b3a44")),
        circle(16, 17, 12.4, rgba("#f5f7f8")),
        ring(16, 17, 9.5, 2.4, rgba(GREEN)),
        rect(4, 17, 28, 30, rgba("#f5f7f8")),
        line([(16, 17), (23, 10)], 2.2, rgba(RED)),
        circle(16, 17, 2.6, rgba("#2b3a44")),
        line([(8, 24), (24, 24)], 2, rgba("#2b3a44")),
    ],
    # Tune: three sliders at different settings.
    1716: [rect(2, 3, 30, 29, rgba("#33414b"), 3), rect(3.2, 4.2, 28.8, 27.8, rgba("#e9eef2"), 2)] + [
        shape for x, knob in ((9, 19), (16, 10), (23, 15)) for shape in (
            line([(x, 7), (x, 25)], 1.6, rgba(SLATE)),
            rect(x - 3.4, knob - 2.2, x + 3.4, knob + 2.2, rgba(BLUE), 1),
        )
    ],
    # NIST: a mass spectrum under a library band.
    1721: [rect(2, 2, 30, 30, rgba("#1d4f86"), 3), rect(3.2, 8, 28.8, 28.8, rgba("#ffffff"), 1.5)] + [
        line([(x, 27), (x, 27 - h)], 1.8, rgba("#1d4f86")) for x, h in ((7, 6), (10, 15), (13, 4), (16, 11),
                                                                        (19, 17), (22, 7), (25, 3))
    ] + [rect(5, 3.6, 27, 5.6, rgba("#9cc3ea"))],
    # AMDIS: two overlapping components pulled apart from one signal.
    1722: page(2, 3, 30, 29) + [
        line([(5, 25), (27, 25)], 1.2, rgba(SLATE)),
        peaks(5, 19, 25, [16], rgba(BLUE), 2),
        peaks(11, 27, 25, [11], rgba(RED), 2),
    ],
    # Safety DB: a shield with an exclamation mark.
    1723: [
        polygon([(16, 1.5), (29, 6), (28, 17), (16, 30.5), (4, 17), (3, 6)], rgba("#8a1f17")),
        polygon([(16, 3.2), (27.4, 7.2), (26.5, 16.6), (16, 28.4), (5.5, 16.6), (4.6, 7.2)], rgba("#e0483c")),
        line([(16, 8.5), (16, 18.5)], 3.4, rgba("#ffffff")),
        circle(16, 23.5, 2.1, rgba("#ffffff")),
    ],
}


# The studio: a field-portable instrument with its carrying handle, a chromatogram on its screen and
# a green ready light.
APP_ICON = [
    line([(10, 9), (10, 4.2), (22, 4.2), (22, 9)], 2.8, rgba("#2b3a44")),
    rect(2, 8, 30, 30, rgba("#2b3a44"), 3.5),
    rect(3.3, 9.3, 28.7, 28.7, rgba(SLATE), 2.5),
    rect(5, 11.5, 22, 26.5, rgba("#16232c"), 1.5),
    rect(6.1, 12.6, 20.9, 25.4, rgba("#eef5fb"), 1),
    line([(7.5, 23), (19.5, 23)], 1, rgba(SLATE)),
    peaks(7.5, 19.5, 23, [4, 8.5, 3, 6], rgba(BLUE), 1.5),
    circle(25.7, 14.5, 2, rgba("#7fd68a")),
    circle(25.7, 14.5, 1.4, rgba(GREEN)),
    rect(23.7, 19.5, 27.7, 21.5, rgba("#c9d3da"), 0.8),
    rect(23.7, 23.5, 27.7, 25.5, rgba("#c9d3da"), 0.8),
]


def write_svg(path, shapes):
    with open(path, "w") as out:
        out.write('<?xml version="1.0" encoding="UTF-8"?>\n'
                  '<svg xmlns="http://www.w3.org/2000/svg" width="32" height="32" viewBox="0 0 32 32">\n')
        for shape in shapes:
            out.write("  %s\n" % shape[2])
        out.write("</svg>\n")


def render(shapes, size):
    scale = 32.0 / size
    pixels = bytearray()
    for py in range(size):
        pixels.append(0)  # PNG filter byte: none
        for px in range(size):
            total = [0.0, 0.0, 0.0, 0.0]
            for sy in range(SAMPLES):
                for sx in range(SAMPLES):
                    x = (px + (sx + 0.5) / SAMPLES) * scale
                    y = (py + (sy + 0.5) / SAMPLES) * scale
                    colour = (0, 0, 0, 0)
                    for inside, shape_colour, _ in shapes:
                        if inside(x, y):
                            colour = over(shape_colour, colour)
                    alpha = colour[3] / 255.0
                    for i in range(3):
                        total[i] += colour[i] * alpha
                    total[3] += alpha
            count = SAMPLES * SAMPLES
            alpha = total[3] / count
            if alpha > 0:
                pixels += bytes(int(round(total[i] / total[3])) for i in range(3))
            else:
                pixels += b"\0\0\0"
            pixels.append(int(round(alpha * 255)))
    return bytes(pixels)


def over(top, bottom):
    ta, ba = top[3] / 255.0, bottom[3] / 255.0
    a = ta + ba * (1 - ta)
    if a == 0:
        return (0, 0, 0, 0)
    mix = [(top[i] * ta + bottom[i] * ba * (1 - ta)) / a for i in range(3)]
    return (int(round(mix[0])), int(round(mix[1])), int(round(mix[2])), int(round(a * 255)))


def write_png(path, size, data):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF)
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(data, 9)) +
                  chunk(b"IEND", b""))


def main():
    os.makedirs(OUT, exist_ok=True)
    for icon, shapes in sorted(ICONS.items()):
        for size in (16, 32):
            write_png(os.path.join(OUT, "%d-%d.png" % (icon, size)), size, render(shapes, size))
    for size in APP_SIZES:
        folder = os.path.join(APP_OUT, "%dx%d" % (size, size))
        os.makedirs(folder, exist_ok=True)
        write_png(os.path.join(folder, APP_ID + ".png"), size, render(APP_ICON, size))
    os.makedirs(os.path.join(APP_OUT, "scalable"), exist_ok=True)
    write_svg(os.path.join(APP_OUT, "scalable", APP_ID + ".svg"), APP_ICON)
    return 0


if __name__ == "__main__":
    sys.exit(main())
