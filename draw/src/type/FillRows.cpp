#include "FillRows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

namespace gui::draw
{

namespace
{

// Of a strip of height 1 between the lines x = 0 and x = t, what is to the right of an edge that runs across it from
// (x0, 0) to (x1, 1). @param x0, x1  in this order
double areaUpTo(double t, double x0, double x1)
{
    if (t <= x0)
        return 0;
    return t < x1 ? (t - x0) * (t - x0) / (2 * (x1 - x0)) : t - (x0 + x1) / 2;
}

// Adds how the cells of a row change from one to the next by an edge in it.
// @param height  of the edge, below 0 where it goes upwards
void addEdge(float* row, int width, double x0, double x1, double height)
{
    if (x0 > x1)
        std::swap(x0, x1);
    int x = static_cast<int>(x0);
    if (x1 <= x + 1)
    {
        const double covered = x < width ? height * (x + 1 - (x0 + x1) / 2) : 0;
        if (x < width)
            row[x] += static_cast<float>(covered);
        if (x + 1 < width)
            row[x + 1] += static_cast<float>(height - covered);
        return;
    }
    double before = 0, upToHere = 0;
    for (; x < width && before < 1; ++x)
    {
        const double upToNext = areaUpTo(x + 1.0, x0, x1), covered = upToNext - upToHere;
        row[x] += static_cast<float>(height * (covered - before));
        before = covered;
        upToHere = upToNext;
    }
}

} // namespace

FillRows::FillRows(const Path& path, int mostWidth, int mostHeight)
{
    const std::optional<Path::Rect> bounds = path.getBounds();
    if (!bounds || !(bounds->right - bounds->left < mostWidth - 2) ||
        !(bounds->bottom - bounds->top < mostHeight - 2) || !(std::abs(bounds->left) < 1e6) ||
        !(std::abs(bounds->top) < 1e6))
        return;
    left = static_cast<int>(std::floor(bounds->left));
    top = static_cast<int>(std::floor(bounds->top));
    width = std::max(static_cast<int>(std::ceil(bounds->right)) - left, 1);
    height = std::max(static_cast<int>(std::ceil(bounds->bottom)) - top, 1);
    std::vector<float> changes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const auto addLine = [&](Path::Point a, Path::Point b)
    {
        const double direction = a.y < b.y ? 1 : -1;
        if (direction < 0)
            std::swap(a, b);
        const double slope = (b.x - a.x) / (b.y - a.y);
        const double lowest = std::min(a.x, b.x), highest = std::max(a.x, b.x);
        for (int row = static_cast<int>(a.y); row < height && a.y < b.y; ++row)
        {
            Path::Point next = b;
            if (row + 1 < b.y)
                next = {std::clamp(b.x - slope * (b.y - (row + 1)), lowest, highest), row + 1.0};
            addEdge(&changes[static_cast<std::size_t>(row) * static_cast<std::size_t>(width)], width, a.x, next.x,
                    direction * (next.y - a.y));
            a = next;
        }
    };
    // Points of curves may be beyond the bounds by their rounding.
    const auto inside = [&](Path::Point p)
    { return Path::Point(std::clamp(p.x - left, 0.0, double(width)), std::clamp(p.y - top, 0.0, double(height))); };
    for (const PathSegment segment : path)
    {
        if (segment.verb == Path::Verb::MoveTo)
            continue;
        Path::Point from = inside(segment.from);
        const unsigned int n = segment.nPieces(1.0 / 64);
        for (unsigned int i = 1; i <= n; ++i)
        {
            const Path::Point to = inside(segment.at(double(i) / n));
            if (from.y != to.y && std::isfinite(from.x + to.x + from.y + to.y))
                addLine(from, to);
            from = to;
        }
    }
    cells.resize(changes.size());
    for (std::size_t at = 0; at < cells.size(); at += static_cast<std::size_t>(width))
    {
        float sum = 0;
        for (std::size_t i = at; i < at + static_cast<std::size_t>(width); ++i)
            cells[i] = static_cast<td::BYTE>(std::min(std::abs(sum += changes[i]) * 255 + 0.5f, 255.0f));
    }
}

} // namespace gui::draw
