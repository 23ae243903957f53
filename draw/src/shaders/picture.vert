// A glyph that has a picture: exactly its pixels. What has none is not drawn here. Nothing is passed on flat: software
// drivers draw such quads faster.
out vec4 ink;
out vec2 toTexel;
#ifdef COLORS
out vec3 coloredAt; // the third number is below 0 for those that are not in colour
#endif
#ifdef HALOS
out vec4 haloAt; // the element, and one more than where its neighbours stand among the links, each by 12 bits
out vec2 pen;    // of the anchor
#endif

void main()
{
    int quad = gl_VertexID / 4 - cLongQuads, c = gl_VertexID % 4;
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    uvec4 element = texelFetch(longElements, quad);
    int shape = int(element.x & 0x0fffffffu);
    uvec4 origin = texelFetch(shapes, 6 * shape), state = texelFetch(shapes, 6 * shape + 2);
    uvec4 text = texelFetch(shapes, 6 * shape + 3);
    uvec4 more = texelFetch(glyphs, 2 * int(element.y) + 1);
    uvec2 picture = more.zw;
    vec2 way = vec2(toFloat(subtract(coarse(origin.xy), uvec2(center.xy))),
                    toFloat(subtract(coarse(origin.zw), uvec2(center.zw))));
    float unit = uintBitsToFloat(state.y) * powerOfTwo(coarseness - int(state.x));
    vec2 anchor = mat2(toPixels.xy, toPixels.zw) * (way * unit) +
                  pixelsPerPoint * uintBitsToFloat(text.zw) * vec2(1.0, -1.0);
    if ((state.z & cVisible) == 0u || int(picture.x) >= 0 || any(greaterThan(abs(anchor), vec2(1e6))))
        return;
    vec4 color = unpacked(text.x);
    ink = vec4(color.rgb * color.a, color.a);
    float depth = depthOf(state.w);
#ifdef COLORS
    coloredAt = vec3(0.0, 0.0, -1.0);
#ifdef HALOS
    haloAt = vec4(0.0);
#endif
    if ((picture.x & cColored) != 0u)
    {
#ifdef PLACED
        if (isHidden(element))
            return;
#endif
        Text all_ = textOf(shape, (state.z & cWidthInPoints) != 0u, placeOf(shape));
        Place place = placeOfGlyph(all_, element, texelFetch(glyphs, 2 * int(element.y)), more);
        gl_Position = vec4(coloredCorner(place, picture, c, coloredAt) / halfSize, depth, 1.0);
        return;
    }
#endif
    ivec4 box;
    ivec2 toTexel_, pen_ = penOf(anchor);
    findPicture(pen_ + wayTo(element), picture, box, toTexel_);
#ifdef HALOS
    int link = int(element.x >> 28) == cPlaced ? int(element.w) : 0;
    haloAt = vec4(quad & 4095, quad >> 12, link & 4095, link >> 12);
    pen = vec2(pen_);
#endif
    toTexel = vec2(toTexel_);
    vec2 p = vec2((c & 1) == 0 ? box.x : box.z, (c & 2) == 0 ? box.y : box.w) - halfSize;
    gl_Position = vec4(p / halfSize, depth, 1.0);
}
