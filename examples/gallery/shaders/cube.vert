#version 330 core
uniform mat4 mvp;
uniform mat4 model;
layout(location = 0) in vec3 position;
out vec3 direction;
out vec3 place;
void main()
{
    direction = position;
    place = vec3(model * vec4(position, 1.0));
    gl_Position = mvp * vec4(position, 1.0);
}
