#version 330 core
flat in vec3 shapeColor;
out vec4 fragColor;
void main()
{
    fragColor = vec4(shapeColor, 1.0);
}
