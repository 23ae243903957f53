#!/usr/bin/env python3
"""Makes paints.ttf, beside this file: glyphs in colour for tests, of every kind of paint that COLR's version 1 has.

Needs fontTools (python3-fonttools). An em has 1000 units; most glyphs fill 0 to 800 of it.
"""

import math
import pathlib

from fontTools.colorLib.builder import buildCOLR, buildCPAL
from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib.tables import otTables
from fontTools.ttLib.tables.otTables import CompositeMode, ExtendMode as Extend, PaintFormat as P
from fontTools.varLib.varStore import OnlineVarStoreBuilder

FILE = pathlib.Path(__file__).parent / "paints.ttf"

RED, GREEN, BLUE, SAND, SEA, WHITE, PLUM, SUN = range(8)
PALETTE = ["ff0000", "00ff00", "0000ff", "cc9966", "3366cc", "ffffff", "602080", "ffd040"]
TEXT = 0xFFFF


def rectangle(pen, left, bottom, right, top):
    pen.moveTo((left, bottom))
    for corner in ((left, top), (right, top), (right, bottom)):
        pen.lineTo(corner)
    pen.closePath()


def disc(pen, x, y, r):
    n = 16
    at = lambda i, r: (x + r * math.cos(math.pi * i / n), y - r * math.sin(math.pi * i / n))
    pen.moveTo(at(0, r))
    for i in range(0, 2 * n, 2):
        pen.qCurveTo(at(i + 1, r / math.cos(math.pi / n)), at(i + 2, r))
    pen.closePath()


def petal(pen, length, width):
    pen.moveTo((0, 0))
    pen.qCurveTo((-width, length * 0.55), (0, length))
    pen.qCurveTo((width, length * 0.55), (0, 0))
    pen.closePath()


OUTLINES = {
    ".notdef": lambda pen: None,
    "square": lambda pen: rectangle(pen, 0, 0, 800, 800),
    "left": lambda pen: rectangle(pen, 0, 0, 500, 800),
    "right": lambda pen: rectangle(pen, 300, 0, 800, 800),
    "cell": lambda pen: rectangle(pen, 0, 0, 100, 100),
    "disc": lambda pen: disc(pen, 400, 400, 400),
    "dot": lambda pen: disc(pen, 0, 0, 100),
    "petal": lambda pen: petal(pen, 400, 190),
}


def solid(color, alpha=1):
    return {"Format": P.PaintSolid, "PaletteIndex": color, "Alpha": alpha}


def clipped(outline, paint):
    return {"Format": P.PaintGlyph, "Glyph": outline, "Paint": paint}


def layers(*paints):
    return {"Format": P.PaintColrLayers, "Layers": list(paints)}


def other(glyph):
    return {"Format": P.PaintColrGlyph, "Glyph": glyph}


def moved(kind, paint, **numbers):
    return {"Format": kind, "Paint": paint, **numbers}


def translated(x, y, paint):
    return moved(P.PaintTranslate, paint, dx=x, dy=y)


def composite(mode, source, backdrop):
    return {"Format": P.PaintComposite, "CompositeMode": mode, "SourcePaint": source, "BackdropPaint": backdrop}


def line(extend, *stops):
    return {"Extend": extend,
            "ColorStop": [dict(zip(("StopOffset", "PaletteIndex", "Alpha"), (*stop, 1)[:3])) for stop in stops]}


def linear(colors, p0, p1, p2):
    return {"Format": P.PaintLinearGradient, "ColorLine": colors, "x0": p0[0], "y0": p0[1], "x1": p1[0], "y1": p1[1],
            "x2": p2[0], "y2": p2[1]}


def radial(colors, x0, y0, r0, x1, y1, r1):
    return {"Format": P.PaintRadialGradient, "ColorLine": colors, "x0": x0, "y0": y0, "r0": r0, "x1": x1, "y1": y1,
            "r1": r1}


def sweep(colors, x, y, start, end):
    return {"Format": P.PaintSweepGradient, "ColorLine": colors, "centerX": x, "centerY": y, "startAngle": start,
            "endAngle": end}


