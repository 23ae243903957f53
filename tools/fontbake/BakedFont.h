#pragma once

#include "CharacterSet.h"
#include "Rasterizer.h"

#include <string>
#include <vector>

namespace fontbake
{

/// The most columns of an atlas: GL's largest texture on common drivers.
constexpr int cMaxAtlasWidth = 16384;

/// What a font file holds, in whole pixels.
///
/// Text is laid out by these rules. At the first glyph of a line the pen goes back by the bearing, at any other
/// forward; then back by half of the padding. Here begins the glyph's quad, as wide as its cell in the atlas: its width
/// and the padding. Then the pen goes on by the advance.
///
/// So bearings are 0 where possible: lines begin where they are asked to, and measuring them takes no exception. The
/// blank columns that a glyph has at its left are part of its cell, and the padding leaves room for strokes that reach
/// out to the left of the pen, like those of "j". Only where one reaches out further, as accents do that stand over the
/// letter before them, the bearing is negative.
struct BakedFont
{
    struct Glyph
    {
        char32_t codePoint = 0;
        int bearing = 0;
        int width = 0; ///< of the cell, without the padding
        int advance = 0;
        int left = 0; ///< the cell's first column in the atlas
    };

    int size = 0;           ///< per em
    bool isForDark = false; ///< made for light text
    int baseline = 0;       ///< from the top of the line
    int linePitch = 0;      ///< from line to line, as the font's designer wants it
    int lineHeight = 0;     ///< and the atlas' height
    int spaceWidth = 0;
    int padding = 0;
    int atlasWidth = 0;
    std::vector<Glyph> glyphs;         ///< the last one is the replacement box
    std::vector<unsigned char> pixels; ///< coverage, row by row from the top
};

struct BakeSettings
{
    int size = 0;   ///< pixels per em, as the rasterizer has it
    int spread = 1; ///< blank pixels around each picture, at least 1
    /// Text multiplies its colour by the coverage, and then blends it by coverage as alpha. That takes nothing from
    /// black text on white, but white text on black gets the coverage's square, so the atlas holds its root then.
    bool lightOnDark = false;
};

/// Draws characters that the font has, and a box as replacement for those it lacks, into an atlas. Throws Error, for
/// an atlas that would be too wide for instance.
BakedFont bake(const Rasterizer& rasterizer, const CharacterSet& characters, const BakeSettings& settings);

/// The bytes of the font file.
std::string fileOf(const BakedFont& font);

} // namespace fontbake
