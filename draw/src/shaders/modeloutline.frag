// A line about what a mask has, outside of it.
uniform sampler2D mask;
uniform vec2 corner; // of the viewport
uniform vec4 lineColor; // times its alpha
uniform float lineWidth;
out vec4 color;

void main()
{
    ivec2 at = ivec2(gl_FragCoord.xy - corner), last = textureSize(mask, 0) - 1;
    float here = texelFetch(mask, at, 0).r;
    if (here >= 1.0)
        discard;
    int reach = int(ceil(lineWidth));
    float nearest = 1e9;
    for (int y = -reach; y <= reach; ++y)
        for (int x = -reach; x <= reach; ++x)
        {
            float there = texelFetch(mask, clamp(at + ivec2(x, y), ivec2(0), last), 0).r;
            // Of a pixel that is covered in part, the edge is in its midst.
            if (there > 0.0)
                nearest = min(nearest, length(vec2(x, y)) + 0.5 - there);
        }
    float covered = clamp(lineWidth - nearest + 0.5, 0.0, 1.0) * (1.0 - here);
    if (covered <= 0.0)
        discard;
    color = lineColor * covered;
}
