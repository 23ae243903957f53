#version 330 core
uniform mat4 mvp;
layout(location = 0) in vec3 position;
layout(location = 1) in vec4 lineColor;
out vec3 place;
out vec4 color;
void main()
{
    gl_Position = mvp * vec4(position, 1.0);
    place = position;
    color = lineColor;
}
