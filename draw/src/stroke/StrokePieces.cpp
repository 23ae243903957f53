#include "StrokePieces.h"

#include "DashPattern.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gui::draw
{

namespace
{

using Point = td::Point<double>;

Point along(Point from, Point direction, double length)
{
    return {from.x + direction.x * length, from.y + direction.y * length};
}

Point left(Point direction) { return {-direction.y, direction.x}; }

// Of length 1; the x axis where both are one.
Point directionOf(Point from, Point to)
{
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    return length > 0 ? Point((to.x - from.x) / length, (to.y - from.y) / length) : Point(1, 0);
}

double cosineOf(Point a, Point b) { return a.x * b.x + a.y * b.y; }

StrokePiece discOf(Point center, double radius)
{
    StrokePiece piece;
    piece.center = center;
    piece.radius = radius;
    return piece;
}

} // namespace

StrokePieces::StrokePieces(const Stroke& stroke, double radius, double dashScale)
    : _stroke(stroke)
    , _radius(radius)
{
    const DashPattern pattern(stroke);
    for (const double length : pattern.lengths)
        _dashes.push_back(length * dashScale);
    _sum = pattern.sum * dashScale;
    _offset = pattern.offset * dashScale;
}

void StrokePieces::appendBody(Point from, Point direction, double begin, double end,
                              std::vector<StrokePiece>& pieces) const
{
    const Point side = left(direction), a = along(from, direction, begin), b = along(from, direction, end);
    StrokePiece piece;
    piece.corners = {along(a, side, _radius), along(b, side, _radius), along(b, side, -_radius),
                     along(a, side, -_radius)};
    piece.nCorners = 4;
    pieces.push_back(piece);
}

void StrokePieces::appendCap(Point from, Point direction, double at, double outwards,
                             std::vector<StrokePiece>& pieces) const
{
    if (_stroke.cap == Cap::Round)
        pieces.push_back(discOf(along(from, direction, at), _radius));
    else if (_stroke.cap == Cap::Square)
        appendBody(from, direction, at, at + outwards * _radius, pieces);
}

void StrokePieces::appendJoin(Point corner, Point before, Point after, bool isRound,
                              std::vector<StrokePiece>& pieces) const
{
    isRound = isRound || _stroke.join == Join::Round;
    const double turn = before.x * after.y - before.y * after.x;
    const double cosine = std::sqrt(std::max((1 + cosineOf(before, after)) / 2, 0.0));
    if (turn == 0 && !(isRound && cosine < 0.5))
        return;
    const double outside = turn > 0 ? -_radius : _radius;
    const Point a = along(corner, left(before), outside), b = along(corner, left(after), outside);
    if (isRound)
    {
        // A sector, as a polygon that is nowhere more than a hundredth of the radius inside of it.
        StrokePiece sector;
        sector.nCorners = static_cast<int>(sector.corners.size());
        sector.corners[0] = corner;
        const double begin = std::atan2(a.y - corner.y, a.x - corner.x),
                     sweep = turn != 0 ? std::atan2(turn, cosineOf(before, after)) : -std::numbers::pi;
        for (std::size_t i = 1; i < sector.corners.size(); ++i)
        {
            const double angle = begin + sweep * double(i - 1) / double(sector.corners.size() - 2);
            sector.corners[i] = {corner.x + _radius * std::cos(angle), corner.y + _radius * std::sin(angle)};
        }
        pieces.push_back(sector);
        return;
    }
    StrokePiece piece;
    piece.corners = {corner, a, b};
    piece.nCorners = 3;
    if (_stroke.join == Join::Miter && 1 <= std::max(_stroke.miterLimit, 1.0) * cosine * 1.000001)
    {
        const Point axis = directionOf(corner, {(a.x + b.x) / 2, (a.y + b.y) / 2});
        piece.corners = {corner, a, along(corner, axis, _radius / cosine), b};
        piece.nCorners = 4;
    }
    pieces.push_back(piece);
}

bool StrokePieces::isDashAt(double length) const
{
    double t = std::fmod(length + _offset, _sum);
    for (std::size_t i = 0; i < _dashes.size(); ++i)
    {
        if (t < _dashes[i])
            return i % 2 == 0 && t > 0;
        t -= _dashes[i];
    }
    return false;
}

void StrokePieces::appendDashes(const Line& line, Point direction, double length, double near, double far,
                                std::vector<StrokePiece>& pieces) const
{
    const double from = std::max(near, 0.0), to = std::min(far, length);
    // So many dashes in one place are a solid line to whoever points there.
    if ((to - from) / _sum > 10000)
    {
        appendBody(line.from, direction, from, to, pieces);
        return;
    }
    // Lengths are floats.
    const double slack = 1e-6 * (line.start + length + _sum);
    double at = std::floor((line.start + from + _offset) / _sum) * _sum - _offset - line.start;
    while (at <= to)
        for (std::size_t i = 0; i < _dashes.size(); i += 2)
        {
            const double end = at + _dashes[i];
            if (end >= from - slack && at <= to && (at < length - slack || length == 0))
            {
                const double low = std::max(at, 0.0), high = std::max(std::min(end, length), low);
                if (low < high)
                    appendBody(line.from, direction, low, high, pieces);
                if (at >= -slack || line.isFirst)
                    appendCap(line.from, direction, low, -1, pieces);
                if ((end <= length + slack && (end > slack || at >= -slack || line.isFirst)) ||
                    (line.isLast && end > length))
                    appendCap(line.from, direction, high, 1, pieces);
            }
            at = end + _dashes[i + 1];
        }
}

void StrokePieces::append(const Line& line, double near, double far, std::vector<StrokePiece>& pieces) const
{
    const Point direction = directionOf(line.from, line.to);
    const double length = std::hypot(line.to.x - line.from.x, line.to.y - line.from.y);
    const auto areEqual = [](Point a, Point b) { return a.x == b.x && a.y == b.y; };
    const bool isOpenBefore = areEqual(line.before, line.from), isOpenAfter = areEqual(line.after, line.to);
    bool isJoined = !isOpenBefore;
    if (_dashes.empty())
    {
        appendBody(line.from, direction, 0, length, pieces);
        if (isOpenBefore)
            appendCap(line.from, direction, 0, -1, pieces);
        if (isOpenAfter)
            appendCap(line.from, direction, length, 1, pieces);
    }
    else
    {
        Line dashed = line;
        dashed.isFirst = line.isFirst || isOpenBefore;
        dashed.isLast = line.isLast || isOpenAfter;
        appendDashes(dashed, direction, length, near, far, pieces);
        isJoined = !dashed.isFirst && isDashAt(line.start);
    }
    if (isJoined)
        appendJoin(line.from, directionOf(line.before, line.from), direction, line.isRound, pieces);
}

} // namespace gui::draw
