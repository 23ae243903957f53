#include "CornerTree.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace gui::gl
{

namespace
{

// A plain array: indexing an object keeps GCC 12 from making vector operations of the loops over it.
constexpr unsigned int cBits[] = {1U << 0, 1U << 1, 1U << 2,  1U << 3,  1U << 4,  1U << 5,  1U << 6,  1U << 7,
                                  1U << 8, 1U << 9, 1U << 10, 1U << 11, 1U << 12, 1U << 13, 1U << 14, 1U << 15};

} // namespace

void CornerTree::resize(std::size_t n)
{
    _nCorners = n;
    _x.resize(roundUp(n));
    _y.resize(roundUp(n));
}

void CornerTree::build()
{
    _nLevels = 0;
    std::size_t n = _nCorners;
    do
    {
        if (_nLevels == _levels.size())
            _levels.emplace_back();
        Level& level = _levels[_nLevels];
        const std::size_t nChildren = n;
        n = (n + cFan - 1) / cFan;
        for (std::vector<float>* pBounds : {&level.minX, &level.maxX, &level.minY, &level.maxY})
            pBounds->resize(roundUp(n));
        level.alive.assign(n, (1U << cFan) - 1);
        if (nChildren % cFan != 0)
            level.alive.back() = (1U << nChildren % cFan) - 1;
        buildLevel(_nLevels++, nChildren);
    } while (n > 1);
}

// Comparisons leave NaN out, which no triangle holds.
void CornerTree::buildLevel(std::size_t level, std::size_t nChildren)
{
    Level& boxes = _levels[level];
    const bool isFirst = level == 0;
    const std::vector<float>& minX = isFirst ? _x : _levels[level - 1].minX;
    const std::vector<float>& maxX = isFirst ? _x : _levels[level - 1].maxX;
    const std::vector<float>& minY = isFirst ? _y : _levels[level - 1].minY;
    const std::vector<float>& maxY = isFirst ? _y : _levels[level - 1].maxY;
    constexpr float cInfinity = std::numeric_limits<float>::infinity();
    for (std::size_t node = 0; node < boxes.alive.size(); ++node)
    {
        float left = cInfinity, right = -cInfinity, bottom = cInfinity, top = -cInfinity;
        for (std::size_t i = node * cFan; i < std::min((node + 1) * cFan, nChildren); ++i)
        {
            left = minX[i] < left ? minX[i] : left;
            right = maxX[i] > right ? maxX[i] : right;
            bottom = minY[i] < bottom ? minY[i] : bottom;
            top = maxY[i] > top ? maxY[i] : top;
        }
        boxes.minX[node] = left;
        boxes.maxX[node] = right;
        boxes.minY[node] = bottom;
        boxes.maxY[node] = top;
    }
}

void CornerTree::remove(std::size_t i)
{
    for (std::size_t level = 0; level < _nLevels; ++level, i /= cFan)
        if ((_levels[level].alive[i / cFan] &= ~(1U << i % cFan)) != 0)
            return;
}

std::size_t CornerTree::findInside(const Triangle& triangle)
{
    const auto edge = [this](std::size_t from, std::size_t to) {
        return Edge{_x[to] - _x[from], _y[to] - _y[from], _x[from], _y[from]};
    };
    const auto [a, b, c] = triangle;
    // A search that always began at the same place would find the same few corners in the way of all others, and each
    // of them would have to be cut before it found the next.
    _firstChild = (_firstChild + 7) % cFan;
    return search(_nLevels - 1, 0, {edge(b, c), edge(c, a), edge(a, b)}, triangle);
}

std::size_t CornerTree::search(std::size_t level, std::size_t node, const Edges& edges, const Triangle& triangle) const
{
    unsigned int children = level == 0 ? cornersInside(node, edges) : boxesInside(level - 1, node, edges);
    children &= _levels[level].alive[node];
    if (level == 0)
    {
        for (const std::size_t corner : triangle)
            if (corner / cFan == node)
                children &= ~(1U << corner % cFan);
    }
    children = (children | children << cFan) >> _firstChild & ((1U << cFan) - 1);
    for (; children != 0; children &= children - 1)
    {
        const std::size_t i =
            node * cFan + (_firstChild + static_cast<unsigned int>(std::countr_zero(children))) % cFan;
        const std::size_t found = level == 0 ? i : search(level - 1, i, edges, triangle);
        if (found != cNone)
            return found;
    }
    return cNone;
}

unsigned int CornerTree::cornersInside(std::size_t leaf, const Edges& edges) const
{
    const float* const x = _x.data() + leaf * cFan;
    const float* const y = _y.data() + leaf * cFan;
    unsigned int inside = ~0U;
    for (const Edge& edge : edges)
        inside &= insideBits(edge, x, y);
    return inside;
}

// Every operation of side() is monotone, rounded as it is: it grows with x, or falls, and so with y. So no corner in a box
// is further on the inside than the box's best corner, computed in the same operations. NaN is not below 0 and proves
// nothing.
unsigned int CornerTree::boxesInside(std::size_t level, std::size_t node, const Edges& edges) const
{
    const Level& boxes = _levels[level];
    unsigned int outside = 0;
    for (const Edge& edge : edges)
    {
        const float* const x = (edge.y < 0 ? boxes.maxX : boxes.minX).data() + node * cFan;
        const float* const y = (edge.x > 0 ? boxes.maxY : boxes.minY).data() + node * cFan;
        outside |= outsideBits(edge, x, y);
    }
    return ~outside;
}

unsigned int CornerTree::insideBits(Edge edge, const float* x, const float* y)
{
    unsigned int bits = 0;
    for (std::size_t i = 0; i < cFan; ++i)
        bits |= edge.side(x[i], y[i]) >= 0 ? cBits[i] : 0;
    return bits;
}

unsigned int CornerTree::outsideBits(Edge edge, const float* x, const float* y)
{
    unsigned int bits = 0;
    for (std::size_t i = 0; i < cFan; ++i)
        bits |= edge.side(x[i], y[i]) < 0 ? cBits[i] : 0;
    return bits;
}

} // namespace gui::gl
