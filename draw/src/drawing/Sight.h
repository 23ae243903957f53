#pragma once

#include <gui/draw/Affine.h>

#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Size.h>

#include <cmath>

namespace gui::draw
{

/// Where a drawing is seen: the model point in the viewport's middle, and how model units become pixels, y upwards.
struct Sight
{
    td::Point<double> center;
    Affine toPixels; // its linear part alone
    double pixelsPerPoint = 1;
    td::Size<int> size; // of the viewport

    /// What may be seen, in model units.
    td::RectNormalized<double> getVisible() const
    {
        const Affine toModel = toPixels.inverse().value_or(Affine());
        const double x = (std::abs(toModel.a) * size.width + std::abs(toModel.c) * size.height) / 2;
        const double y = (std::abs(toModel.b) * size.width + std::abs(toModel.d) * size.height) / 2;
        return {center.x - x, center.y - y, center.x + x, center.y + y};
    }
    /// In points per model unit: the geometric mean of what the axes are stretched by.
    double getZoom() const
    {
        return std::sqrt(std::abs(toPixels.a * toPixels.d - toPixels.b * toPixels.c)) / pixelsPerPoint;
    }
    bool operator==(const Sight& other) const
    {
        return center.x == other.center.x && center.y == other.center.y && toPixels == other.toPixels &&
               pixelsPerPoint == other.pixelsPerPoint && size == other.size;
    }
};

} // namespace gui::draw
