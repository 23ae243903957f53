#pragma once

#include "Projection.h"

#include <td/Size.h>

namespace worldmap
{

/// What a view shows of the map's plane, and how.
struct Outlook
{
    Projection projection = Projection::Equirectangular;
    Box visible;
    td::Size<double> size; ///< of the view, in points
    float scale = 1;       ///< device pixels per point

    bool operator==(const Outlook&) const = default;

    /// In points per degree of longitude.
    double zoom() const { return size.width / visible.width(); }

    /// @return in points from the view's top left corner, y downwards
    td::Point<double> toView(const td::Point<double>& degrees) const
    {
        const td::Point<double> point = project(projection, degrees);
        return {(point.x - visible.min.x) * zoom(), (visible.max.y - point.y) * zoom()};
    }

    /// The way back, to longitude and latitude.
    td::Point<double> toDegrees(const td::Point<double>& viewPoint) const
    {
        return unproject(projection, {visible.min.x + viewPoint.x / zoom(), visible.max.y - viewPoint.y / zoom()});
    }
};

} // namespace worldmap
