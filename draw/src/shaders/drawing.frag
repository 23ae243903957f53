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
#ifdef STROKES
flat in vec4 toBrush; // what its Nib is
flat in vec4 brushSizes;
flat in float miterLimit;
#endif
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

float areaOfLine(Place place, ivec2 pa, ivec2 pb, vec2 pixel)
{
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

// Loops here look at their condition last, which takes software drivers half as long, and their bodies do nothing once
// it has failed: Mesa 22.3 mixes up what comes out of such a loop for pixels that left it before their neighbours.

// The lines of leaves, and of other nodes one from first to last point where that is as good, as they are too small or
// to the right with all of it.
float areaOfFill(Place place, uvec4 outline, int first, vec2 pixel)
{
    mat2 extent = mat2(abs(place.pixels[0]), abs(place.pixels[1])) * 0.5;
    float straight = 1.0 / 64.0 / stretchOf(place);
    float area = 0.0;
    int pointBase = int(outline.w), base = int(outline.y), node = base + first, end = base + int(outline.z);
    do if (node < end)
    {
        ivec4 box = texelFetch(nodes, 2 * node), info = texelFetch(nodes, 2 * node + 1);
        vec2 size = vec2(box.zw - box.xy);
        vec2 c = place.pixels * (stepsOf(place, box.xy) + 0.5 * size) - pixel, h = extent * size;
        vec2 reach = h * cLoose + 0.5;
        bool isBeside = abs(c.y) < reach.y;
        bool isIn = isBeside && abs(c.x) < reach.x;
        bool isSmall = max(h.x, h.y) < 1.0 / 64.0 || deviationOf(info.w) < straight;
        bool isEntered = isIn && !isSmall;
        bool isChord = isIn ? isSmall : isBeside && c.x > 0.0;
        node = isEntered && !isLeaf(info.w) ? node + 1 : base + info.x;
        int at = pointBase + info.y, to = isChord || isEntered && isLeaf(info.w) ? pointBase + info.z : at;
        ivec2 from = texelFetch(points, at).xy;
        do if (at < to)
        {
            at = isChord ? to : at + 1;
            ivec2 next = texelFetch(points, at).xy;
            area += areaOfLine(place, from, next, pixel);
            from = next;
        } while (at < to);
    } while (node < end);
    return determinant(place.pixels) < 0.0 ? -area : area;
}

// Of the pixel, what the shape and the opaque ones above it that share an edge with it cover together. So the shapes of
// a map, each of which covers a part of the pixels between them, let nothing through of what is below. Those that share
// a corner alone count where that makes the pixel full: around a point where many shapes meet.
float coverageOfFill(Place place, vec2 pixel)
{
    float covered = max(areaOfFill(place, parts, (flags & cEntered) != 0u ? 1 : 0, pixel), 0.0);
#ifdef LINKS
    if ((flags & cLinked) == 0u || covered < 1.0 / 2048.0)
        return min(covered, 1.0);
    uint order = texelFetch(shapes, 6 * shape + 2).w;
    uvec4 more = texelFetch(shapes, 6 * shape + 5);
    float alone = covered, together = covered;
    int nEdges = int(more.y & 65535u), nAll = nEdges + int(more.y >> 16);
    // Around a point some of those along edges count before the ones across do.
    int i = 0, n = covered < 0.999 ? nEdges : 0;
    do if (i < n)
    {
        int other = int(texelFetch(links, int(more.x) + i).x);
        uvec4 state = texelFetch(shapes, 6 * other + 2), own = texelFetch(shapes, 6 * other + 3);
        uint what = state.z & (cVisible | cOpaque | cStroke | cGlyphs);
        if (what == (cVisible | cOpaque) && state.w > order)
            together += max(areaOfFill(placeOf(other), own, 0, pixel), 0.0);
        covered = i < nEdges ? together : covered;
        n = covered > alone ? nAll : nEdges;
        ++i;
    } while (i < n && together < 0.999);
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
const float cEndless = 1e30;

Spans wholeRows() { return Spans(vec4(0.0), vec4(0.0), vec4(7.0), vec4(7.0)); }

// Leaves the samples with n x from low to high. Along a row where n x does not grow all samples are alike.
void cut(inout Spans s, Rows rows, vec2 n, float low, float high)
{
    float g = dot(n, rows.way), by = 1.0 / (g == 0.0 ? 1e-30 : g), start = dot(n, rows.start);
    float a = (low - start) * by, b = (high - start) * by, d = -dot(n, rows.step) * by;
    float first = min(a, b), last = max(a, b);
    s.low0 = max(s.low0, first + cRows0 * d);
    s.low1 = max(s.low1, first + cRows1 * d);
    s.high0 = min(s.high0, last + cRows0 * d);
    s.high1 = min(s.high1, last + cRows1 * d);
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
    mat2 own;       // from pixels to the brush's space,
    mat2 fromSteps; // and from steps
    vec2 pixel;     // where the pixel's middle is, in pixels
    vec2 side;      // of the box around the pixel, half of it
    float diagonal; // of the pixel, half of it at most
    float radius;
    float reach; // of what a line covers, about its own points
    float miterLimit;
    float straight; // what a chord may deviate, in steps, and turn
    float mostTurn;
    int cap;    // 0 butt, 1 round, 2 square
    int join;   // 0 mitre, 1 round, 2 bevel
    int dashes; // where the pattern stands among the numbers; below 0 for none
    float dashScale;
    int lengths; // of the subpath up to each point, in steps; below 0 where it ends
    float perStep;
    int shift; // 2 where each line stands for four, else 0
};

// The number of the lowest of 31 bits that is set; -127 where there is none.
int lowest(uint bits) { return int(floatBitsToUint(float(int(bits & -bits))) >> 23) - 127; }

// A piece of a line with the direction u, between two lengths from a.
uvec2 bodyMask(Rows rows, Brush brush, vec2 a, vec2 u, float from, float to)
{
    vec2 n = vec2(-u.y, u.x);
    float across = dot(n, a), along = dot(u, a);
    Spans s = wholeRows();
    cut(s, rows, n, across - brush.radius, across + brush.radius);
    cut(s, rows, u, along + from, along + to);
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

// @param before, after  the lines' ways, of any length  @param isCap  a round one  @param isRing  of no size: a disc,
// or nearly one, of eight corners and as large
uvec2 joinMask(Rows rows, Brush brush, vec2 c, vec2 before, vec2 after, bool isRound, bool isCap, bool isRing)
{
    before = isRing ? vec2(1.0, 0.0) : before;
    after = isRing ? vec2(0.0, 1.0) : after;
    float turn = before.x * after.y - before.y * after.x, cosine = dot(before, after);
    float lenBefore = length(before), lenAfter = length(after), both = lenBefore * lenAfter;
#ifdef ROUND
    bool isDisc = brush.join == 1 || isRound || isCap || isRing;
    float octagon = brush.radius;
#else
    const bool isDisc = false;
    float octagon = 0.9737 * brush.radius;
#endif
    float outside = turn > 0.0 ? -1.0 : 1.0;
    vec2 n0 = outside * vec2(-before.y, before.x), n1 = outside * vec2(-after.y, after.x);
    Spans s = wholeRows();
    cut(s, rows, before, isRing ? c.x - octagon : isCap ? -cEndless : dot(before, c),
        isRing ? c.x + octagon : cEndless);
    cut(s, rows, after, isRing ? c.y - octagon : -cEndless,
        isRing ? c.y + octagon : isCap ? cEndless : dot(after, c));
#ifdef ROUND
    cutDisc(s, rows, c, isDisc ? brush.radius : 1e4);
#endif
    // A mitre is as long as one through the cosine of half the turn, whose square is half of this.
    float folded = both + cosine;
    bool isMiter = brush.join == 0 && 2.0 * both <= brush.miterLimit * brush.miterLimit * folded * 1.000002;
    vec2 m = n0 * lenAfter + n1 * lenBefore, m0 = isRing ? vec2(0.70711) : isMiter ? n0 : m,
         m1 = isRing ? vec2(0.70711, -0.70711) : isMiter ? n1 : m;
    float chord = dot(m, c) + brush.radius * folded;
    float far0 = isRing ? dot(m0, c) + octagon : isMiter ? dot(n0, c) + brush.radius * lenBefore : chord;
    float far1 = isRing ? dot(m1, c) + octagon : isMiter ? dot(n1, c) + brush.radius * lenAfter : chord;
    cut(s, rows, m0, isRing && !isDisc ? dot(m0, c) - octagon : -cEndless, isDisc ? cEndless : far0);
    cut(s, rows, m1, isRing && !isDisc ? dot(m1, c) - octagon : -cEndless, isDisc ? cEndless : far1);
    // Lines that turn back on themselves have no corner outside.
    bool isThere = isRing || (isDisc ? isCap || turn != 0.0 || cosine < 0.0 : turn != 0.0 && folded > 1e-6 * both);
    return isThere ? maskOf(s) : uvec2(0u);
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
    float here = -dot(a, u), near = brush.diagonal + (brush.cap == 0 ? 0.0 : brush.radius);
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

// In the brush's space about the pixel.
vec2 brushPoint(Brush brush, Place place, ivec2 point)
{
    return brush.own * (pixelOf(place, point) - brush.pixel);
}

// Where a line begins, about the pixel, and its way, from whole numbers where that can be.
void findLine(Brush brush, Place place, ivec2 from, ivec2 to, out vec2 a, out vec2 way)
{
    vec2 nearA = pixelOf(place, from), nearB = pixelOf(place, to);
    bool isShort = shorten(place, from, to, nearA, nearB);
    a = brush.own * (nearA - brush.pixel);
    way = isShort ? brush.own * (nearB - nearA) : brush.fromSteps * vec2(to - from);
}

Brush brushOf(Place place, Nib nib, vec2 pixel, out float fade)
{
    Brush brush;
    brush.own = nib.own;
    brush.fromSteps = nib.own * place.pixels;
    brush.pixel = pixel;
    brush.side = (abs(nib.own[0]) + abs(nib.own[1])) / 2.0;
    brush.diagonal = length(brush.side);
    brush.radius = nib.radius;
    brush.reach = nib.reach;
    brush.miterLimit = nib.miterLimit;
    brush.straight = nib.straight;
    brush.mostTurn = nib.mostTurn;
    brush.cap = int(flags >> 8 & 3u);
    brush.join = int(flags >> 10 & 3u);
    brush.dashes = -1;
    // A pattern too fine to be seen makes the line fainter.
    fade = 1.0;
#ifdef DASHES
    uvec4 style = texelFetch(shapes, 6 * shape + 4), more = texelFetch(shapes, 6 * shape + 5);
    brush.dashes = int(style.z);
    brush.lengths = int(style.w);
    brush.perStep = sqrt(abs(determinant(place.pixels)));
    brush.dashScale =
        (flags & cDashesInPoints) != 0u ? pixelsPerPoint : brush.perStep * uintBitsToFloat(more.z);
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
#endif
    return brush;
}

// Lines near the pixel, by the bits of their first points, counted from a window's: each, or each fourth.
struct Lines
{
    int window;
    int last;    // point of the last line
    uint bodies; // of lines that may cover something,
    uint joins;  // and of joins; of points with caps
    uint chords; // lines that stand for several,
    uint dots;   // and those after others that are too small for their directions to be seen
    uint ends;   // where lines that were looked at end
};

int pointAt(Brush brush, Lines lines, int bit) { return lines.window + (bit << brush.shift); }

// A leaf's lines, one in place of a node's, or one in place of each leaf's.
void addLines(inout Lines lines, Brush brush, Place place, int from, int to, bool isChord, bool isDot)
{
    uint bit = 1u << uint(from - lines.window);
    bool isAlone = isChord && brush.shift == 0;
    uint end = !isAlone ? 0u : to - lines.window < 31 ? 1u << uint(to - lines.window) : 0u;
    lines.last = to;
    lines.chords |= isChord ? bit : 0u;
    ivec2 pa = strokePoint(from - 1), pb = strokePoint(from);
    vec2 a, way;
    findLine(brush, place, pa, pb, a, way);
    float len = length(way), side = brush.diagonal, reach = brush.radius + side;
    // What joins lines is where the one before has ended and this one has not begun. The one before a chord is another
    // chord, as it were.
    bool isJoined = pa != pb;
    lines.dots |= isDot && isJoined ? bit : 0u;
    bool isBeyond = isChord || -dot(a, way) - len * len >= -side * len;
    int at = from, step_ = isAlone ? to - from : 1 << brush.shift;
    do if (at < to)
    {
        int next = min(at + step_, to);
        end = isAlone ? end : brush.shift > 0 && next == to ? 0u : bit << 1;
        pa = pb;
        pb = strokePoint(next);
        findLine(brush, place, pa, pb, a, way);
        len = length(way);
        float along = -dot(a, way), across = a.x * way.y - a.y * way.x, beyond = along - len * len;
        float ends = isDot ? reach : side;
        bool isRing = isDot && isJoined && pa == pb;
        bool isJoin = isJoined && !isDot && isBeyond && along <= side * len && dot(a, a) <= brush.reach * brush.reach;
        isBeyond = isChord || beyond >= -side * len;
#ifdef CAPS
        ends = reach;
        if (brush.cap == 1 && brush.dashes < 0)
        {
            isJoin = isJoined ? isJoin : dot(a, a) <= reach * reach;
            bool isLast = strokePoint(next + 1) == pb && dot(a + way, a + way) <= reach * reach;
            lines.joins |= !isLast ? 0u : end != 0u ? end : 1u << 30;
        }
#endif
        bool isNear = abs(across) <= reach * len && along >= -ends * len && beyond <= ends * len;
        lines.bodies |= isNear && !isRing ? bit : 0u;
        lines.joins |= (isRing ? dot(a, a) <= reach * reach : isJoin) ? bit : 0u;
        lines.ends |= end;
        isJoined = true;
        at = next;
        bit <<= 1;
    } while (at < to);
}

int endOf(Brush brush, Lines lines, int bit)
{
    int end = lowest(lines.ends & ~1u << uint(bit));
    return end < 0 ? lines.last : pointAt(brush, lines, end);
}

uvec2 lineMask(Rows rows, Brush brush, Place place, int pointBase, Lines lines, int bit)
{
    int i = pointAt(brush, lines, bit), next = endOf(brush, lines, bit);
    ivec2 from = strokePoint(i), to = strokePoint(next);
    vec2 a, way;
    findLine(brush, place, from, to, a, way);
    float len = length(way), scale = len;
#if defined CAPS || defined DASHES
    bool isFirst = strokePoint(i - 1) == from;
    bool isLast = strokePoint(next + 1) == to;
    // A line of no length has no direction, not that of rounding.
    way = len > 0.0 ? way : vec2(1.0, 0.0);
    scale = len > 0.0 ? len : 1.0;
#endif
#ifdef DASHES
    if (brush.dashes >= 0)
    {
        float start = texelFetch(numbers, brush.lengths + i - pointBase).x * brush.perStep;
        // A subpath's first line joins nothing: its dashes begin and end with caps.
        isFirst = isFirst || start == 0.0;
        isLast = isLast || texelFetch(numbers, brush.lengths + next - pointBase).x < 0.0;
        return dashesMask(rows, brush, a, way / scale, len, start, isFirst, isLast);
    }
#endif
    // What is too small to be seen has no joins but what covers most of them.
    float before = (lines.dots >> uint(bit) & 1u) != 0u ? 0.7 * brush.radius : 0.0;
    float after = 0.0;
#ifdef CAPS
    before = isFirst && brush.cap == 2 ? brush.radius : before;
    after = isLast && brush.cap == 2 ? brush.radius : after;
#endif
    vec2 n = vec2(-way.y, way.x);
    float across = dot(n, a), along = dot(way, a);
    Spans s = wholeRows();
    cut(s, rows, n, across - brush.radius * scale, across + brush.radius * scale);
    cut(s, rows, way, along - before * scale, along + len * len + after * scale);
    return maskOf(s);
}

// What joins a line to the one before, or a round cap.
uvec2 cornerMask(Rows rows, Brush brush, Place place, int pointBase, Lines lines, int bit)
{
    int i = bit < 30 ? pointAt(brush, lines, bit) : lines.last, next = endOf(brush, lines, bit);
    ivec2 pa = strokePoint(i - 1), pb = strokePoint(i), pc = strokePoint(next);
    vec2 c, before, after;
    findLine(brush, place, pa, pb, c, before);
    findLine(brush, place, pb, pc, c, after);
#ifdef DASHES
    if (brush.dashes >= 0)
    {
        float start = texelFetch(numbers, brush.lengths + i - pointBase).x * brush.perStep;
        if (start == 0.0 || !isDashAt(brush, start / brush.dashScale))
            return uvec2(0u);
    }
#endif
#if defined CAPS && defined ROUND
    bool isCap = pa == pb || pb == strokePoint(i + 1);
#else
    const bool isCap = false;
#endif
    // The last line of a curve is turned against the chord before by about as much as against this one.
    float lenBefore = length(before), lenAfter = length(after);
    if (((lines.chords >> uint(bit) & 1u) != 0u || brush.shift > 0) && dot(before, after) > 0.9 * lenBefore * lenAfter)
        before = 2.0 * before * lenAfter - after * lenBefore;
    return joinMask(rows, brush, c, before, after, texelFetch(points, i).x != pb.x, isCap, pb == pc && pa != pb);
}

// Bit by bit the samples that are covered, and how much a pattern that is too fine to be seen leaves of that.
// @param outline  in y to w: nodes, how many, points  @param first  the node to begin with  @param stride  from line
// to line where there need be no tree, else 0
// One loop finds leaves, the next one which of their lines may cover something, the last ones what they do: software
// drivers, which run through each for all of the pixels that they work at together, do dear things seldom.
uvec2 strokeMask(Place place, Nib nib, uvec4 outline, int first, int stride, vec2 pixel, out float fade)
{
    Brush brush = brushOf(place, nib, pixel, fade);
    brush.shift = stride == 4 ? 2 : 0;
    bool isWhole = stride > 0;
    Rows rows = Rows(nib.own * vec2(0.5 / 64.0 - 0.5, 7.5 / 64.0 - 0.5), nib.own * vec2(1.0 / 64.0, 1.0 / 8.0),
                     nib.own * vec2(1.0 / 8.0, -1.0 / 64.0));
    mat2 extent = mat2(abs(brush.fromSteps[0]), abs(brush.fromSteps[1])) * 0.5;
    vec2 margin = brush.side + brush.reach - brush.diagonal, pixelInBrush = nib.own * pixel;
    int pointBase = int(outline.w);
    int base = int(outline.y), node = base + first, end = base + int(outline.z);
    uvec2 mask = uvec2(0u);
    do if (node < end)
    {
        Lines lines = Lines(0, 0, 0u, 0u, 0u, 0u, 0u);
        bool isFull = false;
        do if (node < end)
        {
            int from = 0, to = 0, found = node;
            bool isChord = false, isDot = false;
            do if (node < end)
            {
                found = node;
                ivec4 box = texelFetch(nodes, 2 * node), info = texelFetch(nodes, 2 * node + 1);
                vec2 size = vec2(box.zw - box.xy);
                vec2 c = brush.fromSteps * (stepsOf(place, box.xy) + 0.5 * size) - pixelInBrush, h = extent * size;
                bool isIn = all(lessThan(abs(c), h * cLoose + margin));
                bool isStraight = turnOf(info.w) < brush.mostTurn;
                // Around what a wide brush goes, however small, shapes can be seen; and what turns by less than 60
                // degrees has a direction: a brush that goes round it covers nothing behind its beginning.
                isDot = max(h.x, h.y) < 1.0 / 16.0 && !isStraight && turnOf(info.w) >= 1.0 && brush.radius < 1.5;
                // A chord that is as good as what it stands for.
                isChord = info.z > info.y + 1 && brush.dashes < 0 &&
                          (isDot || isStraight && deviationOf(info.w) < brush.straight);
                isChord = isWhole ? brush.shift > 0 : isChord;
                bool isOpened = isIn && !isChord && !isWhole && !isLeaf(info.w);
                node = isOpened ? node + 1 : base + info.x;
                from = pointBase + info.y;
                to = isIn && !isOpened ? pointBase + info.z : from;
            } while (node < end && from == to);
            if ((lines.bodies | lines.joins) == 0u)
                lines = Lines(from, from, 0u, 0u, 0u, 0u, 0u);
            // Leaves of several subpaths come in any order.
            isFull = from < to && (from < lines.window || to - lines.window > 29) && lines.last > lines.window;
            node = isFull ? found : node;
            if (from < to && !isFull)
                addLines(lines, brush, place, from, to, isChord, isChord && isDot);
            isFull = isFull || (lines.bodies | lines.joins) != 0u && lines.last - lines.window > 26;
        } while (node < end && !isFull);
        do if (lines.bodies != 0u)
        {
            mask |= lineMask(rows, brush, place, pointBase, lines, lowest(lines.bodies));
            lines.bodies &= lines.bodies - 1u;
        } while (lines.bodies != 0u);
        do if (lines.joins != 0u)
        {
            mask |= cornerMask(rows, brush, place, pointBase, lines, lowest(lines.joins));
            lines.joins &= lines.joins - 1u;
        } while (lines.joins != 0u);
    } while (node < end && mask != uvec2(0xffffffffu));
    return mask;
}

float coverageOfStroke(Place place, vec2 pixel)
{
    float fade;
    Nib nib = Nib(mat2(toBrush.xy, toBrush.zw), brushSizes.x, brushSizes.y, brushSizes.z, brushSizes.w, miterLimit);
    uvec2 mask = strokeMask(place, nib, parts, (flags & cEntered) != 0u ? 1 : 0,
                            (flags & cChords) != 0u ? 4 : (flags & cLines) != 0u ? 1 : 0, pixel, fade);
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
        uvec4 element = texelFetch(longElements, haloAt.x + other);
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
                mask |= strokeMask(place, nibOf(place, shape, flags), uvec4(0u, glyph.xyz), 0, 0, pixel, fade);
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
