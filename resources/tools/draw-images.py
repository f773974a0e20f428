#!/usr/bin/env python3
"""Draws Orvella's own support images (lightbox buttons, spinner, logo, patterns).

Python 3 standard library only: shapes are signed-distance functions rendered with
analytic anti-aliasing, PNG is written with zlib, GIF with a small LZW encoder.
Run from anywhere: `python3 resources/tools/draw-images.py`; outputs go to resources/.
"""

import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
RESOURCES = os.path.dirname(HERE)


# ---------------------------------------------------------------- canvas ---

class Canvas:
    """Straight (non-premultiplied) RGBA floats 0..1, composited with "over"."""

    def __init__(self, width, height, fill=(0, 0, 0, 0)):
        self.w, self.h = width, height
        self.px = [list(fill) for _ in range(width * height)]

    def paint(self, sdf, colour, opacity=1.0):
        """Fills the shape whose signed distance (pixels, negative inside) is sdf(x, y)."""
        r, g, b, a = colour
        for y in range(self.h):
            for x in range(self.w):
                cover = min(1.0, max(0.0, 0.5 - sdf(x + 0.5, y + 0.5)))
                if cover <= 0.0:
                    continue
                self.blend(x, y, (r, g, b, a * cover * opacity))

    def blend(self, x, y, src):
        dst = self.px[y * self.w + x]
        sa, da = src[3], dst[3]
        oa = sa + da * (1 - sa)
        if oa <= 0:
            return
        for i in range(3):
            dst[i] = (src[i] * sa + dst[i] * da * (1 - sa)) / oa
        dst[3] = oa

    def rgba_bytes(self):
        out = bytearray()
        for p in self.px:
            out += bytes(int(round(min(1.0, max(0.0, c)) * 255)) for c in p)
        return out


# Signed distance functions, in pixels.
def circle(cx, cy, radius):
    return lambda x, y: math.hypot(x - cx, y - cy) - radius


def ring(cx, cy, radius, width):
    return lambda x, y: abs(math.hypot(x - cx, y - cy) - radius) - width / 2


def segment(ax, ay, bx, by, width):
    """A stroke with round caps from (ax, ay) to (bx, by)."""
    def d(x, y):
        px, py, vx, vy = x - ax, y - ay, bx - ax, by - ay
        t = max(0.0, min(1.0, (px * vx + py * vy) / (vx * vx + vy * vy)))
        return math.hypot(px - vx * t, py - vy * t) - width / 2
    return d


def rounded_box(x0, y0, x1, y1, radius):
    cx, cy, hw, hh = (x0 + x1) / 2, (y0 + y1) / 2, (x1 - x0) / 2, (y1 - y0) / 2
    def d(x, y):
        qx, qy = abs(x - cx) - hw + radius, abs(y - cy) - hh + radius
        return math.hypot(max(qx, 0), max(qy, 0)) + min(max(qx, qy), 0) - radius
    return d


def union(*shapes):
    return lambda x, y: min(s(x, y) for s in shapes)


def hexcolour(text, alpha=1.0):
    return tuple(int(text[i:i + 2], 16) / 255 for i in (0, 2, 4)) + (alpha,)


# ----------------------------------------------------------------- PNG -----

def write_png(path, canvas):
    raw = canvas.rgba_bytes()
    stride = canvas.w * 4
    rows = b"".join(b"\0" + bytes(raw[y * stride:(y + 1) * stride]) for y in range(canvas.h))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    header = struct.pack(">IIBBBBB", canvas.w, canvas.h, 8, 6, 0, 0, 0)
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


# ----------------------------------------------------------------- GIF -----

def lzw_encode(indices, min_code_size):
    """GIF-flavoured LZW: variable code width, clear code when the table is full."""
    clear, end = 1 << min_code_size, (1 << min_code_size) + 1
    out, bitbuf, nbits = bytearray(), 0, 0

    def emit(code, width):
        nonlocal bitbuf, nbits
        bitbuf |= code << nbits
        nbits += width
        while nbits >= 8:
            out.append(bitbuf & 0xFF)
            bitbuf >>= 8
            nbits -= 8

    def reset():
        return {(i,): i for i in range(clear)}, end + 1, min_code_size + 1

    table, next_code, width = reset()
    emit(clear, width)
    current = ()
    for index in indices:
        candidate = current + (index,)
        if candidate in table:
            current = candidate
            continue
        emit(table[current], width)
        if next_code < 4096:
            table[candidate] = next_code
            next_code += 1
            # The decoder widens one code later than the encoder adds the entry.
            if next_code > (1 << width) and width < 12:
                width += 1
        else:
            emit(clear, width)
            table, next_code, width = reset()
        current = (index,)
    if current:
        emit(table[current], width)
    emit(end, width)
    if nbits:
        out.append(bitbuf & 0xFF)
    return bytes(out)


