#version 330 core
uniform sampler2D relief;
uniform vec3 eye;
uniform vec3 sun;
in vec3 place;
in vec2 coordinate;
out vec4 fragColor;
void main()
{
    vec3 up = normalize(place);
    vec3 toEye = normalize(eye - place);
    vec3 color = texture(relief, coordinate).rgb;
    float height = dot(up, sun); // sine of the sun's height

    // Dusk is a band, not a line, and red where it ends.
    float day = smoothstep(-0.10, 0.22, height);
    vec3 light =
        mix(vec3(1.0, 0.62, 0.42), vec3(1.0), smoothstep(0.0, 0.35, height)) * (0.62 + 0.38 * max(height, 0.0));
    vec3 night = color * vec3(0.020, 0.028, 0.050) + vec3(0.002, 0.004, 0.010);
    vec3 surface = mix(night, color * light, day);

    // Water glitters, land does not; and the air in front of the rim is blue.
    float water = smoothstep(0.05, 0.22, color.b - color.r);
    float glitter = pow(max(dot(reflect(-sun, up), toEye), 0.0), 36.0);
    surface += vec3(1.0, 0.9, 0.75) * 0.28 * glitter * water * day;
    float rim = pow(1.0 - max(dot(up, toEye), 0.0), 3.2);
    surface = mix(surface, vec3(0.42, 0.66, 1.0) * day, 0.72 * rim);
    // Drawn once more, over lines, it leaves of them what is seen: little by night, and nothing at the rim.
    fragColor = vec4(surface, 1.0 - smoothstep(0.0, 0.35, dot(up, toEye)) * mix(0.22, 1.0, day));
}
