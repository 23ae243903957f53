#version 330 core
uniform vec3 color;
uniform vec3 sun = vec3(0.390360, 0.780720, 0.487950);
uniform float ambient = 0.25;
in vec3 normal;
out vec4 fragColor;
void main()
{
    float light = max(dot(normalize(normal), sun), 0.0);
    fragColor = vec4(color * mix(ambient, 1.0, light), 1.0);
}