def write_gif(path, width, height, palette, frames, delay_cs=8, transparent=0):
    """frames: lists of palette indices; palette: up to 256 (r, g, b) tuples."""
    bits = max(1, (len(palette) - 1).bit_length())
    palette = list(palette) + [(0, 0, 0)] * ((1 << bits) - len(palette))
    data = bytearray(b"GIF89a")
    data += struct.pack("<HHBBB", width, height, 0x80 | ((bits - 1) << 4) | (bits - 1), transparent, 0)
    for r, g, b in palette:
        data += bytes((r, g, b))
    if len(frames) > 1:
        data += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00"  # loop forever
    for frame in frames:
        # Disposal 2 (restore to background) so that transparent pixels stay transparent.
        data += struct.pack("<BBBBHBB", 0x21, 0xF9, 4, (2 << 2) | 1, delay_cs, transparent, 0)
        data += struct.pack("<BHHHHB", 0x2C, 0, 0, width, height, 0)
        code_size = max(2, bits)
        encoded = lzw_encode(frame, code_size)
        data.append(code_size)
        for i in range(0, len(encoded), 255):
            block = encoded[i:i + 255]
            data += bytes((len(block),)) + block
        data.append(0)
    data.append(0x3B)
    with open(path, "wb") as f:
        f.write(data)


# -------------------------------------------------------------- drawings ---

BUTTON_FILL = hexcolour("F4F4F4", 1.0)
BUTTON_RIM = hexcolour("1E1E1E", 1.0)
GLYPH = hexcolour("2B2B33", 1.0)


def button(glyph_strokes, size=64):
    """An opaque light disc with a dark rim, so that it stands out on any backdrop; drawn on a
    32-unit grid at `size` pixels (the script shows it at 36 to 44 pixels, sharp on 2x screens)."""
    k = size / 32
    c = Canvas(size, size)
    c.paint(circle(16 * k, 16 * k, 15.5 * k), BUTTON_RIM)
    c.paint(circle(16 * k, 16 * k, 14.0 * k), BUTTON_FILL)
    for stroke in glyph_strokes(k):
        c.paint(stroke, GLYPH)
    return c


def close_button(size=64):
    return button(lambda k: [segment(11 * k, 11 * k, 21 * k, 21 * k, 3.0 * k),
                             segment(21 * k, 11 * k, 11 * k, 21 * k, 3.0 * k)], size)


def arrow_button(direction):
    s = 1 if direction == "next" else -1
    cx = 16 + s * 1.0
    return button(lambda k: [segment((cx - s * 4) * k, 10 * k, (cx + s * 2) * k, 16 * k, 3.0 * k),
                             segment((cx + s * 2) * k, 16 * k, (cx - s * 4) * k, 22 * k, 3.0 * k)])


def overlay_tile():
    return Canvas(8, 8, fill=(0.05, 0.05, 0.07, 0.8))


