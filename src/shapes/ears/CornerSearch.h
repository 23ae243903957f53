#pragma once

#include "CornerTree.h"
#include "EarTriangle.h"

#include <limits>

namespace gui::gl
{

// Internal to the source that includes it: versions for several machines stay apart when they are linked.
namespace
{

/// A search of the tree for a corner in a triangle, other than its own.
class CornerSearch
{
public:
    static constexpr unsigned int cNone = ~0U;
    static constexpr unsigned int cFan = CornerTree::cFan;

    /// @param a, b, c  points in the first two lanes, with zeros behind
    /// @param u, v, w  their slots
    /// @param picksAny  whether any corner that is inside is found, each as likely as the others. Were it always the
    ///                  first, then an ear that many corners lie in could be tried once for each of them.
    CornerSearch(CornerTree& tree, Record a, Record b, Record c, unsigned int u, unsigned int v, unsigned int w,
                 bool picksAny)
        : _tree(tree)
        , _a(a)
        , _b(b)
        , _c(c)
        , _u(u)
        , _v(v)
        , _w(w)
        , _picksAny(picksAny)
        , _bounds(a, b, c)
        , _isBounded(_bounds.isProven && (tree.isBounded || _bounds.isSmall()))
    {
    }

    /// A slot; cNone when there is none. From v's leaf upwards: what is in the way is near most of the time.
    unsigned int find()
    {
        if (!_isBounded) [[unlikely]]
            return findUnbounded();
        // Most triangles have nothing else within their bounds.
        const unsigned int leaf = _v / cFan;
        const unsigned int inside = insideLeaf(leaf, triangle());
        if (inside != 0)
            return leaf * cFan + pick(inside);
        for (unsigned int level = 1, node = leaf; level < _tree.nLevels; ++level)
        {
            const unsigned int child = node % cFan;
            node /= cFan;
            const unsigned int children = childrenInBounds(level, node, _tree.pAlive[level][node] & ~(1U << child));
            if (children != 0)
                return findFrom(level, node, children);
        }
        return cNone;
    }

private:
    [[gnu::noinline]] unsigned int findUnbounded()
    {
        _triangle = triangle();
        if (_triangle.isEmpty())
            return cNone;
        const unsigned int leaf = _v / cFan;
        const unsigned int inside = insideLeaf(leaf, _triangle);
        if (inside != 0)
            return leaf * cFan + pick(inside);
        return findAbove(1, leaf);
    }

    // From a node on whose children reach into the bounds.
    [[gnu::noinline]] unsigned int findFrom(unsigned int level, unsigned int node, unsigned int children)
    {
        _triangle = triangle();
        children = narrowed(_tree.pBoxes[level][node], children);
        unsigned int found = children != 0 ? findInChildren(level, node, children) : cNone;
        if (found == cNone)
            found = findAbove(level + 1, node);
        return found;
    }

    unsigned int findAbove(unsigned int level, unsigned int node)
    {
        unsigned int found = cNone;
        for (; found == cNone && level < _tree.nLevels; ++level)
        {
            const unsigned int child = node % cFan;
            node /= cFan;
            const unsigned int children = childrenInside(level, node, _tree.pAlive[level][node] & ~(1U << child));
            if (children != 0)
                found = findInChildren(level, node, children);
        }
        return found;
    }

    unsigned int findInChildren(unsigned int level, unsigned int node, unsigned int children)
    {
        _tree.nVisits += 2;
        while (children != 0)
        {
            const unsigned int child = pick(children);
            const unsigned int below = node * cFan + child;
            children &= ~(1U << child);
            if (level == 1)
            {
                ++_tree.nVisits;
                const unsigned int inside = insideLeaf(below, _triangle);
                if (inside != 0)
                    return below * cFan + pick(inside);
                continue;
            }
            const unsigned int next = childrenInside(level - 1, below, _tree.pAlive[level - 1][below]);
            if (next == 0)
                continue;
            const unsigned int found = findInChildren(level - 1, below, next);
            if (found != cNone)
                return found;
        }
        return cNone;
    }

    EarTriangle triangle() const { return {{_a[0], _a[1]}, {_b[0], _b[1]}, {_c[0], _c[1]}}; }

    // Bits of the corners of a leaf that are inside.
    unsigned int insideLeaf(unsigned int leaf, const EarTriangle& ear) const
    {
        const float* const x = _tree.pX + leaf * cFan;
        const float* const y = _tree.pY + leaf * cFan;
        // Beyond the leaf it is none of its bits.
        const auto bitOf = [leaf](unsigned int slot)
        {
            const unsigned int i = slot - leaf * cFan;
            return 1U << (i < 31 ? i : 31);
        };
        unsigned int inside = _tree.pAlive[0][leaf] & ~(bitOf(_u) | bitOf(_v) | bitOf(_w));
        if (_isBounded && _tree.pSlots == nullptr)
            inside &= insideBits<cFan>(_bounds, x, y);
        if (inside != 0)
            inside &= insideBits<cFan>(ear, x, y);
        return inside;
    }

