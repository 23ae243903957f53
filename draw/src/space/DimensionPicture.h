#pragma once

#include <gui/draw/DimensionStyle.h>
#include <gui/draw/Eye.h>

#include <td/Point.h>
#include <td/Size.h>

#include <glm/vec3.hpp>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace gui::draw
{

/// Where a dimension is in space.
struct DimensionShape
{
    std::array<glm::dvec3, 2> measured{}; ///< the points; of an angle the arc's ends
    std::array<glm::dvec3, 2> ends{};     ///< of the dimension line
    std::array<bool, 2> hasArrow{true, true};
    bool hasExtensions = false; ///< lines from the measured points, or an angle's apex, to the ends
    bool isAngle = false;
    double angle = 0; ///< in radians
    glm::dvec3 apex{0};
    glm::dvec3 first{0}; ///< from the apex to the arc's beginning, and a quarter turn on from there
    glm::dvec3 second{0};
    double farthest = 1e6; ///< from the view's corner, in points: what has an end beyond is not drawn

    /// On an angle's arc. @param part  0 at its beginning, 1 at its end
    glm::dvec3 onArc(double part) const;
};

/// What is to be seen of a dimension: places in points from the view's top left corner, y downwards.
struct DimensionPicture
{
    using Point = td::Point<double>;

    struct Arrow
    {
        Point tip;
        Point direction; ///< of length 1, that it points in
    };

    static constexpr std::size_t cMostLines = 5;

    bool isShown = false;
    std::vector<std::pair<Point, Point>> lines; ///< at most cMostLines
    std::size_t nExtensions = 0;                ///< the first of lines
    std::vector<std::vector<Point>> arcs;
    std::array<std::optional<Arrow>, 2> arrows;
    Point text;      ///< its middle
    double turn = 0; ///< of the text, in radians, as Affine::rotation has it

    /// @param text  its size, in points
    static DimensionPicture of(const Eye& eye, const DimensionShape& shape, const DimensionStyle& style,
                               const td::Size<double>& text);
};

} // namespace gui::draw
