// What all stages of the drawing programs know: where shapes and their points are, in pixels from the middle of the
// viewport, however far from the origin that is. Before it stand the version and what is to be drawn: FILLS, STROKES,
// ROUND (caps or joins), CAPS (round or square ones), DASHES, LINKS, GRADIENTS, FAR (lines whose ends are far away),
// GLYPHS, IMAGES, PICTURES (of glyphs), HALOS (of texts, which are one shape), COLORS
// (pictures of glyphs in colour), PLACED (those of halos and along paths).
// What is not needed is left out: software drivers work out both sides of every branch.
uniform usamplerBuffer shapes; // six texels each
uniform isamplerBuffer elements; // what quads are made from: see Element
uniform usamplerBuffer longElements; // what has no room there, and glyphs
uniform isamplerBuffer points; // whole numbers of a shape's steps from its own origin
uniform isamplerBuffer nodes;  // boxes around a shape's lines, a tree: two texels each
uniform ivec4 center;          // the model point in the middle, in units: low and high word of x, then of y
uniform int coarseness;        // the power of two that units are larger by than those of origins
uniform vec4 toPixels;         // pixels per model unit, by columns
uniform vec2 halfSize;         // of the viewport, in pixels
uniform float pixelsPerPoint;

const int cTriangles = 0, cEdge = 1, cLine = 2, cTip = 3, cBox = 4, cNode = 5, cGlyph = 6, cPlaced = 7;
const int cPicture = 8, cColoredPicture = 9, cLong = 15;
const int cLongQuads = 1 << 27; // quads from this number on are long elements
const uint cVisible = 1u, cStroke = 2u, cWidthInPoints = 4u, cDashesInPoints = 8u, cOpaque = 16u;
// Of a quad: the first node has others, which are to be looked at; all its lines are, or a chord for each four.
const uint cEntered = 1u << 31, cLines = 1u << 30, cChords = 1u << 29;
const uint cMoved = 32u, cLinked = 64u, cGradient = 128u, cGlyphs = 4096u, cImage = 8192u;
const uint cFrame = 16384u, cSymbol = 32768u;
// Of a glyph's picture.
const uint cPaint = 1u << 30, cColored = 1u << 28;
// Of a triangle's points; the first one has something else above.
const uint cPointBits = 0x07ffffffu;
// How much larger boxes are taken for than they are: by what floats lose of those that are far larger than the view.
const float cLoose = 1.0 + 1e-6;
// Pixels from the middle beyond which floats are too coarse.
const float cFar = 32768.0;

// A quad's shape and kind, then its numbers as long elements have them; of lines the one within its leaf and the leaf.
uvec4 elementOf(int quad)
{
#if defined GLYPHS || defined PICTURES
    if (quad >= cLongQuads)
        return texelFetch(longElements, quad - cLongQuads);
#endif
    uvec2 element = uvec2(texelFetch(elements, quad).xy);
    int kind = int(element.x >> 28);
    if (kind == cLong)
        return texelFetch(longElements, int(element.y));
    uvec4 result = uvec4(element.x, element.y & 3u, element.y >> 2, 0u);
    if (kind == cTriangles)
        result.yzw = uvec3(element.y & (31u << 27 | 511u), element.y >> 9 & 511u, element.y >> 18 & 511u);
    if (kind == cNode)
        result.yz = uvec2(element.y >> 12, (element.y >> 12) - (element.y & 4095u));
    return result;
}

// How a shape's points become pixels: pixels * (point - middle + toMiddle).
struct Place
{
    ivec2 middle;  // the viewport's middle in steps, as far as whole numbers go
    vec2 toMiddle; // and the rest of it
    mat2 pixels;   // per step
};

float powerOfTwo(int exponent) { return uintBitsToFloat(uint(clamp(exponent, -126, 127) + 127) << 23); }

