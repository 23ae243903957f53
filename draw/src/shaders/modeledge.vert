// A quad about an edge, as wide on the screen wherever it is.
uniform mat4 toClip;
uniform vec3 reference;
uniform samplerBuffer parts;
uniform samplerBuffer edges;
uniform vec2 halfSize;
uniform float lineWidth; // in pixels, as all of these
uniform vec2 toDepth; // from clip space z to the depth buffer's: times, plus
flat out vec4 ends;
flat out vec2 depths; // there
#ifdef CLIPPED
flat out vec3 cutBegin; // the ends' places times 1 / w, and that
flat out vec3 cutEnd;
flat out vec2 inverseW;
#endif

bool isVisible(float part) { return (int(texelFetch(parts, 4 * int(part + 0.5)).a + 0.5) & 1) != 0; }

void main()
{
    int corner = gl_VertexID % 4, edge = gl_VertexID / 4;
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    ends = vec4(0.0);
    depths = vec2(0.0);
#ifdef CLIPPED
    cutBegin = cutEnd = vec3(0.0);
    inverseW = vec2(1.0);
#endif
#ifdef RESTS
    edge *= 4;
#else
    edge *= 2;
#endif
    vec4 first = texelFetch(edges, edge), second = texelFetch(edges, edge + 1);
    if (!isVisible(first.w) && !isVisible(second.w))
        return;
    vec3 p = first.xyz - reference, q = second.xyz - reference;
#ifdef RESTS
    p += texelFetch(edges, edge + 2).xyz;
    q += texelFetch(edges, edge + 3).xyz;
#endif
    vec4 a = toClip * vec4(p, 1.0), b = toClip * vec4(q, 1.0);
    // What is behind the eye has no place on the screen, and what is far beside it a coarse one.
    float from = 0.0, to = 1.0;
    for (int i = 0; i < 5; ++i)
    {
        float da = i == 4 ? a.w : 2.0 * a.w + ((i & 1) == 0 ? 1.0 : -1.0) * (i < 2 ? a.x : a.y);
        float db = i == 4 ? b.w : 2.0 * b.w + ((i & 1) == 0 ? 1.0 : -1.0) * (i < 2 ? b.x : b.y);
        if (da <= 0.0 && db <= 0.0)
            return;
        if (da < 0.0)
            from = max(from, da / (da - db));
        else if (db < 0.0)
            to = min(to, da / (da - db));
    }
    if (from >= to)
        return;
    vec4 begin = mix(a, b, from), end = mix(a, b, to);
    vec2 s = begin.xy / begin.w * halfSize, t = end.xy / end.w * halfSize;
    float reach = lineWidth / 2.0 + 1.0, size = length(t - s);
    vec2 along = size > 1e-6 ? (t - s) / size : vec2(1.0, 0.0);
    vec2 across = vec2(-along.y, along.x) * ((corner & 2) == 0 ? reach : -reach);
#ifdef CLIPPED
    inverseW = 1.0 / vec2(begin.w, end.w);
    cutBegin = mix(p, q, from) * inverseW.x;
    cutEnd = mix(p, q, to) * inverseW.y;
#endif
    bool isEnd = (corner & 1) != 0;
    ends = vec4(s, t);
    depths = vec2(begin.z / begin.w, end.z / end.w) * toDepth.x + toDepth.y;
    vec2 pixel = (isEnd ? t + reach * along : s - reach * along) + across;
    vec4 at = isEnd ? end : begin;
    gl_Position = vec4(pixel / halfSize * at.w, at.zw);
}