def transforms():
    """Cells in a grid of 300, by nine ways there, and one to the right that is moved with its colours."""
    cell = lambda color=RED: clipped("cell", solid(color))
    return layers(
        cell(),
        translated(300, 0, cell()),
        moved(P.PaintScaleUniform, translated(400, 0, cell()), scale=1.5),
        moved(P.PaintScale, translated(0, 200, cell()), scaleX=1, scaleY=1.5),
        moved(P.PaintScaleAroundCenter, translated(300, 300, cell()), scaleX=-1, scaleY=1, centerX=350, centerY=0),
        moved(P.PaintRotate, translated(300, -700, cell()), angle=90),
        moved(P.PaintRotateAroundCenter, translated(0, 600, cell()), angle=180, centerX=50, centerY=650),
        moved(P.PaintSkewAroundCenter, translated(300, 600, cell()), xSkewAngle=45, ySkewAngle=0, centerX=0,
              centerY=650),
        moved(P.PaintTransform, cell(),
              Transform={"xx": 1, "yx": 0, "xy": 1, "yy": 1, "dx": 600, "dy": 600}),
        translated(900, 0, moved(P.PaintSkew, clipped("cell", moved(P.PaintScaleUniformAroundCenter, linear(
            line(Extend.PAD, (0, GREEN), (0.5, GREEN), (0.5, BLUE), (1, BLUE)), (0, 0), (100, 0), (0, 100)),
            scale=0.5, centerX=100, centerY=0)), xSkewAngle=0, ySkewAngle=45)))


def flower():
    """Something to look at: eight petals, a middle with a light, and a sky."""
    leaf = clipped("petal", radial(line(Extend.PAD, (0, SUN), (0.55, RED), (1, PLUM)), 0, 60, 0, 0, 60, 340))
    ring = [moved(P.PaintRotate, leaf, angle=angle) for angle in (0, 45, 90, 135, 180, -135, -90, -45)]
    return layers(
        clipped("disc", linear(line(Extend.PAD, (0, SEA), (1, WHITE)), (0, 800), (0, 0), (800, 800))),
        translated(400, 400, layers(*ring)),
        translated(400, 400, clipped("dot", radial(
            line(Extend.PAD, (0, WHITE), (0.4, SUN), (1, SAND)), -30, 30, 0, 0, 0, 100))))


def pinwheel():
    """Something to look at: all around in colours, a hole in the middle, and a rim in the text's colour."""
    around = line(Extend.PAD, (0, RED), (0.167, SUN), (0.333, GREEN), (0.5, SEA), (0.667, BLUE), (0.833, PLUM),
                  (1, RED))
    hole = translated(400, 400, clipped("dot", solid(WHITE)))
    inner = moved(P.PaintScaleUniformAroundCenter, clipped("disc", sweep(around, 400, 400, 0, 360)), scale=0.9,
                  centerX=400, centerY=400)
    return composite(CompositeMode.SRC_OUT, layers(clipped("disc", solid(TEXT)), inner), hole)


# What varies along the axis: a delta for each number, which the numbers' indices lead to through a map.
# Of a place, an alpha, and a stop's offset and alpha, the last three in 2.14 bits.
DELTAS = [300, 100, -8192, 8192, 4096]
MOVE, ALPHA, STOP, NOTHING = 0, 2, 3, 0xFFFFFFFF


def variable(kind, index, **rest):
    return {"Format": kind, "VarIndexBase": index, **rest}