// Of a number of 64 bits. The magnitude comes first, so that small negative ones keep all their digits.
float toFloat(uvec2 n)
{
    bool isNegative = int(n.y) < 0;
    if (isNegative)
    {
        n = ~n;
        n.x += 1u;
        n.y += n.x == 0u ? 1u : 0u;
    }
    float f = float(n.y) * 4294967296.0 + float(n.x);
    return isNegative ? -f : f;
}

// An origin in the units that the middle is in.
uvec2 coarse(uvec2 n)
{
    return coarseness == 0 ? n : uvec2(n.x >> coarseness | n.y << (32 - coarseness), uint(int(n.y) >> coarseness));
}

uvec2 subtract(uvec2 a, uvec2 b) { return uvec2(a.x - b.x, a.y - b.y - (a.x < b.x ? 1u : 0u)); }

// n / 2^shift as a whole number and a fraction of 0 to 1; (0, all of it) where 31 bits are too few.
void divide(uvec2 n, int shift, out int whole, out float fraction)
{
    float all_ = toFloat(n) * powerOfTwo(-shift);
    if (abs(all_) >= 1073741824.0)
    {
        whole = 0;
        fraction = all_;
    }
    else if (shift <= 0)
    {
        whole = int(n.x << uint(-shift));
        fraction = 0.0;
    }
    else if (shift < 32)
    {
        whole = int(n.x >> uint(shift) | n.y << uint(32 - shift));
        fraction = float(n.x & (1u << uint(shift)) - 1u) * powerOfTwo(-shift);
    }
    else
    {
        whole = shift < 63 ? int(n.y) >> (shift - 32) : int(n.y) >> 31;
        uint high = shift < 63 ? n.y & (1u << uint(shift - 32)) - 1u : n.y & 0x7fffffffu;
        fraction = (float(high) * 4294967296.0 + float(n.x)) * powerOfTwo(-shift);
    }
}

Place placeOf(int shape)
{
    uvec4 origin = texelFetch(shapes, 6 * shape);
    vec4 linear = uintBitsToFloat(texelFetch(shapes, 6 * shape + 1));
    uvec4 state = texelFetch(shapes, 6 * shape + 2);
    uvec2 x = subtract(uvec2(center.xy), coarse(origin.xy)), y = subtract(uvec2(center.zw), coarse(origin.zw));
    int shift = int(state.x) - coarseness;
    Place place;
    mat2 own = mat2(linear.xy, linear.zw);
    if ((state.z & cMoved) == 0u)
    {
        vec2 rest;
        divide(x, shift, place.middle.x, rest.x);
        divide(y, shift, place.middle.y, rest.y);
        place.toMiddle = -rest;
    }
    else
    {
        vec2 at = inverse(own) * (vec2(toFloat(x), toFloat(y)) * powerOfTwo(-shift));
        place.middle = ivec2(all(lessThan(abs(at), vec2(1073741824.0))) ? floor(at) : vec2(0.0));
        place.toMiddle = vec2(place.middle) - at;
    }
    place.pixels = mat2(toPixels.xy, toPixels.zw) * own * uintBitsToFloat(state.y);
    return place;
}

// A point of a stroke: a bit of it says that the brush turns there, whatever the joins are.
ivec2 strokePoint(int i)
{
    ivec2 p = texelFetch(points, i).xy;
    return ivec2(p.x & ~0x40000000 | p.x >> 1 & 0x40000000, p.y);
}

vec2 stepsOf(Place place, ivec2 point) { return vec2(point - place.middle) + place.toMiddle; }
vec2 pixelOf(Place place, ivec2 point) { return place.pixels * stepsOf(place, point); }

// Each shape is nearer than the one before, and covers a pixel once: what comes second is not less deep.
float depthOf(uint order) { return 1.0 - float(order + 1u) * powerOfTwo(-22); }

// The most that a length in steps grows to in pixels.
float stretchOf(Place place)
{
    vec2 most = max(abs(place.pixels[0]), abs(place.pixels[1]));
    float size = max(most.x, most.y);
    mat2 m = place.pixels / size;
    float sum = dot(m[0], m[0]) + dot(m[1], m[1]), det = determinant(m);
    return size * sqrt((sum + sqrt(max(sum * sum - 4.0 * det * det, 0.0))) / 2.0);
}

