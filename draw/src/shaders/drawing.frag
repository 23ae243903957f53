// How much of a pixel a shape covers, exactly for fills and by 64 samples for strokes, from the lines of the shape near
// the pixel alone, which a tree of boxes finds.
#if !defined GRADIENTS && !defined PLACED
uniform samplerBuffer numbers;
#endif
uniform usamplerBuffer links; // for each shape: those that share an edge with it, then those that share a corner

flat in int shape;
flat in int kind;
flat in uint flags;
flat in uvec4 parts;
flat in ivec2 middle;
flat in vec2 toMiddle;
flat in vec4 stepsToPixels;
#if defined GLYPHS && (defined GRADIENTS || defined HALOS)
flat in vec4 textPixels;
flat in vec4 textAnchor;
#endif
#ifdef HALOS
flat in ivec2 haloAt;
#endif

#ifdef PICTURES
uniform sampler2D pictures; // how far a pixel is covered
flat in ivec2 toTexel;
#endif
#ifdef COLORS
in vec3 coloredAt;
#endif

out vec4 color;

// What the last of a node's numbers tells: see EdgeNode.
bool isLeaf(int form) { return (form & 1) != 0; }
float deviationOf(int form) { return intBitsToFloat(form & ~255); }
float turnOf(int form) { return float(form >> 1 & 127) / 64.0; }

#ifdef FILLS
// ---- fills: the area by a line integral over their boundary

// The mean of x, brought into 0 to 1, from u to v.
float meanOfClamped(float u, float v)
{
    if (abs(v - u) < 1e-3 || min(u, v) >= 1.0)
        return clamp((u + v) / 2.0, 0.0, 1.0);
    vec2 t = vec2(u, v), c = clamp(t, 0.0, 1.0);
    vec2 area = c * c / 2.0 + max(t - 1.0, 0.0);
    return (area.y - area.x) / (v - u);
}

float heightWithin(float from, float to) { return clamp(to, -0.5, 0.5) - clamp(from, -0.5, 0.5); }

// What lies to the left of a line within the pixel from -0.5 to 0.5.
float areaLeftOf(vec2 a, vec2 b)
{
    float y0 = clamp(a.y, -0.5, 0.5), y1 = clamp(b.y, -0.5, 0.5);
    if (y0 == y1)
        return 0.0;
    float slope = (b.x - a.x) / (b.y - a.y);
    return (y1 - y0) * meanOfClamped(a.x + (y0 - a.y) * slope + 0.5, a.x + (y1 - a.y) * slope + 0.5);
}

float areaOfLine(Place place, int from, int to, vec2 pixel)
{
    ivec2 pa = texelFetch(points, from).xy, pb = texelFetch(points, to).xy;
    vec2 a = pixelOf(place, pa), b = pixelOf(place, pb);
    vec2 nearA = a, nearB = b;
    float area = 0.0;
    if (shorten(place, pa, pb, nearA, nearB))
    {
        if (nearA.x > 0.0)
            area += heightWithin(a.y - pixel.y, nearA.y - pixel.y);
        if (nearB.x > 0.0)
            area += heightWithin(nearB.y - pixel.y, b.y - pixel.y);
    }
    return area + areaLeftOf(nearA - pixel, nearB - pixel);
}

