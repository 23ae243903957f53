// A rectangle with cells.
uniform vec4 box; // left, top, right, bottom
noperspective out vec2 pixel;

void main()
{
    int corner = gl_VertexID % 4;
    pixel = vec2(corner % 2 == 0 ? box.x : box.z, corner / 2 == 0 ? box.y : box.w);
    gl_Position = toClip(pixel);
}
