uniform sampler2D pictures; // how far a pixel is covered
#ifdef HALOS
// For each glyph of a halo: how many follow, and how far those that it touches are from it.
uniform usamplerBuffer links;
#endif

in vec4 ink;
in vec2 toTexel;
#ifdef COLORS
in vec3 coloredAt;
#endif
#ifdef HALOS
in vec4 haloAt;
in vec2 pen;
#endif

out vec4 color;

void main()
{
    ivec2 p = ivec2(gl_FragCoord.xy);
    float coverage = texelFetch(pictures, ivec2(gl_FragCoord.xy + toTexel), 0).x;
#ifdef HALOS
    // All glyphs of a halo together: the first one that has the pixel draws it.
    ivec4 at = ivec4(haloAt + 0.5);
    int quad = at.x + (at.y << 12), link = at.z + (at.w << 12);
    int n = link == 0 ? 0 : int(texelFetch(links, link - 1).x);
    for (int i = 0; i < n; ++i)
    {
        int other = int(texelFetch(links, link + i).x);
        if (other == 0)
            continue;
        uvec4 element = texelFetch(longElements, quad + other);
        ivec4 box;
        ivec2 texel;
        uvec2 picture = texelFetch(glyphs, 2 * int(element.y) + 1).zw;
        findPicture(ivec2(floor(pen + 0.5)) + wayTo(element), picture, box, texel);
        if (all(greaterThanEqual(p, box.xy)) && all(lessThan(p, box.zw)))
            coverage = other < 0 ? -1000.0 : coverage + texelFetch(pictures, p + texel, 0).x;
    }
    coverage = clamp(coverage, 0.0, 1.0);
#endif
    color = ink * coverage;
#ifdef COLORS
    if (coloredAt.z >= 0.0)
        color = textureLod(coloredPictures, coloredAt.xy, coloredAt.z) * ink.a;
#endif
}
