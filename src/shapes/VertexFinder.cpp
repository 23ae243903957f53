#include "VertexFinder.h"

#include <bit>
#include <cstdint>

namespace gui::gl
{

namespace
{

// Equal coordinates have equal hashes: adding 0 makes 0 of -0.
std::uint64_t hashOf(float x, float y)
{
    const std::uint64_t key =
        std::uint64_t(std::bit_cast<std::uint32_t>(x + 0.0f)) << 32 | std::bit_cast<std::uint32_t>(y + 0.0f);
    // Neighbours on a grid differ in a few bits only. Those must reach the highest ones.
    const std::uint64_t mixed = key * 0x9e3779b97f4a7c15;
    return (mixed ^ mixed >> 32) * 0xd6e8feb86659fd93;
}

} // namespace

void VertexFinder::build(const float* pCoordinates, std::size_t n)
{
    const std::size_t nPlaces = std::bit_ceil(3 * n + 2);
    _shift = static_cast<unsigned int>(64 - std::countr_zero(nPlaces));
    _pCoordinates = pCoordinates;
    _groups.assign(nPlaces, {cEnd, cEnd});
    _nexts.resize(n);
    for (std::size_t i = n; i-- > 0;)
    {
        const float x = pCoordinates[2 * i], y = pCoordinates[2 * i + 1];
        // What isn't a number equals nothing.
        if (x != x || y != y)
            continue;
        Group& group = groupOf(x, y);
        _nexts[i] = group.first;
        group.first = group.current = static_cast<unsigned int>(i);
    }
}

// Where the group of a vertex is, or would be.
VertexFinder::Group& VertexFinder::groupOf(float x, float y)
{
    const std::size_t last = _groups.size() - 1;
    for (std::size_t place = hashOf(x, y) >> _shift;; place = (place + 1) & last)
    {
        Group& group = _groups[place];
        if (group.first == cEnd)
            return group;
        const float* const pFirst = _pCoordinates + 2 * std::size_t(group.first);
        if (pFirst[0] == x && pFirst[1] == y)
            return group;
    }
}

std::size_t VertexFinder::find(const td::Point<float>& point, std::size_t begin)
{
    Group& group = groupOf(point.x, point.y);
    while (group.current != cEnd && group.current < begin)
        group.current = _nexts[group.current];
    if (group.current != cEnd)
        return group.current;
    return group.first != cEnd ? group.first : cNone;
}

} // namespace gui::gl
