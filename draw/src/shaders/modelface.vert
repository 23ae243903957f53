// A corner of a face that a clipping cuts: in its plane, between its other planes.
layout(location = 0) in vec3 position;
layout(location = 1) in float partNumber;
#ifdef RESTS
layout(location = 2) in vec3 rest;
#endif

uniform mat4 toClip;
uniform vec3 reference;
uniform samplerBuffer parts;
uniform int firstId;
uniform vec4 faceU; // an axis in the plane, and how far the reference is along it
uniform vec4 faceV;
uniform vec2 faceColor; // how much lighter than the material, and whether it has one color
uniform vec4 plainColor;

flat out vec4 paint;
#ifdef CLIPPED
out vec3 cutPlace;
#endif
#if !defined(PLAIN) && !defined(IDS)
flat out vec4 hatchColor; // times its alpha
flat out vec2 hatchSize;  // from line to line, and a line's width, in pixels
out float hatched;        // in model units across the lines
#endif

void main()
{
    vec3 place = position - reference;
#ifdef RESTS
    place += rest;
#endif
    gl_Position = toClip * vec4(place, 1.0);
#ifdef MASK
    gl_Position.z = 0.0; // neither too near nor too far
#endif
#ifdef CLIPPED
    clipAt(place);
    cutPlace = place;
#endif
    int part = int(partNumber + 0.5);
#if defined(IDS)
    uint id = uint(firstId) + uint(part);
    paint = vec4(uvec4(id) >> uvec4(0u, 8u, 16u, 24u) & 255u) / 255.0;
#elif defined(PLAIN)
    paint = plainColor;
#else
    vec3 base = texelFetch(parts, 4 * part).rgb;
    vec4 hatch = texelFetch(parts, 4 * part + 3);
    hatchColor = texelFetch(parts, 4 * part + 2);
    hatchSize = hatch.zw;
    hatched = hatch.x * (dot(place, faceU.xyz) + faceU.w) + hatch.y * (dot(place, faceV.xyz) + faceV.w);
    paint = vec4(mix(base, vec3(1.0), faceColor.x), 1.0);
    if (faceColor.y > 0.5)
        paint = plainColor;
#endif
}
