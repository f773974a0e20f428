#!/usr/bin/env python3
"""Draws Orvella's application icon as SVG and as PNGs at 48, 128 and 256 pixels.

The icon is one list of shapes on a 256-unit square, written once as SVG and rendered to the PNGs
with the signed-distance canvas of draw-images.py, so the two forms cannot drift apart.
Run from anywhere: `python3 resources/tools/draw-icon.py`; outputs go to resources/icons/.
"""

import importlib.util
import math
import os

HERE = os.path.dirname(os.path.abspath(__file__))
RESOURCES = os.path.dirname(HERE)

_spec = importlib.util.spec_from_file_location("draw_images", os.path.join(HERE, "draw-images.py"))
draw = importlib.util.module_from_spec(_spec)
_spec.loader.exec_module(draw)

UNITS = 256
SIZES = (48, 128, 256)


# ---------------------------------------------------------------- shapes ---
# Every shape: kind, geometry in units, fill "RRGGBB", opacity, optional rotation (degrees about
# a centre) and optional clip rectangle (x0, y0, x1, y1, radius) in the same rotated frame.

def rect(x0, y0, x1, y1, radius, fill, opacity=1.0, rotate=None, clip=None):
    return {"kind": "rect", "box": (x0, y0, x1, y1), "radius": radius, "fill": fill,
            "opacity": opacity, "rotate": rotate, "clip": clip}


def disc(cx, cy, radius, fill, opacity=1.0, rotate=None, clip=None):
    return {"kind": "circle", "centre": (cx, cy), "radius": radius, "fill": fill,
            "opacity": opacity, "rotate": rotate, "clip": clip}


def polygon(points, fill, opacity=1.0, rotate=None, clip=None):
    return {"kind": "polygon", "points": points, "fill": fill, "opacity": opacity,
            "rotate": rotate, "clip": clip}


def ring(cx, cy, radius, width, fill, opacity=1.0, rotate=None):
    return {"kind": "ring", "centre": (cx, cy), "radius": radius, "width": width, "fill": fill,
            "opacity": opacity, "rotate": rotate, "clip": None}


def icon_shapes():
    """A stack of prints on a dark tile: the front print shows hills under an amber sun."""
    back = (-9, 128, 132)
    middle = (7, 128, 132)
    front = (-2, 128, 128)
    picture = (66, 70, 190, 166, 4)
    shapes = [
        rect(16, 16, 240, 240, 52, "1F2430"),                  # the tile
        rect(20, 20, 236, 236, 48, "2E3545"),
        rect(20, 20, 236, 128, 48, "39425A", 0.55),            # a lighter top half
        rect(54, 62, 202, 206, 8, "000000", 0.28, back),       # shadow of the stack
        rect(52, 58, 200, 200, 8, "C9CED8", 1.0, back),        # two prints behind
        rect(52, 58, 200, 200, 8, "E4E7EC", 1.0, middle),
        rect(56, 58, 200, 194, 8, "000000", 0.25, (front[0], 128, 132)),
        rect(54, 56, 202, 200, 8, "FBFBFC", 1.0, front),        # the front print
        rect(*picture, "7DB6E8", 1.0, front),                  # sky
        rect(66, 128, 190, 166, 0, "A9D3F5", 0.6, front, picture),
        disc(150, 98, 15, "F2B134", 1.0, front, picture),      # the sun
        polygon([(66, 166), (66, 136), (104, 104), (140, 142), (158, 128), (190, 154),
                 (190, 166)], "3F7D5C", 1.0, front, picture),  # hills
        polygon([(66, 166), (66, 150), (118, 130), (190, 160), (190, 166)], "2F6247", 1.0,
                front, picture),
        disc(206, 206, 29, "2E3545"),
        ring(206, 206, 22, 7, "F2B134"),                       # the aperture mark of the logo
        disc(206, 206, 8, "F2B134"),
    ]
    return shapes


# ------------------------------------------------------------------- SVG ---

def fmt(value):
    text = ("%.2f" % value).rstrip("0").rstrip(".")
    return "0" if text == "-0" else text


def svg(shapes):
    clips, body = [], []
    for shape in shapes:
        attrs = 'fill="#%s"' % shape["fill"]
        if shape["opacity"] < 1.0:
            attrs += ' fill-opacity="%s"' % fmt(shape["opacity"])
        if shape["rotate"]:
            angle, cx, cy = shape["rotate"]
            attrs += ' transform="rotate(%s %s %s)"' % (fmt(angle), fmt(cx), fmt(cy))
        if shape["clip"]:
            x0, y0, x1, y1, r = shape["clip"]
            clip = ('<rect x="%s" y="%s" width="%s" height="%s" rx="%s"/>'
                    % (fmt(x0), fmt(y0), fmt(x1 - x0), fmt(y1 - y0), fmt(r)))
            if clip not in clips:
                clips.append(clip)
            attrs += ' clip-path="url(#clip%d)"' % clips.index(clip)
        kind = shape["kind"]
        if kind == "rect":
            x0, y0, x1, y1 = shape["box"]
            r = shape["radius"]
            body.append('  <rect x="%s" y="%s" width="%s" height="%s"%s %s/>'
                        % (fmt(x0), fmt(y0), fmt(x1 - x0), fmt(y1 - y0),
                           ' rx="%s"' % fmt(r) if r else "", attrs))
        elif kind == "circle":
            cx, cy = shape["centre"]
            body.append('  <circle cx="%s" cy="%s" r="%s" %s/>'
                        % (fmt(cx), fmt(cy), fmt(shape["radius"]), attrs))
        elif kind == "ring":
            cx, cy = shape["centre"]
            stroke = attrs.replace("fill=", "stroke=").replace("fill-opacity=", "stroke-opacity=")
            body.append('  <circle cx="%s" cy="%s" r="%s" fill="none" stroke-width="%s" %s/>'
                        % (fmt(cx), fmt(cy), fmt(shape["radius"]), fmt(shape["width"]), stroke))
        elif kind == "polygon":
            points = " ".join("%s,%s" % (fmt(x), fmt(y)) for x, y in shape["points"])
            body.append('  <polygon points="%s" %s/>' % (points, attrs))
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             '<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" viewBox="0 0 %d %d">'
             % (UNITS, UNITS, UNITS, UNITS),
             "  <title>Orvella</title>"]
    if clips:
        lines += ["  <defs>"]
        lines += ['    <clipPath id="clip%d">%s</clipPath>' % (i, c) for i, c in enumerate(clips)]
        lines += ["  </defs>"]
    return "\n".join(lines + body + ["</svg>"]) + "\n"


