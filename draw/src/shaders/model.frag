// A surface in the light: Lambert's and Blinn's, with the light of the surroundings stronger from above. All in linear
// colours, made those of the screen at the end.
in Surface
{
#if !defined(PLAIN) && !defined(IDS)
    vec3 place;
    vec3 normal;
    flat vec3 polish;
#ifdef TEXTURED
    vec2 inPicture;
#endif
#endif
#ifdef CLIPPED
    vec3 cutPlace;
#endif
    flat vec4 paint;
}
surface;
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
        mask |= isWanted(here, texelFetch(nearness, at, i).r) ? 1 << i : 0;
    gl_SampleMask[0] = mask;
    if (mask == 0)
        discard;
#else
    if (!isWanted(here, texelFetch(nearness, at, 0).r))
        discard;
#endif
}
#endif

#if defined(PLAIN)
uniform vec4 plainColor;
#elif !defined(IDS)
uniform vec4 viewer; // where the eye is, and 1; or the direction to it, and 0
uniform vec3 toLight;
uniform vec4 lightColor; // with the share that is everywhere
uniform vec3 up;
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
vec3 toScreen(vec3 c)
{
    return mix(12.92 * c, 1.055 * pow(max(c, vec3(0.0031308)), vec3(1.0 / 2.4)) - 0.055, step(vec3(0.0031308), c));
}

vec3 unit(vec3 v)
{
    // Squares of very large and very small numbers are none.
    v /= max(max(abs(v.x), abs(v.y)), max(abs(v.z), 1e-37));
    return v * inversesqrt(max(dot(v, v), 1e-37));
}

#ifdef GLASS
float shine = 0.0; // what is reflected of the light itself
#endif

#ifdef SHADOWED
uniform mat4 toShadowMap; // from places
uniform sampler2DShadow shadowMap;
// Of a texel in model units and in the map, and half a side of the square of texels that count, without the middle.
uniform vec3 shadowSize;

// How much of the sun gets there: 0 in the shadow.
float sunAt(vec3 place, vec3 normal)
{
    // Away from the surface by what a texel of it falls, so that it does not shade itself.
    float slope = clamp(1.0 - dot(normal, toLight), 0.0, 1.0);
    vec4 at = toShadowMap * vec4(place + normal * shadowSize.x * (0.7 + 1.5 * slope) * (1.0 + shadowSize.z), 1.0);
    if (any(lessThan(at.xyz, vec3(0.0))) || any(greaterThan(at.xyz, vec3(1.0))))
        return 1.0;
    int radius = int(shadowSize.z);
    float sum = 0.0;
    for (int y = -radius; y <= radius; ++y)
        for (int x = -radius; x <= radius; ++x)
            sum += texture(shadowMap, vec3(at.xy + vec2(x, y) * shadowSize.y, at.z));
    float side = float(2 * radius + 1);
    return sum / (side * side);
}
#endif

vec3 lit(vec3 base)
{
    vec3 across = cross(unit(dFdx(surface.place)), unit(dFdy(surface.place)));
    vec3 toEye = unit(viewer.w > 0.5 ? viewer.xyz - surface.place : viewer.xyz);
    vec3 normal = gl_FrontFacing ? surface.normal : -surface.normal;
    float size = dot(normal, normal);
    if (size > 1e-6)
        normal *= inversesqrt(size);
    else
        normal = unit(dot(across, toEye) < 0.0 ? -across : across);
    float share = max(dot(normal, toLight), 0.0);
#ifdef SHADOWED
    if (share > 0.0)
        share *= sunAt(surface.place, normal);
#endif
    vec3 result = base * (lightColor.a * (0.75 + 0.25 * dot(normal, up)) + (1.0 - lightColor.a) * share);
    // A smooth surface reflects 4 % of light that falls on it.
    float towards = max(dot(normal, unit(toLight + toEye)), 0.0);
    float gloss = 0.04 * (surface.polish.x + 8.0) / 8.0 * pow(towards, surface.polish.x) * surface.polish.y;
#ifdef GLASS
    shine = gloss * share;
    return result * lightColor.rgb;
#else
    return (result + vec3(gloss * share)) * lightColor.rgb;
#endif
}
#endif

void main()
{
    int flags = int(surface.paint.a + 0.5);
    if ((flags & 2) == 0 && !gl_FrontFacing)
        discard;
#ifdef CLIPPED
    if (isInNotch(surface.cutPlace))
        discard;
#endif
#ifdef GLASS
    float here = isReversed ? gl_FragCoord.z : 1.0 - gl_FragCoord.z;
    choose(here);
#endif
#if defined(GLASS) && defined(PLAIN)
    color = vec4(here, 0.0, 0.0, 0.0);
#elif defined(PLAIN)
    color = plainColor;
#elif defined(IDS)
    color = vec4(surface.paint.rgb, float(flags >> 3)) / 255.0;
#else
    vec3 base = surface.paint.rgb;
#ifdef TEXTURED
    vec4 texel = texture(picture, surface.inPicture);
    if ((flags & 4) != 0)
        base *= toLinear(texel.rgb / max(texel.a, 1e-3));
#endif
#ifdef GLASS
    color = vec4(toScreen(lit(base)) * surface.polish.z, surface.polish.z);
    color.rgb += toScreen(vec3(shine)) * lightColor.rgb;
#else
    color = vec4(toScreen(lit(base)), 1.0);
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
