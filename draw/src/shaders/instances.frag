in vec3 place;
#if !defined(PLAIN) && !defined(IDS)
in vec3 normal;
flat in vec2 polish;
uniform vec4 viewer; // where the eye is, and 1; or the direction to it, and 0
#endif
flat in vec4 paint;
#ifdef PLAIN
uniform vec4 plainColor;
#endif
out vec4 color;

#if !defined(PLAIN) && !defined(IDS)
vec3 unit(vec3 v)
{
    // Squares of very large and very small numbers are none.
    v /= max(max(abs(v.x), abs(v.y)), max(abs(v.z), 1e-37));
    return v * inversesqrt(max(dot(v, v), 1e-37));
}
#endif

void main()
{
#ifdef IDS
    int bits = int(paint.a / 4.0);
#else
    int bits = int(paint.a + 0.5);
#endif
    bool isFront = gl_FrontFacing != ((bits & 2) != 0);
    if ((bits & 1) == 0 && !isFront)
        discard;
#ifdef CLIPPED
    if (isLeftOut(place))
        discard;
#endif
#if defined(PLAIN)
    color = plainColor;
#elif defined(IDS)
    color = vec4(paint.rgb, paint.a - 4.0 * float(bits));
#else
    vec3 across = cross(unit(dFdx(place)), unit(dFdy(place)));
    vec3 towardsEye = unit(viewer.w > 0.5 ? viewer.xyz - place : viewer.xyz);
    vec3 n = isFront ? normal : -normal;
    float largest = max(max(abs(n.x), abs(n.y)), abs(n.z));
    n = largest > 0.0 ? unit(n) : unit(dot(across, towardsEye) < 0.0 ? -across : across);
    float sun = 1.0, slope = clamp(1.0 - dot(n, toLight), 0.0, 1.0);
#ifdef SHADOWED
    if (slope < 1.0)
        sun = sunAt(place, n, slope);
#endif
    color = vec4(litColor(paint.rgb, n, towardsEye, polish, sun), 1.0);
#endif
}
