// How much of the light from everywhere gets to a place, by what stands about it in the depth buffer.
uniform sampler2D picture;
uniform float reach;

#ifdef BLUR
// What was seen, and how far away: the mean of what is about as far.
uniform vec2 corner; // of the viewport
out vec4 color;

void main()
{
    ivec2 at = ivec2(gl_FragCoord.xy - corner), last = textureSize(picture, 0) - 1;
    vec2 here = texelFetch(picture, at, 0).rg;
    if (here.r >= 1.0 && here.g <= 0.0)
        discard;
    float sum = 0.0, weights = 0.0;
    for (int y = -2; y <= 2; ++y)
        for (int x = -2; x <= 2; ++x)
        {
            vec2 there = texelFetch(picture, clamp(at + ivec2(x, y), ivec2(0), last), 0).rg;
            // Of the square's angles each counts as much.
            float weight = (abs(x) == 2 ? 0.5 : 1.0) * (abs(y) == 2 ? 0.5 : 1.0);
            weight *= there.g > 0.0 ? max(1.0 - 4.0 * abs(there.g - here.g) / reach, 0.0) : 0.0;
            sum += weight * there.r;
            weights += weight;
        }
    color = vec4(vec3(weights > 0.0 ? sum / weights : here.r), 1.0);
}
#else
uniform mat4 projection;
uniform vec2 size;
uniform bool isReversed;
uniform int looks;
uniform float strength;
out vec2 light; // and the distance; 0 for nothing

// Where a pixel's depth is, from the eye.
vec3 placeOf(ivec2 pixel, float depth)
{
    float ndc = isReversed ? depth : 2.0 * depth - 1.0;
    float distance = (projection[3][2] - ndc * projection[3][3]) / (projection[2][2] - ndc * projection[2][3]);
    float w = projection[3][3] - projection[2][3] * distance;
    vec2 across = (2.0 * (vec2(pixel) + 0.5) / size - 1.0) * w + vec2(projection[2].xy) * distance - projection[3].xy;
    return vec3(across / vec2(projection[0][0], projection[1][1]), -distance);
}

bool isNothing(float depth) { return isReversed ? depth <= 0.0 : depth >= 1.0; }

vec3 placeAt(ivec2 pixel)
{
    ivec2 inside = clamp(pixel, ivec2(0), ivec2(size) - 1);
    return placeOf(inside, texelFetch(picture, inside, 0).r);
}

// The way to the neighbour that is on the same surface rather.
vec3 stepAlong(ivec2 pixel, ivec2 by, vec3 here)
{
    vec3 after = placeAt(pixel + by) - here, before = here - placeAt(pixel - by);
    return abs(after.z) < abs(before.z) ? after : before;
}

void main()
{
    ivec2 pixel = ivec2(gl_FragCoord.xy);
    float depth = texelFetch(picture, pixel, 0).r;
    light = vec2(1.0, 0.0);
    if (isNothing(depth))
        return;
    vec3 here = placeOf(pixel, depth);
    light.g = -here.z;
    vec3 normal = cross(stepAlong(pixel, ivec2(1, 0), here), stepAlong(pixel, ivec2(0, 1), here));
    normal /= max(length(normal), 1e-30);
    float w = projection[3][3] + projection[2][3] * here.z;
    float radius = min(reach * projection[1][1] * size.y / 2.0 / w, 0.25 * size.y);
    if (!(radius > 1.5))
        return;
    // Each pixel of a square of four by four turns its spiral by another angle (Bayer's matrix).
    ivec2 inSquare = pixel & 3, both = inSquare ^ inSquare.yy;
    int order = (both.x & 1) << 3 | (inSquare.y & 1) << 2 | (both.x & 2) | (inSquare.y & 2) >> 1;
    float turn = 6.2831853 * float(order) / 16.0;
    float sum = 0.0, square = reach * reach, bias = 0.02 * reach;
    for (int i = 0; i < looks; ++i)
    {
        float share = (float(i) + 0.5) / float(looks), angle = turn + share * 6.2831853 * 7.0;
        ivec2 there = pixel + ivec2(round(share * radius * vec2(cos(angle), sin(angle))));
        if (any(lessThan(there, ivec2(0))) || any(greaterThanEqual(there, ivec2(size))))
            continue;
        float its = texelFetch(picture, there, 0).r;
        if (isNothing(its))
            continue;
        vec3 way = placeOf(there, its) - here;
        float vv = dot(way, way), vn = dot(way, normal), f = max(1.0 - vv / square, 0.0);
        sum += f * f * f * max((vn - bias) / (vv + 0.01 * square), 0.0) * reach;
    }
    float dark = min(4.0 * sum / float(looks), 1.0);
    light.r = 1.0 - strength * (1.0 - pow(1.0 - dark, 0.7));
}
#endif
