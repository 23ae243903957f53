// Gives each pixel how far it is from a triangle's three sides.
layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;

in vec3 cornerPlace[];
in vec3 cornerNormal[];
flat in vec3 cornerPolish[];
#ifdef TEXTURED
in vec2 cornerInPicture[];
#endif
#ifdef CLIPPED
in vec3 cornerCutPlace[];
#endif
flat in vec4 cornerPaint[];

out vec3 surfacePlace;
out vec3 surfaceNormal;
flat out vec3 surfacePolish;
#ifdef TEXTURED
out vec2 surfaceInPicture;
#endif
#ifdef CLIPPED
out vec3 surfaceCutPlace;
#endif
flat out vec4 surfacePaint;
out vec3 opposite; // 1 at a corner, 0 on the side across

void main()
{
    for (int i = 0; i < 3; ++i)
    {
        gl_Position = gl_in[i].gl_Position;
        surfacePlace = cornerPlace[i];
        surfaceNormal = cornerNormal[i];
        surfacePolish = cornerPolish[i];
#ifdef TEXTURED
        surfaceInPicture = cornerInPicture[i];
#endif
        surfacePaint = cornerPaint[i];
#ifdef CLIPPED
        clipAt(cornerCutPlace[i]);
        surfaceCutPlace = cornerCutPlace[i];
#endif
        opposite = vec3(i == 0, i == 1, i == 2);
        EmitVertex();
    }
    EndPrimitive();
}
