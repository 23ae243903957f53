// A line with round joins and ends: as much of a pixel as the nearest of its pieces covers, so that none is covered
// twice.
flat in ivec3 pieces;
noperspective in vec2 pixel;
uniform float halfWidth;
uniform vec4 lineColor; // times its alpha
#ifdef DASHES
uniform float dashes[8]; // where dashes and gaps end in turn, from the pattern's beginning
uniform int nDashes;
#endif
out vec4 color;

void main()
{
    float nearest = 1e9;
    int which = 0;
    for (int i = 0; i < pieces.y; ++i)
    {
#ifdef DASHES
        vec4 s = uintBitsToFloat(texelFetch(table, pieces.x + 2 * i));
#else
        vec4 s = uintBitsToFloat(texelFetch(table, pieces.x + i));
#endif
        vec2 along = s.zw - s.xy, from = pixel - s.xy;
        float square = dot(along, along);
        float share = square > 0.0 ? clamp(dot(from, along) / square, 0.0, 1.0) : 0.0;
#ifdef DASHES
        float period = dashes[nDashes - 1], size = sqrt(square);
        float start = uintBitsToFloat(texelFetch(table, pieces.x + 2 * i + 1).x);
        float place = start + share * size, phase = place - floor(place / period) * period;
        float off = 0.0, previous = 0.0;
        for (int k = 0; k < nDashes; ++k)
        {
            if (k % 2 == 1 && phase > previous && phase < dashes[k])
                off = min(phase - previous, dashes[k] - phase);
            previous = dashes[k];
        }
        vec2 rest = from - share * along;
        // A dash ends square to the line.
        float d = length(rest);
        d = off > 0.0 ? max(d, halfWidth + off) : d;
#else
        float d = length(from - share * along);
#endif
        if (d < nearest)
        {
            nearest = d;
            which = i + 1;
        }
        if (nearest + 0.5 <= halfWidth && pieces.z == 0)
            break;
    }
    // Where pieces in no order meet, each pixel is the nearest one's.
    if (pieces.z != 0 && pieces.z != which)
        discard;
    // The part of a pixel's width that lies in the line, also where that is narrower.
    float covered = clamp(halfWidth - nearest + 0.5, 0.0, 1.0) - clamp(-halfWidth - nearest + 0.5, 0.0, 1.0);
    color = lineColor * covered;
}
