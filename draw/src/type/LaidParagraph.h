#pragma once

#include "ShapedParagraph.h"

#include <gui/draw/TextLayout.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace gui::draw
{

/// What of a ParagraphStyle, and of the paragraphs around, decides how a paragraph's lines are.
struct LineSettings
{
    double width = 0; // not above 0 for no limit
    bool wraps = true;
    bool isJustified = false;
    double lineHeight = 0;
    std::vector<double> tabs{};
    double tabDistance = 0;
    unsigned int maxLines = 0; // for this paragraph, 0 for all
    bool goesOnBehind = false; // whether the last of maxLines lines is cut even if all of this paragraph is in it
    std::string ellipsis{};

    bool operator==(const LineSettings&) const = default;
};

/// Glyphs of one run in one line, of one span; or a tab or an invisible character, without glyphs.
struct LaidRun
{
    Typeface face;
    double size;
    std::uint32_t span;
    std::uint32_t begin, end; // of the text; both the same for a hyphen or an ellipsis
    std::uint32_t firstGlyph, nGlyphs;
    double left, right; // from the line's left end
    bool isRightToLeft;
};

struct LaidLine
{
    std::uint32_t begin, end;      // of the text; what was cut is not in it
    std::uint32_t firstRun, nRuns; // from left to right
    double left, right;            // of its letters: spaces at its end are outside
    double ascent, descent;        // with half of the gap between lines each
    bool isCut;
    bool isSoft; // whether it ends for lack of room
};

/// A paragraph's lines, the first one's top left corner at 0, 0 and all lines beginning at the left. Unchanged once it
/// is made.
struct LaidParagraph
{
    std::shared_ptr<const ShapedParagraph> pShaped;
    std::vector<LaidLine> lines; // at least one
    std::vector<LaidRun> runs;
    std::vector<TextLayout::Glyph> glyphs; // offsets from the paragraph's beginning

    std::size_t getBytes() const;
};

} // namespace gui::draw
