#version 330 core
uniform mat4 mvp;
uniform float radius; // of the globe, in model units
uniform float shell;  // of the sphere, in radii
layout(location = 0) in vec3 position;
layout(location = 2) in vec2 textureCoordinate;
out vec3 place; // in radii
out vec2 coordinate;
void main()
{
    // A generated sphere has its pole on the z axis, and its texture's left edge, 180 degrees west, on the x axis.
    place = shell * vec3(-position.y, position.z, -position.x);
    gl_Position = mvp * vec4(radius * place, 1.0);
    coordinate = textureCoordinate;
}
