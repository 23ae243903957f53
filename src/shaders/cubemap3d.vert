#version 330 core
uniform mat4 mvp = mat4(1.0);
layout(location = 0) in vec3 position;
out vec3 direction;
void main()
{
    gl_Position = mvp * vec4(position, 1.0);
    direction = position;
}
