uniform sampler2D pictures; // how far a pixel is covered

in vec4 ink;
in vec2 toTexel;
#ifdef COLORS
in vec3 coloredAt;
#endif

out vec4 color;

void main()
{
    color = ink * texelFetch(pictures, ivec2(gl_FragCoord.xy + toTexel), 0).x;
#ifdef COLORS
    if (coloredAt.z >= 0.0)
        color = textureLod(coloredPictures, coloredAt.xy, coloredAt.z) * ink.a;
#endif
}
