// The triangles of opaque fills, for pixels that are all within one: a first pass, in which what is above hides what is
// below by its depth.

flat out vec4 paint;
flat out int gradient;
flat out ivec2 middle;
flat out vec2 toMiddle;
flat out vec4 stepsToPixels;
noperspective out vec3 corner;

void main()
{
    int c = gl_VertexID % 4;
    uvec4 element = elementOf(gl_VertexID / 4);
    int shape = int(element.x & 0x0fffffffu);
    uvec4 state = texelFetch(shapes, 6 * shape + 2), parts = texelFetch(shapes, 6 * shape + 3);
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    corner = vec3(c == 0, c == 1, c >= 2);
    paint = unpacked(parts.x);
    gradient = (state.z & cGradient) != 0u ? int(parts.x) : -1;
    if (int(element.x >> 28) != cTriangles || (state.z & (cVisible | cOpaque)) != (cVisible | cOpaque))
        return;
    Place place = placeOf(shape);
    middle = place.middle;
    toMiddle = place.toMiddle;
    stepsToPixels = vec4(place.pixels[0], place.pixels[1]);
    vec2 t[3];
    ivec3 numbers = ivec3(element.yzw & cPointBits) + int(parts.w);
    for (int i = 0; i < 3; ++i)
        t[i] = pixelOf(place, texelFetch(points, numbers[i]).xy);
    vec2 least = min(min(t[0], t[1]), t[2]), most = max(max(t[0], t[1]), t[2]);
    if (any(greaterThan(least, halfSize)) || any(lessThan(most, -halfSize)) ||
        max(max(-least.x, -least.y), max(most.x, most.y)) > cFar || any(lessThan(most - least, vec2(2.0))))
        return;
    gl_Position = vec4(t[min(c, 2)] / halfSize, depthOf(state.w), 1.0);
}
