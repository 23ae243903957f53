#include "Scenes.h"

namespace gallery
{

namespace
{

constexpr SceneInfo cScenes[] = {
    {"coastline", "Coastlines of the world",
     "The 1,629 outlines of all countries, nearly a hundred thousand points in one buffer, each outline drawn by one "
     "recorded command in a colour of its own.",
     makeCoastline},
    {"primitives", "The eight primitives",
     "Points in seven sizes, lines, line strips and line loops; below them triangles, a triangle fan, a triangle strip "
     "and "
     "a patch of 16 control points that tessellation shaders turn into a smooth surface.",
     makePrimitives},
    {"textures", "Textures",
     "Soap bubbles from a PNG with alpha, blended over each other; the earth from a JPEG; a small image that repeats "
     "without a seam; and a cube map whose six faces show on two turning dice.",
     makeTextures},
    {"polygon", "Regular polygons",
     "From three corners to sixty, with texture coordinates that fit the circle around them into the picture. As time "
     "runs the corners turn, and the picture stays.",
     makePolygon},
    {"meshes", "Cubes and spheres",
     "A cube covered with a strip of six pictures and one with a cube map; spheres of few and of many sectors and "
     "stacks, "
     "a flattened one, one with its normals, and one with the earth around it.",
     makeMeshes},
    {"camera", "A hall to fly through",
     "Keys w, a, s and d move the camera, Alt and the arrows or the wheel turn it, moving the pointer with Shift pans "
     "it "
     "and Ctrl with the wheel zooms. It stays inside.",
     makeCamera},
    {"sky", "A sky box",
     "A cube map, computed when the program starts, surrounds the scene and keeps its distance. The balls mirror it. "
     "The "
     "wheel looks around.",
     makeSky},
    {"instances", "Ten thousand instances",
     "Columns arranged like the seeds of a sunflower. One command draws them all; each has a matrix and a colour of "
     "its "
     "own.",
     makeInstances},
    {"state", "Render state",
     "Rectangles that pass through each other, without and with the depth test; a star in the stencil buffer that "
     "lets a picture through or keeps it away; colours blended by their alpha and by addition; one ball as "
     "surfaces, lines and points.",
     makeState},
    {"animation", "Pendulums on the frame clock",
     "In one minute each of the pendulums swings once more often than the longer one beside it, so that waves run "
     "through the row and all of it is in line again at the end. Space stops it and lets it go on.",
     makeAnimation},
    {"polygons", "Polygons in triangles",
     "Fans around one corner where a fan will do, in blue; elsewhere triangles cut off one by one, in red. The numbers "
     "are their order.",
     makePolygons},
    {"lines", "Thick lines",
     "A corner, bevels on either side, points on a straight line, lines that turn back, rings, a very wide line, ever "
     "sharper turns and smooth ones, with the triangles that they are made of.",
     makeLines},
    {"recycled", "Outlines over stored vertices",
     "Outlines drawn through the vertices that fill the shapes. The two open ones go through their corners in the "
     "order "
     "of the golden numbers; the white ones tell how these are stored.",
     makeRecycled},
    {"plot", "A hundred thousand samples",
     "A curve of constant thickness over its fill, made of no more than the view can show. Drag to move it; the wheel, "
     "or "
     "plus and minus, zoom about the pointer down to single samples, a drag with Shift zooms to a box, and 0 or a "
     "double "
     "click shows all.",
     makePlot},
    {"axes", "Axes of every kind",
     "Linear, logarithmic and of time, with numbers that people would choose; two axes for two curves; bands, bars, "
     "stems, candles, steps, markers with error bars. Each moves by itself, and one axis alone where a drag begins "
     "beside it.",
     makeAxes},
    {"stream", "Sixteen live channels",
     "6,250 samples a second for each of sixteen curves, of which four seconds are seen. All share one axis of time.",
     makeStream},
    {"scatter", "A million markers",
     "A spiral of stars, coloured by their distance from its middle. The GPU has them once, so moving and zooming cost "
     "the program nothing, down to single ones.",
     makeScatter},
    {"heatmap", "Heat and heights",
     "Hills in colours that are mixed, with lines of equal height; and the 240,000 numbers of a whistle, each a cell.",
     makeHeatMaps},
    {"input", "Pointer, wheel and keys",
     "The last events of every kind: the pointer's trail and its clicks, wheel and zoom as bars, modifiers as lamps, "
     "keys as they go down, the focus as a border. The window's title tells the last one's record in full.",
     makeInput},
    {"grab", "Frames in frames",
     "Each frame is read back and becomes a texture in the next one, which stands in that one in turn. S saves the "
     "last frame that was read as a PNG file.",
     makeGrab},
    {"windows", "Two windows, one clock",
     "Planets that go by a clock. W opens a second window with a view and a context of its own, which goes by the same "
     "one: both show the same moment, and Space stops both, pressed in either.",
     makeWindows},
    {"text", "A page of text",
     "Four scripts, left, centred and right, under headings in two fonts; below them four sizes. Every letter stands "
     "on "
     "whole pixels, on every kind of screen.",
     makeText},
    {"unicode", "Blocks of characters",
     "The characters of one font file, sixteen to a row with the code point of the first. What the font lacks shows as "
     "a box.",
     makeUnicode},
    {"depth", "Text in depth",
     "Words before, between and behind the balls that wind around them: with the depth test, where the nearer hides "
     "the farther, and without it.",
     makeDepth},
    {"fills", "Fills by two rules",
     "A star that crosses itself and rings that turn both ways, by the non-zero and the even-odd rule; islands in "
     "lakes on islands; thirty-six rings in one path; petals to see through; tiles that share their edges without a "
     "seam.",
     makeFills},
    {"strokes", "Caps, joins, dashes, widths",
     "Every cap with every join, solid, dashed and dotted; widths from a quarter of a point to forty; translucent "
     "lines that cross themselves and are no darker there.",
     makeStrokes},
    {"icons", "Icons of path data",
     "Twenty-four icons, each a few strings of SVG path data, in five sizes from 16 points to 512, drawn by one list "
     "of shapes. A click shows another one large.",
     makeIcons},
    {"blueprint", "From a site to a screw",
     "Fifty thousand shapes at survey coordinates of ten thousand kilometres, down to the thread of a screw of a "
     "millimetre. Drag and turn the wheel to move it, zoom about the pointer, point at a shape to see it, click to "
     "choose it; S goes to the screw, 0 shows all.",
     makeBlueprint},
    {"dimensions", "What measures how much",
     "A plate and the plan of a room with their dimensions: arrows, ticks and numbers that have their size on the "
     "screen at every zoom, and a scale bar. Drag and turn the wheel to move it, zoom about the pointer, point at a "
     "dimension to see all of it, 0 shows all.",
     makeDimensions},
    {"type", "One word at every size",
     "From 6 to 400 pixels, turned, with halo, underline and gradient, light and bold, all of them the same outlines; "
     "and beside pictures of letters out of a font file, which have a size of their own.",
     makeType},
    {"scripts", "Any script",
     "The same paragraph in eight languages, and emoji, from the left and from the right, wrapped by words or, where "
     "there are no "
     "spaces, by a dictionary. The mouse selects whole letters, Ctrl-C copies them.",
     makeScripts},
    {"labels", "Ten thousand names",
     "Towns that nobody has built, each with a dot and a name that stands to the right of it, to the left, above or "
     "below, as far as there is room; the larger ones first. Drag and turn the wheel to move the map, zoom about the "
     "pointer, 0 shows all.",
     makeLabels},
    {"editor", "Fields to type in",
     "A field of one line and one of many: carets, selections by mouse and keys, the clipboard, undo, and what input "
     "methods compose. Click into one; Escape leaves it.",
     makeEditor},
    {"model", "A gear drive",
     "Twelve solids in the light of the camera, with lines of one width where their faces meet; a hood as wires, a "
     "pinion that is selected. Beside it a knob with every face flat, smooth up to an angle, and with its triangles.",
     makeModel},
    {"samples", "Samples",
     "One picture, drawn aside with one sample per pixel and with four, and with eight where the driver has them; "
     "below "
     "it a part, eight times as large. Samples smooth every edge, at no cost to the program.",
     makeSamples},
    {"upload", "A map that opens while it moves",
     "The countries of the world are read, cut into triangles and handed over while frames go on; the bar tells how "
     "far that is. Click to see it once more.",
     makeOpening},
    {"orbit", "A wheel to turn",
     "The wheel of a compressor, about the point that is pressed: drags turn it and go on for a moment, with Shift "
     "they "
     "move it; the wheel goes nearer to what is under the pointer. Click an end of the axes, or press 1 to 7, to look "
     "from a side, P for no perspective, 0 to see all.",
     makeOrbitScene},
    {"pick3d", "Under the pointer, in space",
     "A shell of 26,400 triangles. The one under the pointer and its neighbours, with the weights of its corners, in "
     "the loupe; a ray, and where it goes in and out; what a lasso has caught, which Alt and a drag draw. A drag turns "
     "the shell, the wheel goes nearer.",
     makePick3D},
    {"horizon", "A car on a globe",
     "Four metres of car on 6,400 kilometres of globe, in metres from the middle of the earth: nothing shakes, and the "
     "shadow, four millimetres above the ground, does not flicker. The wheel goes from its lamps out into space, 0 "
     "shows all of it.",
     makeHorizon},
    {"section", "An engine, cut open",
     "A quarter is cut out of its housing, and the cut is closed: every part is hatched to its own side. Dimensions "
     "and names keep to their places while it turns. Crankshaft, rod and plug are left whole.",
     makeSection},
    {"glass", "Through glass",
     "Bottles behind bottles: up to thirty surfaces lie over each other, in the order in which they are seen, from "
     "every "
     "side and without anybody sorting them. Drags turn it, Space lets it turn.",
     makeGlass},
    {"shadow", "A town in the evening",
     "The shadows of a sun, and the dark of corners, eaves and lanes that little light gets into: one line of the "
     "program. Drags turn it, the wheel goes nearer, Space lets it turn.",
     makeShadow},
    {"swarm", "A hundred thousand rocks",
     "The ring of a planet: one mesh a hundred thousand times, each with a place, a turn and a colour of its own. The "
     "one under the pointer shows its orbit; a click leaves a trail behind it. Moons and stars are points, and nothing "
     "is uploaded while all of it turns.",
     makeSwarm},
    {"flights", "Day and night",
     "A picture of the earth laid around a globe, its air, and the sun over Arabia. Flights between twelve cities, "
     "the shortest way, as arcs. Drags turn it, the wheel goes nearer.",
     makeFlights},
};

} // namespace

std::span<const SceneInfo> scenes() { return cScenes; }

} // namespace gallery
