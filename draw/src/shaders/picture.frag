uniform sampler2D pictures; // how far a pixel is covered

in vec4 ink;
in vec2 toTexel;

out vec4 color;

void main() { color = ink * texelFetch(pictures, ivec2(gl_FragCoord.xy + toTexel), 0).x; }
