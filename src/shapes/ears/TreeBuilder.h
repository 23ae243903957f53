#pragma once

#include "../../simd/Lanes.h"
#include "CornerTree.h"

#include <limits>

namespace gui::gl
{

// Internal to the source that includes it: versions for several machines stay apart when they are linked. So nothing of
// the standard library's is called here.
namespace
{

/// Puts boxes around corners. NaN counts as nothing: no triangle holds it.
class TreeBuilder
{
public:
    explicit TreeBuilder(CornerTree& tree)
        : _tree(tree)
    {
    }

    void build(unsigned int n)
    {
        unsigned int nCorners = 1;
        for (unsigned int level = 0, nChildren = n; level < _tree.nLevels; ++level)
        {
            const unsigned int nNodes = (nChildren + cFan - 1) / cFan;
            for (unsigned int node = 0; node < nNodes; ++node)
                _tree.pAlive[level][node] = 0xffff;
            if (nChildren % cFan != 0)
                _tree.pAlive[level][nNodes - 1] = static_cast<std::uint16_t>((1U << nChildren % cFan) - 1);
            for (unsigned int child = 0; level > 0 && child < nNodes * cFan; ++child)
            {
                CornerTree::Boxes& boxes = _tree.pBoxes[level][child / cFan];
                if (child >= nChildren)
                    setBox(boxes, child % cFan, {cInfinity, -cInfinity}, {cInfinity, -cInfinity});
                else if (level == 1)
                    setBox(boxes, child % cFan, rangeOf(_tree.pX + child * cFan, _tree.pX + child * cFan),
                           rangeOf(_tree.pY + child * cFan, _tree.pY + child * cFan));
                else
                {
                    const CornerTree::Boxes& below = _tree.pBoxes[level - 1][child];
                    setBox(boxes, child % cFan, rangeOf(below.minX, below.maxX), rangeOf(below.minY, below.maxY));
                }
                const unsigned int first = child * nCorners, last = (n + cFan - 1) / cFan * cFan;
                if (child < nChildren)
                    setStrip(boxes, child % cFan, first, last - first < nCorners ? last - first : nCorners);
            }
            nChildren = nNodes;
            nCorners *= cFan;
        }
        const CornerTree::Boxes& root = _tree.pBoxes[_tree.nLevels - 1][0];
        const Range x = rangeOf(root.minX, root.maxX), y = rangeOf(root.minY, root.maxY);
        const auto isWithin = [&](float most)
        { return x.low >= -most && x.high <= most && y.low >= -most && y.high <= most; };
        _tree.isBounded = isWithin(cMaxBounded);
        _tree.isModest = isWithin(cMaxModest);
    }

private:
    static constexpr unsigned int cFan = CornerTree::cFan;
    static constexpr float cInfinity = std::numeric_limits<float>::infinity();
    // Differences of coordinates up to this one are finite.
    static constexpr float cMaxBounded = 1.5e38f;
    // And products of two of them.
    static constexpr float cMaxModest = 0x1p+62f;

    struct Range
    {
        float low, high;
    };

    // From the smallest of as many numbers as a node has children to the largest of others.
    static Range rangeOf(const float* pLow, const float* pHigh)
    {
        Floats low = all(cInfinity), high = all(-cInfinity);
        for (unsigned int i = 0; i < cFan; i += cLanes)
        {
            low = smaller(load(pLow + i), low);
            high = larger(load(pHigh + i), high);
        }
        return {smallestOf(low), largestOf(high)};
    }

    static void setBox(CornerTree::Boxes& boxes, unsigned int child, Range x, Range y)
    {
        boxes.minX[child] = x.low;
        boxes.maxX[child] = x.high;
        boxes.minY[child] = y.low;
        boxes.maxY[child] = y.high;
    }

    // Lays a diagonal strip around n corners that are a whole number of leaves, along the diagonal where it is
    // narrower.
    void setStrip(CornerTree::Boxes& boxes, unsigned int child, unsigned int first, unsigned int n) const
    {
        const float *const x = _tree.pX + first, *const y = _tree.pY + first;
        const float minX = boxes.minX[child], minY = boxes.minY[child];
        const auto inverse = [](float size) { return size > 0x1p-100f && size < 0x1p+100f ? 1 / size : 0; };
        const float scaleX = inverse(boxes.maxX[child] - minX), scaleY = inverse(boxes.maxY[child] - minY);
        Floats lowSum = all(cInfinity), highSum = all(-cInfinity), lowDiff = lowSum, highDiff = highSum;
        for (unsigned int i = 0; i < n; i += cLanes)
        {
            const Floats s = (load(x + i) - minX) * scaleX, t = (load(y + i) - minY) * scaleY;
            lowSum = smaller(s + t, lowSum);
            highSum = larger(s + t, highSum);
            lowDiff = smaller(s - t, lowDiff);
            highDiff = larger(s - t, highDiff);
        }
        const Range sum{smallestOf(lowSum), largestOf(highSum)}, diff{smallestOf(lowDiff), largestOf(highDiff)};
        const bool isFalling = sum.high - sum.low < diff.high - diff.low;
        boxes.scaleX[child] = scaleX;
        boxes.scaleY[child] = isFalling ? scaleY : -scaleY;
        boxes.low[child] = isFalling ? sum.low : diff.low;
        boxes.high[child] = isFalling ? sum.high : diff.high;
    }

    CornerTree& _tree;
};

} // namespace

} // namespace gui::gl
