#version 330 core
uniform mat4 mvp = mat4(1.0);
// Mesa's software renderer mixes up the channels of a vec3 uniform in a fragment shader as plain as this program's.
uniform vec3 color;
layout(location = 0) in vec2 position;
flat out vec3 shapeColor;
void main()
{
    gl_Position = mvp * vec4(position, 0.0, 1.0);
    shapeColor = color;
}
