#pragma once

#include <td/Size.h>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

/// What a picture of a size in points has in pixels. A size that is not above 0, or no number, gives 0, and one that is
/// larger than any framebuffer the largest number there is: gl::Framebuffer::create says so.
inline td::Size<int> toPixels(const td::Size<double>& points, double pixelsPerPoint)
{
    const auto pixels = [pixelsPerPoint](double length)
    {
        const double scaled = length * pixelsPerPoint;
        return scaled > 0 && pixelsPerPoint > 0 ? static_cast<int>(std::lround(std::clamp(scaled, 1.0, 1e9))) : 0;
    };
    return {pixels(points.width), pixels(points.height)};
}

} // namespace gui::draw
