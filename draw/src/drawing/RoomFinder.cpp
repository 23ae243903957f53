#include "RoomFinder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr int cNoOfRows = 19;
constexpr double cOffMiddle = 0.6; // how much less a strip at the upper or lower end is worth
constexpr double cFlat = 1.0 / 256;
constexpr std::size_t cStretch = 32; // points

double stepOf(const Drawing::Rect& within) { return (within.bottom - within.top) / (cNoOfRows + 1); }

// 0 for what has no size.
double toleranceFor(const Drawing::Rect& within)
{
    const double width = within.right - within.left, tolerance = std::max(width, within.bottom - within.top) * cFlat;
    return width > 0 && stepOf(within) > 0 && std::isfinite(tolerance) ? tolerance : 0;
}

} // namespace

RoomFinder::RoomFinder(const Path& area, const Drawing::Rect& within)
{
    if (toleranceFor(within) > 0)
        area.flatten(toleranceFor(within), _outline);
    for (const Polylines::Line& line : _outline.lines)
        for (std::size_t begin = 0; begin + 1 < line.count; begin += cStretch)
        {
            const std::size_t count = std::min(cStretch + 1, line.count - begin);
            const auto points = std::span(std::as_const(_outline.points)).subspan(line.first + begin, count);
            Drawing::Rect box(points[0].x, points[0].y, points[0].x, points[0].y);
            for (const auto& [x, y] : points)
                box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x), std::max(box.bottom, y)};
            _stretches.push_back({points, box});
        }
}

std::optional<Drawing::Rect> RoomFinder::find(const Drawing::Rect& within) const
{
    if (!(toleranceFor(within) > 0))
        return std::nullopt;
    // Where each row's line enters and leaves the shape.
    std::array<std::vector<double>, cNoOfRows + 2> crossings;
    const double step = stepOf(within);
    // A row has what lies at it or below, and not what is above. Rounded up without a call, and NaN is below all.
    const auto rowFrom = [&](double y)
    {
        const double place = (y - within.top) / step;
        const int whole = place > 0 ? static_cast<int>(std::min(place, cNoOfRows + 1.0)) : 0;
        return whole + (place > whole && whole <= cNoOfRows ? 1 : 0);
    };
    const auto cross = [&](Path::Point from, Path::Point to)
    {
        const auto [low, high] = std::minmax(from.y, to.y);
        for (int row = rowFrom(low), end = rowFrom(high); row < end; ++row)
        {
            const double part = (within.top + row * step - from.y) / (to.y - from.y);
            crossings[static_cast<std::size_t>(row)].push_back(
                std::clamp(std::lerp(from.x, to.x, part), within.left, within.right));
        }
    };
    // Most stretches of a long line are between two rows. Of those beside the part it matters only on which side of
    // each row they begin and end.
    for (const auto& [points, box] : _stretches)
        if (rowFrom(box.top) >= rowFrom(box.bottom))
            continue;
        else if (box.right <= within.left || box.left >= within.right)
            cross(points.front(), points.back());
        else
            for (std::size_t i = 1; i < points.size(); ++i)
                cross(points[i - 1], points[i]);
    for (const Polylines::Line& line : _outline.lines)
        cross(_outline.pointsOf(line).back(), _outline.pointsOf(line).front());

    // A strip is inside of the shape in its middle row and in those above and below.
    std::optional<Drawing::Rect> best;
    double bestValue = 0;
    std::vector<std::pair<double, unsigned int>> sides; // and a bit for the row
    for (int row = 2; row < cNoOfRows; ++row)
    {
        sides.clear();
        for (int i = 0; i < 3; ++i)
            for (const double x : crossings[static_cast<std::size_t>(row - 1 + i)])
                sides.emplace_back(x, 1U << i);
        std::sort(sides.begin(), sides.end());
        const double worth = 1 - cOffMiddle * std::abs(2 * (row - 1.0) / (cNoOfRows - 1) - 1);
        double left = within.left;
        for (unsigned int inside = 0; const auto& [x, bit] : sides)
        {
            if (inside == 7 && (x - left) * worth > bestValue)
            {
                bestValue = (x - left) * worth;
                const double y = within.top + row * step;
                best = Drawing::Rect{left, y - step, x, y + step};
            }
            inside ^= bit;
            left = x;
        }
    }
    return best;
}

} // namespace gui::draw
