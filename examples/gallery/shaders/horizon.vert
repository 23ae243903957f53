#version 330 core
uniform mat3 sight; // to the right edge, to the upper edge, ahead
layout(location = 0) in vec2 position;
out vec3 ray;
void main()
{
    gl_Position = vec4(position, 0.0, 1.0);
    ray = sight * vec3(position, 1.0);
}