// Each round looks at a node or at a line of a leaf, and takes one line into account: one of a leaf, or the one from
// first to last point of a node that is as good as that, being too small or to the right with all of it. Software
// drivers run through the whole body for each of the pixels that they work at together, so there is only one.
float areaOfFill(Place place, int node, int nNodes, int pointBase, vec2 pixel)
{
    mat2 extent = mat2(abs(place.pixels[0]), abs(place.pixels[1])) * 0.5;
    float straight = 1.0 / 64.0 / stretchOf(place);
    float area = 0.0;
    int base = node, end = node + nNodes;
    int line = 0, last = 0; // of a leaf, what is left of it
    while (line < last || node < end)
    {
        int from = line, to = line + 1;
        ++line;
        if (line > last)
        {
            ivec4 box = texelFetch(nodes, 2 * node), info = texelFetch(nodes, 2 * node + 1);
            vec2 low = stepsOf(place, box.xy), high = stepsOf(place, box.zw);
            vec2 c = place.pixels * (low + high) * 0.5 - pixel, h = extent * vec2(box.zw - box.xy);
            bool isBeside = abs(c.y) < h.y + 0.5;
            bool isIn = isBeside && abs(c.x) < h.x + 0.5;
            bool isSmall = max(h.x, h.y) < 1.0 / 64.0 || deviationOf(info.w) < straight;
            bool isEntered = isIn && !isSmall;
            from = pointBase + info.y;
            to = pointBase + info.z;
            line = from;
            last = isEntered && isLeaf(info.w) ? to : from;
            node = isEntered && !isLeaf(info.w) ? node + 1 : base + info.x;
            to = (isIn ? isSmall : isBeside && c.x > 0.0) ? to : from;
        }
        area += areaOfLine(place, from, to, pixel);
    }
    return determinant(place.pixels) < 0.0 ? -area : area;
}

// Of the pixel, what the shape and the opaque ones above it that share an edge with it cover together. So the shapes of
// a map, each of which covers a part of the pixels between them, let nothing through of what is below. Those that share
// a corner alone count where that makes the pixel full: around a point where many shapes meet.
float coverageOfFill(Place place, vec2 pixel)
{
    float covered = max(areaOfFill(place, int(parts.y), int(parts.z), int(parts.w), pixel), 0.0);
#ifdef LINKS
    if ((flags & cLinked) == 0u || covered < 1.0 / 2048.0)
        return min(covered, 1.0);
    uint order = texelFetch(shapes, 6 * shape + 2).w;
    uvec4 more = texelFetch(shapes, 6 * shape + 5);
    float alone = covered, together = covered;
    int nEdges = int(more.y & 65535u), nAll = nEdges + int(more.y >> 16);
    // Around a point some of those along edges count before the ones across do.
    for (int i = 0; i < (covered > alone ? nAll : nEdges) && together < 0.999; ++i)
    {
        int other = int(texelFetch(links, int(more.x) + i).x);
        uvec4 state = texelFetch(shapes, 6 * other + 2), own = texelFetch(shapes, 6 * other + 3);
        uint what = state.z & (cVisible | cOpaque | cStroke | cGlyphs);
        if (what == (cVisible | cOpaque) && state.w > order)
            together += max(areaOfFill(placeOf(other), int(own.y), int(own.z), int(own.w), pixel), 0.0);
        covered = i < nEdges ? together : covered;
    }
    covered = together < 0.999 ? covered : together;
#endif
    return min(covered, 1.0);
}
#endif

#ifdef STROKES
// ---- strokes: samples, eight in each of eight rows, no two at the same x or y; bit by bit those that are covered

// Where they are in the brush's space: there a round brush is round.
struct Rows
{
    vec2 start; // the first sample of the first row
    vec2 step;  // from row to row
    vec2 way;   // from sample to sample
};

// Of each row, the samples from low to high.
struct Spans
{
    vec4 low0, low1, high0, high1;
};

const vec4 cRows0 = vec4(0.0, 1.0, 2.0, 3.0), cRows1 = vec4(4.0, 5.0, 6.0, 7.0);
const float cEndless = 1e4;

Spans wholeRows() { return Spans(vec4(0.0), vec4(0.0), vec4(7.0), vec4(7.0)); }

// One through the growth of n x from sample to sample; along a row where it does not grow all samples are alike.
float slowness(Rows rows, vec2 n)
{
    float g = dot(n, rows.way);
    return 1.0 / (abs(g) < 1e-7 ? 1e-7 : g);
}

// Leaves the samples whose distance from the line n x = c is half_ at most.
void cutSlab(inout Spans s, Rows rows, vec2 n, float c, float half_)
{
    float by = slowness(rows, n);
    float m = (c - dot(n, rows.start)) * by, d = -dot(n, rows.step) * by, w = abs(half_ * by);
    s.low0 = max(s.low0, m - w + cRows0 * d);
    s.low1 = max(s.low1, m - w + cRows1 * d);
    s.high0 = min(s.high0, m + w + cRows0 * d);
    s.high1 = min(s.high1, m + w + cRows1 * d);
}

