#version 330 core
uniform vec3 eye;
uniform vec3 sun;
uniform float radius;
in vec3 place;
in vec2 coordinate;
out vec4 fragColor;
void main()
{
    // How near the line of sight comes to the ground, and where.
    vec3 from = eye / radius;
    vec3 sight = normalize(place - from);
    vec3 nearest = from - sight * dot(from, sight);
    float height = length(nearest) - 1.0;
    float day = smoothstep(-0.22, 0.28, dot(normalize(nearest), sun));
    float glow = exp(-max(height, 0.0) / 0.017) * smoothstep(0.100, 0.060, height) * smoothstep(-0.006, 0.004, height);
    vec3 color = mix(vec3(0.9, 0.5, 0.35), vec3(0.35, 0.62, 1.0), smoothstep(0.15, 0.75, day));
    fragColor = vec4(color * glow * day * 0.8, 1.0);
}
