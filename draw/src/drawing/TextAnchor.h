#pragma once

#include <gui/draw/TextLayout.h>
#include <gui/draw/TextPlacement.h>

#include <cmath>

namespace gui::draw
{

/// Where an anchor is in a layout; what is not finite counts as 0.
inline td::Point<double> anchorIn(const TextLayout& layout, const Anchor& anchor)
{
    const td::Size<double> size = layout.getSize();
    const double baseline = layout.getLines().empty() ? 0 : layout.getLines().front().baseline;
    return {std::isfinite(anchor.x) ? anchor.x * size.width : 0, !anchor.y                  ? baseline
                                                                 : std::isfinite(*anchor.y) ? *anchor.y * size.height
                                                                                            : 0};
}

} // namespace gui::draw
