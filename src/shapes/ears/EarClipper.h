#pragma once

#include "CurveOrder.h"
#include "EarLoops.h"

#include <cnt/PushBackVector.h>
#include <td/Point.h>

#include <cstddef>
#include <vector>

namespace gui::gl
{

/// Clips the ears of polygons: the triangles of SimplePolygon's plain search, in the same order, at a cost that grows
/// hardly faster than the number of corners instead of with its cube.
///
/// A corner that is no ear stays none until one of its neighbours is cut, or the corner that lies in its triangle. So
/// each is tried only when that may have changed; meanwhile it waits for the corner in its way.
class EarClipper
{
public:
    /// How many boxes searches may go through for each corner, beside those around the corner that is tried, before
    /// another order than the outline's is tried; and how many times that for each ear. Where the outline's order is
    /// best, an ear takes up to 10; elsewhere, 20 and more.
    static constexpr unsigned int cVisitsPerCorner = 1, cVisitsPerEar = 12;

    explicit EarClipper(const EarLoops& loops = earLoops(), unsigned int nVisitsPerCorner = cVisitsPerCorner)
        : _loops(loops)
        , _nVisitsAtFirst(nVisitsPerCorner)
    {
    }

    void reserve(std::size_t nCorners);

    /// @param points      n, three at least
    /// @param isReversed  whether they go clockwise
    /// @param epsilon     the doubled area that an ear has at least
    /// @param indices     three are put in for each ear, instead of what is there
    /// @return false when there is no ear and more than two corners are left
    bool clip(const td::Point<float>* points, unsigned int n, bool isReversed, float epsilon,
              cnt::PushBackVector<unsigned int, 0>& indices);

private:
    void fillMany(const td::Point<float>* points, unsigned int n, bool isReversed);
    bool cutMany();
    unsigned int closeGaps();
    void pack();
    void changeOrder();
    void allow(long long nVisitsPerCorner, long long nVisitsPerEar);
    void sort();
    void packSlots(unsigned int nBefore, unsigned int nKept);
    void makeFew();
    void setSize(unsigned int n);

    const EarLoops& _loops;
    const long long _nVisitsAtFirst;
    FewEars _few{};
    ManyEars _many{};
    long long _nVisitsPerCorner = 0; // in the outline's order, the next time
    unsigned int _nBefore = 0;       // corners left
    double _earsPerVisit = 0;        // in the outline's order, the last time

    // What _many points into, kept from one use to the next.
    std::vector<ManyEars::Corner> _corners;
    std::vector<unsigned int> _numbers, _places;
    std::vector<unsigned char> _isKept;
    std::vector<std::uint64_t> _candidates;
    std::vector<float> _x, _y;
    std::vector<CornerTree::Boxes> _boxes;
    std::vector<std::uint16_t> _alive;
    std::vector<unsigned int> _slots, _slotCorners; // once the tree is sorted
    CurveOrder _order;
};

} // namespace gui::gl
