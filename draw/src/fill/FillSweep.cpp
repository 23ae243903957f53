#include "FillSweep.h"

#include <algorithm>

namespace gui::draw
{

namespace
{

// Steps to a span for each vertex, on average, before boundary edges are swept alone.
constexpr std::int64_t cStepsPerVertex = 8;

} // namespace

FillSweep::Result FillSweep::tessellate(const FillGraph& graph, FillRule rule) { return sweep(graph, rule, true); }

FillSweep::Result FillSweep::collect(const FillGraph& graph, FillRule rule) { return sweep(graph, rule, false); }

FillSweep::Result FillSweep::sweep(const FillGraph& graph, FillRule rule, bool makesTriangles)
{
    _rule = rule;
    _vertices = graph.getVertices();
    _line.clear();
    _active.resize(1);
    _indices.clear();
    _boundary.clear();
    _triangles.begin(_vertices, _indices);
    const auto n = static_cast<std::uint32_t>(_vertices.size());
    _incoming.assign(n, SweepLine::cNone);
    _nStepsLeft = cStepsPerVertex * n;
    for (std::uint32_t vertex = 0; vertex < n; ++vertex)
    {
        if (!findIncoming(vertex) && !locate(_vertices[vertex]))
            return Result::EdgesMeet;
        if (!takeOutgoing(graph, vertex))
            return Result::EdgesMeet;
        if (!updateSpans(vertex, makesTriangles))
            return Result::IsLayered;
        replaceIncoming(vertex);
        // Edges that begin together have no other point in common.
        const Place firstNew = _before == SweepLine::cNone ? _line.getNext(SweepLine::cNone) : _line.getNext(_before);
        if (!arePassing(_before, firstNew))
            return Result::EdgesMeet;
        const Place lastNew = _line.getPrevious(_after);
        if (lastNew != _before && !arePassing(lastNew, _after))
            return Result::EdgesMeet;
    }
    return Result::Done;
}

// Edges that end at one vertex stand in a row, if none of them crosses another edge.
bool FillSweep::findIncoming(std::uint32_t vertex)
{
    _first = _last = _incoming[vertex];
    if (_first == SweepLine::cNone)
        return false;
    const auto endsHere = [this, vertex](Place place)
    { return place != SweepLine::cNone && _active[place].bottomVertex == vertex; };
    while (endsHere(_before = _line.getPrevious(_first)))
        _first = _before;
    while (endsHere(_after = _line.getNext(_last)))
        _last = _after;
    return true;
}

// The neighbours of a vertex at which no edge ends. @return false when it is on an edge
bool FillSweep::locate(GridPoint vertex)
{
    _before = SweepLine::cNone;
    for (Place place = _line.getRoot(); place != SweepLine::cNone;)
    {
        const std::int64_t side = sideOf(_active[place].top, _active[place].bottom, vertex);
        if (side == 0)
            return false;
        if (side < 0)
            _before = place;
        place = side < 0 ? _line.getRight(place) : _line.getLeft(place);
    }
    _after = _line.getNext(_before);
    return true;
}

// The edges that begin at a vertex from left to right. Equal ones become one, and none if they cancel each other.
// @return false when two overlap that are not equal
bool FillSweep::takeOutgoing(const FillGraph& graph, std::uint32_t vertex)
{
    _next.clear();
    for (const FillGraph::Down& down : graph.downsFrom(vertex))
        _next.push_back({.down = down, .bottom = _vertices[down.bottom]});
    if (_next.size() > 1)
    {
        const GridPoint top = _vertices[vertex];
        const auto isLeft = [top](const Next& a, const Next& b) { return cross(top, a.bottom, top, b.bottom) < 0; };
        if (_next.size() == 2)
        {
            if (isLeft(_next[1], _next[0]))
                std::swap(_next[0], _next[1]);
        }
        else
        {
            std::sort(_next.begin(), _next.end(), isLeft);
        }
        std::size_t n = 0;
        for (const Next& next : _next)
        {
            if (n == 0 || isLeft(_next[n - 1], next))
            {
                if (&_next[n] != &next)
                    _next[n] = next;
                ++n;
            }
            else if (_next[n - 1].down.bottom == next.down.bottom)
                _next[n - 1].down.winding += next.down.winding;
            else
                return false;
        }
        _next.resize(n);
        if (_rule == FillRule::NonZero)
            std::erase_if(_next, [](const Next& next) { return next.down.winding == 0; });
        else
            std::erase_if(_next, [](const Next& next) { return next.down.winding % 2 == 0; });
    }
    return true;
}

// Spans and boundary edges at a vertex, with the edges that end there still on the line.
// @return false when the span left of the vertex is too far away
bool FillSweep::updateSpans(std::uint32_t vertex, bool makesTriangles)
{
    const std::int32_t windingOnLeft = windingRightOf(_before);
    const bool isLeftInside = isInside(windingOnLeft);
    std::int32_t winding = windingOnLeft;
    Next* pLastOut = nullptr;
    for (Next& next : _next)
    {
        next.windingOnRight = winding + next.down.winding;
        next.isBoundary = isInside(winding) != isInside(next.windingOnRight);
        winding = next.windingOnRight;
        if (next.isBoundary)
        {
            pLastOut = &next;
            // What is right of the way down is left of the way back.
            isInside(winding) ? _boundary.push_back({next.down.bottom, vertex})
                              : _boundary.push_back({vertex, next.down.bottom});
        }
    }
    if (!makesTriangles)
        return true;
    bool hasIn = false;
    if (_first != SweepLine::cNone)
        for (Place place = _first; place != _after; place = _line.getNext(place))
            hasIn = hasIn || _active[place].isBoundary;
    if (!hasIn && pLastOut == nullptr)
        return true;

    SpanTriangles::Span left = 0;
    if (isLeftInside && !findSpan(left))
        return false;
    // Above the vertex: spans between edges that end there, and the ones on both sides.
    SpanTriangles::Span right = left;
    bool isNowInside = isLeftInside;
    if (hasIn)
    {
        bool isFirst = true;
        for (Place place = _first; place != _after; place = _line.getNext(place))
        {
            if (!_active[place].isBoundary)
                continue;
            if (!isNowInside)
                right = _active[place].span;
            else if (isFirst)
                _triangles.addRight(left, vertex);
            else
                _triangles.close(right, vertex);
            isNowInside = !isNowInside;
            isFirst = false;
        }
        if (isNowInside)
            _triangles.addLeft(right, vertex);
    }
    else if (isLeftInside)
    {
        right = _triangles.split(left, vertex);
    }
    // Below it.
    if (pLastOut == nullptr)
    {
        if (isLeftInside)
            _triangles.merge(left, right);
        return true;
    }
    const bool isRightInside = isNowInside;
    isNowInside = isLeftInside;
    for (Next& next : _next)
    {
        if (!next.isBoundary)
            continue;
        if (!isNowInside)
            next.span = &next == pLastOut && isRightInside ? right : _triangles.open(vertex);
        isNowInside = !isNowInside;
    }
    return true;
}

// The span that the vertex's left neighbourhood belongs to: of the boundary edge next to the left.
bool FillSweep::findSpan(SpanTriangles::Span& span)
{
    Place place = _before;
    for (; !_active[place].isBoundary; place = _line.getPrevious(place))
        if (--_nStepsLeft < 0)
            return false;
    span = _active[place].span;
    return true;
}

// Edges that begin at the vertex take the places of those that end there.
void FillSweep::replaceIncoming(std::uint32_t vertex)
{
    const GridPoint top = _vertices[vertex];
    Place left = _before, place = _first;
    for (const Next& next : _next)
    {
        if (place != SweepLine::cNone && place != _after)
        {
            left = place;
            place = _line.getNext(place);
        }
        else
        {
            left = _line.insertAfter(left);
            place = _after;
            _active.resize(std::max(_active.size(), _line.getBound()));
        }
        put(left, next, top);
    }
    while (place != SweepLine::cNone && place != _after)
    {
        const Place gone = place;
        place = _line.getNext(place);
        _line.erase(gone);
    }
}

void FillSweep::put(Place place, const Next& next, GridPoint top)
{
    // Each by itself: compilers make a whole one elsewhere and copy it before its parts have arrived there.
    Active& active = _active[place];
    active.top = top;
    active.bottom = next.bottom;
    active.bottomVertex = next.down.bottom;
    active.windingOnRight = next.windingOnRight;
    active.span = next.span;
    active.isBoundary = next.isBoundary;
    _incoming[next.down.bottom] = place;
}

// Whether two neighbours have no point in common below the sweep's line but their lower ends: the end of one that comes
// first is on its side of the other.
bool FillSweep::arePassing(Place left, Place right) const
{
    if (left == SweepLine::cNone || right == SweepLine::cNone)
        return true;
    const Active &a = _active[left], &b = _active[right];
    if (a.bottomVertex == b.bottomVertex)
        return true;
    if (a.bottomVertex < b.bottomVertex)
        return sideOf(b.top, b.bottom, a.bottom) > 0;
    return sideOf(a.top, a.bottom, b.bottom) < 0;
}

} // namespace gui::draw
