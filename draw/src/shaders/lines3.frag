// As much of a pixel as the line covers, with round joins, and round ends or straight ones. Of two segments that meet,
// the one that is nearer to the pixel colours it, and the first one where both are as near: none is coloured twice, so
// that joins are no darker where the colour is translucent, and rims of short segments no wider.
flat in vec4 ends;
flat in vec4 before;
flat in vec4 after;
flat in vec2 depths;
flat in vec4 track;
flat in vec4 look;
flat in vec2 caps;
flat in vec4 firstColor;
flat in vec4 secondColor;
uniform vec2 halfSize;
uniform vec2 corner; // of the viewport
uniform int stage; // what is drawn: the core, the rims, the depth of these; or all, without a rim
#ifdef CLIPPED
flat in vec3 firstPlace;
flat in vec3 secondPlace;
#endif
#ifdef PLAIN
uniform vec4 plainColor;
#endif
out vec4 color;

// The same steps for the same segment, whichever quad asks: what is as near for one is as near for the other.
float squareTo(vec2 p, vec4 segment, out float share)
{
    vec2 along = segment.zw - segment.xy, way = p - segment.xy, back = p - segment.zw;
    float square = dot(along, along), towards = dot(way, along);
    share = 0.0;
    if (!(towards > 0.0 && square > 0.0))
        return dot(way, way);
    share = 1.0;
    if (towards >= square)
        return dot(back, back);
    share = towards / square;
    float side = way.x * along.y - way.y * along.x;
    return side * side / square;
}

// How much of a pixel along the line lies in dashes.
float dashed(float arc, float perPixel)
{
    float period = look.y + look.z;
    if (!(look.y > 0.0 && look.z > 0.0))
        return 1.0;
    float at = arc + look.w;
    at -= period * floor(at / period);
    float inside = at < look.y ? min(at, look.y - at) : max(look.y - at, at - period);
    float covered = clamp(inside / max(perPixel, 1e-30) + 0.5, 0.0, 1.0);
    // Those that are smaller than pixels become their mean.
    return mix(look.y / period, covered, clamp(period / max(perPixel, 1e-30) / 2.0 - 1.0, 0.0, 1.0));
}

void main()
{
    vec2 p = gl_FragCoord.xy - corner - halfSize;
    float share, other;
    float square = squareTo(p, ends, share);
    if (!(square < squareTo(p, before, other)) || !(square <= squareTo(p, after, other)))
        discard;
    float radius = look.x / 2.0, inside = 1.0;
    if (max(caps.x, caps.y) >= 0.0)
    {
        vec2 way = ends.zw - ends.xy;
        float size = length(way);
        vec2 ahead = size > 1e-6 ? way / size : vec2(1.0, 0.0);
        float fromBegin = dot(p - ends.xy, ahead), fromEnd = dot(p - ends.zw, ahead);
        float side = dot(p - ends.xy, vec2(-ahead.y, ahead.x));
        if (caps.x >= 0.0)
            inside = clamp(fromBegin + caps.x + 0.5, 0.0, 1.0);
        if (caps.y >= 0.0)
            inside *= clamp(caps.y - fromEnd + 0.5, 0.0, 1.0);
        if ((caps.x >= 0.0 && fromBegin < 0.0) || (caps.y >= 0.0 && fromEnd > 0.0))
            square = side * side;
    }
    float d = sqrt(square);
    float covered = clamp(radius - d + 0.5, 0.0, 1.0) - clamp(-radius - d + 0.5, 0.0, 1.0);
    // With perspective, equal steps on the screen are none on the line.
    float middle = mix(track.z, track.w, share), along = share * track.w / middle;
#ifdef CLIPPED
    if (isCutAway(mix(firstPlace, secondPlace, along)))
        discard;
#endif
    float perPixel = abs(track.y - track.x) * track.z * track.w /
                     (middle * middle * max(length(ends.zw - ends.xy), 1e-3));
    float dash = dashed(mix(track.x, track.y, along), perPixel);
    bool isCore = d <= max(radius - 0.5, min(radius, 0.35)) && dash * inside > 0.99;
    covered *= dash * inside;
    bool isDrawn = covered > 0.0;
    if (stage == 0)
        isDrawn = isDrawn && isCore;
    else if (stage == 1)
        isDrawn = isDrawn && !isCore;
    else if (stage == 2)
        isDrawn = covered >= 0.5 && !isCore;
    else
        isDrawn = dash * inside >= 0.5 && d <= max(radius, 0.5);
    if (!isDrawn)
        discard;
#if defined(PLAIN)
    color = plainColor;
#elif defined(IDS)
    color = firstColor;
#else
    vec4 c = mix(firstColor, secondColor, along);
    color = vec4(c.rgb * c.a, c.a) * covered;
#endif
    // Around an end it is as far as the end: what a short segment goes on to is somewhere else.
    gl_FragDepth = clamp(mix(depths.x, depths.y, share), 0.0, 1.0);
}
