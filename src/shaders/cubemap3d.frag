#version 330 core
uniform samplerCube image;
in vec3 direction;
out vec4 fragColor;
void main()
{
    fragColor = texture(image, direction);
}