    // Of some children of a node, those whose boxes may hold corners that are inside.
    unsigned int childrenInside(unsigned int level, unsigned int node, unsigned int children) const
    {
        if (_isBounded)
            return narrowed(_tree.pBoxes[level][node], childrenInBounds(level, node, children));
        const CornerTree::Boxes& boxes = _tree.pBoxes[level][node];
        if (children != 0)
            children &= edgesBits(boxes, children);
        if (children != 0 && !_tree.isModest)
            children &= infiniteEdgesBits(boxes, children);
        if (children != 0 && _tree.pSlots == nullptr)
            children &= stripEdgesBits(boxes, children);
        return children;
    }

    // Of some children of a node, those whose strips reach into the bounds.
    unsigned int childrenInBounds(unsigned int level, unsigned int node, unsigned int children) const
    {
        const CornerTree::Boxes& boxes = _tree.pBoxes[level][node];
        children &= boundsBits(boxes);
        if (children != 0 && _tree.pSlots == nullptr)
            children &= stripBits(boxes, children);
        return children;
    }

    // Of children in the bounds, those that may hold corners that are inside. Of few, it takes no longer to look into.
    unsigned int narrowed(const CornerTree::Boxes& boxes, unsigned int children) const
    {
        if (__builtin_popcount(children) <= 2)
            return children;
        children &= edgesBits(boxes, children);
        // Where many are left, if only outlines cross the boxes: in another order strips are wide. It takes as
        // long as five visits.
        if (__builtin_popcount(children) > 7 && _tree.pSlots == nullptr)
        {
            _tree.nVisits += 5;
            children &= stripEdgesBits(boxes, children);
        }
        return children;
    }

    unsigned int boundsBits(const CornerTree::Boxes& boxes) const
    {
        const float left = _bounds.low[0], right = _bounds.high[0], bottom = _bounds.low[1], top = _bounds.high[1];
        unsigned int inside = 0;
        for (unsigned int i = 0; i < cFan; i += cLanes)
        {
            const Mask isNear = (load(boxes.minX + i) <= right) & (load(boxes.maxX + i) >= left) &
                                (load(boxes.minY + i) <= top) & (load(boxes.maxY + i) >= bottom);
            inside |= bits(isNear) << i;
        }
        return inside;
    }

    // What EarBounds says of the bounds is true of any other direction. With the bounds S boxes wide and high together,
    // places in the strip's direction are below 2 + S and off by 4 * u * (2 + S) at most; what is made of them here is
    // off by four times as much, for which 32 * u * (2 + S) is enough. Of infinite numbers and NaN nothing is apart.
    unsigned int stripBits(const CornerTree::Boxes& boxes, unsigned int children) const
    {
        const float width = _bounds.high[0] - _bounds.low[0], height = _bounds.high[1] - _bounds.low[1];
        unsigned int outside = 0;
        for (unsigned int i = 0; i < cFan && children >> i != 0; i += cLanes)
        {
            const Floats minX = load(boxes.minX + i), minY = load(boxes.minY + i);
            const Floats scaleX = load(boxes.scaleX + i), scaleY = load(boxes.scaleY + i);
            const auto place = [&](Record p) { return (p[0] - minX) * scaleX + (p[1] - minY) * scaleY; };
            const Floats a = place(_a), b = place(_b), c = place(_c);
            const Floats low = smaller(smaller(a, b), c), high = larger(larger(a, b), c);
            const Floats size = width * scaleX + absolute(height * scaleY);
            const Floats margin = (high - low) * _bounds.margin + (size + 2.0f) * 0x1p-19f;
            outside |= bits((low - margin > load(boxes.high + i)) | (high + margin < load(boxes.low + i))) << i;
        }
        return ~outside;
    }