GRADIENT = ((0, RED), (1, BLUE))
PAINTS = {
    "A": clipped("square", solid(RED)),                                                    # with a clip box
    "B": layers(clipped("square", solid(GREEN)), clipped("left", solid(BLUE, 0.5)), clipped("left", solid(TEXT, 0.5))),
    "C": translated(800, 0, moved(P.PaintRotate, other("A"), angle=90)),                   # the box turns along
    "D": clipped("square", clipped("disc", solid(RED))),
    "L": clipped("square", linear(line(Extend.PAD, *GRADIENT), (200, 0), (600, 0), (200, 800))),
    "M": clipped("square", linear(line(Extend.REPEAT, *GRADIENT), (200, 0), (400, 200), (200, 200))),
    "N": clipped("square", linear(line(Extend.REFLECT, (0.25, RED, 0), (0.75, BLUE)), (0, 100), (0, 500), (100, 100))),
    "R": clipped("square", radial(line(Extend.PAD, *GRADIENT), 400, 400, 100, 400, 400, 300)),
    "S": clipped("square", radial(line(Extend.REPEAT, *GRADIENT), 400, 400, 0, 400, 400, 200)),
    "T": clipped("square", radial(line(Extend.PAD, *GRADIENT), 200, 400, 100, 600, 400, 0)),
    "U": clipped("square", sweep(line(Extend.PAD, *GRADIENT), 400, 400, 90, 270)),
    "V": clipped("square", sweep(line(Extend.REPEAT, *GRADIENT), 400, 400, 45, 135)),
    "W": clipped("square", sweep(line(Extend.REFLECT, *GRADIENT), 400, 400, 0, 90)),
    "X": transforms(),
    "f": flower(),
    "p": pinwheel(),
    # Moved to the right and up, and fainter; and a gradient's end that comes later and covers more.
    "v": variable(P.PaintVarTranslate, MOVE, dx=0, dy=0, Paint=clipped(
        "cell", variable(P.PaintVarSolid, ALPHA, PaletteIndex=RED, Alpha=1))),
    "w": clipped("square", variable(
        P.PaintVarLinearGradient, NOTHING, x0=0, y0=0, x1=800, y1=0, x2=0, y2=800,
        ColorLine={"Extend": Extend.PAD, "ColorStop": [
            dict(StopOffset=0, PaletteIndex=RED, Alpha=1, VarIndexBase=NOTHING),
            dict(StopOffset=0.25, PaletteIndex=BLUE, Alpha=0.5, VarIndexBase=STOP)]})),
    # Hostile ones: without an end, without bounds, millions of layers, and a thousand over each other.
    "a": layers(clipped("square", solid(RED)), other("b")),
    "b": clipped("disc", other("a")),
    "c": solid(RED),
    "d": other("d0"),
    "e": other("e0"),
}
for i in range(12):
    PAINTS[f"d{i}"] = layers(*4 * [other(f"d{i + 1}")])
PAINTS["d12"] = clipped("square", solid(RED))
for i in range(5):
    PAINTS[f"e{i}"] = layers(*4 * [other(f"e{i + 1}")])
PAINTS["e5"] = clipped("square", solid(RED, 0.5))
FIRST_MODE = 0xE000
for mode in CompositeMode:
    # Backdrop alone to the left, both in the middle, source alone to the right.
    PAINTS[f"mode{mode.value}"] = composite(mode, clipped("right", solid(SAND, 0.75)), clipped("left", solid(SEA, 0.5)))
CLIP_BOXES = {"A": (0, 0, 800, 450)}


def main():
    names = list(OUTLINES) + list(PAINTS)
    characters = {ord(name): name for name in PAINTS if len(name) == 1}
    characters.update({FIRST_MODE + mode.value: f"mode{mode.value}" for mode in CompositeMode})
    glyphs = {}
    for name in names:
        pen = TTGlyphPen(None)
        # What is drawn where colours are not.
        OUTLINES.get(name, OUTLINES["square" if len(name) == 1 else ".notdef"])(pen)
        glyphs[name] = pen.glyph()
    builder = FontBuilder(1000, isTTF=True)
    builder.setupGlyphOrder(names)
    builder.setupCharacterMap(characters)
    builder.setupGlyf(glyphs)
    left = lambda name: builder.font["glyf"][name].xMin if glyphs[name].numberOfContours else 0
    builder.setupHorizontalMetrics({name: (1000, left(name)) for name in names})
    builder.setupHorizontalHeader(ascent=900, descent=-100)
    builder.setupNameTable({"familyName": "Paints", "styleName": "Regular"})
    builder.setupOS2(sTypoAscender=900, sTypoDescender=-100, usWinAscent=900, usWinDescent=100)
    builder.setupPost(keepGlyphNames=False)
    builder.setupFvar([("GROW", 0, 0, 1, "Grow")], [])
    builder.setupGvar({})
    store = OnlineVarStoreBuilder(["GROW"])
    store.setSupports([{"GROW": (0, 1, 1)}])
    indices = {delta: store.storeDeltas([delta]) for delta in sorted(DELTAS)}
    index_map = otTables.DeltaSetIndexMap()
    index_map.mapping = [indices[delta] for delta in DELTAS]
    builder.font["COLR"] = buildCOLR(PAINTS, version=1, glyphMap=builder.font.getReverseGlyphMap(),
                                     clipBoxes=CLIP_BOXES, varStore=store.finish(), varIndexMap=index_map)
    builder.font["CPAL"] = buildCPAL([[tuple(int(c[i:i + 2], 16) / 255 for i in (0, 2, 4)) + (1,) for c in PALETTE]])
    builder.font["head"].created = builder.font["head"].modified = 0
    builder.font.recalcTimestamp = False
    builder.save(FILE)


main()
