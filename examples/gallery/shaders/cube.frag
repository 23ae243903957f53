#version 330 core
uniform samplerCube faces;
in vec3 direction;
in vec3 place;
out vec4 fragColor;
void main()
{
    // The side's own normal, the same all over it.
    vec3 normal = normalize(cross(dFdx(place), dFdy(place)));
    float light = 0.65 + 0.45 * max(0.0, dot(normal, normalize(vec3(-0.35, 0.8, 0.6))));
    fragColor = vec4(texture(faces, direction).rgb * light, 1.0);
}