// Leaves those with n x <= c.
void cutHalf(inout Spans s, Rows rows, vec2 n, float c)
{
    float by = slowness(rows, n);
    vec2 m = vec2(c - dot(n, rows.start), -dot(n, rows.step)) * by;
    vec2 low = by > 0.0 ? vec2(-cEndless, 0.0) : m, high = by > 0.0 ? m : vec2(cEndless, 0.0);
    s.low0 = max(s.low0, low.x + cRows0 * low.y);
    s.low1 = max(s.low1, low.x + cRows1 * low.y);
    s.high0 = min(s.high0, high.x + cRows0 * high.y);
    s.high1 = min(s.high1, high.x + cRows1 * high.y);
}

#ifdef ROUND
void cutSpanByDisc(inout vec4 low, inout vec4 high, vec4 ex, vec4 ey, vec2 way, float radius)
{
    float a = dot(way, way);
    vec4 b = ex * way.x + ey * way.y;
    vec4 root = b * b - a * (ex * ex + ey * ey - radius * radius);
    high = mix(high, vec4(-1.0), lessThan(root, vec4(0.0)));
    root = sqrt(max(root, vec4(0.0)));
    float by = 1.0 / a;
    low = max(low, (-b - root) * by);
    high = min(high, (-b + root) * by);
}

void cutDisc(inout Spans s, Rows rows, vec2 c, float radius)
{
    vec2 e = rows.start - c;
    cutSpanByDisc(s.low0, s.high0, e.x + cRows0 * rows.step.x, e.y + cRows0 * rows.step.y, rows.way, radius);
    cutSpanByDisc(s.low1, s.high1, e.x + cRows1 * rows.step.x, e.y + cRows1 * rows.step.y, rows.way, radius);
}
#endif

ivec4 bitsOf(vec4 low, vec4 high)
{
    ivec4 from = ivec4(min(ceil(low), 8.0)), to = ivec4(max(high + 1.0, 0.0));
    return max((ivec4(1) << to) - (ivec4(1) << from), 0);
}

uvec2 maskOf(Spans s)
{
    ivec4 first = bitsOf(s.low0, s.high0) << ivec4(0, 8, 16, 24);
    ivec4 second = bitsOf(s.low1, s.high1) << ivec4(0, 8, 16, 24);
    return uvec2(first.x | first.y | first.z | first.w, second.x | second.y | second.z | second.w);
}

float shareOf(uvec2 mask)
{
    mask -= mask >> 1 & 0x55555555u;
    mask = (mask & 0x33333333u) + (mask >> 2 & 0x33333333u);
    mask = mask + (mask >> 4) & 0x0f0f0f0fu;
    uint sum = mask.x + mask.y;
    return float((sum & 0xffu) + (sum >> 8 & 0xffu) + (sum >> 16 & 0xffu) + (sum >> 24)) / 64.0;
}

struct Brush
{
    float radius;
    float reach; // of what a line covers, about its own points
    int cap;     // 0 butt, 1 round, 2 square
    int join;    // 0 mitre, 1 round, 2 bevel
    float miterLimit;
    float pixel; // half of the pixel's diagonal at most
    int dashes;  // where the pattern stands among the numbers; below 0 for none
    float dashScale;
    int lengths; // of the subpath up to each point, in steps; below 0 where it ends
    float perStep;
};

// A piece of a line with the direction u, between two lengths from a.
uvec2 bodyMask(Rows rows, Brush brush, vec2 a, vec2 u, float from, float to)
{
    vec2 n = vec2(-u.y, u.x);
    Spans s = wholeRows();
    cutSlab(s, rows, n, dot(n, a), brush.radius);
    cutSlab(s, rows, u, dot(u, a) + (from + to) / 2.0, (to - from) / 2.0);
    return maskOf(s);
}

