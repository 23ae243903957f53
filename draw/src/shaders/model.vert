// A corner of a model's triangle: its distance from the reference comes first, so that what is near there is exact.
layout(location = 0) in vec3 position;
layout(location = 1) in vec4 vertexNormal;
layout(location = 2) in float partNumber;
#ifdef TEXTURED
layout(location = 3) in vec2 textureCoordinate;
#endif
#ifdef RESTS
#ifdef TEXTURED
layout(location = 4) in vec3 rest;
#else
layout(location = 3) in vec3 rest;
#endif
#endif

uniform mat4 toClip;
uniform vec3 reference;
uniform samplerBuffer parts;
uniform int firstId;

out Surface
{
#if !defined(PLAIN) && !defined(IDS)
    vec3 place;
    vec3 normal;
    flat vec3 polish; // Blinn's exponent, how much of it there is, and how much is not seen through
#ifdef TEXTURED
    vec2 inPicture;
#endif
#endif
#ifdef CLIPPED
    vec3 cutPlace;
#endif
    flat vec4 paint;  // its linear colour, and whether both sides are seen (2), with a texture (4)
}
surface;

void main()
{
    vec3 place = position - reference;
#ifdef RESTS
    place += rest;
#endif
    gl_Position = toClip * vec4(place, 1.0);
#ifdef CLIPPED
    clipAt(place);
    surface.cutPlace = place;
#endif
    int part = int(partNumber + 0.5);
    surface.paint = texelFetch(parts, 4 * part);
#ifdef IDS
    uint id = uint(firstId) + uint(part);
    surface.paint.rgb = vec3((uvec3(id) >> uvec3(0u, 8u, 16u)) & 255u);
    surface.paint.a += 8.0 * float(id >> 24);
#elif !defined(PLAIN)
    surface.place = place;
    surface.normal = vertexNormal.xyz;
    surface.polish = texelFetch(parts, 4 * part + 1).xyz;
#ifdef TEXTURED
    surface.inPicture = textureCoordinate;
#endif
#endif
}
