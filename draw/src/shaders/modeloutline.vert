uniform vec4 box; // where it may be, in clip space
void main()
{
    gl_Position = vec4(gl_VertexID % 2 == 0 ? box.x : box.z, gl_VertexID / 2 == 0 ? box.y : box.w, 0.0, 1.0);
}