#ifdef ROUND
uvec2 discMask(Rows rows, Brush brush, vec2 c)
{
    Spans s = wholeRows();
    cutDisc(s, rows, c, brush.radius);
    return maskOf(s);
}
#endif

// At an end that lies `at` along the line; outwards is 1 or -1.
uvec2 capMask(Rows rows, Brush brush, vec2 a, vec2 u, float at, float outwards)
{
#ifdef CAPS
    if (brush.cap == 0)
        return uvec2(0u);
#ifdef ROUND
    if (brush.cap == 1)
        return discMask(rows, brush, a + u * at);
#endif
    float end = at + outwards * brush.radius;
    return bodyMask(rows, brush, a, u, min(at, end), max(at, end));
#else
    return uvec2(0u);
#endif
}

uvec2 joinMask(Rows rows, Brush brush, vec2 c, vec2 before, vec2 after, bool isRound)
{
    float turn = before.x * after.y - before.y * after.x;
    float cosine = dot(before, after);
    bool isDisc = brush.join == 1 || isRound;
    if (turn == 0.0 && !(isDisc && cosine < 0.0))
        return uvec2(0u);
    vec2 n0 = (turn > 0.0 ? -1.0 : 1.0) * vec2(-before.y, before.x);
    vec2 n1 = (turn > 0.0 ? -1.0 : 1.0) * vec2(-after.y, after.x);
    Spans s = wholeRows();
    cutHalf(s, rows, -before, dot(-before, c));
    cutHalf(s, rows, after, dot(after, c));
#ifdef ROUND
    if (isDisc)
    {
        cutDisc(s, rows, c, brush.radius);
        return maskOf(s);
    }
#endif
    // The cosine of half the turn: how far the chord is, and one through the length of the mitre.
    float halfCosine = sqrt(max((1.0 + cosine) / 2.0, 0.0));
    if (brush.join == 0 && 1.0 <= brush.miterLimit * halfCosine * 1.000001)
    {
        cutHalf(s, rows, n0, dot(n0, c) + brush.radius);
        cutHalf(s, rows, n1, dot(n1, c) + brush.radius);
    }
    else
    {
        vec2 m = n0 + n1;
        float len = length(m);
        // Lines that turn back on themselves have no corner outside.
        if (len < 1e-6)
            return uvec2(0u);
        m /= len;
        cutHalf(s, rows, m, dot(m, c) + brush.radius * halfCosine);
    }
    return maskOf(s);
}

#ifdef DASHES
// The pattern: number of lengths, their sum, where it begins, the lengths.
bool isDashAt(Brush brush, float s)
{
    int n = int(texelFetch(numbers, brush.dashes).x);
    float sum = texelFetch(numbers, brush.dashes + 1).x;
    float t = mod(s + texelFetch(numbers, brush.dashes + 2).x, sum);
    for (int i = 0; i < n; ++i)
    {
        float len = texelFetch(numbers, brush.dashes + 3 + i).x;
        if (t < len || i == n - 1)
            return (i & 1) == 0 && t > 0.0;
        t -= len;
    }
    return false;
}

