#!/usr/bin/env python3
"""Writes badge.emf and shades.emf beside this folder, record by record: two small drawings without text.

    python3 samples/sources/small.py

badge.emf, 36 x 24 mm: coloured fields inside a light grey frame line, a round hole and a zigzag to cut; blank margins all around.
shades.emf, 24 x 16 mm: a picture of 24 x 16 greys on the whole page, a line to cut across it.
"""
import pathlib
import struct

UNITS = 10  # device units a millimetre
NULL_BRUSH, NULL_PEN = 0x80000005, 0x80000008


def rgb(red, green, blue):
    return red | green << 8 | blue << 16


class Drawing:
    def __init__(self, width, height):
        self.size = (width, height)
        self.records = []
        self.handles = 1

    def add(self, kind, *numbers, tail=b""):
        body = b"".join(struct.pack("<I" if n >= 1 << 31 else "<i", n) for n in numbers) + tail
        body += b"\0" * (-len(body) % 4)
        self.records.append(struct.pack("<II", kind, len(body) + 8) + body)

    def brush(self, colour):
        self.add(39, self.handles, 0, colour, 0)
        self.add(37, self.handles)
        self.handles += 1

    def pen(self, colour):
        self.add(38, self.handles, 0, 0, 0, colour)
        self.add(37, self.handles)
        self.handles += 1

    def select(self, stock):
        self.add(37, stock)

    def rectangle(self, left, top, right, bottom):
        self.add(43, left, top, right, bottom)

    def ellipse(self, left, top, right, bottom):
        self.add(42, left, top, right, bottom)

    def points(self, kind, *points):
        xs, ys = [p[0] for p in points], [p[1] for p in points]
        tail = b"".join(struct.pack("<hh", *p) for p in points)
        self.add(kind, min(xs), min(ys), max(xs), max(ys), len(points), tail=tail)

    def polygon(self, *points):
        self.points(86, *points)

    def polyline(self, *points):
        self.points(87, *points)

    def greys(self, width, height, rows):
        header = struct.pack("<IiiHHIIiiII", 40, width, -height, 1, 8, 0, 0, 0, 0, 256, 0)
        palette = b"".join(bytes((i, i, i, 0)) for i in range(256))
        right, bottom = self.size[0] * UNITS, self.size[1] * UNITS
        start = 80
        self.add(81, 0, 0, right - 1, bottom - 1, 0, 0, 0, 0, width, height, start, len(header + palette),
                 start + len(header + palette), len(rows), 0, 0x00CC0020, right, bottom, tail=header + palette + rows)

    def write(self, path):
        self.add(14, 0, 16, 20)
        width, height = self.size
        body = b"".join(self.records)
        header = struct.pack("<II", 1, 88 + 12)
        header += struct.pack("<4i", 0, 0, width * UNITS - 1, height * UNITS - 1)
        header += struct.pack("<4i", 0, 0, width * 100 - 1, height * 100 - 1)
        header += struct.pack("<IIIIHHIII", 0x464D4520, 0x10000, 100 + len(body), 1 + len(self.records), self.handles, 0, 0, 0, 0)
        header += struct.pack("<4i", 1000, 1000, 100, 100)
        header += struct.pack("<III", 0, 0, 0)
        path.write_bytes(header + body)


def badge():
    d = Drawing(36, 24)
    d.select(NULL_PEN)
    d.brush(rgb(232, 232, 232))
    d.rectangle(40, 30, 320, 210)
    d.brush(rgb(255, 255, 255))
    d.rectangle(44, 34, 316, 206)
    d.brush(rgb(20, 40, 160))
    d.rectangle(60, 50, 180, 110)
    d.brush(rgb(200, 30, 30))
    d.ellipse(190, 50, 300, 130)
    d.brush(rgb(0, 0, 0))
    d.polygon((60, 190), (120, 120), (180, 190))
    d.select(NULL_BRUSH)
    d.pen(rgb(255, 0, 0))
    d.ellipse(280, 170, 300, 190)
    d.pen(rgb(0, 0, 255))
    d.polyline((30, 25), (120, 20), (210, 25), (330, 22))
    return d


def shades():
    d = Drawing(24, 16)
    d.greys(24, 16, bytes((10 * x + 4 * y * y) % 256 if (x + y) % 7 else 255 - 9 * x for y in range(16) for x in range(24)))
    d.pen(rgb(255, 0, 0))
    d.polyline((10, 150), (120, 20), (230, 140))
    return d


if __name__ == "__main__":
    folder = pathlib.Path(__file__).resolve().parent.parent
    badge().write(folder / "badge.emf")
    shades().write(folder / "shades.emf")
