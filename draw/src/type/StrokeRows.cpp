#include "StrokeRows.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr int cHeights = 8;

using Interval = std::pair<double, double>;

// Of the height y, what is nearer to a line than a radius; none where the first is beyond the second.
Interval intervalOf(td::Point<double> a, td::Point<double> b, double radius, double y)
{
    Interval result(1e9, -1e9);
    const auto add = [&result](double from, double to) {
        result = {std::min(result.first, from), std::max(result.second, to)};
    };
    for (const td::Point<double>& end : {a, b})
        if (const double dy = y - end.y; std::abs(dy) <= radius)
        {
            const double half = std::sqrt(radius * radius - dy * dy);
            add(end.x - half, end.x + half);
        }
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (a.y == b.y || length == 0)
        return result;
    for (const double side : {radius, -radius})
    {
        const double t = (y - a.y - side * (b.x - a.x) / length) / (b.y - a.y);
        if (const double x = a.x + (b.x - a.x) * t - side * (b.y - a.y) / length; t >= 0 && t <= 1)
            add(x, x);
    }
    return result;
}

} // namespace

StrokeRows::StrokeRows(const Path& path, double lineWidth, int mostPixels)
{
    const std::optional<Path::Rect> bounds = path.getBounds();
    const double radius = lineWidth / 2;
    if (!bounds || !(bounds->right - bounds->left + lineWidth < mostPixels - 2) ||
        !(bounds->bottom - bounds->top + lineWidth < mostPixels - 2))
        return;
    const auto below = [](double x) { return static_cast<int>(std::floor(x)); };
    left = below(4 * (bounds->left - radius));
    top = below(bounds->top - radius);
    width = below(4 * (bounds->right + radius)) + 1 - left;
    height = below(bounds->bottom + radius) + 1 - top;
    std::vector<std::vector<Interval>> rows(static_cast<std::size_t>(height * cHeights));
    const Polylines lines = path.flatten(1.0 / 64);
    for (const Polylines::Line& line : lines.lines)
    {
        const auto points = lines.pointsOf(line);
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            const bool isLast = i + 1 == points.size();
            if (isLast && !line.isClosed && points.size() > 1)
                break;
            const td::Point<double> a = points[i], b = points[isLast ? 0 : i + 1];
            const double low = std::min(a.y, b.y) - radius - top, high = std::max(a.y, b.y) + radius - top;
            const int first = std::max(below(low * cHeights), 0);
            const int last = std::min(below(high * cHeights), height * cHeights - 1);
            for (int row = first; row <= last; ++row)
                if (const Interval found = intervalOf(a, b, radius, top + (row + 0.5) / cHeights);
                    found.first < found.second)
                    rows[static_cast<std::size_t>(row)].push_back(found);
        }
    }
    quarters.resize(static_cast<std::size_t>(width * height));
    std::vector<double> sums;
    for (int y = 0; y < height; ++y)
    {
        sums.assign(static_cast<std::size_t>(width), 0);
        for (int row = y * cHeights; row < (y + 1) * cHeights; ++row)
        {
            std::vector<Interval>& found = rows[static_cast<std::size_t>(row)];
            std::sort(found.begin(), found.end());
            double covered = -1e9;
            for (const auto& [from, to] : found)
            {
                const double begin = 4 * std::max(from, covered) - left, end = 4 * to - left;
                for (int x = std::max(below(begin), 0); x < width && x < end; ++x)
                    sums[static_cast<std::size_t>(x)] +=
                        std::max(std::min(x + 1.0, end) - std::max(double(x), begin), 0.0);
                covered = std::max(covered, to);
            }
        }
        std::transform(sums.begin(), sums.end(), quarters.begin() + std::ptrdiff_t(y) * width,
                       // None is below 0. NOLINTNEXTLINE(bugprone-incorrect-roundings)
                       [](double sum) { return static_cast<td::BYTE>(std::min(sum / cHeights, 1.0) * 255 + 0.5); });
    }
}

} // namespace gui::draw
