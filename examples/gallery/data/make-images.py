#!/usr/bin/env python3
"""Makes the images of the textures scene: bubble.png, scales.png and the six faces of a die, beside this file."""

import colorsys
import math
import pathlib
import struct
import zlib

FOLDER = pathlib.Path(__file__).parent


def mix(a, b, t):
    return tuple(x + (y - x) * t for x, y in zip(a, b))


def step(low, high, x):
    """0 below low, 1 above high, smooth in between."""
    t = min(max((x - low) / (high - low), 0), 1)
    return t * t * (3 - 2 * t)


def hexadecimal(text):
    return tuple(int(text[i:i + 2], 16) / 255 for i in (0, 2, 4))


def write(name, width, height, pixel):
    """Writes a PNG; pixel(x, y) gives 3 or 4 channels from 0 to 1 at a pixel's middle."""
    rows = b""
    for y in range(height):
        channels = [c for x in range(width) for c in pixel(x + 0.5, y + 0.5)]
        rows += b"\0" + bytes(round(255 * min(max(c, 0), 1)) for c in channels)
    color_type = 6 if len(pixel(0, 0)) == 4 else 2

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", width, height, 8, color_type, 0, 0, 0)
    (FOLDER / name).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                                chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def smooth(pixel, samples=4):
    """The same picture with each pixel averaged over its area."""
    places = [(i + 0.5) / samples - 0.5 for i in range(samples)]

    def averaged(x, y):
        colors = [pixel(x + dx, y + dy) for dx in places for dy in places]
        return tuple(sum(channel) / len(colors) for channel in zip(*colors))

    return averaged


def bubble(x, y):
    """A soap bubble: all but clear in the middle, iridescent towards its edge, with two reflections of a window."""
    x, y = x / 128 - 1, y / 128 - 1
    r = math.hypot(x, y) / 0.96
    angle = math.atan2(y, x) / (2 * math.pi)
    film = colorsys.hsv_to_rgb((0.55 + 0.9 * r * r + 0.35 * math.sin(2 * math.pi * angle)) % 1, 0.55, 1)
    alpha = (0.10 + 0.75 * r ** 5) * (1 - step(0.975, 1.0, r))
    glare = 0.95 * (1 - step(0.55, 1, math.hypot((x + 0.38) / 0.26 + (y + 0.42) / 0.5, (y + 0.42 - (x + 0.38)) / 0.3)))
    glow = 0.5 * (1 - step(0.2, 1, math.hypot((x - 0.42) / 0.3, (y - 0.5) / 0.3)))
    light = max(glare, glow)
    return mix(film, (1, 1, 1), light) + (max(alpha, light),)


def scales(x, y):
    """Overlapping discs of rings, like waves or roof tiles. The image repeats seamlessly in both directions."""
    size = 256
    colors = [hexadecimal(c) for c in ("0b2545", "f4e9d8", "13518a", "f4e9d8", "2a8fbd", "f4e9d8", "7fd1c7")]
    # The lowest row that covers the point is in front. Rows are a quarter of a disc apart, every other one shifted.
    for row in range(6, -4, -1):
        centre_y = row * size / 4
        centre_x = size / 2 * (row % 2)
        dx = (x - centre_x + size / 2) % size - size / 2
        r = math.hypot(dx, y - centre_y) / (size / 2)
        if r < 1:
            return colors[min(int((1 - r) * 7), 6)]
    return colors[0]


def face(number, light, dark):
    """A side of a die, with its number in dots."""
    places = {1: [(0, 0)], 2: [(-1, -1), (1, 1)], 3: [(-1, -1), (0, 0), (1, 1)],
              4: [(-1, -1), (1, -1), (-1, 1), (1, 1)], 5: [(-1, -1), (1, -1), (0, 0), (-1, 1), (1, 1)],
              6: [(-1, -1), (1, -1), (-1, 0), (1, 0), (-1, 1), (1, 1)]}[number]
    light, dark = hexadecimal(light), hexadecimal(dark)

    def pixel(x, y):
        x, y = x / 128 - 1, y / 128 - 1
        color = mix(light, dark, step(0.1, 1.5, math.hypot(x + 0.4, y + 0.5)))
        border = max(abs(x), abs(y))
        color = mix(color, mix(light, (1, 1, 1), 0.55), step(0.885, 0.9, border) - step(0.93, 0.945, border))
        for px, py in places:
            distance = math.hypot(x - 0.48 * px, y - 0.48 * py)
            color = mix((1, 1, 1), color, step(0.150, 0.165, distance))
        return color

    return pixel


write("bubble.png", 256, 256, bubble)
write("scales.png", 256, 128, smooth(scales))
for i, (light, dark) in enumerate([("ff8a5c", "c2274d"), ("ffd35c", "d9761a"), ("8fe36b", "1f8f5f"),
                                   ("62e0d9", "1572a8"), ("6fa8ff", "3b3fc4"), ("e38cff", "7a2aa8")], 1):
    write(f"face{i}.png", 256, 256, face(i, light, dark))
