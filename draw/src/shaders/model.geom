// Gives each pixel how far it is from a triangle's three sides.
layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;

in Surface
{
    vec3 place;
    vec3 normal;
    flat vec3 polish;
#ifdef TEXTURED
    vec2 inPicture;
#endif
#ifdef CLIPPED
    vec3 cutPlace;
#endif
    flat vec4 paint;
}
corners[];

out Surface
{
    vec3 place;
    vec3 normal;
    flat vec3 polish;
#ifdef TEXTURED
    vec2 inPicture;
#endif
#ifdef CLIPPED
    vec3 cutPlace;
#endif
    flat vec4 paint;
}
surface;
out vec3 opposite; // 1 at a corner, 0 on the side across

void main()
{
    for (int i = 0; i < 3; ++i)
    {
        gl_Position = gl_in[i].gl_Position;
        surface.place = corners[i].place;
        surface.normal = corners[i].normal;
        surface.polish = corners[i].polish;
#ifdef TEXTURED
        surface.inPicture = corners[i].inPicture;
#endif
        surface.paint = corners[i].paint;
#ifdef CLIPPED
        clipAt(corners[i].cutPlace);
        surface.cutPlace = corners[i].cutPlace;
#endif
        opposite = vec3(i == 0, i == 1, i == 2);
        EmitVertex();
    }
    EndPrimitive();
}
