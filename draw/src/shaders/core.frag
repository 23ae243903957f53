flat in vec4 paint;
noperspective in vec3 corner;

out vec4 color;

void main()
{
    if (any(lessThan(corner - (abs(dFdx(corner)) + abs(dFdy(corner))) / 2.0, vec3(0.0))))
        discard;
    color = paint;
}
