#pragma once

namespace gui::draw
{

/// What a glyph of COLR's version 1 is like.
struct GlyphPaint
{
    double width = 0, height = 0; ///< of what is seen of it, in font units
    bool usesForeground = false;
};

} // namespace gui::draw
