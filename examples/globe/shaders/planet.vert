#version 330 core
uniform mat4 mvp;
uniform mat4 model;
layout(location = 0) in vec3 position;
layout(location = 2) in vec2 textureCoordinate;
out vec3 place;
out vec2 coordinate;
void main()
{
    gl_Position = mvp * vec4(position, 1.0);
    place = vec3(model * vec4(position, 1.0));
    coordinate = textureCoordinate;
}
