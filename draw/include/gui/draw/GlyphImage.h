#pragma once

#include <td/Color.h>
#include <td/Types.h>

#include <vector>

namespace gui::draw
{

/// How Typeface::getImage draws a glyph.
struct GlyphRequest
{
    double pixelsPerEm = 16; ///< the size: above 0, at most 4096; no whole number is needed
    /// How far right of a pixel's edge the pen is, in quarters of a pixel: 0 to 3. Not for pictures in colour.
    unsigned int quarter = 0;
    /// Moves the outline so that stems and heights meet rows of pixels; the width stays as it is (FreeType calls it
    /// light hinting). Without it, the outline as it is.
    bool isHinted = true;
    /// Of the parts of a picture in colour that have the text's colour.
    td::Color foreground = td::ColorID::Black;

    bool operator==(const GlyphRequest&) const = default;
};

/// A glyph as pixels: how far each is covered, or a picture in colour. A value.
struct GlyphImage
{
    int left = 0;            ///< from the pen (its pixel's edge) to the left column, in pixels, to the right
    int top = 0;             ///< from the base line up to the upper edge of the top row, in pixels
    unsigned int width = 0;  ///< in pixels; 0 where there is nothing to see
    unsigned int height = 0; ///< in pixels
    bool isColor = false;    ///< whether a pixel is four bytes, else one
    /// What was drawn. Less than what was asked for where a face has pictures of some sizes only, and none so large:
    /// enlarge the picture, and left and top, by that.
    double pixelsPerEm = 0;
    /// Row by row from the top, without gaps. In colour red, green, blue, alpha, the three multiplied by the alpha;
    /// else the coverage, 0 to 255.
    std::vector<td::BYTE> pixels;
};

} // namespace gui::draw
