#pragma once

#include <gui/draw/GlyphImage.h>
#include <gui/draw/Path.h>

#include <td/Types.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

struct hb_blob_t;
struct hb_font_t;

namespace gui::draw
{

/// Four pictures of how far pixels are covered: with the pen on a pixel's left edge, and one, two and three quarters of
/// a pixel to the right of it.
struct GlyphCoverage
{
    int left = 0;            ///< from the pen's pixel to the left column
    int top = 0;             ///< from the base line up to the upper edge of the top row
    unsigned int width = 0;  ///< of each picture
    unsigned int height = 0; ///< of each
    /// Row by row from the bottom, in each row the four pictures' one after the other.
    std::vector<td::BYTE> pixels;
};

/// A font's outlines as HarfBuzz reads them, and what they cover of pixels: all that drawings take of a glyph, but for
/// pictures in colour. For any number of threads at once.
class GlyphOutlines
{
public:
    /// Of images, in both directions and per em.
    static constexpr int cMostPixels = 4096;

    /// @param pFont  not owned; doesn't change any more
    explicit GlyphOutlines(hb_font_t* pFont);

    ~GlyphOutlines();
    GlyphOutlines(const GlyphOutlines&) = delete;
    GlyphOutlines& operator=(const GlyphOutlines&) = delete;

    /// Whether a glyph is not made of parts of parts without end: HarfBuzz and FreeType, asked for it, might never come
    /// back.
    bool isFinite(std::uint32_t glyph) const;
    /// In font units, y downwards; empty when there is none.
    Path get(std::uint32_t glyph) const;
    /// How an outline covers pixels, for the four places that the pen may have in one. @param pixelsPerEm  above 0
    /// @return none when there is nothing to see, or it is larger than this is for
    std::optional<GlyphCoverage> getCoverage(std::uint32_t glyph, double pixelsPerEm) const;
    /// The same of a round line along it. @param lineWidth  in pixels, above 0
    std::optional<GlyphCoverage> getStrokeCoverage(std::uint32_t glyph, double pixelsPerEm, double lineWidth) const;
    /// Its picture, not hinted. @param request  of a size that there is
    /// @return null, or else what is wrong
    const char* getImage(std::uint32_t glyph, const GlyphRequest& request, GlyphImage& image) const;

private:
    double getUnitsPerEm() const;
    std::span<const td::BYTE> bytesOf(std::uint32_t glyph) const;
    bool hasFewParts(std::uint32_t glyph, int& nMost) const;

    hb_font_t* _pFont;
    hb_blob_t* _pPlaces; // in the glyphs' table, of TrueType's outlines; empty for others
    hb_blob_t* _pGlyphs;
    bool _hasLongPlaces;
};

} // namespace gui::draw
