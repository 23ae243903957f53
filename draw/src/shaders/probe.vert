#version 330 core
// Squares about places of clip space, 64 at a time.
uniform vec4 squares[64];
uniform vec2 halfSize;
void main()
{
    int corner = gl_VertexID % 4;
    vec2 side = vec2(corner % 2 * 2 - 1, corner / 2 * 2 - 1);
    gl_Position = squares[gl_VertexID / 4] + vec4(side * halfSize, 0.0, 0.0);
}
