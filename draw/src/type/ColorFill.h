#pragma once

#include "BlendMode.h"

#include <gui/draw/Affine.h>
#include <gui/draw/Paint.h>

#include <vector>

namespace gui::draw
{

/// What a part of a glyph is filled with, of COLR's version 1: a colour, or one of a gradient's at each place. Between
/// stops the four components are mixed as they are; where a gradient says no colour there is none.
class ColorFill
{
public:
    using Point = td::Point<double>;

    struct Stop
    {
        double offset;
        std::array<float, 4> color; // not times the alpha
    };

    struct Circle
    {
        Point center;
        double radius;
    };

    /// Nothing.
    ColorFill() = default;
    explicit ColorFill(const std::array<float, 4>& color);

    // A gradient's places are its own: toTarget leads from them to pixels.

    /// From p0 to p1; lines of one colour are those from p0 to p2.
    static ColorFill linear(std::vector<Stop> stops, Spread spread, const Affine& toTarget, Point p0, Point p1,
                            Point p2);
    static ColorFill radial(std::vector<Stop> stops, Spread spread, const Affine& toTarget, Circle from, Circle to);
    /// @param from, to  angles from the x axis towards the y axis, in turns
    static ColorFill sweep(std::vector<Stop> stops, Spread spread, const Affine& toTarget, Point center, double from,
                           double to);

    bool isNothing() const { return _kind == Kind::Nothing; }
    bool isSolid() const { return _kind == Kind::Nothing || _kind == Kind::Solid; }
    /// At a place of the target.
    PremultipliedColor at(Point p) const;

private:
    enum class Kind : td::BYTE
    {
        Nothing,
        Solid,
        Linear,
        Radial,
        Sweep
    };

    ColorFill(Kind kind, std::vector<Stop> stops, Spread spread, const Affine& toTarget);

    PremultipliedColor colorOf(double offset) const;
    double radialOffset(Point p, bool& isThere) const;

    Kind _kind = Kind::Nothing;
    PremultipliedColor _color{}; // of a solid one
    Spread _spread = Spread::Pad;
    std::vector<Stop> _stops; // at least one, in order
    Affine _toGradient;
    Circle _circle{};          // where the offset is 0, or the beginning or centre of another gradient
    Point _way;                // a linear one's, by which the offset grows by 1 where it is 1 long; to the other circle
    double _radiusStep = 0;    // to the other circle's radius
    double _from = 0, _to = 0; // of a sweep
};

} // namespace gui::draw
