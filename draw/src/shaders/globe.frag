#version 330 core
uniform sampler2D picture;
uniform vec3 eye;
uniform vec3 sun;
uniform float radius;
uniform float hasAir;
uniform float hasWater;
in vec3 place;
in vec2 coordinate;
out vec4 fragColor;
void main()
{
    vec3 up = normalize(place);
    vec3 toEye = normalize(eye / radius - place);
    vec3 color = texture(picture, coordinate).rgb;
    float height = dot(up, sun); // sine of the sun's height

    // Dusk is a band, not a line, and red where it ends; without air it is a line.
    float day = smoothstep(mix(-0.01, -0.10, hasAir), mix(0.03, 0.22, hasAir), height);
    vec3 dusk = mix(vec3(1.0), vec3(1.0, 0.62, 0.42), hasAir);
    vec3 light = mix(dusk, vec3(1.0), smoothstep(0.0, 0.35, height)) * (0.62 + 0.38 * max(height, 0.0));
    vec3 night = color * vec3(0.020, 0.028, 0.050) + vec3(0.002, 0.004, 0.010) * hasAir;
    vec3 surface = mix(night, color * light, day);

    // Water glitters, land does not; and the air in front of the rim is blue.
    float water = hasWater * smoothstep(0.05, 0.22, color.b - color.r);
    float glitter = pow(max(dot(reflect(-sun, up), toEye), 0.0), 36.0);
    surface += vec3(1.0, 0.9, 0.75) * 0.28 * glitter * water * day;
    float rim = pow(1.0 - max(dot(up, toEye), 0.0), 3.2);
    surface = mix(surface, vec3(0.42, 0.66, 1.0) * day, 0.72 * rim * hasAir);
    // Drawn once more, over lines, it leaves of them what is seen: little by night, and nothing in the haze at the rim.
    float clear = mix(1.0, smoothstep(0.0, 0.35, dot(up, toEye)), hasAir);
    fragColor = vec4(surface, 1.0 - clear * mix(0.22, 1.0, day));
}
