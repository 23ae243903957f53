// Quads of whole pixels with the pieces that matter there: of a line, or of an area.
flat out ivec3 pieces; // the first texel, how many, and whose pixels these are, from 1 on; 0 for all
noperspective out vec2 pixel;

void main()
{
    int corner = gl_VertexID % 4, record = base + 2 * (gl_VertexID / 4);
    vec4 box = uintBitsToFloat(texelFetch(table, record));
    pieces = ivec3(texelFetch(table, record + 1).xyz);
    pixel = vec2(corner % 2 == 0 ? box.x : box.z, corner / 2 == 0 ? box.y : box.w);
    gl_Position = toClip(pixel);
}
