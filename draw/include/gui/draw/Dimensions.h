#pragma once

#include "DimensionStyle.h"
#include "Drawing.h"

#include <td/Export.h>

#include <cstddef>
#include <memory>
#include <string>

namespace gui::draw
{

/// Dimensions of a drawing, as plans and drawings of parts have them: lines, arrows and texts are as thin and as large
/// at every zoom, and tell what they measure.
///
///     class PlanView : public gui::draw::DrawingView
///     {
///         gui::draw::Dimensions _dimensions{drawing()};
///     public:
///         PlanView()
///             : DrawingView(false)
///         {
///             ...
///             _dimensions.addLinear({0, 0}, {6000, 0}, {0, -500}, {.unit = " mm"});
///             _dimensions.addDiameter({3000, 2000}, 800, {1, 1}, {.unit = " mm"});
///         }
///     };
///
/// Each draw of the drawing lays them out for what is seen, in views and in pictures. Where a line is too short on the
/// screen for its arrows, they stand outside and point inwards, and where it is too short for its text, that stands
/// beyond its second end. What is shorter than three points is not drawn.
///
/// Each is a group of the drawing, and is coloured, hidden, tagged, picked, reordered and removed as one. Within a
/// group that is moved, turned or scaled it goes with what it measures, in that group's own units: a part that is drawn
/// in millimetres says so in a plan in metres, and an enlarged detail tells true sizes. Lines, arrows and texts are as
/// thin, as large and as upright there. Lines count for bounds; arrows and texts, which have their size in points,
/// do not.
/// Panning uploads nothing, a zoom about a kilobyte for each. Those that are left when this goes stay as they are.
/// Not copyable. GUI thread only; needs no context.
class GUIGL_API Dimensions
{
public:
    using ID = Drawing::ID;       ///< of a group in the drawing; 0 is none
    using Point = Drawing::Point; ///< a place or a direction, in model units

    /// @param drawing  must outlive the dimensions
    explicit Dimensions(Drawing& drawing);
    ~Dimensions();
    Dimensions(const Dimensions&) = delete;
    Dimensions& operator=(const Dimensions&) = delete;

    /// All of these return 0, with nothing added, where a number is not finite, or there is nothing to measure.
    ///
    /// The distance between two points, on a line beside them. @param offset  from the points to the ends of the line
    ID addLinear(Point from, Point to, Point offset, const DimensionStyle& style = {});
    /// The part of it that lies along a direction: the height of something inclined.
    /// @param along   of any length but 0  @param offset  from `from` to that end of the line
    ID addLinearAlong(Point from, Point to, Point along, Point offset, const DimensionStyle& style = {});
    /// A circle's radius, on a line from its middle: "R 12". @param towards  where the line goes, of any length but 0
    ID addRadius(Point center, double radius, Point towards, const DimensionStyle& style = {});
    /// Its diameter, on a line through its middle: "⌀ 24". See addRadius.
    ID addDiameter(Point center, double radius, Point towards, const DimensionStyle& style = {});
    /// The angle between two directions, on an arc about the point where they meet: "45°". More than 0 and less than
    /// 180 degrees.
    ID addAngle(Point apex, Point from, Point to, double radius, const DimensionStyle& style = {});
    /// Removes all of them from the drawing.
    void clear();

    std::size_t getNumberOfDimensions() const; ///< those that the drawing has
    double getValue(ID id) const;              ///< in its group's units or degrees; 0 for an id that names none
    std::string getText(ID id) const;          ///< what it says; empty for an id that names none

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
