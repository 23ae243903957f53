#include "ModelGeometry.h"

#include <glm/common.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace gui::draw
{

namespace
{

constexpr std::size_t cTrianglesPerCell = 2048, cEdgesPerCell = 1024;
// A surface of so many triangles in a cube has enough of them for the next smaller cubes to be worth while.
constexpr std::size_t cTrianglesPerCube = 64;
constexpr unsigned int cMostBits = 10; // of a cube's place in each direction

// Levels of fewer triangles save nothing, nor do those that have not much fewer than the one before.
constexpr std::size_t cFewTriangles = 2000;
constexpr double cLeastSaving = 0.6;
constexpr std::size_t cMostLevels = 8;
constexpr int cMostTries = 5; // of wider grids

/// A thing by the part and the cube that it is in.
struct Placed
{
    std::uint64_t key;
    std::uint32_t number;
};

std::uint64_t spread(std::uint32_t bits)
{
    std::uint64_t x = bits & 0x3ffU;
    x = (x | x << 16) & 0x30000ffU;
    x = (x | x << 8) & 0x300f00fU;
    x = (x | x << 4) & 0x30c30c3U;
    return (x | x << 2) & 0x9249249U;
}

// Things of one key keep their order, which is good for what caches vertices as often as not.
void sortByKeys(std::vector<Placed>& things)
{
    std::uint64_t used = 0;
    for (const Placed& thing : things)
        used |= thing.key ^ things.front().key;
    std::vector<Placed> other(things.size());
    for (unsigned int shift = 0; shift < 64; shift += 8)
    {
        if ((used >> shift & 255U) == 0)
            continue;
        std::array<std::size_t, 257> begins{};
        for (const Placed& thing : things)
            ++begins[(thing.key >> shift & 255U) + 1];
        std::partial_sum(begins.begin(), begins.end(), begins.begin());
        for (const Placed& thing : things)
            other[begins[thing.key >> shift & 255U]++] = thing;
        things.swap(other);
    }
}

/// Divides things into cells, by cubes of halving size.
class Divider
{
public:
    using Range = std::pair<std::size_t, std::size_t>;

    Divider(std::size_t nThings, std::size_t perCell)
        : _perCell(perCell)
    {
        while (_nBits < cMostBits && (nThings >> (2 * _nBits)) > cTrianglesPerCube)
            ++_nBits;
    }

    /// @param middleOf  gives a thing's middle  @param rankOf  and what comes before places
    template <typename MiddleOf, typename RankOf>
    void place(std::size_t n, const MiddleOf& middleOf, const RankOf& rankOf)
    {
        glm::vec3 min(std::numeric_limits<float>::max()), max(-min);
        for (std::uint32_t i = 0; i < n; ++i)
        {
            min = glm::min(min, middleOf(i));
            max = glm::max(max, middleOf(i));
        }
        const glm::vec3 size = max - min;
        const float largest = std::max({size.x, size.y, size.z});
        const auto nCubes = static_cast<float>(1U << _nBits);
        const float scale = largest > 0 ? nCubes / largest : 0;
        _things.resize(n);
        for (std::uint32_t i = 0; i < n; ++i)
        {
            const glm::vec3 cube = glm::min((middleOf(i) - min) * scale, nCubes - 1);
            std::uint64_t key = 0;
            for (int k = 0; k < 3; ++k)
                key |= spread(static_cast<std::uint32_t>(cube[k])) << k;
            _things[i] = {std::uint64_t(rankOf(i)) << 3 * cMostBits | key, i};
        }
        sortByKeys(_things);
    }

    /// The things in the order of cells, and the cells among them.
    const std::vector<Placed>& getThings() const { return _things; }
    std::vector<Range> makeCells()
    {
        for (std::size_t begin = 0, end; begin < _things.size(); begin = end)
        {
            const std::uint64_t rank = _things[begin].key >> 3 * cMostBits;
            for (end = begin + 1; end < _things.size() && _things[end].key >> 3 * cMostBits == rank;)
                ++end;
            divide({begin, end}, _nBits);
        }
        return std::move(_cells);
    }

private:
    // Cubes beside each other that have few things are one cell. @param nBits  by which places differ still
    void divide(Range range, unsigned int nBits)
    {
        if (range.second - range.first <= _perCell || nBits == 0)
        {
            for (std::size_t begin = range.first; begin < range.second; begin += 2 * _perCell)
                _cells.emplace_back(begin, std::min(begin + 2 * _perCell, range.second));
            return;
        }
        Range waiting{range.first, range.first};
        const unsigned int shift = 3 * (nBits - 1);
        for (std::size_t begin = range.first, end; begin < range.second; begin = end)
        {
            const std::uint64_t cube = _things[begin].key >> shift;
            const auto next = std::partition_point(_things.begin() + static_cast<std::ptrdiff_t>(begin),
                                                   _things.begin() + static_cast<std::ptrdiff_t>(range.second),
                                                   [=](const Placed& thing) { return thing.key >> shift == cube; });
            end = static_cast<std::size_t>(next - _things.begin());
            if (end - waiting.first > _perCell)
            {
                if (waiting.second > waiting.first)
                    _cells.push_back(waiting);
                waiting = {begin, begin};
                if (end - begin > _perCell)
                {
                    divide({begin, end}, nBits - 1);
                    waiting = {end, end};
                    continue;
                }
            }
            waiting.second = end;
        }
        if (waiting.second > waiting.first)
            _cells.push_back(waiting);
    }

    std::size_t _perCell;
    unsigned int _nBits = 0;
    std::vector<Placed> _things;
    std::vector<Range> _cells;
};

/// A box about vertices that grows.
struct Bounds
{
    glm::vec3 min{std::numeric_limits<float>::max()};
    glm::vec3 max{-std::numeric_limits<float>::max()};

    void add(const glm::vec3& p)
    {
        min = glm::min(min, p);
        max = glm::max(max, p);
    }
    // What is lost in rounding, and the rests of the positions, are less than what is added.
    void give(ModelCell& cell) const
    {
        cell.center = min / 2.0F + max / 2.0F;
        cell.halfSize = max / 2.0F - min / 2.0F;
        cell.halfSize += 1e-6F * (glm::abs(cell.center) + cell.halfSize) + std::numeric_limits<float>::min();
    }
};

// Appends a surface's triangles, by parts and cells, and the vertices in the order in which they are used.
void addTriangles(const MeshSurface& surface, std::span<const std::uint32_t> ranks, ModelGeometry& geometry,
                  ModelGeometry::Level& level)
{
    const std::vector<std::uint32_t>& from = surface.indices;
    Divider divider(surface.parts.size(), cTrianglesPerCell);
    divider.place(
        surface.parts.size(),
        [&](std::uint32_t t)
        {
            return (surface.vertices[from[3 * t]].position + surface.vertices[from[3 * t + 1]].position +
                    surface.vertices[from[3 * t + 2]].position) /
                   3.0F;
        },
        [&](std::uint32_t t) { return ranks[surface.parts[t]]; });
    constexpr std::uint32_t cNotMoved = ~0U;
    std::vector<std::uint32_t> moved(surface.vertices.size(), cNotMoved);
    for (const auto& [begin, end] : divider.makeCells())
    {
        ModelCell cell{};
        Bounds bounds;
        cell.first = static_cast<std::uint32_t>(geometry.indices.size());
        cell.count = static_cast<std::uint32_t>(3 * (end - begin));
        cell.part = surface.parts[divider.getThings()[begin].number];
        for (std::size_t i = begin; i < end; ++i)
            for (std::size_t k = 0; k < 3; ++k)
            {
                const std::uint32_t old = from[3 * std::size_t(divider.getThings()[i].number) + k];
                if (moved[old] == cNotMoved)
                {
                    moved[old] = static_cast<std::uint32_t>(geometry.vertices.size());
                    geometry.vertices.push_back(surface.vertices[old]);
                }
                geometry.indices.push_back(moved[old]);
                bounds.add(surface.vertices[old].position);
            }
        bounds.give(cell);
        level.cells.push_back(cell);
    }
    level.nTriangles = static_cast<std::uint32_t>(surface.parts.size());
}

void addEdges(const MeshSurface& surface, ModelGeometry& geometry, ModelGeometry::Level& level)
{
    Divider divider(surface.edges.size(), cEdgesPerCell);
    divider.place(
        surface.edges.size(),
        [&](std::uint32_t i) { return (surface.edges[i].positions[0] + surface.edges[i].positions[1]) / 2.0F; },
        [](std::uint32_t) { return 0U; });
    for (const auto& [begin, end] : divider.makeCells())
    {
        ModelCell cell{};
        Bounds bounds;
        cell.first = static_cast<std::uint32_t>(geometry.edges.size());
        cell.count = static_cast<std::uint32_t>(end - begin);
        cell.part = ModelCell::cNoPart;
        for (std::size_t i = begin; i < end; ++i)
        {
            const MeshSurface::Edge& edge = surface.edges[divider.getThings()[i].number];
            geometry.edges.push_back(edge);
            for (const glm::vec3& p : edge.positions)
                bounds.add(p);
        }
        bounds.give(cell);
        level.edgeCells.push_back(cell);
    }
}

} // namespace

ModelGeometry ModelGeometry::make(const Mesh& mesh, std::span<const std::uint32_t> ranks)
{
    ModelGeometry geometry;
    geometry.bounds = mesh.getBounds();
    MeshSurface surface = MeshSurface::make(mesh);
    geometry.origin = surface.origin;
    geometry.hasRests = surface.hasRests;
    geometry.vertices.reserve(surface.vertices.size() * 3 / 2);
    geometry.indices.reserve(surface.indices.size() * 3 / 2);
    double step = 0;
    while (true)
    {
        Level& level = geometry.levels.emplace_back();
        level.step = step;
        addTriangles(surface, ranks, geometry, level);
        addEdges(surface, geometry, level);
        if (geometry.levels.size() >= cMostLevels || level.nTriangles < cFewTriangles)
            return geometry;
        // Twice as wide a grid has a quarter of the triangles; where there are long and short ones, a wider one is.
        MeshSurface coarser;
        const auto isFew = [&] { return static_cast<double>(coarser.parts.size()) <= cLeastSaving * level.nTriangles; };
        for (int i = 0; i < cMostTries && !(i > 0 && isFew()); ++i)
        {
            step = std::max(2 * step, 2 * surface.meanEdge);
            coarser = makeCoarser(surface, step);
        }
        if (!isFew() || coarser.parts.empty())
            return geometry;
        surface = std::move(coarser);
    }
}

} // namespace gui::draw
