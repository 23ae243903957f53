#pragma once

#include <gui/draw/TextLayout.h>
#include <gui/draw/TextPlacement.h>

#include <td/RectNormalized.h>

#include <algorithm>
#include <cmath>
#include <optional>

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

/// A text's frame about its anchor, in the text's unit: of whole points where the text stands on whole pixels.
inline std::optional<td::RectNormalized<double>> frameIn(const TextLayout& layout, const TextPlacement& placement)
{
    const td::Size<double> size = layout.getSize();
    if (!placement.frame || !(size.width > 0) || layout.getNumberOfStyles() == 0)
        return std::nullopt;
    const double padding = std::isfinite(placement.frame->padding) ? std::max(placement.frame->padding, 0.0) : 0;
    const auto [x, y] = anchorIn(layout, placement.anchor);
    td::RectNormalized<double> frame(-x - padding, -y - padding / 2, size.width - x + padding,
                                     size.height - y + padding / 2);
    if (layout.getStyle(0).unit == Unit::Points && placement.angle == 0)
        frame = {std::round(frame.left), std::round(frame.top), std::round(frame.right), std::round(frame.bottom)};
    return frame;
}

} // namespace gui::draw
