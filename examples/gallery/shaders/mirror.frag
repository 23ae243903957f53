#version 330 core
uniform samplerCube surroundings;
uniform vec3 eye;
uniform vec3 tint;
in vec3 place;
in vec3 normal;
out vec4 fragColor;
void main()
{
    vec3 sight = normalize(place - eye);
    vec3 across = normalize(normal);
    // Metal takes its tint from what it mirrors but at its rim, where it mirrors everything.
    float rim = pow(1.0 - max(dot(-sight, across), 0.0), 4.0);
    vec3 mirrored = texture(surroundings, reflect(sight, across)).rgb;
    fragColor = vec4(mirrored * mix(tint * 0.92, vec3(1.0), rim), 1.0);
}
