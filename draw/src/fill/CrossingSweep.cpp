#include "CrossingSweep.h"

#include <algorithm>

namespace gui::draw
{

namespace
{

// The heap's top is the largest.
bool comesLater(const Crossing& a, const Crossing& b) { return a.compare(b) > 0; }

} // namespace

void CrossingSweep::find(const FillGraph& graph)
{
    _line.clear();
    _edges.resize(1);
    _vertices = graph.getVertices();
    _crossings.clear();
    _meetings.clear();
    std::uint32_t vertex = 0;
    const auto n = static_cast<std::uint32_t>(_vertices.size());
    while (vertex < n || !_crossings.empty())
    {
        // What is at one point is one event, a vertex and crossings alike.
        const int order = _crossings.empty() ? -1
                          : vertex == n      ? 1
                                             : Crossing(_vertices[vertex]).compare(_crossings.front());
        const Crossing point = order <= 0 ? Crossing(_vertices[vertex]) : _crossings.front();
        while (!_crossings.empty() && _crossings.front().compare(point) == 0)
        {
            std::pop_heap(_crossings.begin(), _crossings.end(), comesLater);
            _crossings.pop_back();
        }
        handle(point, order <= 0 ? vertex++ : cNoVertex, graph);
    }
}

void CrossingSweep::handle(const Crossing& point, std::uint32_t vertex, const FillGraph& graph)
{
    findPlacesAt(point);
    _below.clear();
    for (const Place place : _places)
        if (_edges[place].bottomVertex != vertex)
        {
            _meetings.push_back({_edges[place].number, point.rounded()});
            _below.push_back(_edges[place]);
        }
    if (vertex != cNoVertex)
    {
        std::uint32_t number = graph.getFirstDown(vertex);
        for (const FillGraph::Down& down : graph.downsFrom(vertex))
            _below.push_back({_vertices[vertex], _vertices[down.bottom], number++, down.bottom});
    }
    // Where edges overlap, their order is of no matter: they are one from here on, until the first of them ends.
    std::sort(_below.begin(), _below.end(),
              [](const Edge& a, const Edge& b) { return cross(a.top, a.bottom, b.top, b.bottom) < 0; });

    Place last = _before;
    std::size_t nUsed = 0;
    for (const Edge& edge : _below)
    {
        last = nUsed < _places.size() ? _places[nUsed] : _line.insertAfter(last);
        ++nUsed;
        _edges.resize(std::max(_edges.size(), _line.getBound()));
        _edges[last] = edge;
    }
    for (; nUsed < _places.size(); ++nUsed)
        _line.erase(_places[nUsed]);
    const Place after = _line.getNext(last);
    if (last != _before)
        expect(_before, _line.getNext(_before));
    expect(last, after);
}

void CrossingSweep::findPlacesAt(const Crossing& point)
{
    _before = SweepLine::cNone;
    for (Place place = _line.getRoot(); place != SweepLine::cNone;)
    {
        const bool isRight = point.sideOf(_edges[place].top, _edges[place].bottom) < 0;
        if (isRight)
            _before = place;
        place = isRight ? _line.getRight(place) : _line.getLeft(place);
    }
    _places.clear();
    for (Place place = _line.getNext(_before);
         place != SweepLine::cNone && point.sideOf(_edges[place].top, _edges[place].bottom) == 0;
         place = _line.getNext(place))
        _places.push_back(place);
}

// Neighbours cross further down when the end that comes first is on the wrong side of the other edge. When it is on it,
// the event of that end finds out.
void CrossingSweep::expect(Place left, Place right)
{
    if (left == SweepLine::cNone || right == SweepLine::cNone)
        return;
    const Edge &a = _edges[left], &b = _edges[right];
    const bool doCross = a.bottomVertex < b.bottomVertex   ? sideOf(b.top, b.bottom, a.bottom) < 0
                         : a.bottomVertex > b.bottomVertex ? sideOf(a.top, a.bottom, b.bottom) > 0
                                                           : false;
    if (!doCross)
        return;
    _crossings.emplace_back(a.top, a.bottom, b.top, b.bottom);
    std::push_heap(_crossings.begin(), _crossings.end(), comesLater);
}

void divide(const FillGraph& graph, std::span<const CrossingSweep::Meeting> meetings, FillEdges& divided)
{
    const std::span<const GridPoint> vertices = graph.getVertices();
    const std::span<const FillGraph::Down> downs = graph.getDowns();
    // Each edge's meetings in a row.
    std::vector<std::uint32_t> first(downs.size() + 2, 0);
    for (const CrossingSweep::Meeting& meeting : meetings)
        ++first[meeting.edge + 2];
    for (std::size_t i = 2; i < first.size(); ++i)
        first[i] += first[i - 1];
    std::vector<GridPoint> points(meetings.size());
    for (const CrossingSweep::Meeting& meeting : meetings)
        points[first[meeting.edge + 1]++] = meeting.point;

    divided.clear();
    divided.points.assign(vertices.begin(), vertices.end());
    for (std::uint32_t top = 0; top < vertices.size(); ++top)
    {
        std::uint32_t edge = graph.getFirstDown(top);
        for (const FillGraph::Down& down : graph.downsFrom(top))
        {
            std::uint32_t last = top;
            const auto goTo = [&](std::uint32_t next)
            {
                divided.edges.push_back(down.winding > 0 ? FillEdges::Edge{last, next} : FillEdges::Edge{next, last});
                last = next;
            };
            for (std::uint32_t i = first[edge]; i < first[edge + 1]; ++i)
            {
                if (points[i] == divided.points[last])
                    continue;
                divided.points.push_back(points[i]);
                goTo(static_cast<std::uint32_t>(divided.points.size() - 1));
            }
            goTo(down.bottom);
            ++edge;
        }
    }
}

} // namespace gui::draw
