#version 410 core
uniform vec3 color;
in vec3 place;
in vec3 normal;
out vec4 fragColor;

const vec3 valley = vec3(0.20, 0.45, 1.00);
const vec3 middle = vec3(0.55, 0.90, 0.85);
const vec3 hill = vec3(1.00, 0.55, 0.30);

void main()
{
    // Both sides of the surface are lit.
    float light = 0.5 + 0.6 * abs(dot(normalize(normal), normalize(vec3(-0.4, 0.3, 1.0))));
    vec3 tint = mix(mix(valley, middle, smoothstep(-0.6, 0.0, place.z)), hill, smoothstep(0.0, 0.6, place.z));
    fragColor = vec4(color * tint * light, 1.0);
}
