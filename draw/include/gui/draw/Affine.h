#pragma once

#include <td/Export.h>
#include <td/Point.h>

#include <optional>

namespace gui::draw
{

/// An affine map of the plane in double precision: x' = a x + c y + e, y' = b x + d y + f, the numbers of SVG's
/// matrix(a b c d e f) in their order. A value; angles are radians and turn from the x axis towards the y axis.
struct GUIGL_API Affine
{
    double a = 1; ///< of x in x'
    double b = 0; ///< of x in y'
    double c = 0; ///< of y in x'
    double d = 1; ///< of y in y'
    double e = 0; ///< added to x'
    double f = 0; ///< added to y'

    /// Moves by a difference.
    static Affine translation(double x, double y) { return {1, 0, 0, 1, x, y}; }
    /// About the origin.
    static Affine scaling(double x, double y) { return {x, 0, 0, y, 0, 0}; }
    /// The same along both axes.
    static Affine scaling(double s) { return scaling(s, s); }
    /// About the origin, in radians.
    static Affine rotation(double angle);

    /// Where a point goes.
    td::Point<double> map(td::Point<double> p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    /// Where a difference of two points goes: not translated.
    td::Point<double> mapVector(td::Point<double> v) const { return {a * v.x + c * v.y, b * v.x + d * v.y}; }

    /// First the right one, then the left one, as matrices multiply: translation(5, 0) * scaling(2) doubles, then
    /// shifts.
    Affine operator*(const Affine& first) const;

    /// The way back; empty when the plane is mapped to a line or a point, or a number is not finite.
    std::optional<Affine> inverse() const;

    /// Whether all six numbers are equal.
    bool operator==(const Affine&) const = default;
};

} // namespace gui::draw
