#pragma once

#include <gui/draw/Axis.h>

#include <cmath>

namespace gui::draw
{

/// From an axis' values to device pixels in a picture, in double precision.
struct AxisMap
{
    bool isLogarithmic = false;
    double low = 0;      ///< the place at the axis' beginning
    double perPlace = 1; ///< pixels; below 0 for a y axis
    double origin = 0;   ///< the pixel at the axis' beginning

    AxisMap() = default;
    AxisMap(const Axis& axis, double beginning, double end)
        : isLogarithmic(axis.getScale().kind == Scale::Kind::Logarithmic)
        , low(axis.getScale().toPlace(axis.getRange().low))
        , perPlace((end - beginning) / (axis.getScale().toPlace(axis.getRange().high) - low))
        , origin(beginning)
    {
    }

    double toPixel(double value) const
    {
        return origin + ((isLogarithmic ? std::log10(value) : value) - low) * perPlace;
    }
    double toValue(double pixel) const
    {
        const double place = low + (pixel - origin) / perPlace;
        return isLogarithmic ? std::pow(10, place) : place;
    }
};

} // namespace gui::draw
