#include "ShapePicker.h"

#include "../stroke/StrokePieces.h"

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

using Point = td::Point<double>;

double cross(Point a, Point b, Point p) { return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x); }

double squaredDistance(Point p, Point a, Point b)
{
    const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
    const double t = square > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0;
    const double x = a.x + t * dx - p.x, y = a.y + t * dy - p.y;
    return x * x + y * y;
}

// Whether a convex polygon has a point, which may lie on its edge.
bool contains(std::span<const Point> polygon, Point p)
{
    bool isLeft = false, isRight = false;
    for (std::size_t i = 0; i < polygon.size(); ++i)
    {
        const double side = cross(polygon[i], polygon[(i + 1) % polygon.size()], p);
        isLeft = isLeft || side > 0;
        isRight = isRight || side < 0;
    }
    // Neither: the polygon is flat.
    return isLeft != isRight;
}

double squaredDistance(Point p, std::span<const Point> polygon)
{
    if (contains(polygon, p))
        return 0;
    double least = INFINITY;
    for (std::size_t i = 0; i < polygon.size(); ++i)
        least = std::min(least, squaredDistance(p, polygon[i], polygon[(i + 1) % polygon.size()]));
    return least;
}

// Whether all of b is on the outer side of an edge of a, convex ones; where a is flat, on one side of it.
bool isParted(std::span<const Point> a, std::span<const Point> b)
{
    for (std::size_t i = 0; i < a.size(); ++i)
    {
        const Point from = a[i], to = a[(i + 1) % a.size()];
        const auto hasLeft = [&](std::span<const Point> points)
        { return std::any_of(points.begin(), points.end(), [&](Point p) { return cross(from, to, p) > 0; }); };
        const auto hasRight = [&](std::span<const Point> points)
        { return std::any_of(points.begin(), points.end(), [&](Point p) { return cross(from, to, p) < 0; }); };
        const auto isAllOff = [&](std::span<const Point> points)
        { return std::all_of(points.begin(), points.end(), [&](Point p) { return cross(from, to, p) != 0; }); };
        if (isAllOff(b) && !(hasLeft(a) && hasLeft(b)) && !(hasRight(a) && hasRight(b)) && !(hasLeft(b) && hasRight(b)))
            return true;
    }
    return false;
}

bool meet(std::span<const Point> a, std::span<const Point> b)
{
    const auto areApart = [&](double Point::*axis)
    {
        const auto less = [axis](const Point& p, const Point& q) { return p.*axis < q.*axis; };
        const auto [lowA, highA] = std::minmax_element(a.begin(), a.end(), less);
        const auto [lowB, highB] = std::minmax_element(b.begin(), b.end(), less);
        return (*highA).*axis < (*lowB).*axis || (*highB).*axis < (*lowA).*axis;
    };
    return !areApart(&Point::x) && !areApart(&Point::y) && !isParted(a, b) && !isParted(b, a);
}

std::array<double, 4> boxOf(const ShapePicker::Quad& quad)
{
    std::array<double, 4> box{quad[0].x, quad[0].y, quad[0].x, quad[0].y};
    for (const Point& p : quad)
        box = {std::min(box[0], p.x), std::min(box[1], p.y), std::max(box[2], p.x), std::max(box[3], p.y)};
    return box;
}

std::span<const Point> cornersOf(const StrokePiece& piece)
{
    return std::span(piece.corners).first(static_cast<std::size_t>(piece.nCorners));
}

} // namespace

ShapePicker::ShapePicker(const ShapeTables& tables, const ShapePlaces& places)
    : _tables(tables)
    , _places(places)
{
}

ShapePicker::Point ShapePicker::pointAt(std::int32_t i) const
{
    const GridPoint p = withoutMark(_tables.getPoints()[_places.points.first + static_cast<std::uint32_t>(i)]);
    return {double(p.x), double(p.y)};
}

// Calls a function for each line in leaves near a box, until it answers true.
template <typename Visit>
bool ShapePicker::visitLines(const std::array<double, 4>& box, double margin, Visit visit) const
{
    for (std::uint32_t i = 0; i < _places.nodes.count;)
    {
        const EdgeNode& node = _tables.getNodes()[_places.nodes.first + i];
        const bool isNear = node.box[0] - margin <= box[2] && node.box[2] + margin >= box[0] &&
                            node.box[1] - margin <= box[3] && node.box[3] + margin >= box[1];
        if (isNear && !node.isLeaf())
        {
            ++i;
            continue;
        }
        if (isNear)
            for (std::int32_t k = node.first; k < node.last; ++k)
                if (visit(k))
                    return true;
        i = static_cast<std::uint32_t>(node.next);
    }
    return false;
}

