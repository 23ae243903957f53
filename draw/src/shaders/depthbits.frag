#version 330 core
// The bits of a float, byte by byte.
uniform sampler2D picture;
out vec4 color;
void main()
{
    uint bits = floatBitsToUint(texelFetch(picture, ivec2(gl_FragCoord.xy), 0).r);
    color = vec4((uvec4(bits) >> uvec4(0u, 8u, 16u, 24u)) & 255u) / 255.0;
}
