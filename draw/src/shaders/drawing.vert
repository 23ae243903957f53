// One quad of a shape: two triangles of a fill, or what encloses one of its edges, one line of a stroke or the tip of
// one of its mitres. It only says which pixels are looked at; the fragment shader finds how much of each is covered.
uniform usamplerBuffer elements;

flat out int shape;
flat out int kind;
flat out ivec2 middle;    // the viewport's middle in the shape's steps,
flat out vec2 toMiddle;   // and what is to be added to a point's distance from it
flat out vec4 stepsToPixels;
noperspective out vec3 corner;

void main()
{
    uvec4 element = texelFetch(elements, gl_VertexID / 4);
    int c = gl_VertexID % 4;
    shape = int(element.x & 0x0fffffffu);
    kind = int(element.x >> 28);
    uvec4 state = texelFetch(shapes, 6 * shape + 2);
    corner = vec3(0.0);
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    if ((state.z & cVisible) == 0u)
        return;
    Place place = placeOf(shape);
    middle = place.middle;
    toMiddle = place.toMiddle;
    stepsToPixels = vec4(place.pixels[0], place.pixels[1]);
    int base = int(texelFetch(shapes, 6 * shape + 3).w);
    vec2 p = vec2(0.0);
    vec2 low = -halfSize - 1.0, high = halfSize + 1.0;

    if (kind == cTriangles)
    {
        vec2 t[4];
        ivec4 numbers = ivec4(element.yzw, 0);
        for (int i = 0; i < 3; ++i)
            t[i] = pixelOf(place, texelFetch(points, base + numbers[i]).xy);
        vec2 least = min(min(t[0], t[1]), t[2]), most = max(max(t[0], t[1]), t[2]);
        float reach = max(max(-least.x, -least.y), max(most.x, most.y));
        float slack = 1.0 + reach * 4e-7;
        if (any(greaterThan(least, high + slack)) || any(lessThan(most, low - slack)))
            return;
        if (reach > cFar)
        {
            // Its edges are not where they should be: all of the viewport is looked at instead.
            kind = cEdge;
            p = vec2((c & 1) == 0 ? low.x : high.x, (c & 2) == 0 ? low.y : high.y);
        }
        else
        {
            p = t[min(c, 2)];
            corner = vec3(c == 0, c == 1, c >= 2);
        }
    }
    else
    {
        int i = base + int(element.y);
        ivec2 pa = texelFetch(points, i).xy, pb = texelFetch(points, i + 1).xy;
        vec2 a = pixelOf(place, pa), b = pixelOf(place, pb);
        shorten(place, pa, pb, a, b);
        float across = 1.0;
        if (kind != cEdge)
        {
            uvec4 style = texelFetch(shapes, 6 * shape + 4);
            float half_ = uintBitsToFloat(style.x);
            across += half_ * ((state.z & cWidthInPoints) != 0u ? pixelsPerPoint : stretchOf(place));
        }
        vec2 along = b - a;
        float len = length(along);
        along = len > 0.0 ? along / len : vec2(1.0, 0.0);
        // A pixel's own size: half of its diagonal.
        float extra = across;
        if (kind == cTip)
        {
            // From the corner to the tip of the mitre, along the middle between both lines.
            vec2 before = a - pixelOf(place, texelFetch(points, i - 1).xy);
            vec2 axis = normalize(before) - along;
            axis = dot(axis, axis) > 0.0 ? normalize(axis) : vec2(1.0, 0.0);
            float sine = length(normalize(before) - along) / 2.0; // of half of the angle between, from the outside
            // cos of half the angle between the directions is sin of half the angle at the corner.
            float halfAngle = sqrt(max(1.0 - sine * sine, 0.0));
            float tip = (across + 1.0) / max(halfAngle, 1e-3);
            b = a + axis * tip;
            along = axis;
            extra = 1.0;
        }
        vec2 normal = vec2(-along.y, along.x);
        vec2 least = min(a, b) - 1.5 * across - 1.0, most = max(a, b) + 1.5 * across + 1.0;
        if (any(greaterThan(least, high)) || any(lessThan(most, low)))
            return;
        p = ((c & 1) == 0 ? a - along * extra : b + along * extra) +
            normal * ((c & 2) == 0 ? -across : across);
    }
    // Each shape is nearer than the one before, and covers a pixel once: what comes second is not less deep.
    float depth = 1.0 - float(state.w + 1u) * exp2(-22.0);
    gl_Position = vec4(p / halfSize, depth, 1.0);
}
