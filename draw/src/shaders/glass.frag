// Translucent layers over what is there; their colour is times their alpha already.
#ifdef SAMPLES
uniform sampler2DMS layers;
#else
uniform sampler2D layers;
#endif
uniform vec2 corner; // of the viewport
out vec4 color;

void main()
{
#ifdef SAMPLES
    color = texelFetch(layers, ivec2(gl_FragCoord.xy - corner), gl_SampleID);
#else
    color = texelFetch(layers, ivec2(gl_FragCoord.xy - corner), 0);
#endif
    if (color.a <= 0.0)
        discard;
}
