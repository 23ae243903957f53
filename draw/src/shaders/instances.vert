// A corner of one of many: turned, and moved to where that one is.
layout(location = 0) in vec3 position;
layout(location = 1) in vec4 vertexNormal; // and how polished it is
layout(location = 2) in vec4 vertexColor;  // of the screen, and whether both sides are seen

uniform mat4 toClip;
uniform vec3 reference;
uniform usamplerBuffer things; // place, colour; what the place lacks, number and whether it is seen; turn; sizes
uniform int first;
uniform int firstId;

out vec3 place;
#if !defined(PLAIN) && !defined(IDS)
out vec3 normal;
flat out vec2 polish; // Blinn's exponent, and how much of it there is
#endif
flat out vec4 paint;  // its linear colour, and bits: seen from both sides (1), mirrored (2)

vec4 unpacked(uint word) { return vec4((uvec4(word) >> uvec4(0u, 8u, 16u, 24u)) & 255u) / 255.0; }
vec3 toLinear(vec3 c) { return mix(c / 12.92, pow((c + 0.055) / 1.055, vec3(2.4)), step(vec3(0.04045), c)); }
vec3 turned(vec4 q, vec3 v) { return v + 2.0 * cross(q.xyz, cross(q.xyz, v) + q.w * v); }

void main()
{
    int thing = 4 * (first + gl_InstanceID);
    uvec4 placed = texelFetch(things, thing), rest = texelFetch(things, thing + 1);
    vec4 turn = uintBitsToFloat(texelFetch(things, thing + 2));
    vec3 sizes = uintBitsToFloat(texelFetch(things, thing + 3).xyz);
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
    paint = vec4(0.0);
    place = vec3(0.0);
#ifdef CLIPPED
    clipAt(place);
#endif
#if !defined(PLAIN) && !defined(IDS)
    normal = vec3(0.0);
    polish = vec2(0.0);
#endif
    if ((rest.w & 1u) == 0u)
        return;
    place = uintBitsToFloat(placed.xyz) - reference + uintBitsToFloat(rest.xyz) + turned(turn, sizes * position);
    gl_Position = toClip * vec4(place, 1.0);
#ifdef CLIPPED
    clipAt(place);
#endif
    paint.a = (vertexColor.a > 0.5 ? 1.0 : 0.0) + (sizes.x * sizes.y * sizes.z < 0.0 ? 2.0 : 0.0);
#ifdef IDS
    paint = unpacked(uint(firstId) + (rest.w >> 1)) + vec4(0.0, 0.0, 0.0, 4.0 * paint.a);
#elif !defined(PLAIN)
    // Normals of what is stretched lean the other way; of what is flat they are those of its flat side.
    vec3 s = sizes / max(max(abs(sizes.x), abs(sizes.y)), max(abs(sizes.z), 1e-37));
    normal = turned(turn, vertexNormal.xyz * s.yzx * s.zxy * (paint.a > 1.5 ? -1.0 : 1.0));
    polish = vec2(exp2(2.0 + 9.0 * vertexNormal.w), min(4.0 * vertexNormal.w, 1.0));
    paint.rgb = toLinear(vertexColor.rgb) * toLinear(unpacked(placed.w).rgb);
#endif
}
