#!/usr/bin/env python3
"""Draws quenlar.ico: an envelope with a lens over it. Run by hand after a change: ui/win32/make_icon.py"""
import math
import struct
import zlib
from pathlib import Path

SIZES = (16, 20, 24, 32, 40, 48, 64, 256)
SAMPLES = 4  # each way, within a pixel

TOP, BOTTOM = (0x2F, 0x80, 0xD8), (0x17, 0x4A, 0x96)
PAPER, FOLD = (0xFF, 0xFF, 0xFF), (0x7F, 0xA6, 0xD8)
RING, GLASS = (0xF2, 0x8C, 0x1E), (0xFF, 0xF1, 0xDA)


def rounded_box(x, y, cx, cy, half_w, half_h, radius):
    """Signed distance to a box with round corners; negative inside."""
    dx, dy = abs(x - cx) - half_w + radius, abs(y - cy) - half_h + radius
    return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - radius


def segment(x, y, ax, ay, bx, by):
    """Distance to a line from a to b."""
    t = ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / ((bx - ax) ** 2 + (by - ay) ** 2)
    t = min(max(t, 0), 1)
    return math.hypot(x - ax - t * (bx - ax), y - ay - t * (by - ay))


def color_at(x, y, size):
    """Colour and cover of a point of the unit square. Small sizes get bolder lines and no lens handle gap."""
    small = size <= 20
    line = 0.062 if small else 0.034
    if rounded_box(x, y, 0.5, 0.5, 0.5, 0.5, 0.2) > 0:
        return None
    color = tuple(a + (b - a) * y for a, b in zip(TOP, BOTTOM))
    if rounded_box(x, y, 0.5, 0.45, 0.37, 0.26, 0.05) < 0:
        color = PAPER
        flap = min(segment(x, y, 0.13, 0.2, 0.5, 0.5), segment(x, y, 0.87, 0.2, 0.5, 0.5))
        if flap < line:
            color = FOLD
    lens_x, lens_y, lens_r = (0.67, 0.66, 0.2) if small else (0.66, 0.64, 0.17)
    from_lens = math.hypot(x - lens_x, y - lens_y)
    handle = segment(x, y, lens_x + lens_r * 0.75, lens_y + lens_r * 0.75, 0.9, 0.89)
    rim = 0.075 if small else 0.055
    if from_lens < lens_r + rim + 0.035 or handle < rim + 0.045:
        color = tuple(a + (b - a) * y for a, b in zip(TOP, BOTTOM))  # a gap between the lens and the envelope
    if handle < rim + 0.01 and from_lens > lens_r:
        color = RING
    if from_lens < lens_r + rim:
        color = RING
    if from_lens < lens_r - 0.005:
        color = GLASS
    return color


def draw(size):
    """Rows of (red, green, blue, alpha), top row first."""
    rows = []
    for py in range(size):
        row = []
        for px in range(size):
            total, inside = [0.0, 0.0, 0.0], 0
            for sy in range(SAMPLES):
                for sx in range(SAMPLES):
                    color = color_at((px + (sx + 0.5) / SAMPLES) / size, (py + (sy + 0.5) / SAMPLES) / size, size)
                    if color:
                        inside += 1
                        total = [t + c for t, c in zip(total, color)]
            row.append(tuple(round(t / max(inside, 1)) for t in total) + (round(255 * inside / SAMPLES**2),))
        rows.append(row)
    return rows


def bitmap(rows):
    """An icon's bitmap: header, 32-bit pixels bottom up, empty mask."""
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(struct.pack("4B", b, g, r, a) for row in reversed(rows) for r, g, b, a in row)
    return header + pixels + bytes((size + 31) // 32 * 4 * size)


def png(rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    raw = b"".join(b"\0" + b"".join(struct.pack("4B", *pixel) for pixel in row) for row in rows)
    header = struct.pack(">IIBBBBB", len(rows), len(rows), 8, 6, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def main():
    images = [(size, (png if size > 64 else bitmap)(draw(size))) for size in SIZES]
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, data in images:
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    Path(__file__).with_name("quenlar.ico").write_bytes(directory + b"".join(data for _, data in images))


if __name__ == "__main__":
    main()
