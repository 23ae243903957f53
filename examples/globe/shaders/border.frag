#version 330 core
uniform vec3 eye;
uniform vec3 sun;
in vec3 place;
in vec4 color;
out vec4 fragColor;
void main()
{
    vec3 up = normalize(place);
    float day = smoothstep(-0.15, 0.25, dot(up, sun));
    // Many lines meet at the rim.
    float rim = smoothstep(0.0, 0.35, dot(up, normalize(eye - place)));
    fragColor = vec4(color.rgb, clamp(color.a * rim * mix(0.22, 1.0, day), 0.0, 1.0));
}
