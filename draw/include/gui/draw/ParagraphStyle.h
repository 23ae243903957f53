#pragma once

#include <td/Types.h>

#include <string>
#include <vector>

namespace gui::draw
{

/// Where lines stand in the width of a text.
enum class Align : td::BYTE
{
    Start, ///< where reading begins: at the left in a paragraph from left to right, else at the right
    End,
    Center,
    Justify ///< both, by wider spaces; as Start in the last line of a paragraph and in lines without spaces
};

/// Which way a paragraph is read.
enum class TextDirection : td::BYTE
{
    Auto, ///< as its first letter is, and from left to right when it has none
    LeftToRight,
    RightToLeft
};

/// How a text's letters become lines. Lengths are in the unit of its styles. A value:
///
///     TextLayout layout(text, style, {.width = 300, .align = Align::Justify, .maxLines = 3, .ellipsis = "…"});
struct ParagraphStyle
{
    /// Of the lines, at most; not above 0 (or not finite) for no limit: the longest line is the width then.
    double width = 0;
    bool wraps = true; ///< whether lines that are longer than the width are broken
    Align align = Align::Start;
    TextDirection direction = TextDirection::Auto;
    /// From base line to base line, times the size of the largest text in the line; not above 0 for what the faces say.
    double lineHeight = 0;
    /// Where text goes on behind a tab: the places from the line's start, in rising order, and the distance of those
    /// behind the last one. A distance that is not above 0 is that of eight spaces.
    std::vector<double> tabs{};
    double tabDistance = 0;
    /// Lines beyond this number are left out; 0 for all.
    unsigned int maxLines = 0;
    /// What ends the last line when lines are left out, and lines that are longer than the width without wrapping;
    /// nothing when it is empty. So much of the line goes that it fits in.
    std::string ellipsis{};

    bool operator==(const ParagraphStyle&) const = default;
};

} // namespace gui::draw
