#include "HotPixels.h"

#include <algorithm>

namespace gui::draw
{

namespace
{

__extension__ using Wide = __int128;

/// Where on the way from a to b, as a fraction with a denominator of at least 0, and whether it is part of what it
/// bounds.
struct Bound
{
    std::int64_t numerator;
    std::int64_t denominator;
    bool isIn;
};

// Where 0 <= a + t d < width holds of one coordinate, cut from what holds already.
bool cut(std::int64_t a, std::int64_t d, std::int64_t width, Bound& low, Bound& high)
{
    if (d == 0)
        return a >= 0 && a < width;
    const Bound from = d > 0 ? Bound{-a, d, true} : Bound{a - width, -d, false};
    const Bound to = d > 0 ? Bound{width - a, d, false} : Bound{a, -d, true};
    const auto order = [](const Bound& p, const Bound& q)
    {
        const Wide difference = Wide(p.numerator) * q.denominator - Wide(q.numerator) * p.denominator;
        return (difference > 0) - (difference < 0);
    };
    if (const int o = order(from, low); o > 0 || (o == 0 && !from.isIn))
        low = from;
    if (const int o = order(to, high); o < 0 || (o == 0 && !to.isIn))
        high = to;
    const int o = order(low, high);
    return o < 0 || (o == 0 && low.isIn && high.isIn);
}

} // namespace

bool passesPixel(GridPoint a, GridPoint b, GridPoint center)
{
    // In half steps from the square's corner.
    const std::int64_t x = 2 * (std::int64_t(a.x) - center.x) + 1, y = 2 * (std::int64_t(a.y) - center.y) + 1;
    Bound low{0, 1, true}, high{1, 1, true};
    return cut(x, 2 * (std::int64_t(b.x) - a.x), 2, low, high) && cut(y, 2 * (std::int64_t(b.y) - a.y), 2, low, high);
}

HotPixels::HotPixels(const FillGraph& graph, std::span<const CrossingSweep::Meeting> meetings)
    : _graph(graph)
    , _centers(graph.getVertices().begin(), graph.getVertices().end())
{
    for (const CrossingSweep::Meeting& meeting : meetings)
        _centers.push_back(meeting.point);
    std::sort(_centers.begin(), _centers.end(), isBefore);
    _centers.erase(std::unique(_centers.begin(), _centers.end()), _centers.end());
    _boxes.resize(_centers.size());
    if (!_centers.empty())
        build({0, _centers.size()});
}

HotPixels::Box HotPixels::build(Range range)
{
    const auto begin = _centers.begin() + static_cast<std::ptrdiff_t>(range.begin);
    const auto end = _centers.begin() + static_cast<std::ptrdiff_t>(range.end);
    Box box{*begin, *begin};
    for (auto i = begin; i != end; ++i)
    {
        box.low = {std::min(box.low.x, i->x), std::min(box.low.y, i->y)};
        box.high = {std::max(box.high.x, i->x), std::max(box.high.y, i->y)};
    }
    const std::size_t middle = range.begin + (range.end - range.begin) / 2;
    _boxes[middle] = box;
    const bool isWide = std::int64_t(box.high.x) - box.low.x > std::int64_t(box.high.y) - box.low.y;
    std::nth_element(begin, _centers.begin() + static_cast<std::ptrdiff_t>(middle), end,
                     [isWide](GridPoint p, GridPoint q) { return isWide ? p.x < q.x : p.y < q.y; });
    if (range.begin < middle)
        build({range.begin, middle});
    if (middle + 1 < range.end)
        build({middle + 1, range.end});
    return box;
}

std::vector<CrossingSweep::Meeting> HotPixels::findAll() const
{
    std::vector<CrossingSweep::Meeting> meetings;
    std::vector<GridPoint> passed;
    const std::span<const GridPoint> vertices = _graph.getVertices();
    for (std::uint32_t top = 0; top < vertices.size(); ++top)
    {
        std::uint32_t edge = _graph.getFirstDown(top);
        for (const FillGraph::Down& down : _graph.downsFrom(top))
        {
            const GridPoint a = vertices[top], b = vertices[down.bottom];
            passed.clear();
            find(a, b, {0, _centers.size()}, passed);
            // In the order in which the edge passes them, which no coordinate goes back in.
            const bool goesLeft = b.x < a.x;
            std::sort(passed.begin(), passed.end(),
                      [goesLeft](GridPoint p, GridPoint q) {
                          return p.y != q.y ? p.y < q.y : goesLeft ? p.x > q.x : p.x < q.x;
                      });
            for (const GridPoint point : passed)
                if (point != a && point != b)
                    meetings.push_back({edge, point});
            ++edge;
        }
    }
    return meetings;
}

void HotPixels::find(GridPoint a, GridPoint b, Range range, std::vector<GridPoint>& passed) const
{
    while (range.begin < range.end)
    {
        const std::size_t middle = range.begin + (range.end - range.begin) / 2;
        const Box& box = _boxes[middle];
        // One step around the box is more than half of one.
        if (std::max(a.x, b.x) < box.low.x - 1 || std::min(a.x, b.x) > box.high.x + 1 || b.y < box.low.y - 1 ||
            a.y > box.high.y + 1)
            return;
        const std::int64_t sides[] = {
            sideOf(a, b, {box.low.x - 1, box.low.y - 1}), sideOf(a, b, {box.high.x + 1, box.low.y - 1}),
            sideOf(a, b, {box.low.x - 1, box.high.y + 1}), sideOf(a, b, {box.high.x + 1, box.high.y + 1})};
        const auto [least, most] = std::minmax_element(std::begin(sides), std::end(sides));
        if (*least > 0 || *most < 0)
            return;
        if (passesPixel(a, b, _centers[middle]))
            passed.push_back(_centers[middle]);
        find(a, b, {range.begin, middle}, passed);
        range.begin = middle + 1;
    }
}

} // namespace gui::draw
