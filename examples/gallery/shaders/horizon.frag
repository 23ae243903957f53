#version 330 core
uniform vec3 zenith;  // upwards where the eye is
uniform vec3 sun;     // towards it
uniform float height; // of the eye, in metres
in vec3 ray;
out vec4 fragColor;

const float cRadius = 6.4e6;

// Stars lie in the cells of a grid around the eye; one in a hundred has one.
float star(vec3 direction)
{
    vec3 place = 110.0 * direction, cell = floor(place);
    vec3 numbers = fract(sin(vec3(dot(cell, vec3(12.7, 311.7, 74.7)), dot(cell, vec3(269.5, 18.3, 246.1)),
                                  dot(cell, vec3(113.5, 27.9, 124.6)))) * 43758.5453);
    float size = 0.15 + 0.2 * numbers.y;
    return numbers.x < 0.988 ? 0.0 : numbers.z * smoothstep(size, 0.0, length(place - cell - 0.5));
}

void main()
{
    vec3 direction = normalize(ray);
    float toHorizon = sqrt(height * (2.0 * cRadius + height));
    float above = asin(clamp(dot(direction, zenith), -1.0, 1.0)) + atan(toHorizon / cRadius);
    // How much air is above the eye, and how high over the horizon it is seen.
    float air = exp(-height / 9000.0);
    float glow = exp(-max(above, 0.0) / min(0.17, 30000.0 / toHorizon));
    // Where the ray is nearest to the ground the sun has to be up.
    vec3 place = (cRadius + height) * zenith;
    float day = smoothstep(-0.2, 0.25, dot(normalize(place + max(-dot(place, direction), 0.0) * direction), sun));
    vec3 color = vec3(0.004, 0.006, 0.014) + star(direction) * (1.0 - air) * (1.0 - glow);
    color = mix(color, vec3(0.13, 0.36, 0.72), 0.97 * air * day);
    color = mix(color, mix(vec3(0.36, 0.62, 1.0), vec3(0.80, 0.88, 0.95), air), glow * day);
    float toSun = max(dot(direction, sun), 0.0);
    float shine = 0.35 * pow(toSun, 300.0) + 0.15 * air * pow(toSun, 12.0);
    color += vec3(1.0, 0.95, 0.85) * (smoothstep(0.99985, 0.99993, toSun) + shine);
    // No steps where it changes slowly.
    float noise = fract(sin(dot(gl_FragCoord.xy, vec2(12.9898, 78.233))) * 43758.5453);
    fragColor = vec4(color + (noise - 0.5) / 255.0, 1.0);
}
