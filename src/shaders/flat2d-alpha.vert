#version 330 core
uniform mat4 mvp = mat4(1.0);
layout(location = 0) in vec2 position;
void main()
{
    gl_Position = mvp * vec4(position, 0.0, 1.0);
}