// What the last of a node's numbers tells: see EdgeNode.
bool isLeaf(int form) { return (form & 1) != 0; }
float deviationOf(int form) { return intBitsToFloat(form & ~255); }
float turnOf(int form) { return float(form >> 1 & 127) / 64.0; }

#ifdef STROKES
// What a stroke is drawn with: in pixels, or where a round brush of model units is round and about as large as in
// pixels.
struct Nib
{
    mat2 own; // from pixels
    float radius;
    float reach;    // of what a line covers, about its own points, and half of a pixel's diagonal
    float straight; // how far the points of a chord may be from it, in steps,
    float mostTurn; // and how far the directions of its lines from its own, as unit vectors
    float miterLimit;
};

Nib nibOf(Place place, int shape, uint flags)
{
    uvec2 style = texelFetch(shapes, 6 * shape + 4).xy;
    float reach = uintBitsToFloat(texelFetch(shapes, 6 * shape + 5).w), area = abs(determinant(place.pixels));
    bool isInPoints = (flags & cWidthInPoints) != 0u;
    float scale = sqrt(area), stretch = stretchOf(place);
    Nib nib;
    nib.own = isInPoints ? mat2(1.0) : inverse(place.pixels) * scale;
    nib.radius = uintBitsToFloat(style.x) * (isInPoints ? pixelsPerPoint : scale);
    nib.reach = nib.radius * max(reach, 1.0) + length(abs(nib.own[0]) + abs(nib.own[1])) / 2.0;
    // Its ends are turned, the more the wider the stroke is; where right angles don't stay right, turns may be seen the
    // larger for it.
    nib.straight = 1.0 / 32.0 / stretch;
    nib.mostTurn = area / (stretch * stretch) / (12.0 * max(nib.radius, 0.1));
    nib.miterLimit = uintBitsToFloat(style.y);
    return nib;
}
#endif

#ifdef FAR
uvec2 product(int a, int b)
{
    uint m = uint(abs(a)), n = uint(abs(b));
    uint low = (m & 0xffffu) * (n & 0xffffu), one = (m >> 16) * (n & 0xffffu), other = (m & 0xffffu) * (n >> 16);
    uint middle = (low >> 16) + (one & 0xffffu) + (other & 0xffffu);
    uvec2 result = uvec2(low & 0xffffu | middle << 16,
                         (m >> 16) * (n >> 16) + (one >> 16) + (other >> 16) + (middle >> 16));
    if ((a < 0) != (b < 0))
        result = subtract(uvec2(0u), result);
    return result;
}

// Replaces the ends of a line, in pixels, by others on it within reach where they are farther away. Where the line
// passes the middle is found in whole numbers: floats are off by pixels there when the ends are millions away.
bool shorten(Place place, ivec2 pa, ivec2 pb, inout vec2 a, inout vec2 b)
{
    if (max(max(abs(a.x), abs(a.y)), max(abs(b.x), abs(b.y))) <= cFar || pa == pb)
        return false;
    ivec2 toA = pa - place.middle, way = pb - pa;
    vec2 direction = vec2(way);
    float len = length(direction);
    direction /= len;
    float cross_ = toFloat(subtract(product(toA.x, way.y), product(toA.y, way.x))) / len +
                   place.toMiddle.x * direction.y - place.toMiddle.y * direction.x;
    // In steps from here on.
    vec2 foot = vec2(direction.y, -direction.x) * cross_;
    float reach = cFar / max(length(place.pixels * direction), 1e-30);
    vec2 alongs = vec2(dot(stepsOf(place, pa), direction), dot(stepsOf(place, pb), direction));
    // What is near stays as it is, to the last digit.
    if (alongs.x < -reach)
        a = place.pixels * (foot - direction * reach);
    else if (alongs.x > reach)
        a = place.pixels * (foot + direction * reach);
    if (alongs.y < -reach)
        b = place.pixels * (foot - direction * reach);
    else if (alongs.y > reach)
        b = place.pixels * (foot + direction * reach);
    return true;
}
#else
bool shorten(Place place, ivec2 pa, ivec2 pb, vec2 a, vec2 b) { return false; }
#endif