// The dashes of a line that begins `start` after its subpath did. Everything in the brush's units, but the pattern.
uvec2 dashesMask(Rows rows, Brush brush, vec2 a, vec2 u, float len, float start, bool isFirst, bool isLast)
{
    int n = int(texelFetch(numbers, brush.dashes).x);
    float sum = texelFetch(numbers, brush.dashes + 1).x * brush.dashScale;
    float offset = texelFetch(numbers, brush.dashes + 2).x * brush.dashScale;
    // Only what is near the pixel, which is at 0, 0.
    float here = -dot(a, u), near = brush.pixel + (brush.cap == 0 ? 0.0 : brush.radius);
    float from = max(here - near, 0.0), to = min(here + near, len);
    uvec2 mask = uvec2(0u);
    if (from > to)
        return mask;
    // At a corner a dash belongs to the line after it where it begins, and to the one before it where it ends.
    float slack = 1e-6 * (start + len + sum);
    // A length that is 0 has no inside, and its caps all the same.
    float at = floor((start + from + offset) / sum) * sum - offset - start;
    for (int round_ = 0; round_ < 100; ++round_)
    {
        for (int i = 0; i < n; i += 2)
        {
            float on = texelFetch(numbers, brush.dashes + 3 + i).x * brush.dashScale;
            float off = texelFetch(numbers, brush.dashes + 4 + i).x * brush.dashScale;
            float end = at + on;
            if (end >= from - slack && at <= to && (at < len - slack || len == 0.0))
            {
                bool beginsHere = at >= -slack;
                bool endsHere = end <= len + slack && (end > slack || beginsHere || isFirst);
                float low = max(at, 0.0), high = max(min(end, len), low);
                if (low < high)
                    mask |= bodyMask(rows, brush, a, u, low, high);
                if (beginsHere || isFirst)
                    mask |= capMask(rows, brush, a, u, low, -1.0);
                if (endsHere || isLast && end > len)
                    mask |= capMask(rows, brush, a, u, high, 1.0);
            }
            at = end + off;
        }
        if (at > to || mask == uvec2(0xffffffffu))
            break;
    }
    return mask;
}

#endif

// A line of the stroke, in the brush's space about the pixel.
struct Line
{
    int from, to; // its points, or those of a node that is small enough to be one line
    vec2 a, u;    // where it begins, and its direction
    float len;
    bool isNear;  // its body or its caps may reach the pixel,
    bool mayJoin; // or what joins it to the line before
};

// A line of no length has no direction, not that of rounding.
Line lineFrom(Brush brush, Place place, mat2 toBrush, vec2 pixel, int from, int to)
{
    Line line;
    line.from = from;
    line.to = to;
    ivec2 pb = strokePoint(from), pc = strokePoint(to);
    vec2 nearB = pixelOf(place, pb), nearC = pixelOf(place, pc);
    bool isShort = shorten(place, pb, pc, nearB, nearC);
    line.a = toBrush * (nearB - pixel);
    // From whole numbers where it can be.
    vec2 way = toBrush * (isShort ? nearC - nearB : place.pixels * vec2(pc - pb));
    line.len = length(way);
    line.u = line.len > 0.0 ? way / line.len : vec2(1.0, 0.0);
    float along = -dot(line.a, line.u), across = dot(line.a, vec2(-line.u.y, line.u.x));
    float reach = brush.radius + brush.pixel;
    line.isNear = abs(across) <= reach && along >= -reach && along <= line.len + reach;
    line.mayJoin = dot(line.a, line.a) <= brush.reach * brush.reach;
    return line;
}

// With its join at the beginning and the caps of open ends.
uvec2 lineMask(Rows rows, Brush brush, Place place, mat2 toBrush, int pointBase, Line line, bool isChord, bool isTiny)
{
    vec2 a = line.a, u = line.u;
    float len = line.len;
    ivec2 wayBefore = strokePoint(line.from) - strokePoint(line.from - 1);
    bool isFirst = wayBefore == ivec2(0), isLast = strokePoint(line.to) == strokePoint(line.to + 1);
    bool isJoined = !isFirst && !isTiny;
    uvec2 mask = uvec2(0u);
#ifdef DASHES
    if (brush.dashes >= 0)
    {
        float start = texelFetch(numbers, brush.lengths + line.from - pointBase).x * brush.perStep;
        // A subpath's first line joins nothing: its dashes begin and end with caps.
        isFirst = isFirst || start == 0.0;
        isLast = isLast || texelFetch(numbers, brush.lengths + line.to - pointBase).x < 0.0;
        isJoined = !isFirst && isDashAt(brush, start / brush.dashScale);
        if (line.isNear)
            mask |= dashesMask(rows, brush, a, u, len, start, isFirst, isLast);
    }
    else
#endif
    if (line.isNear)
    {
        // What is too small to be seen has no joins but what covers most of them.
        mask |= bodyMask(rows, brush, a, u, isTiny && !isFirst ? -0.7 * brush.radius : 0.0, len);
        if (isFirst)
            mask |= capMask(rows, brush, a, u, 0.0, -1.0);
        if (isLast)
            mask |= capMask(rows, brush, a, u, len, 1.0);
    }
    if (isJoined && line.mayJoin)
    {
        vec2 before = normalize(toBrush * (place.pixels * vec2(wayBefore)));
        // The last line of a curve is turned against the chord before by about as much as against this one.
        if (isChord && dot(before, u) > 0.9)
            before = normalize(2.0 * before - u);
        mask |= joinMask(rows, brush, a, before, u, texelFetch(points, line.from).x != strokePoint(line.from).x);
    }
    return mask;
}

