void main() { gl_Position = vec4(gl_VertexID % 2 * 2 - 1, gl_VertexID / 2 * 2 - 1, 0.0, 1.0); }
