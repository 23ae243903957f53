// A quad about a segment of a line, as wide on the screen wherever it is. Point i has the segment that begins there.
uniform mat4 toClip;
uniform vec3 reference;
uniform usamplerBuffer things; // of a point: its place, its arc length; what the place lacks, its line
uniform usamplerBuffer lines;  // first point, number of points, colour, flags; width, dash, gap, offset
#ifdef COLORS
uniform usamplerBuffer colors;
#endif
uniform vec2 halfSize;
uniform vec2 nearSide; // of w and z of clip space, whose sum is below 0 where it is too near
uniform float scale;   // pixels per point
uniform vec2 toDepth;  // from z / w to the depth buffer's: times, plus
uniform int firstId;

flat out vec4 ends;         // all in pixels from the viewport's middle
flat out vec4 before;       // the segment that ends where this one begins, or one far away
flat out vec4 after;
flat out vec2 depths;       // at the ends
flat out vec4 track;        // the arc lengths there, and 1 / w
flat out vec4 look;         // width in pixels, dash, gap, offset
flat out vec2 caps;         // how far it goes on beyond a straight end; below 0 where that is round or none
flat out vec4 firstColor;
flat out vec4 secondColor;

#ifdef CLIPPED
flat out vec3 firstPlace;
flat out vec3 secondPlace;
#endif

const vec4 cNowhere = vec4(1e9);

vec4 unpacked(uint word) { return vec4((uvec4(word) >> uvec4(0u, 8u, 16u, 24u)) & 255u) / 255.0; }

vec3 placeOf(int point)
{
    uvec4 place = texelFetch(things, 2 * point), rest = texelFetch(things, 2 * point + 1);
    return uintBitsToFloat(place.xyz) - reference + uintBitsToFloat(rest.xyz);
}
vec4 clipOf(int point) { return toClip * vec4(placeOf(point), 1.0); }

// What is behind the eye has no place on the screen, and what is far beside it a coarse one.
// @return how much of a segment is left, from where to where; the first above the second if nothing is
vec2 kept(vec4 a, vec4 b, float width)
{
    vec2 guard = 2.0 + width / halfSize;
    float from = 0.0, to = 1.0;
    for (int i = 0; i < 5; ++i)
    {
        float side = (i & 1) == 0 ? 1.0 : -1.0;
        float da = i == 4 ? dot(nearSide, a.wz) : i < 2 ? guard.x * a.w + side * a.x : guard.y * a.w + side * a.y;
        float db = i == 4 ? dot(nearSide, b.wz) : i < 2 ? guard.x * b.w + side * b.x : guard.y * b.w + side * b.y;
        if (da < 0.0 && db < 0.0)
            return vec2(1.0, 0.0);
        if (da < 0.0)
            from = max(from, da / (da - db));
        else if (db < 0.0)
            to = min(to, da / (da - db));
    }
    return vec2(from, to);
}

vec4 onScreen(vec4 a, vec4 b, float width)
{
    vec2 part = kept(a, b, width);
    if (part.x > part.y)
        return cNowhere;
    vec4 begin = mix(a, b, part.x), end = mix(a, b, part.y);
    if (begin.w <= 0.0 || end.w <= 0.0)
        return cNowhere;
    return vec4(begin.xy / begin.w * halfSize, end.xy / end.w * halfSize);
}

void main()
{
    int corner = gl_VertexID % 4, point = gl_VertexID / 4;
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    ends = before = after = cNowhere;
    depths = vec2(0.0);
    caps = vec2(-1.0);
#ifdef CLIPPED
    firstPlace = secondPlace = vec3(0.0);
#endif
    track = look = firstColor = secondColor = vec4(0.0);
    int line = int(texelFetch(things, 2 * point + 1).w);
    uvec4 head = texelFetch(lines, 2 * line);
    int first = int(head.x), last = int(head.x + head.y) - 1;
    bool isClosed = (head.w & 1u) != 0u && last > first + 1;
    if ((head.w & 2u) == 0u || (point == last && last > first && !isClosed))
        return;
    look = uintBitsToFloat(texelFetch(lines, 2 * line + 1));
    look.x *= scale;
    if (!(look.x > 0.0))
        return;
    int next = point < last ? point + 1 : first;
    vec4 a = clipOf(point), b = clipOf(next);
    // Points that lie where the one before does are passed over, as far as there are not too many.
    vec4 previous = a, following = b;
    for (int i = 1; i <= 64 && previous == a && (isClosed || point - i >= first); ++i)
        previous = clipOf(point - i >= first ? point - i : max(point - i + last + 1 - first, first));
    for (int i = 1; i <= 64 && following == b && (isClosed || next + i <= last); ++i)
        following = clipOf(next + i <= last ? next + i : min(next + i - last - 1 + first, last));
    bool isBegin = previous == a, isEnd = following == b;
    if (a == b && last > first && !(point == first && isBegin && isEnd))
        return;
    vec2 part = kept(a, b, look.x);
    ends = onScreen(a, b, look.x);
    if (part.x > part.y || ends == cNowhere)
        return;
    if (!isBegin)
        before = onScreen(previous, a, look.x);
    if (!isEnd)
        after = onScreen(b, following, look.x);
    if ((head.w & 24u) != 0u)
    {
        float beyond = (head.w & 16u) != 0u ? look.x / 2.0 : 0.0;
        if (beyond == 0.0 && a == b)
            return;
        if (isBegin && part.x == 0.0)
            caps.x = beyond;
        if (isEnd && part.y == 1.0)
            caps.y = beyond;
    }
    vec4 begin = mix(a, b, part.x), end = mix(a, b, part.y);
    depths = vec2(begin.z / begin.w, end.z / end.w) * toDepth.x + toDepth.y;
    // Of the segment that closes a line, the end's arc length is in the texel of its line.
    float arc = uintBitsToFloat(texelFetch(things, 2 * point).w);
    float nextArc = point < last ? uintBitsToFloat(texelFetch(things, 2 * next).w)
                                 : arc + length(uintBitsToFloat(texelFetch(things, 2 * next).xyz) -
                                                uintBitsToFloat(texelFetch(things, 2 * point).xyz));
    track = vec4(mix(arc, nextArc, part.x), mix(arc, nextArc, part.y), 1.0 / begin.w, 1.0 / end.w);
#ifdef CLIPPED
    firstPlace = mix(placeOf(point), placeOf(next), part.x);
    secondPlace = mix(placeOf(point), placeOf(next), part.y);
#endif
#ifdef IDS
    uint id = uint(firstId) + uint(line);
    firstColor = secondColor = unpacked(id);
#else
    vec4 color = unpacked(head.z);
    firstColor = secondColor = color;
#ifdef COLORS
    if ((head.w & 4u) != 0u)
    {
        vec4 here = unpacked(texelFetch(colors, point).x), there = unpacked(texelFetch(colors, next).x);
        firstColor = mix(here, there, part.x);
        secondColor = mix(here, there, part.y);
    }
#endif
#endif
    vec2 s = ends.xy, t = ends.zw;
    float reach = max(look.x, 1.0) / 2.0 + 1.0, size = length(t - s);
    vec2 along = size > 1e-6 ? (t - s) / size : vec2(1.0, 0.0);
    vec2 across = vec2(-along.y, along.x) * ((corner & 2) == 0 ? reach : -reach);
    bool isAhead = (corner & 1) != 0;
    vec2 pixel = (isAhead ? t + reach * along : s - reach * along) + across;
    vec4 at = isAhead ? end : begin;
    gl_Position = vec4(pixel / halfSize * at.w, at.zw);
}
