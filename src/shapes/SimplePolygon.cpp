#include <gui/gl/SimplePolygon.h>

#include "Predicates.h"
#include "ears/EarClipper.h"

#include <algorithm>
#include <numeric>

namespace gui::gl
{

namespace
{

// Up to as many corners it takes less time to try them in turn than to keep book.
constexpr unsigned int cFewestCorners = 8;

} // namespace

SimplePolygon::SimplePolygon(std::size_t nExpectedPoints)
    : _pEarClipper(std::make_unique<EarClipper>())
{
    _vertexIndices.reserve(cFewestCorners);
    _indices.reserve(3 * nExpectedPoints);
    _pEarClipper->reserve(nExpectedPoints);
}

SimplePolygon::~SimplePolygon() = default;

bool SimplePolygon::triangulate(const td::Point<float>* points, unsigned int n)
{
    _indices.reset();
    _points = points;
    _nPoints = n;
    if (n < 3)
        return false;
    const bool isReversed = !(0 < area());
    if (n > cFewestCorners)
        return _pEarClipper->clip(points, n, isReversed, _epsilon, _indices);
    unsigned int* const pFirst = _vertexIndices.begin();
    std::iota(pFirst, pFirst + n, 0U);
    if (isReversed)
        std::reverse(pFirst, pFirst + n);
    return clipEars(static_cast<int>(n));
}

float SimplePolygon::area() const
{
    float sum = 0;
    for (unsigned int p = _nPoints - 1, q = 0; q < _nPoints; p = q++)
        sum += _points[p].x * _points[q].y - _points[q].x * _points[p].y;
    return 0.5f * sum;
}

// One round after another: u, v and w are places of neighbours among the nv corners left, of which v may be an ear.
bool SimplePolygon::clipEars(int nv)
{
    unsigned int* const corners = _vertexIndices.begin();
    int count = 2 * nv; // of tries without an ear
    for (int v = nv - 1; nv > 2;)
    {
        if (count-- <= 0)
            return false;
        const int u = v < nv ? v : 0;
        v = u + 1 < nv ? u + 1 : 0;
        const int w = v + 1 < nv ? v + 1 : 0;
        if (!snip(u, v, w, nv))
            continue;
        const unsigned int triangle[] = {corners[u], corners[v], corners[w]};
        _indices.push_back(triangle, 3);
        std::copy(corners + v + 1, corners + nv, corners + v);
        --nv;
        count = 2 * nv;
    }
    return true;
}

bool SimplePolygon::snip(int u, int v, int w, int nv) const
{
    const unsigned int* const corners = _vertexIndices.begin();
    const td::Point<float> A = _points[corners[u]];
    const td::Point<float> B = _points[corners[v]];
    const td::Point<float> C = _points[corners[w]];
    if (_epsilon > (B.x - A.x) * (C.y - A.y) - (B.y - A.y) * (C.x - A.x))
        return false;
    for (int p = 0; p < nv; ++p)
    {
        const td::Point<float> P = _points[corners[p]];
        if (p != u && p != v && p != w && isInTriangle(A, B, C, P))
            return false;
    }
    return true;
}

bool SimplePolygon::insideTriangle(float Ax, float Ay, float Bx, float By, float Cx, float Cy, float Px, float Py)
{
    return isInTriangle({Ax, Ay}, {Bx, By}, {Cx, Cy}, {Px, Py});
}

} // namespace gui::gl
