#ifdef SPHERES
in vec3 sight;
flat in vec3 centre;
flat in float ballRadius;
flat in vec3 centrePlace; // from the reference
uniform mat4 projection;
#ifdef SHADOWED
uniform mat4 toEye;
#endif
uniform vec2 toDepth;
uniform vec2 polish;
#else
in vec2 way;
flat in float pixels;
uniform vec2 toDepth;
#endif
flat in vec4 paint;
flat in float opacity;
uniform int stage; // what is drawn: the core, the rims; or all, without a rim
#ifdef PLAIN
uniform vec4 plainColor;
#endif
out vec4 color;

#if defined(SPHERES) && !defined(PLAIN) && !defined(IDS)
vec3 toLinear(vec3 c) { return mix(c / 12.92, pow((c + 0.055) / 1.055, vec3(2.4)), step(vec3(0.04045), c)); }
#endif

void main()
{
#ifdef SPHERES
    // The pixel's ray, from where it is nearest to the eye.
    bool isPerspective = projection[2][3] != 0.0;
    vec3 direction = isPerspective ? normalize(sight) : vec3(0.0, 0.0, -1.0);
    vec3 start = isPerspective ? vec3(0.0) : vec3(sight.xy, 0.0);
    float nearest = dot(centre - start, direction);
    vec3 aside = start + nearest * direction - centre;
    float distance = length(aside);
    float step = max(length(vec2(dFdx(distance), dFdy(distance))), 1e-30);
    float covered = clamp((ballRadius - distance) / step + 0.5, 0.0, 1.0);
    bool isCore = distance <= ballRadius - 0.5 * step || (distance <= 0.7 * step && ballRadius < 1.5 * step);
    bool isIn = distance <= ballRadius;
    float depth = sqrt(max(ballRadius * ballRadius - distance * distance, 0.0));
    // The eye may be inside of it.
    if (isPerspective && nearest <= depth)
        discard;
    vec3 hit = start + (nearest - depth) * direction;
    vec4 clip = projection * vec4(hit, 1.0);
    float z = clip.z / clip.w;
#else
    float d = length(way);
    float covered = clamp(pixels - d + 0.5, 0.0, 1.0);
    bool isCore = d <= max(pixels - 0.5, 0.35), isIn = d <= max(pixels, 0.71);
#endif
    if (stage == 0 ? !isCore : stage == 1 ? isCore || covered <= 0.0 : !isIn)
        discard;
#if defined(PLAIN)
    color = plainColor;
#elif defined(IDS)
    color = paint;
#else
    vec4 c = paint;
#ifdef SPHERES
    vec3 normal = (hit - centre) / ballRadius;
    float sun = 1.0, slope = clamp(1.0 - dot(normal, toLight), 0.0, 1.0);
#ifdef SHADOWED
    // The eye's axes are turned back to the model's.
    vec3 outwards = normal * mat3(toEye);
    if (slope < 1.0)
        sun = sunAt(centrePlace + ballRadius * outwards, outwards, slope);
#endif
    c.rgb = litColor(toLinear(c.rgb), normal, -direction, polish, sun);
#endif
    color = vec4(c.rgb * c.a, c.a) * covered * opacity;
#endif
#ifdef SPHERES
    gl_FragDepth = clamp(z * toDepth.x + toDepth.y, 0.0, 1.0);
#endif
}
