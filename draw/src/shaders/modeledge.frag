// As much of a pixel as the line covers, with round ends.
flat in vec4 ends;
flat in vec2 depths;
uniform vec4 lineColor; // times its alpha
uniform float lineWidth;
uniform float leastCover; // of a pixel that is drawn
uniform vec2 halfSize;
uniform vec2 corner; // of the viewport
#ifdef CLIPPED
flat in vec3 cutBegin;
flat in vec3 cutEnd;
flat in vec2 inverseW;
#endif
out vec4 color;

void main()
{
    vec2 along = ends.zw - ends.xy, way = gl_FragCoord.xy - corner - halfSize - ends.xy;
    float square = dot(along, along);
    float share = square > 0.0 ? clamp(dot(way, along) / square, 0.0, 1.0) : 0.0;
    float d = length(way - along * share);
    float covered = clamp(lineWidth / 2.0 - d + 0.5, 0.0, 1.0) - clamp(-lineWidth / 2.0 - d + 0.5, 0.0, 1.0);
    if (covered <= leastCover)
        discard;
#ifdef CLIPPED
    // What is linear on the screen is a place over its w.
    if (isCutAway(mix(cutBegin, cutEnd, share) / mix(inverseW.x, inverseW.y, share)))
        discard;
#endif
    color = lineColor * covered;
    // Around an end it is as far as the end: what a short edge goes on to is somewhere else.
    gl_FragDepth = mix(depths.x, depths.y, share);
}
