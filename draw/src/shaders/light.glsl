// A surface in the light: Lambert's and Blinn's, with the light of the surroundings stronger from above. All in linear
// colours, made those of the screen at the end.
uniform vec3 toLight;
uniform vec4 lightColor; // with the share that is everywhere
uniform vec3 up;

vec3 toScreen(vec3 c)
{
    return mix(12.92 * c, 1.055 * pow(max(c, vec3(0.0031308)), vec3(1.0 / 2.4)) - 0.055, step(vec3(0.0031308), c));
}

// polish: Blinn's exponent, and how much of it there is
vec3 litColor(vec3 base, vec3 normal, vec3 towardsEye, vec2 polish)
{
    float share = max(dot(normal, toLight), 0.0);
    vec3 result = base * (lightColor.a * (0.75 + 0.25 * dot(normal, up)) + (1.0 - lightColor.a) * share);
    // A smooth surface reflects 4 % of light that falls on it.
    vec3 middle = toLight + towardsEye;
    float towards = max(dot(normal, middle * inversesqrt(max(dot(middle, middle), 1e-12))), 0.0);
    float gloss = 0.04 * (polish.x + 8.0) / 8.0 * pow(towards, polish.x) * polish.y;
    return toScreen((result + vec3(gloss * share)) * lightColor.rgb);
}