vec4 unpacked(uint rgba)
{
    return vec4(rgba & 255u, rgba >> 8 & 255u, rgba >> 16 & 255u, rgba >> 24) / 255.0;
}

#if defined GRADIENTS || defined PLACED
uniform samplerBuffer numbers;

float numberAt(int i) { return texelFetch(numbers, i).x; }
#endif

#ifdef GRADIENTS

vec4 stopColor(int at) { return vec4(numberAt(at + 1), numberAt(at + 2), numberAt(at + 3), numberAt(at + 4)); }

// The colour of a gradient that stands among the numbers, at a pixel.
vec4 gradientAt(int at, Place place, vec2 pixel)
{
    vec2 p = vec2(place.middle) - place.toMiddle + inverse(place.pixels) * pixel;
    float t;
    if (numberAt(at) != 0.0)
        t = dot(p, vec2(numberAt(at + 3), numberAt(at + 4))) + numberAt(at + 5);
    else
    {
        // The circle about a point between focus and centre, t of the way and t times as large, that goes through p.
        float scale = numberAt(at + 5);
        vec2 q = (p - vec2(numberAt(at + 3), numberAt(at + 4))) * scale, c = vec2(numberAt(at + 6), numberAt(at + 7));
        float a = dot(c, c) - 1.0, b = dot(q, c);
        t = (b - sqrt(max(b * b - a * dot(q, q), 0.0))) / a;
    }
    float spread = numberAt(at + 1);
    t = spread == 0.0 ? clamp(t, 0.0, 1.0) : spread == 1.0 ? 1.0 - abs(fract(t / 2.0) * 2.0 - 1.0) : fract(t);
    int n = int(numberAt(at + 2));
    if (n == 0)
        return vec4(0.0);
    at += 9;
    vec4 color = stopColor(at);
    for (int i = 1; i < n; ++i)
    {
        float from = numberAt(at), to = numberAt(at + 5);
        at += 5;
        if (t >= from)
            color = mix(stopColor(at - 5), stopColor(at), to > from ? min((t - from) / (to - from), 1.0) : 1.0);
    }
    return color;
}
#endif

#ifdef PLACED
// Place, cosine and sine of a glyph for which they stand among the numbers.
vec4 turnAt(int at) { return vec4(numberAt(at), numberAt(at + 1), numberAt(at + 2), numberAt(at + 3)); }
bool isHidden(uvec4 element)
{
    int at = int(element.z);
    return int(element.x >> 28) == cPlaced && numberAt(at + 2) == 0.0 && numberAt(at + 3) == 0.0;
}
#endif

#ifdef PICTURES
// The pen of a text's anchor, which stands on a quarter of a pixel and on a row of them, from the lower left corner.
ivec2 penOf(vec2 anchor) { return ivec2(floor((anchor + halfSize) * vec2(4.0, 1.0) + 0.5)); }

// How far a glyph is from there. A text's glyphs keep their distances, wherever it stands.
ivec2 wayTo(uvec4 element)
{
    vec2 way = uintBitsToFloat(element.zw);
#ifdef PLACED
    if (int(element.x >> 28) == cPlaced)
        way = vec2(numberAt(int(element.z)), numberAt(int(element.z) + 1));
#endif
    return ivec2(floor(way * vec2(4.0, -1.0) * pixelsPerPoint + 0.5));
}

// Where the picture of a glyph is, low and high corner, and what leads from a pixel to its texel.
void findPicture(ivec2 pen, uvec2 picture, out ivec4 box, out ivec2 toTexel)
{
    int column = pen.x >> 2, quarter = pen.x & 3;
    ivec4 b = ivec4(uvec4(picture.y) >> uvec4(0u, 8u, 16u, 24u) & 255u) - ivec4(0, 0, 128, 128);
    box.xy = ivec2(column + b.z, pen.y + b.w - b.y);
    box.zw = box.xy + b.xy;
    toTexel = ivec2(picture.x & 4095u, picture.x >> 12 & 4095u) + ivec2(quarter * b.x, 0) - box.xy;
}
#endif

