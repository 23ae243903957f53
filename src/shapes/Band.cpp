#include "Band.h"

#include <gui/gl/Triang2D.h>

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

using Points = std::span<const td::Point<float>>;

// Without the points at the end that equal the first.
Points openRing(Points points)
{
    while (points.size() > 1 && points.back() == points.front())
        points = points.first(points.size() - 1);
    return points;
}

// The first point that differs from the first.
std::size_t findSecond(Points points)
{
    std::size_t i = 1;
    while (i < points.size() && points[i] == points[i - 1])
        ++i;
    return i;
}

const td::Point<float>& firstOfLastRun(Points points)
{
    std::size_t i = points.size() - 1;
    while (i > 0 && points[i - 1] == points[i])
        --i;
    return points[i];
}

} // namespace

bool Band::add(std::span<const Point> points, float width, bool closed)
{
    if (closed)
        points = openRing(points);
    const std::size_t second = findSecond(points);
    if (second >= points.size() || width == 0 || std::isnan(width))
        return false;

    _width = width;
    if (closed)
        addPoint(firstOfLastRun(points));
    else
        addPair(points[0], getStartPointOutlineVector(points[0], points[second], width));
    addPoint(points[0]);
    addDistinct(points.subspan(second - 1));
    if (closed)
        addPoint(points[0]);
    const Point last{_x[_nPoints - 1], _y[_nPoints - 1]}, before{_x[_nPoints - 2], _y[_nPoints - 2]};
    addCorners();
    if (!closed)
        addPair(last, getEndPointOutlineVector(before, last, width));
    flush(closed);
    return true;
}

void Band::addPoint(const Point& point)
{
    _x[_nPoints] = point.x;
    _y[_nPoints] = point.y;
    ++_nPoints;
}

// Points that differ from the ones before them, from the second on.
void Band::addDistinct(std::span<const Point> points)
{
    for (std::size_t i = 1; i < points.size();)
    {
        const std::size_t n = std::min(points.size() - i, cCorners + 2 - _nPoints);
        _nPoints += _loops.takePoints(&points[i].x, n, _x + _nPoints, _y + _nPoints);
        i += n;
        if (_nPoints == cCorners + 2)
        {
            addCorners();
            flush(false);
        }
    }
}

// Of all points but the first and the last, which begin the next block.
void Band::addCorners()
{
    const std::size_t n = _nPoints - 2;
    if (n == 0)
        return;
    for (std::size_t i = _nPoints; i < _nPoints + BandLoops::cSlack; ++i)
    {
        _x[i] = _x[_nPoints - 1];
        _y[i] = _y[_nPoints - 1];
    }
    _nWaiting += _loops.addCorners(_x, _y, n, _width, _pairs + 4 * (1 + _nWaiting));
    std::copy_n(_x + n, 2, _x);
    std::copy_n(_y + n, 2, _y);
    _nPoints = 2;
}

void Band::addPair(const Point& point, const Point& offset)
{
    float* const pPair = _pairs + 4 * (1 + _nWaiting++);
    pPair[0] = point.x + offset.x;
    pPair[1] = point.y + offset.y;
    pPair[2] = point.x - offset.x;
    pPair[3] = point.y - offset.y;
}

// Gives the pairs away that wait, joined to the one before them.
void Band::flush(bool closes)
{
    const auto nWaiting = static_cast<unsigned int>(_nWaiting);
    const bool isFirst = _nPairs == 0;
    float* const pWaiting = _pairs + 4;
    float* const pEnd = pWaiting + 4 * nWaiting;
    if (isFirst)
        std::copy_n(pWaiting, 4, _firstPair.begin());
    if (closes)
        std::copy_n(_firstPair.begin(), 4, pEnd);
    const unsigned int nQuads = nWaiting - (isFirst ? 1 : 0) + (closes ? 1 : 0);
    const unsigned int end = _base + 2 * (_nPairs + nWaiting);
    _loops.addQuads(isFirst ? pWaiting : _pairs, nQuads, _base + 2 * (isFirst ? 0 : _nPairs - 1), _indices);
    // The last quad leads to the first pair, not to one at the end.
    for (unsigned int i = 6 * (nQuads - 1); closes && i < 6 * nQuads; ++i)
        if (_indices[i] - end < 2)
            _indices[i] -= end - _base;

    append({reinterpret_cast<const Point*>(pWaiting), 2 * _nWaiting}, {_indices, 6 * nQuads});
    std::copy_n(pEnd - 4, 4, _pairs);
    _nPairs += nWaiting;
    _nIndices += 6 * nQuads;
    _nWaiting = 0;
}

} // namespace gui::gl
