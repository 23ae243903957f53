#include "FillChecks.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace test
{

namespace
{

using gui::draw::FillTessellator;
using Point = td::Point<double>;

__extension__ using Wide = __int128;

/// A point in parts of the grid's step, 2^20 of them: whole numbers below 2^74, so that products of two differences of
/// neighbours fit.
struct Exact
{
    Wide x = 0, y = 0;
};

Exact exact(Point p, double step)
{
    return {Wide(std::floor(p.x / step * 0x1p20)), Wide(std::floor(p.y / step * 0x1p20))};
}

int sideOf(Exact a, Exact b, Exact p)
{
    const Wide side = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
    return (side > 0) - (side < 0);
}

// How an edge counts for the winding number of a point that is not on it.
int windingOf(Exact a, Exact b, Exact p)
{
    if ((a.y <= p.y) == (b.y <= p.y))
        return 0;
    return a.y < b.y ? (sideOf(a, b, p) > 0 ? 1 : 0) : (sideOf(a, b, p) < 0 ? -1 : 0);
}

bool isNear(Point a, Point b, Point p, double away)
{
    const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
    const double t = square > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0) : 0;
    const double x = p.x - a.x - t * dx, y = p.y - a.y - t * dy;
    return x * x + y * y < away * away;
}

std::string inWords(const char* what, Point p)
{
    return std::string(what) + " at " + std::to_string(p.x) + ", " + std::to_string(p.y);
}

} // namespace

std::string checkMesh(const FillTessellator& fill)
{
    const auto& vertices = fill.getVertices();
    const auto& indices = fill.getIndices();
    const auto corner = [&](std::uint32_t i) { return exact(vertices[i], fill.getStep()); };
    if (indices.size() % 3 != 0)
        return "no whole triangles";
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for (std::size_t i = 0; i < indices.size(); i += 3)
    {
        const std::uint32_t a = indices[i], b = indices[i + 1], c = indices[i + 2];
        if (std::max({a, b, c}) >= vertices.size())
            return "an index without a vertex";
        if (sideOf(corner(a), corner(b), corner(c)) <= 0)
            return inWords("a triangle without area or turned", vertices[a]);
        for (const auto& edge : {std::pair(a, b), std::pair(b, c), std::pair(c, a)})
            if (++edges[edge] > 1)
                return inWords("two triangles on one side of an edge", vertices[edge.first]);
    }
    std::size_t nSingle = 0;
    for (const auto& [edge, n] : edges)
        nSingle += edges.count({edge.second, edge.first}) == 0 ? 1 : 0;
    if (nSingle != fill.getBoundary().size())
        return "not as many boundary edges as edges with one triangle";
    for (const FillTessellator::Edge& edge : fill.getBoundary())
        if (edges.count({edge.from, edge.to}) == 0 || edges.count({edge.to, edge.from}) != 0)
            return inWords("a boundary edge has not one triangle", vertices[edge.from]);
    for (std::size_t i = 1; i < vertices.size(); ++i)
        if (!(vertices[i - 1].y < vertices[i].y ||
              (vertices[i - 1].y == vertices[i].y && vertices[i - 1].x < vertices[i].x)))
            return inWords("vertices repeat or are not in order", vertices[i]);
    return "";
}

std::string checkArea(const FillTessellator& fill, const Rings& rings, gui::draw::FillRule rule, double size,
                      double away)
{
    constexpr int cSteps = 24;
    const double step = fill.getStep();
    struct Edge
    {
        Point from, to;
        Exact a, b;
    };
    std::vector<Edge> edges;
    for (const auto& ring : rings)
        for (std::size_t i = 0; i < ring.size(); ++i)
        {
            const Point from = ring[i], to = ring[(i + 1) % ring.size()];
            edges.push_back({from, to, exact(from, step), exact(to, step)});
        }
    std::vector<Exact> vertices;
    for (const Point& vertex : fill.getVertices())
        vertices.push_back(exact(vertex, step));
    for (int i = 0; i < cSteps * cSteps; ++i)
    {
        const Point p(size * (i % cSteps - 1.2345678) / (cSteps - 3), size * (i / cSteps - 1.3456789) / (cSteps - 3));
        const Exact q = exact(p, step);
        int winding = 0, covered = 0;
        if (std::any_of(edges.begin(), edges.end(),
                        [&](const Edge& edge) { return isNear(edge.from, edge.to, p, away); }))
            continue;
        for (const Edge& edge : edges)
            winding += windingOf(edge.a, edge.b, q);
        for (const FillTessellator::Edge& edge : fill.getBoundary())
            covered += windingOf(vertices[edge.from], vertices[edge.to], q);
        const bool isInside = rule == gui::draw::FillRule::NonZero ? winding != 0 : winding % 2 != 0;
        if (covered != (isInside ? 1 : 0))
            return inWords(
                ("covered " + std::to_string(covered) + " times, winding " + std::to_string(winding)).c_str(), p);
    }
    return "";
}

Rings makeRings(std::mt19937& random, int size, double scale)
{
    const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned int>(n)); };
    const auto number = [&] { return scale * below(size + 1); };
    Rings rings(1 + random() % 5);
    for (auto& ring : rings)
    {
        const int kind = below(8);
        if (kind == 0)
        {
            const double x = number(), y = number(), u = number(), v = number();
            ring = {{x, y}, {u, y}, {u, v}, {x, v}};
        }
        else if (kind == 1 && &ring != rings.data())
        {
            ring = rings[static_cast<std::size_t>(below(static_cast<int>(&ring - rings.data())))];
            if (below(2) == 0)
                std::reverse(ring.begin(), ring.end());
        }
        else
        {
            const int n = kind == 2 ? below(4) : 3 + below(12);
            for (int i = 0; i < n; ++i)
            {
                ring.emplace_back(number(), number());
                if (below(6) == 0) // stands still, or runs back
                    ring.push_back(ring[static_cast<std::size_t>(below(static_cast<int>(ring.size())))]);
            }
        }
    }
    return rings;
}

} // namespace test
