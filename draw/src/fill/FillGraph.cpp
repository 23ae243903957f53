#include "FillGraph.h"

#include <algorithm>
#include <bit>

namespace gui::draw
{

namespace
{

// Grows with the points' order, and equal for equal ones.
std::uint64_t keyOf(GridPoint p)
{
    return std::uint64_t(std::uint32_t(p.y + cGridEnd)) << 32 | std::uint32_t(p.x + cGridEnd);
}

} // namespace

void FillGraph::build(const FillEdges& edges)
{
    const std::size_t n = edges.points.size();
    _items.resize(n);
    for (std::size_t i = 0; i < n; ++i)
        _items[i] = {keyOf(edges.points[i]), static_cast<std::uint32_t>(i)};
    sort();

    _vertices.clear();
    _vertexOf.resize(n);
    std::uint64_t last = ~std::uint64_t(0);
    for (const Item& item : _items)
    {
        if (item.key != last)
            _vertices.push_back(edges.points[item.point]);
        last = item.key;
        _vertexOf[item.point] = static_cast<std::uint32_t>(_vertices.size() - 1);
    }

    _firstDown.assign(_vertices.size() + 2, 0);
    for (const FillEdges::Edge& edge : edges.edges)
    {
        const std::uint32_t from = _vertexOf[edge.from], to = _vertexOf[edge.to];
        if (from != to)
            ++_firstDown[std::min(from, to) + 2];
    }
    for (std::size_t i = 2; i < _firstDown.size(); ++i)
        _firstDown[i] += _firstDown[i - 1];
    _downs.resize(_firstDown.back());
    for (const FillEdges::Edge& edge : edges.edges)
    {
        const std::uint32_t from = _vertexOf[edge.from], to = _vertexOf[edge.to];
        if (from != to)
            _downs[_firstDown[std::min(from, to) + 1]++] = {std::max(from, to), from < to ? 1 : -1};
    }
    _firstDown.pop_back();
}

// One pass by leading digits puts each of n evenly spread points into a place of its own or nearly so; what falls
// together is compared.
void FillGraph::sort()
{
    const auto isLess = [](const Item& a, const Item& b) { return a.key < b.key; };
    const std::size_t n = _items.size();
    if (n < 64)
    {
        std::sort(_items.begin(), _items.end(), isLess);
        return;
    }
    std::uint64_t least = ~std::uint64_t(0), most = 0;
    for (const Item& item : _items)
    {
        least = std::min(least, item.key);
        most = std::max(most, item.key);
    }
    const int nBits = int(std::bit_width(most - least)), nBucketBits = std::min(int(std::bit_width(n)), 20);
    const int shift = std::max(nBits - nBucketBits, 0);
    _buckets.assign(((most - least) >> shift) + 2, 0);
    for (const Item& item : _items)
        ++_buckets[((item.key - least) >> shift) + 1];
    for (std::size_t i = 1; i < _buckets.size(); ++i)
        _buckets[i] += _buckets[i - 1];
    _sorted.resize(n);
    for (const Item& item : _items)
        _sorted[_buckets[(item.key - least) >> shift]++] = item;
    // Now each bucket's number is its end.
    std::uint32_t begin = 0;
    for (const std::uint32_t end : _buckets)
    {
        if (end - begin > 1)
            std::sort(_sorted.begin() + begin, _sorted.begin() + end, isLess);
        begin = end;
    }
    _items.swap(_sorted);
}

} // namespace gui::draw
