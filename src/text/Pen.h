#pragma once

#include <td/Point.h>
#include <td/Size.h>

#include <algorithm>

namespace gui::gl
{

/// Where layout is between two characters.
struct Pen
{
    float x;
    float top; ///< of the line
    float bottom;
    float widest = 0;    ///< of the lines before
    bool isFirst = true; ///< nothing was laid out on this line

    /// @param left  where lines begin
    void breakLine(float left, float lineHeight, float toNextLine)
    {
        widest = std::max(widest, x - left);
        x = left;
        top += toNextLine;
        bottom = top + lineHeight;
        isFirst = true;
    }

    /// Of all that was laid out, from where it began.
    td::Size<float> size(const td::Point<float>& begin, float lineSpacing) const
    {
        return {std::max(widest, x - begin.x), (bottom - begin.y) + lineSpacing};
    }
};

} // namespace gui::gl