#if defined GLYPHS || defined PICTURES
uniform usamplerBuffer glyphs;

// A text, as all of its glyphs have it.
struct Text
{
    mat2 pixels; // per unit of its own, y downwards
    vec2 anchor; // a pixel
    float size;  // of an em
    bool isOnRows;
};

// Text is never seen from behind. What is not turned and has its size on the screen stands on rows of pixels.
Text textOf(int shape, bool isInPoints, Place anchor)
{
    vec4 state = uintBitsToFloat(texelFetch(shapes, 6 * shape + 3));
    vec2 turn = uintBitsToFloat(texelFetch(shapes, 6 * shape + 5).xy);
    vec4 linear = uintBitsToFloat(texelFetch(shapes, 6 * shape + 1));
    Text text;
    text.pixels = mat2(toPixels.xy, toPixels.zw) * mat2(linear.xy, linear.zw);
    if (determinant(text.pixels) > 0.0)
        text.pixels[1] = -text.pixels[1];
    if (isInPoints)
        text.pixels = mat2(pixelsPerPoint, 0.0, 0.0, -pixelsPerPoint);
    text.pixels = text.pixels * mat2(turn.x, -turn.y, turn.y, turn.x);
    text.anchor = pixelOf(anchor, ivec2(0)) + pixelsPerPoint * vec2(state.z, -state.w);
    text.size = state.y;
    text.isOnRows = isInPoints && turn.x == 1.0;
    return text;
}

// Of the outline of a glyph, or of the pixels of its picture in colour.
Place placeOfGlyph(Text text, uvec4 element, uvec4 glyph, uvec4 more)
{
    vec4 turn = vec4(uintBitsToFloat(element.zw), 1.0, 0.0);
#ifdef PLACED
    if (int(element.x >> 28) == cPlaced)
        turn = turnAt(int(element.z));
#endif
    mat2 local = text.pixels * mat2(turn.z, turn.w, -turn.w, turn.z);
    vec2 at = text.anchor + text.pixels * turn.xy;
    if (text.isOnRows && turn.z == 1.0)
        at.y = floor(text.anchor.y + halfSize.y + 0.5) + floor(at.y - text.anchor.y + 0.5) - halfSize.y;
    at += local * (text.size * uintBitsToFloat(more.xy));
    Place place = Place(ivec2(0), vec2(0.0), local * (text.size * uintBitsToFloat(glyph.w)));
    place.toMiddle = inverse(place.pixels) * at;
    return place;
}
#endif

#ifdef HALOS
// What a glyph's box of a halo has around it, in steps: as far as the line reaches, and half of a pixel's diagonal.
// @param line  half of its width, in points or steps
float haloMargin(Place place, float line, bool isInPoints)
{
    mat2 toSteps = inverse(place.pixels);
    float pixel = max(length(toSteps[0]), length(toSteps[1]));
    return (isInPoints ? line * pixelsPerPoint * pixel : line) + 0.75 * pixel;
}
#endif

#ifdef COLORS
uniform sampler2D coloredPictures; // times alpha

// A corner of a picture in colour with one more row of its pixels, which are clear, and where it is in the texture: the
// third number is for textureLod.
vec2 coloredCorner(Place place, uvec2 picture, int c, out vec3 at)
{
    vec2 size = vec2(picture.y & 255u, picture.y >> 8 & 255u);
    vec2 p = vec2((c & 1) == 0 ? -1.0 : size.x + 1.0, (c & 2) == 0 ? -1.0 : size.y + 1.0);
    at.xy = (vec2(picture.x & 4095u, picture.x >> 12 & 4095u) + p) / vec2(textureSize(coloredPictures, 0));
    at.z = max(-log2(sqrt(abs(determinant(place.pixels)))), 0.0);
    return place.pixels * (p + place.toMiddle);
}
#endif
