#pragma once

namespace gui::gl
{

/// Whether a number of samples per pixel is one that can be asked for; 1 is a plain pixel.
constexpr bool isSampleCount(int n) { return n == 1 || n == 2 || n == 4 || n == 8 || n == 16; }

/// The samples that a framebuffer has for each pixel, 1 for a plain one. What is bound stays bound.
int samplesOf(unsigned int framebuffer);

} // namespace gui::gl
