// What lies between two lines, of each pixel the exact part.
flat in ivec3 pieces;
noperspective in vec2 pixel;
uniform vec4 fromColor; // times their alphas
uniform vec4 toColor;
uniform vec2 shadeY; // where the first is, and the other
out vec4 color;

// The integral of a number held between 0 and 1.
float sum(float t) { return t <= 0.0 ? 0.0 : t < 1.0 ? 0.5 * t * t : t - 0.5; }

// The mean part of the pixel above a line from a to b.
float above(float a, float b, float top)
{
    a -= top;
    b -= top;
    return abs(b - a) < 1e-3 ? clamp(0.5 * (a + b), 0.0, 1.0) : (sum(b) - sum(a)) / (b - a);
}

void main()
{
    float left = floor(pixel.x), top = floor(pixel.y), covered = 0.0;
    for (int i = 0; i < pieces.y; ++i)
    {
        vec4 s = uintBitsToFloat(texelFetch(table, pieces.x + 2 * i));
        vec2 high = uintBitsToFloat(texelFetch(table, pieces.x + 2 * i + 1).xy);
        float from = max(s.x, left), to = min(s.z, left + 1.0);
        if (to > from)
        {
            vec2 at = (vec2(from, to) - s.x) / (s.z - s.x);
            vec2 y0 = mix(s.yy, s.ww, at), y1 = mix(high.xx, high.yy, at);
            covered += (to - from) * abs(above(y0.x, y0.y, top) - above(y1.x, y1.y, top));
        }
    }
    float share = clamp((pixel.y - shadeY.x) / (shadeY.y - shadeY.x), 0.0, 1.0);
    color = mix(fromColor, toColor, share) * min(covered, 1.0);
}
