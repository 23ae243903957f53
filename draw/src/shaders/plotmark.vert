// Shapes that stand upright about a point.
#ifdef CLOUD
uniform vec4 toPixels; // factors of x and y, and what is added
uniform vec4 look;     // shape, half of the size, width of the edge
uniform vec4 edge;     // times its alpha
#endif
flat out uint shape;
flat out vec4 fillColor; // times its alpha
flat out vec4 edgeColor;
flat out float number; // a radius, a period or the width of an edge
flat out vec2 halfBox;
noperspective out vec2 place; // from the middle

void main()
{
    int corner = gl_VertexID % 4;
#ifdef CLOUD
    uvec4 record = texelFetch(table, gl_VertexID / 4);
    vec4 box = vec4(uintBitsToFloat(record.xy) * toPixels.xy + toPixels.zw, look.yy);
    shape = uint(look.x);
    fillColor = unpacked(record.z);
    edgeColor = edge;
    number = look.z;
#else
    int record = base + 2 * (gl_VertexID / 4);
    vec4 box = uintBitsToFloat(texelFetch(table, record));
    uvec4 look = texelFetch(table, record + 1);
    shape = look.x;
    fillColor = unpacked(look.y);
    edgeColor = unpacked(look.z);
    edgeColor.rgb *= edgeColor.a;
    number = uintBitsToFloat(look.w);
#endif
    fillColor.rgb *= fillColor.a;
    halfBox = box.zw;
    vec2 reach = box.zw * (shape > 2u ? 1.25 : 1.0) + (shape > 2u ? number : 0.0) + 1.0;
    place = vec2(corner % 2 == 0 ? -reach.x : reach.x, corner / 2 == 0 ? -reach.y : reach.y);
    gl_Position = toClip(box.xy + place);
}
