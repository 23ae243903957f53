// A face that a clipping cuts, with the lines across it.
flat in vec4 paint;
#ifdef CLIPPED
in vec3 cutPlace;
#endif
out vec4 color;

#if !defined(PLAIN) && !defined(IDS)
flat in vec4 hatchColor;
flat in vec2 hatchSize;
in float hatched;
uniform float pixelSize; // in model units, about where the face is
uniform vec2 faceColor;

vec3 toScreen(vec3 c)
{
    return mix(12.92 * c, 1.055 * pow(max(c, vec3(0.0031308)), vec3(1.0 / 2.4)) - 0.055, step(vec3(0.0031308), c));
}

// How much of a pixel the lines cover that are at multiples of a step.
float cover(float way, float grain, float step, float width)
{
    float d = abs(way / step - floor(way / step + 0.5)) * step / grain;
    return clamp(width / 2.0 - d + 0.5, 0.0, 1.0) - clamp(-width / 2.0 - d + 0.5, 0.0, 1.0);
}
#endif

void main()
{
#ifdef CLIPPED
    if (isLeftOut(cutPlace))
        discard;
#endif
#if defined(PLAIN) || defined(IDS)
    color = paint;
#else
    // Plain colours are those of the screen already.
    color = vec4(faceColor.y > 0.5 ? paint.rgb : toScreen(paint.rgb), 1.0);
    float grain = max(length(vec2(dFdx(hatched), dFdy(hatched))), 1e-37);
    if (hatchSize.x <= 0.0 || hatchSize.y <= 0.0)
        return;
    // Lines stay where they are in the plane: from one power of two to the next, every other one fades away.
    float octave = log2(hatchSize.x * pixelSize), least = exp2(floor(octave)), strength = 1.0 - fract(octave);
    // Where they are as near as pixels, they are a shade.
    float share = min(hatchSize.y / (hatchSize.x * pixelSize / grain), 1.0);
    float lines = max(cover(hatched, grain, 2.0 * least, hatchSize.y),
                      strength * cover(hatched, grain, least, hatchSize.y));
    lines = mix(share, lines, clamp(least / grain - 1.0, 0.0, 1.0));
    color.rgb = color.rgb * (1.0 - hatchColor.a * lines) + hatchColor.rgb * lines;
#endif
}
