#version 410 core
layout(quads, equal_spacing, ccw) in;
uniform mat4 mvp;
in vec3 corner[];
out vec3 place;
out vec3 normal;

// The cubic Bernstein polynomials, and their derivatives.
vec4 weights(float t)
{
    float s = 1.0 - t;
    return vec4(s * s * s, 3.0 * s * s * t, 3.0 * s * t * t, t * t * t);
}
vec4 slopes(float t)
{
    float s = 1.0 - t;
    return 3.0 * vec4(-s * s, s * s - 2.0 * s * t, 2.0 * s * t - t * t, t * t);
}
vec3 surface(vec4 u, vec4 v)
{
    vec3 sum = vec3(0.0);
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            sum += u[column] * v[row] * corner[4 * row + column];
    return sum;
}

void main()
{
    vec4 u = weights(gl_TessCoord.x);
    vec4 v = weights(gl_TessCoord.y);
    place = surface(u, v);
    normal = cross(surface(slopes(gl_TessCoord.x), v), surface(u, slopes(gl_TessCoord.y)));
    gl_Position = mvp * vec4(place, 1.0);
}