// How often the boundary passes to the right of it, upwards less downwards: of all that is to the right of it as a
// whole, only the ends count.
bool ShapePicker::isInside(Point p) const
{
    int n = 0;
    for (std::uint32_t i = 0; i < _places.nodes.count;)
    {
        const EdgeNode& node = _tables.getNodes()[_places.nodes.first + i];
        const bool isBeside = node.box[1] <= p.y && node.box[3] >= p.y && node.box[2] >= p.x;
        if (isBeside && node.box[0] <= p.x)
        {
            if (!node.isLeaf())
            {
                ++i;
                continue;
            }
            for (std::int32_t k = node.first; k < node.last; ++k)
            {
                const Point a = pointAt(k), b = pointAt(k + 1);
                if ((a.y > p.y) != (b.y > p.y) && (cross(a, b, p) > 0) == (b.y > a.y))
                    n += b.y > a.y ? 1 : -1;
            }
        }
        else if (isBeside && node.first != node.last)
            n += int(pointAt(node.last).y > p.y) - int(pointAt(node.first).y > p.y);
        i = static_cast<std::uint32_t>(node.next);
    }
    return n != 0;
}

bool ShapePicker::isFillAt(Point point, double distance) const
{
    if (isInside(point))
        return true;
    const double square = distance * distance;
    return visitLines({point.x, point.y, point.x, point.y}, distance,
                      [&](std::int32_t k) { return squaredDistance(point, pointAt(k), pointAt(k + 1)) <= square; });
}

bool ShapePicker::isFillIn(const Quad& quad) const
{
    return visitLines(boxOf(quad), 0,
                      [&](std::int32_t k)
                      {
                          const std::array<Point, 2> line{pointAt(k), pointAt(k + 1)};
                          return meet(quad, line);
                      }) ||
           isInside(quad[0]);
}

template <typename Test>
bool ShapePicker::visitPieces(const std::array<double, 4>& box, const Stroke& stroke, double radius, double dashScale,
                              Test test) const
{
    const StrokePieces maker(stroke, radius, dashScale);
    const ShapeRecord& record = _tables.getRecords()[_places.record];
    const double margin = radius * record.reach;
    const double x = (box[0] + box[2]) / 2, y = (box[1] + box[3]) / 2;
    const double reach = std::hypot(box[2] - box[0], box[3] - box[1]) / 2 + 2 * margin;
    std::vector<StrokePiece> pieces;
    return visitLines(box, margin,
                      [&](std::int32_t k)
                      {
                          StrokePieces::Line line{pointAt(k - 1), pointAt(k), pointAt(k + 1), pointAt(k + 2)};
                          line.isRound =
                              isMarkedRound(_tables.getPoints()[_places.points.first + static_cast<std::uint32_t>(k)]);
                          if (record.dashes >= 0)
                          {
                              const std::uint32_t lengths = record.lengths + static_cast<std::uint32_t>(k);
                              line.start = _tables.getNumbers()[lengths];
                              line.isFirst = line.start == 0;
                              line.isLast = _tables.getNumbers()[lengths + 1] < 0;
                          }
                          const double length = std::hypot(line.to.x - line.from.x, line.to.y - line.from.y);
                          const double at = length > 0 ? ((x - line.from.x) * (line.to.x - line.from.x) +
                                                          (y - line.from.y) * (line.to.y - line.from.y)) /
                                                             length
                                                       : 0;
                          pieces.clear();
                          maker.append(line, at - reach, at + reach, pieces);
                          return std::any_of(pieces.begin(), pieces.end(), test);
                      });
}

bool ShapePicker::isStrokeAt(Point point, double distance, const Stroke& stroke, double radius, double dashScale) const
{
    const std::array<double, 4> box{point.x - distance, point.y - distance, point.x + distance, point.y + distance};
    return visitPieces(box, stroke, radius, dashScale,
                       [&](const StrokePiece& piece)
                       {
                           if (piece.nCorners == 0)
                               return std::hypot(point.x - piece.center.x, point.y - piece.center.y) <=
                                      piece.radius + distance;
                           return squaredDistance(point, cornersOf(piece)) <= distance * distance;
                       });
}

bool ShapePicker::isStrokeIn(const Quad& quad, const Stroke& stroke, double radius, double dashScale) const
{
    return visitPieces(boxOf(quad), stroke, radius, dashScale,
                       [&quad](const StrokePiece& piece)
                       {
                           if (piece.nCorners == 0)
                               return squaredDistance(piece.center, quad) <= piece.radius * piece.radius;
                           return meet(quad, cornersOf(piece));
                       });
}

} // namespace gui::draw