// Bit by bit the samples that are covered, and how much a pattern that is too fine to be seen leaves of that.
// @param outline  in y to w: nodes, how many, points
uvec2 strokeMask(Place place, uvec4 outline, vec2 pixel, out float fade)
{
    uvec4 style = texelFetch(shapes, 6 * shape + 4), more = texelFetch(shapes, 6 * shape + 5);
    // In pixels, or where a round brush of model units is round and about as large as in pixels.
    bool isInPoints = (flags & cWidthInPoints) != 0u;
    float scale = sqrt(abs(determinant(place.pixels)));
    mat2 toBrush = isInPoints ? mat2(1.0) : inverse(place.pixels) * scale;
    Brush brush;
    brush.radius = uintBitsToFloat(style.x) * (isInPoints ? pixelsPerPoint : scale);
    brush.miterLimit = uintBitsToFloat(style.y);
    brush.cap = int(flags >> 8 & 3u);
    brush.join = int(flags >> 10 & 3u);
    brush.dashes = int(style.z);
    brush.lengths = int(style.w);
    brush.perStep = scale;
    brush.dashScale = (flags & cDashesInPoints) != 0u ? pixelsPerPoint : scale * uintBitsToFloat(more.z);
    // A pattern too fine to be seen makes the line fainter.
    fade = 1.0;
#ifdef DASHES
    if (brush.dashes >= 0)
    {
        float sum = texelFetch(numbers, brush.dashes + 1).x, on = 0.0;
        if (sum * brush.dashScale < 0.5)
        {
            int n = int(texelFetch(numbers, brush.dashes).x);
            for (int i = 0; i < n; i += 2)
                on += texelFetch(numbers, brush.dashes + 3 + i).x +
                      (brush.cap == 0 ? 0.0 : 2.0 * brush.radius / brush.dashScale);
            fade = min(on / sum, 1.0);
            brush.dashes = -1;
        }
    }
#else
    brush.dashes = -1;
#endif
    vec2 across = vec2(abs(toBrush[0].x) + abs(toBrush[1].x), abs(toBrush[0].y) + abs(toBrush[1].y)) / 2.0;
    brush.pixel = length(across);
    brush.reach = brush.radius * max(uintBitsToFloat(more.w), 1.0) + brush.pixel;

    Rows rows = Rows(toBrush * vec2(0.5 / 64.0 - 0.5, 7.5 / 64.0 - 0.5), toBrush * vec2(1.0 / 64.0, 1.0 / 8.0),
                     toBrush * vec2(1.0 / 8.0, -1.0 / 64.0));

    mat2 toBrushFromSteps = toBrush * place.pixels;
    mat2 extent = mat2(abs(toBrushFromSteps[0]), abs(toBrushFromSteps[1])) * 0.5;
    vec2 pixelInBrush = toBrush * pixel;
    vec2 margin = across + brush.radius * max(uintBitsToFloat(more.w), 1.0);
    int pointBase = int(outline.w);
    int node = int(outline.y), base = node, end = node + int(outline.z);
    uvec2 mask = uvec2(0u);
    // A chord that is as good as what it stands for. Its ends are turned, the more the wider the stroke is; where right
    // angles don't stay right, turns may be seen the larger for it.
    float stretch = stretchOf(place);
    float straight = 1.0 / 32.0 / stretch;
    float mostTurn = abs(determinant(place.pixels)) / (stretch * stretch) / (12.0 * max(brush.radius, 0.1));
    // One loop finds leaves, the next one which of their lines may cover something, the last one what they do: software
    // drivers, which run through each for all of the pixels that they work at together, do dear things seldom.
    while (node < end && mask != uvec2(0xffffffffu))
    {
        int from = 0, to = 0;
        bool isChord = false, isTiny = false;
        while (node < end && from == to)
        {
            ivec4 box = texelFetch(nodes, 2 * node), info = texelFetch(nodes, 2 * node + 1);
            vec2 low = stepsOf(place, box.xy), high = stepsOf(place, box.zw);
            vec2 c = toBrushFromSteps * (low + high) * 0.5 - pixelInBrush;
            vec2 h = extent * vec2(box.zw - box.xy);
            bool isIn = all(lessThan(abs(c), h + margin));
            bool isStraight = turnOf(info.w) < mostTurn;
            isTiny = max(h.x, h.y) < 1.0 / 16.0 && !isStraight;
            isChord = info.z > info.y + 1 && brush.dashes < 0 &&
                      (isTiny || isStraight && deviationOf(info.w) < straight);
            bool isOpened = isIn && !isChord && !isLeaf(info.w);
            node = isOpened ? node + 1 : base + info.x;
            from = pointBase + info.y;
            to = isIn && !isOpened ? pointBase + info.z : from;
        }
        uint near = 0u;
        for (int i = from; i < to; i = isChord ? to : i + 1)
        {
            Line line = lineFrom(brush, place, toBrush, pixel, i, isChord ? to : i + 1);
            if (line.isNear || line.mayJoin && !(isChord && isTiny))
                near |= 1u << uint(i - from);
        }
        for (; near != 0u; near &= near - 1u)
        {
            int i = from + ((near & 1u) != 0u ? 0 : (near & 2u) != 0u ? 1 : (near & 4u) != 0u ? 2 : 3);
            Line line = lineFrom(brush, place, toBrush, pixel, i, isChord ? to : i + 1);
            mask |= lineMask(rows, brush, place, toBrush, pointBase, line, isChord, isChord && isTiny);
        }
    }
    return mask;
}

