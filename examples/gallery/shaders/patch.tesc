#version 410 core
layout(vertices = 16) out;
in vec3 controlPoint[];
out vec3 corner[];
void main()
{
    corner[gl_InvocationID] = controlPoint[gl_InvocationID];
    for (int i = 0; i < 4; ++i)
        gl_TessLevelOuter[i] = 16.0;
    gl_TessLevelInner[0] = 16.0;
    gl_TessLevelInner[1] = 16.0;
}
