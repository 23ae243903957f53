#pragma once

#include "CornerSet.h"
#include "CornerTree.h"

#include <cnt/PushBackVector.h>
#include <td/Point.h>

#include <cstddef>
#include <span>
#include <vector>

namespace gui::gl
{

/// Clips the ears of polygons with many corners: the triangles of SimplePolygon's plain search, in the same order, at a
/// cost that grows hardly faster than the number of corners instead of with its cube.
///
/// A corner that is no ear stays none until one of its neighbours is cut, or the corner that lies in its triangle. So
/// each is tried only when that may have changed; meanwhile it waits for the corner in its way.
class EarClipper
{
public:
    void reserve(std::size_t nCorners);

    /// @param corners  numbers of points, three at least, counter-clockwise
    /// @param epsilon  the doubled area that an ear has at least
    /// @param indices  three are appended for each ear
    /// @return false when there is no ear and more than two corners are left
    bool clip(const td::Point<float>* points, std::span<const unsigned int> corners, float epsilon,
              cnt::PushBackVector<unsigned int, 0>& indices);

private:
    static constexpr unsigned int cNone = ~0U;

    /// A corner of the polygon that is left. Neighbours and others are places in the list of corners.
    struct Corner
    {
        unsigned int number; ///< of its point
        unsigned int previous, next;
        unsigned int waitsFor;                     ///< the one in its way
        unsigned int firstWaiting;                 ///< of those that wait for it
        unsigned int previousWaiting, nextWaiting; ///< of those that wait for the same
    };

    void fill(const td::Point<float>* points, std::span<const unsigned int> corners);
    void cut(unsigned int v);
    void wait(unsigned int v, unsigned int forCorner);
    void wake(unsigned int v);
    unsigned int pack(unsigned int from);

    std::vector<Corner> _corners;
    std::vector<unsigned int> _places; // for pack
    CornerSet _candidates;
    CornerTree _tree;
    std::size_t _nLeft = 0;
};

} // namespace gui::gl
