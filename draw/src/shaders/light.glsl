// A surface in the light: Lambert's and Blinn's, with the light of the surroundings stronger from above. All in linear
// colours, made those of the screen at the end.
uniform vec3 toLight;
uniform vec4 lightColor; // with the share that is everywhere
uniform vec3 up;

vec3 toScreen(vec3 c)
{
    return mix(12.92 * c, 1.055 * pow(max(c, vec3(0.0031308)), vec3(1.0 / 2.4)) - 0.055, step(vec3(0.0031308), c));
}

#ifdef SHADOWED
uniform mat4 toShadowMap; // from places
uniform sampler2DShadow shadowMap;
// Of a texel in model units and in the map, and half a side of the square of texels that count, without the middle.
uniform vec3 shadowSize;

// How much of the sun gets to a place: 0 in the shadow. slope: 0 where the surface is turned to the sun, to 1
float sunAt(vec3 place, vec3 normal, float slope)
{
    // Away from the surface by what a texel of it falls, so that it does not shade itself.
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

// What a surface throws back of all light, and what it mirrors of the sun or lamp itself.
// @param sun     how much of that gets there
// @param polish  Blinn's exponent, and how much of it there is
vec3 diffuseOf(vec3 base, vec3 normal, float sun)
{
    float share = max(dot(normal, toLight), 0.0) * sun;
    return base * (lightColor.a * (0.75 + 0.25 * dot(normal, up)) + (1.0 - lightColor.a) * share);
}

float glossOf(vec3 normal, vec3 towardsEye, vec2 polish, float sun)
{
    // A smooth surface reflects 4 % of light that falls on it.
    vec3 middle = toLight + towardsEye;
    float towards = max(dot(normal, middle * inversesqrt(max(dot(middle, middle), 1e-12))), 0.0);
    return 0.04 * (polish.x + 8.0) / 8.0 * pow(towards, polish.x) * polish.y * max(dot(normal, toLight), 0.0) * sun;
}

vec3 litColor(vec3 base, vec3 normal, vec3 towardsEye, vec2 polish, float sun)
{
    return toScreen((diffuseOf(base, normal, sun) + vec3(glossOf(normal, towardsEye, polish, sun))) * lightColor.rgb);
}
