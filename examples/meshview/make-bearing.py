#!/usr/bin/env python3
"""Writes bearing.obj and bearing.mtl beside this file: a ball bearing, cut open, its axis along z, in millimetres."""

import math
import pathlib

STEEL, BALLS, BRASS, CUT = "steel", "balls", "brass", "cut"
BORE, OUTSIDE, WIDTH = 10.0, 23.5, 14.0
PITCH, BALL, COUNT = 16.75, 3.97, 9
CUT_FROM, CUT_TO = 2, 98  # degrees without an outer ring

lines = ["# A ball bearing, in millimetres. Made by make-bearing.py.", "mtllib bearing.mtl"]
places = 0


def part(name, material):
    lines.extend([f"o {name}", f"usemtl {material}"])


def vertices(points):
    """@return the number of the first"""
    global places
    first = places + 1
    places += len(points)
    lines.extend("v " + " ".join(f"{c:.3f}".rstrip("0").rstrip(".") for c in p) for p in points)
    return first


def face(*corners):
    lines.append("f " + " ".join(map(str, corners)))


def turned(profile, start, end, step):
    """What a closed line of (radius, z), clockwise in that plane, goes over from one angle to another, without ends.
    @return for each angle, where its vertices begin"""
    whole = end - start == 360
    n = round((end - start) / step)
    rows = []
    for i in range(n if whole else n + 1):
        a = math.radians(start + (end - start) * i / n)
        rows.append(vertices([(r * math.cos(a), r * math.sin(a), z) for r, z in profile]))
    k = len(profile)
    for i in range(n):
        a, b = rows[i], rows[(i + 1) % len(rows)]
        for j in range(k):
            l = (j + 1) % k
            face(a + j, a + l, b + l, b + j)
    return rows


def groove(sign):
    """The raceway of a ring, from low z to high; sign is 1 for the outer ring, whose shoulder is at a lower radius."""
    radius, shoulder = 1.03 * BALL, PITCH + sign * 0.62 * BALL
    middle = PITCH + sign * (BALL - radius)
    half = math.acos((shoulder - middle) * sign / radius)
    return shoulder, [(middle + sign * radius * math.cos(half * t / 5), radius * math.sin(half * t / 5))
                      for t in range(-5, 6)]


def bearing():
    h, c = WIDTH / 2, 1.0
    shoulder, race = groove(1)
    outer = [(shoulder, -h + 0.3), *race, (shoulder, h - 0.3), (shoulder + 0.3, h), (OUTSIDE - c, h), (OUTSIDE, h - c),
             (OUTSIDE, -h + c), (OUTSIDE - c, -h), (shoulder + 0.3, -h)]
    part("outer_ring", STEEL)
    rows = turned(outer, CUT_TO, CUT_FROM + 360, 4)
    part("outer_ring_cut", CUT)
    k = len(outer)
    face(*range(rows[0] + k - 1, rows[0] - 1, -1))
    face(*range(rows[-1], rows[-1] + k))

    shoulder, race = groove(-1)
    inner = [(BORE, -h + c), (BORE, h - c), (BORE + c, h), (shoulder - 0.3, h), (shoulder, h - 0.3), *race[::-1],
             (shoulder, -h + 0.3), (shoulder - 0.3, -h), (BORE + c, -h)]
    part("inner_ring", STEEL)
    turned(inner, 0, 360, 5)

    for i in range(COUNT):
        part(f"ball_{i + 1}", BALLS)
        ball(360 * (i + 0.5) / COUNT)
    part("cage", BRASS)
    cage()


def ball(degrees):
    around, down = 24, 12
    a = math.radians(degrees)
    x, y = PITCH * math.cos(a), PITCH * math.sin(a)
    points = [(x, y, BALL)]
    for j in range(1, down):
        t = math.pi * j / down
        for i in range(around):
            u = 2 * math.pi * i / around
            points.append((x + BALL * math.sin(t) * math.cos(u), y + BALL * math.sin(t) * math.sin(u),
                           BALL * math.cos(t)))
    top = vertices(points + [(x, y, -BALL)])
    bottom = top + len(points)
    for i in range(around):
        k = (i + 1) % around
        face(top, top + 1 + i, top + 1 + k)
        for j in range(down - 2):
            row = top + 1 + j * around
            face(row + i, row + around + i, row + around + k, row + k)
        row = bottom - around
        face(bottom, row + k, row + i)


def cage():
    """Two sheets that lie on each other between the balls, with a rivet, and go around these on both sides."""
    thick, low, high = 0.7, PITCH - 1.25, PITCH + 1.25
    room = BALL + 0.15
    ends = math.sqrt(room * room - 0.01)  # where the sheet meets the plane between both
    line = []  # (distance from the ball along the pitch circle, z, direction out of the sheet)
    gap = math.pi * PITCH / COUNT
    for i in range(3):
        line.append((-gap + (gap - ends - thick) * i / 3, 0.1, (0, 1)))
    for t in range(-8, 9):
        a = math.radians(90 / 8 * t)
        line.append((room * math.sin(a), max(room * math.cos(a), 0.1), (math.sin(a), math.cos(a))))
    for i in range(3):
        line.append((ends + thick + (gap - ends - thick) * i / 3, 0.1, (0, 1)))
    for side in (1, -1):
        rows = []
        for i in range(COUNT):
            for s, z, n in line:
                corners = []
                for r, out in ((low, 0), (high, 0), (high, thick), (low, thick)):
                    a = 2 * math.pi * (i + 0.5) / COUNT + (s + out * n[0]) / PITCH
                    height = max(z + out * n[1], thick if out else 0.1)
                    corners.append((r * math.cos(a), r * math.sin(a), side * height))
                rows.append(vertices(corners))
        for i, a in enumerate(rows):
            b = rows[(i + 1) % len(rows)]
            for j in range(4):
                k = (j + 1) % 4
                face(*((a + j, a + k, b + k, b + j) if side > 0 else (a + j, b + j, b + k, a + k)))
        for i in range(COUNT):
            rivet(360 * i / COUNT, side * thick, side)


def rivet(degrees, z, side):
    around, steps, radius, height = 12, 3, 0.8, 0.45
    a = math.radians(degrees)
    x, y = PITCH * math.cos(a), PITCH * math.sin(a)
    points = []
    for j in range(steps):
        t = math.pi / 2 * j / steps
        for i in range(around):
            u = 2 * math.pi * i / around
            points.append((x + radius * math.cos(t) * math.cos(u), y + radius * math.cos(t) * math.sin(u),
                           z + side * height * math.sin(t)))
    first = vertices(points + [(x, y, z + side * height)])
    for i in range(around):
        k = (i + 1) % around
        quads = [(first + j * around + i, first + j * around + k, first + (j + 1) * around + k,
                  first + (j + 1) * around + i) for j in range(steps - 1)]
        last = first + (steps - 1) * around
        quads.append((last + i, last + k, first + steps * around))
        for q in quads:
            face(*(q if side > 0 else q[::-1]))


bearing()
FOLDER = pathlib.Path(__file__).parent
(FOLDER / "bearing.obj").write_text("\n".join(lines) + "\n", encoding="ascii")
with open(FOLDER / "bearing.mtl", "w", encoding="ascii") as out:
    for name, color, shine in ((STEEL, (0.74, 0.77, 0.81), 200), (BALLS, (0.90, 0.91, 0.93), 600),
                               (BRASS, (0.85, 0.65, 0.26), 120), (CUT, (0.76, 0.27, 0.20), 8)):
        out.write(f"newmtl {name}\nKd {color[0]} {color[1]} {color[2]}\nNs {shine}\n")
