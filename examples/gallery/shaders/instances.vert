#version 330 core
uniform mat4 mvp;
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in mat4 model; // locations 2 to 5
layout(location = 6) in vec4 tint;
out vec3 color;
void main()
{
    // Models are stretched along their own axes only, and so are the normals.
    vec3 direction = normalize(mat3(model) * normal);
    float light = 0.35 + 0.75 * max(0.0, dot(direction, normalize(vec3(-0.5, 0.75, 0.45))));
    color = tint.rgb * light;
    gl_Position = mvp * model * vec4(position, 1.0);
}
