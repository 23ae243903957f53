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

#ifdef GEOMETRY
// Between here and the fragment shader there is another.
#define surfacePlace cornerPlace
#define surfaceNormal cornerNormal
#define surfacePolish cornerPolish
#define surfaceInPicture cornerInPicture
#define surfaceCutPlace cornerCutPlace
#define surfacePaint cornerPaint
#elif defined(WIRES)
out vec3 opposite; // 1 at a corner, 0 on the side across
#endif
#if !defined(PLAIN) && !defined(IDS)
out vec3 surfacePlace;
out vec3 surfaceNormal;
flat out vec3 surfacePolish; // Blinn's exponent, how much of it there is, and how much is not seen through
#ifdef TEXTURED
out vec2 surfaceInPicture;
#endif
#endif
#ifdef CLIPPED
out vec3 surfaceCutPlace;
#endif
flat out vec4 surfacePaint; // its linear colour, and whether both sides are seen (2), with a texture (4)

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
#if defined(WIRES) && !defined(GEOMETRY)
    int corner = gl_VertexID % 3;
    opposite = vec3(corner == 0, corner == 1, corner == 2);
#endif
#ifdef CLIPPED
    clipAt(place);
    surfaceCutPlace = place;
#endif
    int part = int(partNumber + 0.5);
    surfacePaint = texelFetch(parts, 4 * part);
#ifdef IDS
    uint id = uint(firstId) + uint(part);
    surfacePaint.rgb = vec3((uvec3(id) >> uvec3(0u, 8u, 16u)) & 255u);
    surfacePaint.a += 8.0 * float(id >> 24);
#elif !defined(PLAIN)
    surfacePlace = place;
    surfaceNormal = vertexNormal.xyz;
    surfacePolish = texelFetch(parts, 4 * part + 1).xyz;
#ifdef TEXTURED
    surfaceInPicture = textureCoordinate;
#endif
#endif
}
