#pragma once

#include <gui/draw/Stroke.h>

#include <td/Point.h>

#include <array>
#include <vector>

namespace gui::draw
{

/// A disc, or a convex polygon: what strokes are the union of.
struct StrokePiece
{
    std::array<td::Point<double>, 16> corners;
    int nCorners = 0; // 0 for a disc
    td::Point<double> center;
    double radius = 0;
};

/// Takes the stroke of a line apart.
class StrokePieces
{
public:
    using Point = td::Point<double>;

    /// @param radius  half of the width  @param dashScale  what a length of the pattern is to be multiplied by; both in
    ///                the units of the points below
    StrokePieces(const Stroke& stroke, double radius, double dashScale);

    /// A line with the ones before and after it; ends where there is none are given twice.
    struct Line
    {
        Point before, from, to, after;
        bool isRound = false; // at its beginning, whatever joins are
        double start = 0;     // of dashed strokes: the subpath's length up to `from`
        bool isFirst = false; // of the subpath, likewise
        bool isLast = false;
    };

    /// Appends the pieces of a line: its body or dashes, the join at its beginning, the caps of open ends.
    /// @param near, far  lengths along the line between which dashes are wanted
    void append(const Line& line, double near, double far, std::vector<StrokePiece>& pieces) const;

private:
    void appendBody(Point from, Point direction, double begin, double end, std::vector<StrokePiece>& pieces) const;
    void appendCap(Point from, Point direction, double at, double outwards, std::vector<StrokePiece>& pieces) const;
    void appendJoin(Point corner, Point before, Point after, bool isRound, std::vector<StrokePiece>& pieces) const;
    void appendDashes(const Line& line, Point direction, double length, double near, double far,
                      std::vector<StrokePiece>& pieces) const;
    bool isDashAt(double length) const;

    const Stroke& _stroke;
    double _radius;
    std::vector<double> _dashes; // an even number; empty for a solid stroke
    double _sum = 0;
    double _offset = 0;
};

} // namespace gui::draw
