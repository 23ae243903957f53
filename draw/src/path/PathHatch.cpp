// Lines within a path's area.

#include <gui/draw/Path.h>

#include <vo/Log.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <optional>
#include <span>
#include <tuple>
#include <vector>

namespace gui::draw
{

namespace
{

constexpr double cFineness = 4096; // of the path's size: how far lines may be from curves, as in a drawing
constexpr double cMostCrossings = 1 << 20;
constexpr double cFarthest = 0x1p52; // lines from the origin: where one more is another number

/// Where an edge crosses a line.
struct HatchCrossing
{
    std::int64_t line;
    double along;
    int turn; // of the winding number

    bool operator<(const HatchCrossing& other) const
    {
        return std::tie(line, along) < std::tie(other.line, other.along);
    }
};

} // namespace

Path Path::hatched(const Hatch& hatch) const
{
    const std::optional<Rect> bounds = getBounds();
    const bool isFinite = std::isfinite(hatch.spacing) && std::isfinite(hatch.angle) && std::isfinite(hatch.origin.x) &&
                          std::isfinite(hatch.origin.y);
    if (!bounds || !isFinite || !(hatch.spacing > 0))
        return {};
    const double size = std::max(bounds->right - bounds->left, bounds->bottom - bounds->top);
    if (!(size > 0 && std::isfinite(size)))
        return {};
    const double radians = hatch.angle / 180 * std::numbers::pi;
    const Point way{std::cos(radians), std::sin(radians)};
    // Along the lines, and across them in lines' distances.
    const auto place = [&](const Point& p) -> Point
    {
        const Point q = p - hatch.origin;
        return {q.x * way.x + q.y * way.y, (q.y * way.x - q.x * way.y) / hatch.spacing};
    };

    const Polylines lines = flatten(size / cFineness);
    const auto forEachEdge = [&](const auto& fn)
    {
        for (const Polylines::Line& line : lines.lines)
        {
            const std::span<const Point> points = lines.pointsOf(line);
            for (std::size_t i = 0; i < points.size(); ++i)
                fn(place(points[i]), place(points[i + 1 < points.size() ? i + 1 : 0]));
        }
    };

    // A line belongs to the edge on whose lower end it is, so that it crosses one of two at a corner.
    double nCrossings = 0;
    forEachEdge(
        [&](const Point& a, const Point& b)
        {
            nCrossings += std::abs(std::ceil(a.y) - std::ceil(b.y));
            if (std::abs(a.y) > cFarthest || std::abs(b.y) > cFarthest)
                nCrossings = std::numeric_limits<double>::infinity();
        });
    if (std::isnan(nCrossings))
        return {};
    if (nCrossings > cMostCrossings)
    {
        vo::dbgLog("Warning! Path::hatched: lines at a distance of %g are too many for an area of %g", hatch.spacing,
                   size);
        return {};
    }
    std::vector<HatchCrossing> crossings;
    crossings.reserve(static_cast<std::size_t>(nCrossings));
    forEachEdge(
        [&](const Point& a, const Point& b)
        {
            const double end = std::ceil(std::max(a.y, b.y));
            for (double k = std::ceil(std::min(a.y, b.y)); k < end; ++k)
                crossings.push_back(
                    {static_cast<std::int64_t>(k), a.x + (k - a.y) / (b.y - a.y) * (b.x - a.x), b.y > a.y ? 1 : -1});
        });
    std::sort(crossings.begin(), crossings.end());

    Path result;
    result.reserve(crossings.size());
    int winding = 0;
    double from = 0;
    for (const HatchCrossing& crossing : crossings)
    {
        const auto isInside = [&] { return hatch.rule == FillRule::NonZero ? winding != 0 : winding % 2 != 0; };
        const bool wasInside = isInside();
        winding += crossing.turn;
        if (isInside() == wasInside)
            continue;
        if (!wasInside)
            from = crossing.along;
        else if (crossing.along > from)
        {
            const double across = static_cast<double>(crossing.line) * hatch.spacing;
            const Point foot = hatch.origin + across * Point(-way.y, way.x);
            result.moveTo(foot + from * way).lineTo(foot + crossing.along * way);
        }
    }
    return result;
}

} // namespace gui::draw
