// Any bytes as a font, and as the font in a baked face: all that is asked of a face, and a text laid out in it.

#include "Fuzz.h"

#include <gui/draw/TextLayout.h>
#include <gui/draw/Typeface.h>

#include <draw/src/type/BakedFace.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace fuzz::typeface
{

using gui::draw::Typeface;

namespace
{

void use(std::span<const std::uint8_t> bytes)
{
    Quiet quiet;
    Typeface face = Typeface::fromMemory(bytes);
    require(bool(face) == (quiet.nLines == 0), "a line says why there is no face");
    if (!face)
        return;
    face = face.withFallbacks({}, false);
    (void) face.getFamily();
    (void) face.getStyleName();
    (void) face.getFeatures();
    std::vector<gui::draw::FontVariation> variations;
    for (const Typeface::Axis& axis : face.getAxes())
        variations.push_back({axis.tag, axis.maximum});
    const Typeface moved = face.withVariations(variations);
    const std::uint32_t nGlyphs = face.getNumberOfGlyphs();
    require(nGlyphs > 0, "a font has glyphs");
    const std::uint32_t step = nGlyphs / 8 + 1;
    for (const Typeface& which : {face, moved})
        for (std::uint32_t glyph = 0; glyph <= nGlyphs; glyph += step)
        {
            (void) which.getOutline(glyph);
            (void) which.getBounds(glyph);
            (void) which.getAdvance(glyph);
            for (const double size : {9.5, 200.0})
                if (const auto image = which.getImage(glyph, {.pixelsPerEm = size, .quarter = glyph % 4}))
                    require(image->pixels.size() ==
                                std::size_t(image->width) * image->height * (image->isColor ? 4 : 1),
                            "a picture has its pixels");
        }
    for (std::uint32_t glyph = 0; glyph < std::min(nGlyphs, 100U); ++glyph)
        if (moved.isColorGlyph(glyph))
            (void) moved.getImage(glyph, {.pixelsPerEm = 20, .foreground = "#ff8000"});
    const gui::draw::TextLayout layout("Text office 12 \u05D0\u0628\u0915\u094D\u0937 e\u0301",
                                       {.face = face, .size = 10}, {.width = 40});
    (void) layout.getInkBounds();
    (void) layout.getCaret({5});
}

void run(const std::uint8_t* bytes, std::size_t n)
{
    use({bytes, n});
    // No input would have the right checksum.
    const auto header = gui::draw::BakedFace::headerOf({bytes, n});
    std::vector<std::uint8_t> baked(header.begin(), header.end());
    baked.insert(baked.end(), bytes, bytes + n);
    use(baked);
}

const Target cTarget("typeface", run);

} // namespace

} // namespace fuzz::typeface
