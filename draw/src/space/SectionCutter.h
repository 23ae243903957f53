#pragma once

#include "ModelGeometry.h"

#include <gui/draw/FillTessellator.h>

#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

/// A plane with axes in it, from a model's origin.
struct SectionPlane
{
    glm::dvec3 base{0};
    glm::dvec3 u{1, 0, 0}, v{0, 1, 0}, normal{0, 0, 1}; ///< of length 1, at right angles

    /// @param point, normal  from the origin; the base is where the plane is nearest to that
    static SectionPlane make(const glm::dvec3& point, const glm::dvec3& normal);
    glm::dvec3 at(const glm::dvec2& place) const { return base + place.x * u + place.y * v; }
};

/// What a plane cuts of a model's triangles: the faces of the cut, closed for each part by itself. Positions are those
/// that are drawn, of whole meshes without coarser ones.
///
/// A triangle's corner that lies in the plane counts as behind it. So each triangle gives a segment or none, segments
/// of neighbours have the same end to the bit, and those of a closed surface are rings. What is inside, the non-zero
/// rule says: shells of a part that overlap are one, hollows stay hollow. Where triangles don't turn the same way as
/// their neighbours, the even-odd rule does. Where open chains end near where others begin, or they themselves, they
/// are joined; what stays open has lines but no face.
class SectionCutter
{
public:
    /// A model's vertices, as they are uploaded.
    struct Source
    {
        std::span<const float> vertices;
        std::size_t floatsPerVertex = 3;
        std::size_t restAt = 0; ///< where in a vertex floats have what their positions lack; 0 for nowhere
        std::span<const std::uint32_t> indices;
        std::span<const ModelCell> cells;

        glm::dvec3 getPosition(std::uint32_t vertex) const;
    };
    /// A part's.
    struct Face
    {
        std::uint32_t part = 0;
        std::vector<glm::dvec2> corners; ///< on the plane's axes
        std::vector<std::uint32_t> indices;
        std::vector<std::array<glm::dvec2, 2>> lines; ///< about it
    };

    /// @return by number of the part; valid until the next call
    const std::vector<Face>& cut(const Source& source, const SectionPlane& plane);

    /// Where a face meets a straight line of its plane.
    /// @param line  what is 0 on it: x * u + y * v + z
    static std::vector<std::array<glm::dvec2, 2>> intersect(const Face& face, const glm::dvec3& line);

private:
    struct Segment
    {
        std::uint32_t part, from, to; // points by number
    };
    struct BitsHash
    {
        std::size_t operator()(const std::array<std::uint64_t, 2>& bits) const;
    };
    struct Chain
    {
        std::vector<std::uint32_t> points;
        bool isRing = false;
    };

    std::uint32_t numberOf(const glm::dvec2& point);
    void cutTriangle(const Source& source, const SectionPlane& plane, std::uint32_t part, std::size_t index);
    void link(std::span<const Segment> segments, bool isDirected);
    void join();
    double getLength(const Chain& chain) const;
    void fill(std::span<const Segment> segments);

    std::vector<Segment> _segments;
    std::vector<glm::dvec2> _points;
    std::unordered_map<std::array<std::uint64_t, 2>, std::uint32_t, BitsHash> _numbers;
    std::vector<Chain> _chains;
    std::vector<Face> _faces;
    FillTessellator _tessellator;
};

} // namespace gui::draw
