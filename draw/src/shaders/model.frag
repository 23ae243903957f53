// A surface in the light: Lambert's and Blinn's, with the light of the surroundings stronger from above. All in linear
// colours, made those of the screen at the end.
in Surface
{
#if !defined(PLAIN) && !defined(IDS)
    vec3 place;
    vec3 normal;
    flat vec2 polish;
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
    vec3 result = base * (lightColor.a * (0.75 + 0.25 * dot(normal, up)) + (1.0 - lightColor.a) * share);
    // A smooth surface reflects 4 % of light that falls on it.
    float towards = max(dot(normal, unit(toLight + toEye)), 0.0);
    float gloss = 0.04 * (surface.polish.x + 8.0) / 8.0 * pow(towards, surface.polish.x) * surface.polish.y;
    return (result + vec3(gloss * share)) * lightColor.rgb;
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
#if defined(PLAIN)
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
    color = vec4(toScreen(lit(base)), 1.0);
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
