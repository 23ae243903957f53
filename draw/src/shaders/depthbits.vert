#version 330 core
// All of the viewport.
void main() { gl_Position = vec4(gl_VertexID % 2 == 0 ? -1.0 : 1.0, gl_VertexID / 2 == 0 ? -1.0 : 1.0, 0.0, 1.0); }