float coverageOfStroke(Place place, vec2 pixel)
{
    float fade;
    uvec2 mask = strokeMask(place, parts, pixel, fade);
    return shareOf(mask) * fade;
}

#ifdef HALOS
// What all glyphs of a text's halo cover together. Of those whose boxes have the pixel the first one draws it, the
// others leave it alone: so it is below 0 for them. What pictures cover is added up, as neighbours lie side by side.
float coverageOfHalo(vec2 pixel)
{
    Text text = Text(mat2(textPixels.xy, textPixels.zw), textAnchor.xy, textAnchor.z, textAnchor.w != 0.0);
    float line = uintBitsToFloat(texelFetch(shapes, 6 * shape + 4).x);
    bool isMine = false;
    float covered = 0.0;
    uvec2 mask = uvec2(0u);
    int n = int(texelFetch(links, haloAt.y - 1).x);
    for (int i = 0; i < n; ++i)
    {
        int other = int(texelFetch(links, haloAt.y + i).x);
        uvec4 element = texelFetch(elements, haloAt.x + other);
        uvec4 more = texelFetch(glyphs, 2 * int(element.y) + 1);
        bool isHere = false;
#ifdef PICTURES
        if (int(more.z) < 0 && (flags & cGradient) == 0u)
        {
            ivec4 box;
            ivec2 texel;
            findPicture(penOf(text.anchor) + wayTo(element), more.zw, box, texel);
            ivec2 p = ivec2(gl_FragCoord.xy);
            isHere = all(greaterThanEqual(p, box.xy)) && all(lessThan(p, box.zw));
            if (isHere && other >= 0)
                covered += texelFetch(pictures, p + texel, 0).x;
        }
        else
#endif
        if (!isHidden(element))
        {
            uvec4 glyph = texelFetch(glyphs, 2 * int(element.y));
            Place place = placeOfGlyph(text, element, glyph, more);
            ivec4 box = texelFetch(nodes, 2 * int(glyph.x));
            vec2 at = inverse(place.pixels) * pixel - place.toMiddle;
            float margin = haloMargin(place, line, (flags & cWidthInPoints) != 0u);
            isHere = all(greaterThan(at, vec2(box.xy) - margin)) && all(lessThan(at, vec2(box.zw) + margin));
            if (isHere && other >= 0)
            {
                float fade;
                mask |= strokeMask(place, uvec4(0u, glyph.xyz), pixel, fade);
            }
        }
        if (isHere && other < 0)
            return -1.0;
        isMine = isMine || isHere && other == 0;
    }
    return isMine ? min(covered + shareOf(mask), 1.0) : -1.0;
}
#endif
#endif

