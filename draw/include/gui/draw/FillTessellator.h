#pragma once

#include "FillRule.h"
#include "Path.h"

#include <td/Export.h>
#include <td/Point.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace gui::draw
{

/// Cuts what rings have inside of them, by a rule, into triangles: holes, islands in holes, rings that cross themselves
/// and each other, that touch, lie on one another, stand still or run back, in any number and direction.
///
///     #include <gui/draw/FillTessellator.h>
///     #include <cstdio>
///
///     int main()
///     {
///         gui::draw::Path path;
///         path.addCircle({0, 0}, 10).addCircle({0, 0}, 5);
///         gui::draw::FillTessellator fill;
///         fill.addPath(path, 0.01);
///         fill.tessellate(gui::draw::FillRule::EvenOdd);
///         std::printf("%zu triangles\n", fill.getIndices().size() / 3);
///     }
///
/// What is guaranteed, for every input:
/// 1. Points are rounded to a grid of getStep(), a power of two: at most 2^30 steps to the larger side of the bounds.
/// So numbers that are multiples of it, such as whole numbers below 2^29 or most floats of one order of magnitude, stay
/// as they are. Points with a coordinate that is not finite, or beyond 10^300, are left out: those before and after are
/// neighbours.
/// 2. Where edges cross, touch or overlap, they are divided, and the crossing is rounded to the grid. So each edge
/// becomes a chain of edges between points of the grid that is nowhere more than one step away from it; where nothing
/// meets, the edge itself.
/// 3. The triangles cover exactly the points that the rule says are inside of those chains, each once, and nothing
/// else: not up to a tolerance, but in exact arithmetic on the vertices as they come out. Their edges are whole: no
/// vertex lies within another triangle's edge.
/// 4. All triangles have an area and turn from x to y: counter-clockwise for y upwards.
/// 5. The result is the same on every machine, in whatever order the rings come and whichever points they begin at.
/// Time grows with n log n where edges meet at their ends only, and with (n + k) log n for k crossings.
///
/// It keeps its memory from call to call. Not copyable; one object must not be used from two threads at once. It makes
/// no GL calls and needs no context.
class GUIGL_API FillTessellator
{
public:
    using Point = td::Point<double>; ///< in model units

    /// An edge that has the inside on one side only, by numbers of vertices: on its left for y upwards.
    struct Edge
    {
        std::uint32_t from = 0;
        std::uint32_t to = 0;
        bool operator==(const Edge&) const = default;
    };

    FillTessellator();
    ~FillTessellator();
    FillTessellator(const FillTessellator&) = delete;
    FillTessellator& operator=(const FillTessellator&) = delete;

    /// A ring, from its last point back to its first; below 2^31 points in all. Read during the call only.
    void addRing(std::span<const Point> points);
    template <PointRange Points>
    void addRing(const Points& points)
    {
        _ring.clear();
        for (const auto& point : points)
            _ring.push_back(toPoint(point));
        addRing(std::span<const Point>(_ring));
    }
    /// All subpaths of a path, open ones closed as for a fill, with curves flattened. @param tolerance  as in
    /// Path::flatten
    void addPath(const Path& path, double tolerance);

    /// Triangulates the rings that were added since the last call, and forgets them. getVertices() and the rest are
    /// about this call's result then, which is empty when nothing is inside.
    void tessellate(FillRule rule = FillRule::NonZero);

    /// The corners of triangles, each once, in the order of y, then x. They are numbers of the grid, exactly.
    const std::vector<Point>& getVertices() const { return _vertices; }
    /// Three numbers of vertices for each triangle.
    const std::vector<std::uint32_t>& getIndices() const { return _indices; }
    /// The edges between inside and outside, each once and in no order: all edges of triangles that have no triangle on
    /// their other side.
    const std::vector<Edge>& getBoundary() const { return _boundary; }

    /// The grid's step in the last call.
    double getStep() const;
    /// A step that the grid has at least, such as a small part of a pixel: finer detail vanishes, and what nearly meets
    /// meets. It is rounded up to a power of two; 0, the default, and less leave the choice to the bounds.
    void setLeastStep(double step);

private:
    struct Work;

    std::vector<Point> _ring;
    std::vector<Point> _vertices;
    std::vector<std::uint32_t> _indices;
    std::vector<Edge> _boundary;
    std::unique_ptr<Work> _pWork;
};

} // namespace gui::draw