# A 5 x 7 pixel font for the word mark; "#" is ink.
GLYPHS = {
    "k": ["#....", "#....", "#..#.", "#.#..", "##...", "#.#..", "#..#."],
    "l": ["##...", ".#...", ".#...", ".#...", ".#...", ".#...", "###.."],
    "O": [".###.", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."],
    "r": ["....", "....", "#.##", "##..", "#...", "#...", "#..."],
    "v": [".....", ".....", "#...#", "#...#", "#...#", ".#.#.", "..#.."],
    "e": [".....", ".....", ".###.", "#...#", "#####", "#....", ".###."],
    "a": [".....", ".....", ".###.", "....#", ".####", "#...#", ".####"],
}
GLYPH_WIDTH = {"k": 4, "l": 3, "O": 5, "r": 4, "v": 5, "e": 5, "a": 5}


def logo():
    c = Canvas(120, 32)
    c.paint(rounded_box(0.5, 0.5, 119.5, 31.5, 7), hexcolour("1F2430", 0.92))
    c.paint(rounded_box(1.5, 1.5, 118.5, 30.5, 6), hexcolour("2E3545", 1.0))
    # An aperture mark: a ring with a dot.
    c.paint(ring(14, 16, 7.5, 2.2), hexcolour("F2B134"))
    c.paint(circle(14, 16, 2.8), hexcolour("F2B134"))
    word, scale, gap = "klOrvella", 2, 2
    x = 27
    boxes = []
    for ch in word:
        for row, line in enumerate(GLYPHS[ch]):
            for col, cell in enumerate(line):
                if cell == "#":
                    bx, by = x + col * scale, 9 + row * scale
                    boxes.append((bx, by, bx + scale, by + scale))
        x += GLYPH_WIDTH[ch] * scale + gap
    ink = hexcolour("F5F6F8")
    for bx0, by0, bx1, by1 in boxes:
        c.paint(rounded_box(bx0, by0, bx1, by1, 0.01), ink)
    return c


def spinner_frames(count=12, size=32):
    """Twelve dots in a circle whose brightness runs round: palette index 0 is transparent."""
    levels = [(r, r, r) for r in (0x55, 0x6A, 0x80, 0x95, 0xAA, 0xBF, 0xD5, 0xEA, 0xFF)]
    palette = [(0, 0, 0)] + levels
    frames = []
    for f in range(count):
        canvas = [0] * (size * size)
        for dot in range(count):
            angle = 2 * math.pi * dot / count - math.pi / 2
            cx, cy = size / 2 + 11 * math.cos(angle), size / 2 + 11 * math.sin(angle)
            age = (f - dot) % count  # 0 = the head of the trail
            level = max(0, len(levels) - 1 - age)
            radius = 2.8 if age == 0 else 2.4
            for y in range(size):
                for x in range(size):
                    if math.hypot(x + 0.5 - cx, y + 0.5 - cy) <= radius:
                        canvas[y * size + x] = 1 + level
        frames.append(canvas)
    return palette, frames


def close_gif():
    """The close cross as a GIF, for browsers and pages that prefer it."""
    c = close_button(32)
    palette, index_of, pixels = [(0, 0, 0)], {}, []
    for r, g, b, a in (c.px[i] for i in range(c.w * c.h)):
        if a < 0.5:
            pixels.append(0)
            continue
        key = tuple(int(round(v * 255)) & 0xF0 for v in (r, g, b))
        if key not in index_of:
            index_of[key] = len(palette)
            palette.append(key)
        pixels.append(index_of[key])
    return palette[:256], [pixels]


# Seamless tiles: every shape is drawn with wrap-around so that the edges meet.
def wrapped(sdf, period_x, period_y):
    return lambda x, y: min(sdf(x + dx, y + dy)
                            for dx in (-period_x, 0, period_x) for dy in (-period_y, 0, period_y))


def pattern_dots():
    c = Canvas(24, 24, fill=hexcolour("F3F1EC"))
    c.paint(wrapped(circle(6, 6, 2.2), 24, 24), hexcolour("C9C2B4"))
    c.paint(wrapped(circle(18, 18, 2.2), 24, 24), hexcolour("C9C2B4"))
    return c


def pattern_diagonal():
    c = Canvas(16, 16, fill=hexcolour("2B2F38"))
    c.paint(wrapped(segment(-4, 20, 20, -4, 2.0), 16, 16), hexcolour("363B46"))
    c.paint(wrapped(segment(4, 20, 20, 4, 2.0), 16, 16), hexcolour("363B46"))
    return c


def pattern_weave():
    """Basket weave: two horizontal bars and two vertical bars in alternate quadrants."""
    c = Canvas(32, 32, fill=hexcolour("E7EDF2"))
    bar = hexcolour("C8D3DD")
    for qx, qy in ((0, 0), (16, 16)):
        for off in (3, 11):
            c.paint(wrapped(rounded_box(qx + 2, qy + off, qx + 14, qy + off + 2, 1), 32, 32), bar)
    for qx, qy in ((16, 0), (0, 16)):
        for off in (3, 11):
            c.paint(wrapped(rounded_box(qx + off, qy + 2, qx + off + 2, qy + 14, 1), 32, 32), bar)
    return c


def main():
    lightbox = os.path.join(RESOURCES, "lightbox")
    patterns = os.path.join(RESOURCES, "patterns")
    os.makedirs(lightbox, exist_ok=True)
    os.makedirs(patterns, exist_ok=True)
    write_png(os.path.join(lightbox, "close.png"), close_button())
    write_png(os.path.join(lightbox, "next.png"), arrow_button("next"))
    write_png(os.path.join(lightbox, "previous.png"), arrow_button("previous"))
    write_png(os.path.join(lightbox, "overlay.png"), overlay_tile())
    write_png(os.path.join(lightbox, "klOrvella.png"), logo())
    palette, frames = spinner_frames()
    write_gif(os.path.join(lightbox, "loading.gif"), 32, 32, palette, frames, delay_cs=8)
    palette, frames = close_gif()
    write_gif(os.path.join(lightbox, "close.gif"), 32, 32, palette, frames)
    write_png(os.path.join(patterns, "dots.png"), pattern_dots())
    write_png(os.path.join(patterns, "diagonal.png"), pattern_diagonal())
    write_png(os.path.join(patterns, "weave.png"), pattern_weave())


if __name__ == "__main__":
    main()
