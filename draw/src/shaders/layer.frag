#version 330 core
// Pixel for pixel, colours multiplied by their alpha already.
uniform sampler2D layer;
uniform vec2 corner; // of the viewport
uniform float opacity;
out vec4 color;
void main() { color = opacity * texelFetch(layer, ivec2(gl_FragCoord.xy - corner), 0); }
