flat in vec4 paint;
flat in int gradient;
flat in ivec2 middle;
flat in vec2 toMiddle;
flat in vec4 stepsToPixels;
noperspective in vec3 corner;

out vec4 color;

void main()
{
    if (any(lessThan(corner - (abs(dFdx(corner)) + abs(dFdy(corner))) / 2.0, vec3(0.0))))
        discard;
    color = paint;
#ifdef GRADIENTS
    if (gradient >= 0)
        color = gradientAt(gradient, Place(middle, toMiddle, mat2(stepsToPixels.xy, stepsToPixels.zw)),
                           gl_FragCoord.xy - halfSize);
#endif
}