# ------------------------------------------------------------------- PNG ---

def polygon_sdf(points):
    """Signed distance to a simple polygon (negative inside)."""
    def d(x, y):
        best = float("inf")
        inside = False
        n = len(points)
        for i in range(n):
            ax, ay = points[i]
            bx, by = points[i - 1]
            ex, ey, wx, wy = bx - ax, by - ay, x - ax, y - ay
            t = max(0.0, min(1.0, (wx * ex + wy * ey) / (ex * ex + ey * ey)))
            best = min(best, math.hypot(wx - ex * t, wy - ey * t))
            if (ay > y) != (by > y) and x < ax + (y - ay) * ex / ey:
                inside = not inside
        return -best if inside else best
    return d


def scaled(shape, scale):
    """The shape's signed distance function in pixels at this scale, with its bounding box."""
    kind = shape["kind"]
    if kind == "rect":
        x0, y0, x1, y1 = (v * scale for v in shape["box"])
        sdf = draw.rounded_box(x0, y0, x1, y1, max(shape["radius"] * scale, 0.01))
        box = (x0, y0, x1, y1)
    elif kind == "circle":
        cx, cy = (v * scale for v in shape["centre"])
        r = shape["radius"] * scale
        sdf, box = draw.circle(cx, cy, r), (cx - r, cy - r, cx + r, cy + r)
    elif kind == "ring":
        cx, cy = (v * scale for v in shape["centre"])
        r, w = shape["radius"] * scale, shape["width"] * scale
        sdf, box = draw.ring(cx, cy, r, w), (cx - r - w, cy - r - w, cx + r + w, cy + r + w)
    else:
        pts = [(x * scale, y * scale) for x, y in shape["points"]]
        sdf = polygon_sdf(pts)
        box = (min(p[0] for p in pts), min(p[1] for p in pts),
               max(p[0] for p in pts), max(p[1] for p in pts))
    if shape["clip"]:
        x0, y0, x1, y1, r = (v * scale for v in shape["clip"])
        clip = draw.rounded_box(x0, y0, x1, y1, max(r, 0.01))
        inner = sdf
        sdf = lambda x, y: max(inner(x, y), clip(x, y))  # noqa: E731 (intersection)
        box = (max(box[0], x0), max(box[1], y0), min(box[2], x1), min(box[3], y1))
    if shape["rotate"]:
        angle, cx, cy = shape["rotate"]
        cx, cy = cx * scale, cy * scale
        c, s = math.cos(math.radians(angle)), math.sin(math.radians(angle))
        unrotated = sdf
        # Sample the unrotated shape at the point turned back by the angle.
        sdf = lambda x, y: unrotated(cx + (x - cx) * c + (y - cy) * s,  # noqa: E731
                                     cy - (x - cx) * s + (y - cy) * c)
        corners = [(box[0], box[1]), (box[2], box[1]), (box[0], box[3]), (box[2], box[3])]
        turned = [(cx + (x - cx) * c - (y - cy) * s, cy + (x - cx) * s + (y - cy) * c)
                  for x, y in corners]
        box = (min(p[0] for p in turned), min(p[1] for p in turned),
               max(p[0] for p in turned), max(p[1] for p in turned))
    return sdf, box


def render(shapes, size):
    canvas = draw.Canvas(size, size)
    scale = size / UNITS
    for shape in shapes:
        sdf, (x0, y0, x1, y1) = scaled(shape, scale)
        colour = draw.hexcolour(shape["fill"])
        for y in range(max(0, int(y0) - 1), min(size, int(math.ceil(y1)) + 1)):
            for x in range(max(0, int(x0) - 1), min(size, int(math.ceil(x1)) + 1)):
                cover = min(1.0, max(0.0, 0.5 - sdf(x + 0.5, y + 0.5)))
                if cover > 0.0:
                    canvas.blend(x, y, colour[:3] + (cover * shape["opacity"],))
    return canvas


def main():
    out = os.path.join(RESOURCES, "icons")
    os.makedirs(out, exist_ok=True)
    shapes = icon_shapes()
    with open(os.path.join(out, "orvella.svg"), "w", encoding="utf-8") as f:
        f.write(svg(shapes))
    for size in SIZES:
        draw.write_png(os.path.join(out, "orvella-%d.png" % size), render(shapes, size))


if __name__ == "__main__":
    main()
