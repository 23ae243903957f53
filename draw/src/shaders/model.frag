// A surface in the light: Lambert's and Blinn's, with the light of the surroundings stronger from above. All in linear
// colours, made those of the screen at the end.
#if !defined(PLAIN) && !defined(IDS)
in vec3 surfacePlace;
in vec3 surfaceNormal;
flat in vec3 surfacePolish;
#ifdef TEXTURED
in vec2 surfaceInPicture;
#endif
#endif
#ifdef CLIPPED
in vec3 surfaceCutPlace;
#endif
flat in vec4 surfacePaint;
out vec4 color;
#ifdef GLASS
// Layers are told apart by how near they are, from 0 on; 0 is none.
#ifdef SAMPLES
uniform sampler2DMS nearness;
uniform int sampleCount;
#else
uniform sampler2D nearness;
#endif
uniform int glassPass; // 0: finds the nearest layer; 1: finds the one behind; 2: draws it; 3: the rest; 4: everything
uniform bool isReversed;

#ifdef PACKED
vec4 bytesOf(float here) { return vec4((uvec4(floatBitsToUint(here)) >> uvec4(0u, 8u, 16u, 24u)) & 255u) / 255.0; }
float nearnessOf(vec4 texel)
{
    uvec4 bytes = uvec4(texel * 255.0 + 0.5);
    return uintBitsToFloat(bytes.x | bytes.y << 8 | bytes.z << 16 | bytes.w << 24);
}
#else
vec4 bytesOf(float here) { return vec4(here, 0.0, 0.0, 0.0); }
float nearnessOf(vec4 texel) { return texel.r; }
#endif

bool isWanted(float here, float layer)
{
    return layer > 0.0 && (glassPass == 1 ? here < layer : glassPass == 2 ? here == layer : here <= layer);
}

// Leaves out the samples that are not in the pass.
void choose(float here)
{
#ifdef SAMPLES
    gl_SampleMask[0] = -1;
#endif
    if (glassPass == 0 || glassPass == 4)
        return;
    ivec2 at = ivec2(gl_FragCoord.xy);
#ifdef SAMPLES
    int mask = 0;
    for (int i = 0; i < sampleCount; ++i)
        mask |= isWanted(here, nearnessOf(texelFetch(nearness, at, i))) ? 1 << i : 0;
    gl_SampleMask[0] = mask;
    if (mask == 0)
        discard;
#else
    if (!isWanted(here, nearnessOf(texelFetch(nearness, at, 0))))
        discard;
#endif
}
#endif

#if defined(PLAIN)
uniform vec4 plainColor;
#elif !defined(IDS)
uniform vec4 viewer; // where the eye is, and 1; or the direction to it, and 0
#ifdef TEXTURED
uniform sampler2D picture;
#endif
#ifdef WIRES
in vec3 opposite;
uniform vec4 lineColor; // times its alpha
uniform float lineWidth;
uniform bool wiresAlone;
#endif

vec3 toLinear(vec3 c) { return mix(c / 12.92, pow((c + 0.055) / 1.055, vec3(2.4)), step(vec3(0.04045), c)); }
vec3 unit(vec3 v)
{
    // Squares of very large and very small numbers are none.
    v /= max(max(abs(v.x), abs(v.y)), max(abs(v.z), 1e-37));
    return v * inversesqrt(max(dot(v, v), 1e-37));
}

// The normal towards the eye, of length 1; that of the triangle where the vertices have none.
vec3 getNormal(vec3 towardsEye)
{
    vec3 across = cross(unit(dFdx(surfacePlace)), unit(dFdy(surfacePlace)));
    vec3 normal = gl_FrontFacing ? surfaceNormal : -surfaceNormal;
    float size = dot(normal, normal);
    if (size > 1e-6)
        return normal * inversesqrt(size);
    return unit(dot(across, towardsEye) < 0.0 ? -across : across);
}
#endif

void main()
{
    int flags = int(surfacePaint.a + 0.5);
    if ((flags & 2) == 0 && !gl_FrontFacing)
        discard;
#ifdef CLIPPED
    if (isLeftOut(surfaceCutPlace))
        discard;
#endif
#ifdef GLASS
    float here = isReversed ? gl_FragCoord.z : 1.0 - gl_FragCoord.z;
    choose(here);
#endif
#if defined(GLASS) && defined(PLAIN)
    color = bytesOf(here);
#elif defined(PLAIN)
    color = plainColor;
#elif defined(IDS)
    color = vec4(surfacePaint.rgb, float(flags >> 3)) / 255.0;
#else
    vec3 base = surfacePaint.rgb;
#ifdef TEXTURED
    vec4 texel = texture(picture, surfaceInPicture);
    if ((flags & 4) != 0)
        base *= toLinear(texel.rgb / max(texel.a, 1e-3));
#endif
    vec3 towardsEye = unit(viewer.w > 0.5 ? viewer.xyz - surfacePlace : viewer.xyz), normal = getNormal(towardsEye);
    float sun = 1.0;
#ifdef SHADOWED
    float slope = clamp(1.0 - dot(normal, toLight), 0.0, 1.0);
    if (slope < 1.0)
        sun = sunAt(surfacePlace, normal, slope);
#endif
#ifdef GLASS
    // What is mirrored of the light is as bright on glass as on a wall.
    float opaque = surfacePolish.z, gloss = glossOf(normal, towardsEye, surfacePolish.xy, sun);
    color = vec4(toScreen(diffuseOf(base, normal, sun) * lightColor.rgb) * opaque, opaque);
    color.rgb += toScreen(vec3(gloss)) * lightColor.rgb;
#else
    color = vec4(litColor(base, normal, towardsEye, surfacePolish.xy, sun), 1.0);
#endif
#ifdef WIRES
    // Near a side, how far it is in pixels. (Drivers have been seen to interpolate without perspective wrongly where
    // triangles are clipped.)
    vec3 distances = opposite / max(vec3(length(vec2(dFdx(opposite.x), dFdy(opposite.x))),
                                         length(vec2(dFdx(opposite.y), dFdy(opposite.y))),
                                         length(vec2(dFdx(opposite.z), dFdy(opposite.z)))),
                                    vec3(1e-9));
    float d = min(min(distances.x, distances.y), distances.z);
    // The part of a pixel's width that lies in the line.
    float covered = clamp(lineWidth / 2.0 - d + 0.5, 0.0, 1.0) - clamp(-lineWidth / 2.0 - d + 0.5, 0.0, 1.0);
    if (wiresAlone && covered <= 0.0)
        discard;
    color = lineColor * covered + (wiresAlone ? vec4(0.0) : color * (1.0 - lineColor.a * covered));
#endif
#endif
}
