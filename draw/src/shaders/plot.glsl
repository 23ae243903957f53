#version 330 core
// What all stages of the plot programs know. Tables hold numbers as their bits; places are in pixels from the picture's
// top left corner.
uniform usamplerBuffer table;
uniform int base;      // the texel of the first quad
uniform vec2 halfSize; // of the viewport

vec4 unpacked(uint rgba)
{
    return vec4(rgba & 255u, rgba >> 8 & 255u, rgba >> 16 & 255u, rgba >> 24) / 255.0;
}

vec4 toClip(vec2 pixel) { return vec4(pixel.x / halfSize.x - 1.0, 1.0 - pixel.y / halfSize.y, 0.0, 1.0); }
