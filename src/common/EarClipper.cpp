#include "EarClipper.h"

namespace gui::gl
{

namespace
{

// The list of corners is packed when fewer than half of them are left, but not when it is as short as this.
constexpr std::size_t cShortList = 64;

} // namespace

void EarClipper::reserve(std::size_t nCorners)
{
    _corners.reserve(nCorners);
    _places.reserve(nCorners);
    _candidates.clear(nCorners);
    _tree.resize(nCorners);
    _tree.build();
}

bool EarClipper::clip(const td::Point<float>* points, std::span<const unsigned int> corners, float epsilon,
                      cnt::PushBackVector<unsigned int, 0>& indices)
{
    fill(points, corners);
    for (unsigned int from = 0; _nLeft > 2;)
    {
        std::size_t candidate = _candidates.findFrom(from);
        if (candidate == CornerSet::cNone)
            candidate = _candidates.findFrom(0);
        if (candidate == CornerSet::cNone)
            return false;
        _candidates.erase(candidate);

        const auto v = static_cast<unsigned int>(candidate);
        const unsigned int u = _corners[v].previous, w = _corners[v].next;
        from = v;
        const td::Point<float> A = _tree.get(u), B = _tree.get(v), C = _tree.get(w);
        if (epsilon > (B.x - A.x) * (C.y - A.y) - (B.y - A.y) * (C.x - A.x))
            continue;
        if (const std::size_t inside = _tree.findInside({u, v, w}); inside != CornerTree::cNone)
        {
            wait(v, static_cast<unsigned int>(inside));
            continue;
        }
        const unsigned int triangle[] = {_corners[u].number, _corners[v].number, _corners[w].number};
        indices.push_back(triangle, 3);
        cut(v);
        // The corner behind w is tried next, and w last.
        from = w + 1;
        if (_corners.size() > cShortList && 2 * _nLeft < _corners.size())
            from = pack(from);
    }
    return true;
}

void EarClipper::fill(const td::Point<float>* points, std::span<const unsigned int> corners)
{
    _nLeft = corners.size();
    const auto last = static_cast<unsigned int>(_nLeft - 1);
    _corners.resize(_nLeft);
    _places.resize(_nLeft);
    _tree.resize(_nLeft);
    for (unsigned int i = 0; i <= last; ++i)
    {
        _corners[i] = {corners[i], i > 0 ? i - 1 : last, i < last ? i + 1 : 0, cNone, cNone, cNone, cNone};
        _tree.set(i, points[corners[i]]);
    }
    _tree.build();
    _candidates.fill(_nLeft);
}

void EarClipper::cut(unsigned int v)
{
    const Corner& corner = _corners[v];
    _corners[corner.previous].next = corner.next;
    _corners[corner.next].previous = corner.previous;
    _tree.remove(v);
    --_nLeft;
    while (corner.firstWaiting != cNone)
        wake(corner.firstWaiting);
    wake(corner.previous);
    wake(corner.next);
}

void EarClipper::wait(unsigned int v, unsigned int forCorner)
{
    Corner& corner = _corners[v];
    corner.waitsFor = forCorner;
    corner.previousWaiting = cNone;
    corner.nextWaiting = _corners[forCorner].firstWaiting;
    if (corner.nextWaiting != cNone)
        _corners[corner.nextWaiting].previousWaiting = v;
    _corners[forCorner].firstWaiting = v;
}

// Makes a corner a candidate, whether it waited or not.
void EarClipper::wake(unsigned int v)
{
    Corner& corner = _corners[v];
    _candidates.insert(v);
    if (corner.waitsFor == cNone)
        return;
    if (corner.previousWaiting != cNone)
        _corners[corner.previousWaiting].nextWaiting = corner.nextWaiting;
    else
        _corners[corner.waitsFor].firstWaiting = corner.nextWaiting;
    if (corner.nextWaiting != cNone)
        _corners[corner.nextWaiting].previousWaiting = corner.previousWaiting;
    corner.waitsFor = cNone;
}

// Closes the gaps in the list of corners and makes the boxes as small as what is left in them. @return from's new place
unsigned int EarClipper::pack(unsigned int from)
{
    const auto n = static_cast<unsigned int>(_corners.size());
    unsigned int nKept = 0, newFrom = 0;
    for (unsigned int i = 0; i < n; ++i)
    {
        newFrom = i == from ? nKept : newFrom;
        _places[i] = nKept;
        nKept += _tree.contains(i) ? 1 : 0;
    }
    const auto placeOf = [this](unsigned int i) { return i != cNone ? _places[i] : cNone; };
    for (unsigned int i = 0; i < n; ++i)
    {
        if (!_tree.contains(i))
            continue;
        const Corner& corner = _corners[i];
        const unsigned int place = _places[i];
        _corners[place] = {corner.number,
                           placeOf(corner.previous),
                           placeOf(corner.next),
                           placeOf(corner.waitsFor),
                           placeOf(corner.firstWaiting),
                           placeOf(corner.previousWaiting),
                           placeOf(corner.nextWaiting)};
        _tree.set(place, _tree.get(i));
        if (_candidates.erase(i))
            _candidates.insert(place);
    }
    _corners.resize(nKept);
    _tree.resize(nKept);
    _tree.build();
    return newFrom;
}

} // namespace gui::gl
