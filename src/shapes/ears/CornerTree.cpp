#include "CornerTree.h"

#include "../../simd/Lanes.h"

#include <algorithm>
#include <limits>

namespace gui::gl
{

namespace
{

constexpr float cInfinity = std::numeric_limits<float>::infinity();

// Differences of coordinates up to this one are finite.
constexpr float cMaxBounded = 1.5e38f;

float smallestOf(Floats v)
{
    float smallest = v[0];
    for (unsigned int i = 1; i < cLanes; ++i)
        smallest = std::min(smallest, v[i]);
    return smallest;
}

float largestOf(Floats v) { return -smallestOf(-v); }

// NaN counts as nothing: no triangle holds it.
float smallestOfFan(const float* p)
{
    Floats v = all(cInfinity);
    for (unsigned int i = 0; i < CornerTree::cFan; i += cLanes)
        v = smaller(load(p + i), v);
    return smallestOf(v);
}

float largestOfFan(const float* p)
{
    Floats v = all(-cInfinity);
    for (unsigned int i = 0; i < CornerTree::cFan; i += cLanes)
        v = larger(load(p + i), v);
    return largestOf(v);
}

// Lays a diagonal strip around n corners that are a whole number of leaves, along the diagonal where it is narrower.
void setStrip(CornerTree::Boxes& boxes, unsigned int child, const float* x, const float* y, unsigned int n)
{
    const float minX = boxes.minX[child], minY = boxes.minY[child];
    const auto inverse = [](float size) { return size > 0x1p-100f && size < 0x1p+100f ? 1 / size : 0; };
    const float scaleX = inverse(boxes.maxX[child] - minX), scaleY = inverse(boxes.maxY[child] - minY);
    Floats lowSum = all(cInfinity), highSum = all(-cInfinity), lowDiff = all(cInfinity), highDiff = all(-cInfinity);
    for (unsigned int i = 0; i < n; i += cLanes)
    {
        const Floats s = (load(x + i) - minX) * scaleX, t = (load(y + i) - minY) * scaleY;
        lowSum = smaller(s + t, lowSum);
        highSum = larger(s + t, highSum);
        lowDiff = smaller(s - t, lowDiff);
        highDiff = larger(s - t, highDiff);
    }
    const float low[] = {smallestOf(lowSum), smallestOf(lowDiff)}, high[] = {largestOf(highSum), largestOf(highDiff)};
    const bool isFalling = high[0] - low[0] < high[1] - low[1];
    boxes.scaleX[child] = scaleX;
    boxes.scaleY[child] = isFalling ? scaleY : -scaleY;
    boxes.low[child] = low[isFalling ? 0 : 1];
    boxes.high[child] = high[isFalling ? 0 : 1];
}

void setBox(CornerTree::Boxes& boxes, unsigned int child, float minX, float maxX, float minY, float maxY)
{
    boxes.minX[child] = minX;
    boxes.maxX[child] = maxX;
    boxes.minY[child] = minY;
    boxes.maxY[child] = maxY;
}

} // namespace

void buildTree(CornerTree& tree, unsigned int n)
{
    constexpr unsigned int cFan = CornerTree::cFan;
    unsigned int nCorners = 1;
    for (unsigned int level = 0, nChildren = n; level < tree.nLevels; ++level)
    {
        const unsigned int nNodes = (nChildren + cFan - 1) / cFan;
        std::fill_n(tree.pAlive[level], nNodes, std::uint16_t(0xffff));
        if (nChildren % cFan != 0)
            tree.pAlive[level][nNodes - 1] = static_cast<std::uint16_t>((1U << nChildren % cFan) - 1);
        for (unsigned int child = 0; level > 0 && child < nNodes * cFan; ++child)
        {
            CornerTree::Boxes& boxes = tree.pBoxes[level][child / cFan];
            if (child >= nChildren)
            {
                setBox(boxes, child % cFan, cInfinity, -cInfinity, cInfinity, -cInfinity);
                continue;
            }
            if (level == 1)
            {
                const float* const x = tree.pX + child * cFan;
                const float* const y = tree.pY + child * cFan;
                setBox(boxes, child % cFan, smallestOfFan(x), largestOfFan(x), smallestOfFan(y), largestOfFan(y));
                continue;
            }
            const CornerTree::Boxes& below = tree.pBoxes[level - 1][child];
            setBox(boxes, child % cFan, smallestOfFan(below.minX), largestOfFan(below.maxX), smallestOfFan(below.minY),
                   largestOfFan(below.maxY));
        }
        for (unsigned int child = 0; level > 0 && child < nChildren; ++child)
        {
            const unsigned int first = child * nCorners,
                               last = std::min(first + nCorners, (n + cFan - 1) / cFan * cFan);
            setStrip(tree.pBoxes[level][child / cFan], child % cFan, tree.pX + first, tree.pY + first, last - first);
        }
        nChildren = nNodes;
        nCorners *= cFan;
    }
    const CornerTree::Boxes& root = tree.pBoxes[tree.nLevels - 1][0];
    tree.isBounded = smallestOfFan(root.minX) >= -cMaxBounded && largestOfFan(root.maxX) <= cMaxBounded &&
                     smallestOfFan(root.minY) >= -cMaxBounded && largestOfFan(root.maxY) <= cMaxBounded;
}

} // namespace gui::gl
