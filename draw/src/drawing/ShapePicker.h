#pragma once

#include "ShapeTables.h"

#include <gui/draw/Stroke.h>

#include <array>
#include <vector>

namespace gui::draw
{

/// Says whether shapes are at a point or in a region, from what the tables hold of them. All in the shape's own steps.
class ShapePicker
{
public:
    using Point = td::Point<double>;
    using Quad = std::array<Point, 4>; ///< convex, in either direction

    ShapePicker(const ShapeTables& tables, const ShapePlaces& places);

    /// Whether a point is inside of a fill, or no farther from it than this.
    bool isFillAt(Point point, double distance) const;
    bool isFillIn(const Quad& quad) const;

    /// @param radius     half of the stroke's width, in steps  @param dashScale  steps for a unit of the dashes
    bool isStrokeAt(Point point, double distance, const Stroke& stroke, double radius, double dashScale) const;
    bool isStrokeIn(const Quad& quad, const Stroke& stroke, double radius, double dashScale) const;

private:
    Point pointAt(std::int32_t i) const;
    bool isInside(Point point) const;
    template <typename Visit>
    bool visitLines(const std::array<double, 4>& box, double margin, Visit visit) const;
    template <typename Test>
    bool visitPieces(const std::array<double, 4>& box, const Stroke& stroke, double radius, double dashScale,
                     Test test) const;

    const ShapeTables& _tables;
    const ShapePlaces& _places;
};

} // namespace gui::draw