#ifdef IMAGES
uniform sampler2D image; // colours times alpha

// Averaged where pixels are larger than its own, and never with what is beyond its edges.
vec4 imageAt(int at, Place place, vec2 pixel)
{
    vec2 p = vec2(place.middle) - place.toMiddle + inverse(place.pixels) * pixel;
    vec4 map = vec4(texelFetch(numbers, at).x, texelFetch(numbers, at + 1).x, texelFetch(numbers, at + 2).x,
                    texelFetch(numbers, at + 3).x);
    vec2 size = vec2(textureSize(image, 0));
    mat2 step_ = inverse(place.pixels);
    step_ = mat2(step_[0] * map.xz * size, step_[1] * map.xz * size);
    float level = max(log2(max(length(step_[0]), length(step_[1]))), 0.0);
    vec2 edge = min(exp2(ceil(level)) * 0.5 / size, 0.5);
    vec2 at_ = clamp(p * map.xz + map.yw, edge, 1.0 - edge);
    return textureLod(image, determinant(place.pixels) > 0.0 ? vec2(at_.x, 1.0 - at_.y) : at_, level);
}
#endif

vec4 paint(Place place, vec2 pixel)
{
#ifdef IMAGES
    if ((flags & cImage) != 0u)
        return imageAt(int(parts.x), place, pixel);
#endif
    vec4 c = unpacked(parts.x);
#ifdef GRADIENTS
    if ((flags & cGradient) != 0u)
    {
#ifdef GLYPHS
        if (kind == cGlyph)
        {
            mat2 pixels = mat2(textPixels.xy, textPixels.zw);
            place = Place(ivec2(0), inverse(pixels) * textAnchor.xy, pixels);
        }
#endif
        c = gradientAt(int(parts.x), place, pixel);
    }
#endif
    return vec4(c.rgb * c.a, c.a);
}

void main()
{
    Place place = Place(middle, toMiddle, mat2(stepsToPixels.xy, stepsToPixels.zw));
    vec2 pixel = gl_FragCoord.xy - halfSize;
    float coverage = 1.0;
#ifdef HALOS
    if (haloAt.y != 0)
    {
        coverage = coverageOfHalo(pixel);
        if (coverage <= 0.0)
            discard;
        color = paint(place, pixel) * coverage;
        return;
    }
#endif
#ifdef PICTURES
    if (kind == cPicture)
        coverage = texelFetch(pictures, ivec2(gl_FragCoord.xy) + toTexel, 0).x;
#endif
    // A triangle finds no pixels but those that no line touches.
    if (kind != cTriangles && kind != cPicture && kind != cColoredPicture)
#if defined FILLS && defined STROKES
        coverage = (flags & cStroke) != 0u ? coverageOfStroke(place, pixel) : coverageOfFill(place, pixel);
#elif defined STROKES
        coverage = coverageOfStroke(place, pixel);
#elif defined FILLS
        coverage = coverageOfFill(place, pixel);
#endif
#ifdef GLYPHS
    // Boxes of glyphs overlap: what one leaves alone is for the next one.
    if ((kind == cGlyph || kind == cPicture) && coverage == 0.0)
        discard;
#endif
#ifdef COLORS
    if (kind == cColoredPicture)
    {
        color = textureLod(coloredPictures, coloredAt.xy, coloredAt.z) * unpacked(parts.x).a;
        if (color.a == 0.0)
            discard;
        return;
    }
#endif
    color = paint(place, pixel) * coverage;
}
