#version 410 core
layout(location = 0) in vec3 position;
out vec3 controlPoint;
void main()
{
    controlPoint = position;
}