    // Every operation is monotone, rounded as it is: an edge's value grows with x, or falls, and so with y. So no
    // corner in a box is further on the inside than the box's best corner, computed in the same operations. NaN is not
    // below 0 and proves nothing.
    unsigned int edgesBits(const CornerTree::Boxes& boxes, unsigned int children) const
    {
        const float *x[3], *y[3];
        for (unsigned int i = 0; i < 3; ++i)
        {
            x[i] = _triangle.edges[i].y < 0 ? boxes.maxX : boxes.minX;
            y[i] = _triangle.edges[i].x > 0 ? boxes.maxY : boxes.minY;
        }
        unsigned int outside = 0;
        for (unsigned int i = 0; i < cFan && children >> i != 0; i += cLanes)
        {
            const Mask isOutside = (sideOf(_triangle.edges[0], load(x[0] + i), load(y[0] + i)) < 0) |
                                   (sideOf(_triangle.edges[1], load(x[1] + i), load(y[1] + i)) < 0) |
                                   (sideOf(_triangle.edges[2], load(x[2] + i), load(y[2] + i)) < 0);
            outside |= bits(isOutside) << i;
        }
        return ~outside;
    }

    // Where numbers are infinite, or their products: an edge's value is a difference of two products. One that is NaN,
    // or infinite in the wrong direction, at the best corner of a box is so in all of the box.
    [[gnu::noinline]] unsigned int infiniteEdgesBits(const CornerTree::Boxes& boxes, unsigned int children) const
    {
        constexpr float cMost = std::numeric_limits<float>::max();
        unsigned int outside = 0;
        for (const EarTriangle::Edge& edge : _triangle.edges)
        {
            const float* const x = edge.y < 0 ? boxes.maxX : boxes.minX;
            const float* const y = edge.x > 0 ? boxes.maxY : boxes.minY;
            // 0 times infinity tells nothing of others.
            const Mask isX = all(edge.y) != 0, isY = all(edge.x) != 0;
            for (unsigned int i = 0; i < cFan && children >> i != 0; i += cLanes)
            {
                const Floats most = edge.x * (load(y + i) - edge.y0), least = edge.y * (load(x + i) - edge.x0);
                outside |= bits((isY & ~(most >= -cMost)) | (isX & ~(least <= cMost))) << i;
            }
        }
        return ~outside;
    }

    // For slivers, which have no bounds, and for needles: the edges once more, with what is both in the box and in its
    // strip. Let a corner be s widths and t heights from the box's lowest. An edge's value f + a * s + b * t is f + a *
    // (s + t) + (b - a) * t and f + b * (s + t) + (a - b) * s, where s + t is from low to high; with s - t instead,
    // signs change. The margin is several times what rounding comes to. Of infinite numbers and NaN nothing is proven.
    [[gnu::noinline]] unsigned int stripEdgesBits(const CornerTree::Boxes& boxes, unsigned int children) const
    {
        unsigned int outside = 0;
        for (unsigned int i = 0; i < cFan && children >> i != 0; i += cLanes)
        {
            const Floats minX = load(boxes.minX + i), minY = load(boxes.minY + i);
            const Floats width = load(boxes.maxX + i) - minX, height = load(boxes.maxY + i) - minY;
            const Floats scaleX = load(boxes.scaleX + i), scaleY = load(boxes.scaleY + i);
            const Floats low = load(boxes.low + i), high = load(boxes.high + i);
            const Mask hasStrip = (scaleX != 0) & (scaleY != 0);
            for (const EarTriangle::Edge& edge : _triangle.edges)
            {
                const Floats dx = minX - edge.x0, dy = minY - edge.y0;
                const Floats a = -edge.y * width, b = edge.x * height;
                const Floats signedA = scaleY < 0 ? -a : a, signedB = scaleY < 0 ? -b : b;
                const Floats byA = larger(a * low, a * high) + larger(b - signedA, Floats{});
                const Floats byB = larger(signedB * low, signedB * high) + larger(a - signedB, Floats{});
                const Floats most = edge.x * dy - edge.y * dx + smaller(byA, byB);
                const Floats size = absolute(edge.x * dy) + absolute(edge.y * dx) + absolute(a) + absolute(b);
                outside |= bits(hasStrip & (most + size * 0x1p-18f < -0x1p-100f)) << i;
            }
        }
        return ~outside;
    }

    static Floats absolute(Floats a) { return a < 0 ? -a : a; }

    // The first of the bits, or any.
    unsigned int pick(unsigned int bits)
    {
        if (_picksAny && (bits & (bits - 1)) != 0)
        {
            _tree.random = 1664525 * _tree.random + 1013904223;
            const auto n = static_cast<unsigned int>(__builtin_popcount(bits));
            for (unsigned int skipped = ((_tree.random >> 16) * n) >> 16; skipped > 0; --skipped)
                bits &= bits - 1;
        }
        return static_cast<unsigned int>(__builtin_ctz(bits));
    }

    CornerTree& _tree;
    const Record _a, _b, _c;
    const unsigned int _u, _v, _w;
    const bool _picksAny;
    const EarBounds _bounds;
    const bool _isBounded;
    EarTriangle _triangle; // beyond the first leaf, where most searches end
};

} // namespace

} // namespace gui::gl
