#pragma once

#include <gui/draw/Box3.h>
#include <gui/draw/Eye.h>
#include <gui/draw/FillRule.h>

#include <td/Point.h>

#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// What is inside of a line on the screen, as an eye sees it.
class ScreenRegion
{
public:
    enum class Place : td::BYTE
    {
        Outside,
        Inside,
        Either // some of it, perhaps
    };
    using Edges = std::span<const std::uint32_t>; // numbers of some of the line's

    ScreenRegion(const Eye& eye, std::span<const td::Point<double>> lasso, FillRule rule);

    /// Whether there is a line to be within.
    bool isValid() const { return _isValid; }
    Edges getEdges() const { return _all; }

    /// Where all that is in a box is.
    /// @param edges     all that come near the box  @param touching  those that are added do
    Place find(const Box3& box, Edges edges, std::vector<std::uint32_t>& touching) const;
    /// Whether a point, a line or a triangle is inside. @param edges  as find takes them
    bool has(std::span<const glm::dvec3> corners, bool isWhole, Edges edges) const;

private:
    struct Seen
    {
        glm::dvec2 place; // in points, times w
        double w;
        double distance; // from where the eye begins to see
    };

    Seen see(const glm::dvec3& point) const;
    bool contains(const glm::dvec2& point) const;

    Eye _eye;
    double _nearest;
    std::vector<glm::dvec2> _corners;
    std::vector<std::uint32_t> _all;
    FillRule _rule;
    bool _isValid;
};

} // namespace gui::draw
