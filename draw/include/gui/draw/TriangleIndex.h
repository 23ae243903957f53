#pragma once

#include "Box3.h"
#include "Eye.h"
#include "FillRule.h"
#include "Ray.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Types.h>

#include <glm/vec3.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace gui::draw
{

/// Finds what is under the pointer, or within a lasso, among millions of triangles, lines or points in space.
///
///     #include <gui/draw/TriangleIndex.h>
///     #include <cstdio>
///
///     int main()
///     {
///         const std::vector<glm::vec3> vertices{{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}};
///         const std::vector<std::uint32_t> indices{0, 1, 2, 0, 2, 3};
///         gui::draw::TriangleIndex index;
///         index.setTriangles(vertices, indices);
///         if (const auto hit = index.getNearest({{1, 2, 10}, {0, 0, -1}}))
///             std::printf("triangle %u at a distance of %g\n", hit->index, hit->distance);
///     }
///
/// In a view the ray is `eye.getRay(point)`. An index holds primitives of one kind: triangles, lines or points. It
/// keeps copies of what it is given, in an order of its own: some 60 bytes for a triangle of a closed mesh.
///
/// What is found is what a plain search through all of them would find, to the last bit, with or without a tree:
/// 1. The nearest hit is the one of the least distance, and of those of the same distance the one of the least index.
/// 2. Triangles are hit from both sides, their edges and corners belong to them, and no ray slips through between two
/// that share an edge, or those about a corner, if these have the same coordinates (Woop, Benthin and Wald's test of
/// 2013, in double; see TriangleIndex's guide). One that is seen exactly edge-on is not hit.
/// 3. What has a vertex with a coordinate that is not finite, or beyond 10^100, is never hit, nor are triangles without
/// an area. They keep their index, and are hit again once vertices are moved to where they can be.
///
/// A million triangles take some tenth of a second to build on one thread, a ray through them some microsecond. Where a
/// window must not wait for that, they are built in pieces, or on another thread and moved here; until they are built,
/// everything is found by the plain search.
///
/// Moves, and can't be copied. Several threads may search at once, as long as none changes it. Needs no context.
class GUIGL_API TriangleIndex
{
public:
    /// What an index holds.
    enum class Kind : td::BYTE
    {
        Triangles,
        Lines,
        Points
    };

    /// When it is built.
    enum class Build : td::BYTE
    {
        Now,     ///< within the call
        InPieces ///< by buildSome
    };

    /// Which primitives a rectangle or a lasso takes.
    enum class Take : td::BYTE
    {
        Touched, ///< some of it is inside
        Whole    ///< all of it is inside, and in front of the eye
    };

    /// Where a ray meets a primitive.
    struct Hit
    {
        std::uint32_t index; ///< of the triangle, line or point: 0 for the one of the first three, two or one indices
        double distance;     ///< from the ray's origin, in lengths of its direction: model units
        glm::dvec3 point;    ///< on the primitive, in model units
        /// Barycentric: how much of the point each corner is, with a sum of 1. Of a line the first two, of a point the
        /// first alone.
        glm::dvec3 weights;
        /// Whether the triangle's corners turn counter-clockwise as seen from the ray's origin; true for others.
        bool isFront;
        /// How far beside the ray it is: 0 on it, 1 at the end of the reach. 0 for triangles.
        double aside;
    };

    /// How far beside a ray lines and points are still hit, which have no width of their own: a cone about the ray, or
    /// a cylinder. Triangles take no notice of it.
    struct GUIGL_API Reach
    {
        double atOrigin;    ///< in model units, not below 0
        double perDistance; ///< how much it grows in each model unit along the ray, not below 0

        /// 0: what the ray meets exactly.
        Reach()
            : Reach(0)
        {
        }
        Reach(double radius, double growth = 0)
            : atOrigin(radius)
            , perDistance(growth)
        {
        }
        /// As wide as so many points of the screen. @param ray  as eye.getRay gives it
        Reach(const Eye& eye, const Ray& ray, double points);
    };

    TriangleIndex();
    ~TriangleIndex();
    TriangleIndex(TriangleIndex&& other) noexcept; ///< leaves the other one empty
    TriangleIndex& operator=(TriangleIndex&& other) noexcept;

    /// Replaces all by triangles. @param indices  three vertices for each; read during the call only, as vertices are
    /// @return false, with nothing changed, after a log line: "Error! TriangleIndex: %zu indices are no %s", or "Error!
    ///         TriangleIndex: index %u, at %zu, of %zu vertices", or "Error! TriangleIndex: %zu %s are too many" from
    ///         2^31 on
    bool setTriangles(std::span<const glm::vec3> vertices, std::span<const std::uint32_t> indices,
                      Build build = Build::Now);
    bool setTriangles(std::span<const glm::dvec3> vertices, std::span<const std::uint32_t> indices,
                      Build build = Build::Now);
    /// Replaces all by lines. @param indices  two vertices for each
    /// @return what setTriangles returns
    bool setLines(std::span<const glm::vec3> vertices, std::span<const std::uint32_t> indices,
                  Build build = Build::Now);
    bool setLines(std::span<const glm::dvec3> vertices, std::span<const std::uint32_t> indices,
                  Build build = Build::Now);
    /// Replaces all by points. @return what setTriangles returns
    bool setPoints(std::span<const glm::vec3> vertices, Build build = Build::Now);
    bool setPoints(std::span<const glm::dvec3> vertices, Build build = Build::Now);
    /// Removes all.
    void clear();

    /// Goes on building what was set with Build::InPieces, such as before each frame.
    /// @param milliseconds  returns soon after so many; some tenth of a millisecond is the least
    /// @return whether there is nothing left to build
    bool buildSome(double milliseconds);
    bool isBuilt() const;
    /// Of what is built now, from 0 to 1.
    double getProgress() const;

    /// Gives all vertices new places, and refits the tree, which takes a fifth of the time of building it. Found is
    /// what is there now; where neighbours have gone far from each other, searching takes longer than in a new tree.
    /// What is being built in pieces begins anew.
    /// @param vertices  as many as before
    /// @return false, with nothing changed, after "Error! TriangleIndex::move: %zu vertices, not %zu" if they are not
    bool move(std::span<const glm::vec3> vertices);
    bool move(std::span<const glm::dvec3> vertices);

    Kind getKind() const;
    /// Primitives, with those that can't be hit.
    std::size_t size() const;
    /// Vertices, as they were given.
    std::size_t getNumberOfVertices() const;
    /// About all vertices of primitives that are finite.
    const Box3& getBounds() const;
    /// The bytes that all of this takes.
    std::size_t getMemory() const;

    /// The nearest of what the ray meets. Of lines and points, which the reach makes wider than they are, that may not
    /// be the one that is nearest to the pointer: see getClosest.
    /// @param ray          its direction may have any length but 0; with a number that is not finite it meets nothing
    /// @param maxDistance  what is farther is not met, such as what is hidden behind a hit of another index
    /// @return empty if there is nothing
    std::optional<Hit> getNearest(const Ray& ray, const Reach& reach = {},
                                  double maxDistance = std::numeric_limits<double>::infinity()) const;
    /// The line or point that is seen nearest to the ray: of the least `aside`, then the least distance, then the least
    /// index. Of triangles the nearest one.
    std::optional<Hit> getClosest(const Ray& ray, const Reach& reach,
                                  double maxDistance = std::numeric_limits<double>::infinity()) const;
    /// All that the ray meets, by distance, then by index; each primitive once.
    std::vector<Hit> getAll(const Ray& ray, const Reach& reach = {},
                            double maxDistance = std::numeric_limits<double>::infinity()) const;

    /// What is seen within a rectangle of the screen, hidden by others or not, from the nearest distance that the eye
    /// sees on. Primitives without a size and those that can't be hit are left out.
    /// @param rect  in points, edges included
    /// @return indices, from the least on; none for an eye that sees nothing
    std::vector<std::uint32_t> getWithin(const Eye& eye, const td::RectNormalized<double>& rect,
                                         Take take = Take::Touched) const;
    /// The same within a line drawn about it.
    /// @param lasso  in points, from the last one back to the first; if a number is not finite, nothing is within
    std::vector<std::uint32_t> getWithin(const Eye& eye, std::span<const td::Point<double>> lasso,
                                         Take take = Take::Touched, FillRule rule = FillRule::NonZero) const;

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
