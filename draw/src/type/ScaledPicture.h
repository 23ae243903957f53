#pragma once

#include <gui/draw/GlyphImage.h>

namespace gui::draw
{

/// Makes a picture in colour smaller: each pixel is the mean of what it covers. Left and top go along, so that the
/// picture stays where it is to a fraction of a pixel of its own.
/// @param pixelsPerEm  above 0, at most the picture's
void scaleDown(GlyphImage& image, double pixelsPerEm);

} // namespace gui::draw
