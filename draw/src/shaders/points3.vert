// A quad about a point: a disc that faces the viewer, or what is seen of a sphere.
uniform mat4 toClip;
uniform mat4 toEye;
uniform mat4 projection;
uniform vec3 reference;
uniform usamplerBuffer things; // place, colour; what the place lacks, times the size
uniform vec2 halfSize;
uniform vec2 nearSide; // of w and z of clip space, whose sum is below 0 where it is too near
uniform float scale;   // pixels per point
uniform float pixelsAtOne; // of a model unit, where w is 1
uniform vec2 size; // in points, and in model units; one of them is 0
uniform int firstId;

#ifdef SPHERES
out vec3 sight;       // from the eye to the pixel; without a perspective, where it is
flat out vec3 centre; // in the eye's axes
flat out float ballRadius;
flat out vec3 centrePlace; // from the reference
#else
out vec2 way; // from the middle, in pixels
flat out float pixels; // its radius
#endif
flat out vec4 paint;
flat out float opacity;

vec4 unpacked(uint word) { return vec4((uvec4(word) >> uvec4(0u, 8u, 16u, 24u)) & 255u) / 255.0; }

void main()
{
    int corner = gl_VertexID % 4, point = gl_VertexID / 4;
    vec2 side = vec2((corner & 1) == 0 ? -1.0 : 1.0, (corner & 2) == 0 ? -1.0 : 1.0);
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    uvec4 placed = texelFetch(things, 2 * point), rest = texelFetch(things, 2 * point + 1);
    vec4 place = vec4(uintBitsToFloat(placed.xyz) - reference + uintBitsToFloat(rest.xyz), 1.0);
    vec4 clip = toClip * place;
    float times = uintBitsToFloat(rest.w);
    float toPixels = pixelsAtOne / clip.w;
    float radius = times * 0.5 * (size.x > 0.0 ? size.x * scale : size.y * toPixels);
    // With its rim, which is a pixel wide, it has the area that it should have; what is smaller than that is fainter.
    float drawn = sqrt(max(radius * radius - 1.0 / 12.0, 0.25));
    opacity = min(3.0 * radius * radius, 1.0);
#ifdef IDS
    paint = unpacked(uint(firstId) + uint(point));
#else
    paint = unpacked(placed.w);
#endif
#ifdef SPHERES
    sight = centre = centrePlace = vec3(0.0);
    ballRadius = 0.0;
#else
    way = vec2(0.0);
    pixels = 0.0;
#endif
    if (!(clip.w > 0.0) || !(radius > 0.0) || dot(nearSide, clip.wz) < 0.0)
        return;
#ifdef CLIPPED
    if (isCutAway(place.xyz))
        return;
#endif
#ifdef SPHERES
    centre = (toEye * place).xyz;
    centrePlace = place.xyz;
    ballRadius = drawn / toPixels;
    float pixel = 1.5 / toPixels;
    vec2 low = centre.xy - ballRadius - pixel, high = centre.xy + ballRadius + pixel;
    if (projection[2][3] != 0.0)
    {
        // Of the cone about it, what is in the plane through its centre: of two tangents in the plane of an axis and
        // the sight line, where they meet that (Mara and McGuire, 2013).
        float r = ballRadius + pixel;
        for (int i = 0; i < 2; ++i)
        {
            vec2 c = vec2(centre[i], -centre.z);
            float square = dot(c, c) - r * r, far = 1e3 * (abs(c.x) + r);
            if (square <= 0.0)
            {
                low[i] = -far;
                high[i] = far;
                continue;
            }
            float t = sqrt(square);
            vec2 below = vec2(t * c.x - r * c.y, r * c.x + t * c.y), above = vec2(t * c.x + r * c.y, t * c.y - r * c.x);
            low[i] = below.y > 0.0 ? max(below.x / below.y * c.y, -far) : -far;
            high[i] = above.y > 0.0 ? min(above.x / above.y * c.y, far) : far;
        }
    }
    sight = vec3(mix(low, high, side * 0.5 + 0.5), centre.z);
    gl_Position = projection * vec4(sight, 1.0);
#else
    pixels = drawn;
    way = side * (drawn + 1.0);
    gl_Position = vec4(clip.xy + way / halfSize * clip.w, clip.zw);
#endif
}
