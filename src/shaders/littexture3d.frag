#version 330 core
uniform sampler2D image;
uniform vec3 sun = vec3(0.390360, 0.780720, 0.487950);
uniform float ambient = 0.25;
in vec3 normal;
in vec2 coordinate;
out vec4 fragColor;
void main()
{
    vec4 color = texture(image, coordinate);
    float light = max(dot(normalize(normal), sun), 0.0);
    fragColor = vec4(color.rgb * mix(ambient, 1.0, light), color.a);
}
