// Shapes that stand upright about a point.
flat out uint shape;
flat out vec4 fillColor; // times its alpha
flat out vec4 edgeColor;
flat out float number; // a radius, a period or the width of an edge
flat out vec2 halfBox;
noperspective out vec2 place; // from the middle

void main()
{
    int corner = gl_VertexID % 4, record = base + 2 * (gl_VertexID / 4);
    vec4 box = uintBitsToFloat(texelFetch(table, record));
    uvec4 look = texelFetch(table, record + 1);
    shape = look.x;
    fillColor = unpacked(look.y);
    fillColor.rgb *= fillColor.a;
    edgeColor = unpacked(look.z);
    edgeColor.rgb *= edgeColor.a;
    number = uintBitsToFloat(look.w);
    halfBox = box.zw;
    vec2 reach = box.zw * (shape > 2u ? 1.25 : 1.0) + (shape > 2u ? number : 0.0) + 1.0;
    place = vec2(corner % 2 == 0 ? -reach.x : reach.x, corner / 2 == 0 ? -reach.y : reach.y);
    gl_Position = toClip(box.xy + place);
}
