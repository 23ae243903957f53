#pragma once

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Types.h>

namespace gui::draw
{

/// One step of a path by itself: a curve from `from` to `to`, with a parameter t that goes from 0 to 1.
struct GUIGL_API PathSegment
{
    using Point = td::Point<double>;

    /// What a segment is.
    enum class Verb : td::BYTE
    {
        MoveTo,  ///< begins a subpath at `to`; draws nothing
        LineTo,  ///< a straight line
        QuadTo,  ///< a quadratic Bézier curve with control1
        CubicTo, ///< a cubic Bézier curve with control1 and control2
        ArcTo,   ///< a piece of an ellipse, by arc
        Close    ///< a straight line back to where the subpath began, and the two ends are one
    };

    /// The point at t is center + u cos(t sweep) + v sin(t sweep): what any affine map makes of a piece of a circle.
    struct Arc
    {
        Point center;
        Point u; ///< from the centre to the beginning
        Point v; ///< from the centre to a quarter turn later
        double sweep = 0;

        bool operator==(const Arc&) const = default;
    };

    Verb verb = Verb::MoveTo; ///< which of the members below mean something
    Point from;               ///< of MoveTo: the same as to
    Point control1;           ///< of QuadTo and CubicTo
    Point control2;           ///< of CubicTo
    Point to;                 ///< the last point
    Arc arc;                  ///< of ArcTo

    /// The point at t. At 0 and 1 it is `from` and `to`, to the bit.
    Point at(double t) const;
    /// How the point moves when t grows by 1. Its length may be 0, where control points coincide for instance.
    Point derivative(double t) const;
    /// The direction of the curve at t, of length 1; where the derivative is 0, that of a short piece about t, and 0, 0
    /// when all of the segment is one point.
    Point direction(double t) const;

    /// How long the curve is from 0 to t, to some 1e-10 of its own length; 0 for MoveTo.
    double getLength(double t = 1) const;
    /// The t up to which the curve has a length, which is held between 0 and getLength().
    double parameterAt(double length) const;

    /// Widens the rectangle by the curve, which touches each side that moved. For MoveTo it does nothing.
    void widen(td::RectNormalized<double>& rect) const;

    /// Into how many pieces of equal t the curve is cut so that straight lines instead of them stay within a tolerance
    /// above 0: the largest distance of a point of either from the other. Between 1 and 65,536, so a curve whose size
    /// is beyond some 10^9 tolerances is left as coarse as that.
    unsigned int nPieces(double tolerance) const;
};

} // namespace gui::draw
