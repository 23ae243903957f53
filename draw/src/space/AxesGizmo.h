#pragma once

#include <gui/draw/Drawing.h>
#include <gui/draw/Eye.h>
#include <gui/draw/OrbitCamera.h>

#include <td/Point.h>
#include <td/Size.h>

#include <glm/mat3x3.hpp>
#include <glm/vec3.hpp>

#include <optional>

namespace gui::draw
{

/// The model's axes as seen by an eye, on a small disc somewhere in the view: three arms with a letter at each end, and
/// an end without one on the other side. Places are in points of the view.
class AxesGizmo
{
public:
    /// From its middle to its edge, in points.
    static constexpr double cRadius = 46;

    explicit AxesGizmo(OrbitCamera::Up up)
        : _up(up)
    {
    }

    /// Where its middle is.
    void setCenter(const td::Point<double>& center) { _center = center; }

    /// Whether a point is on the disc.
    bool contains(const td::Point<double>& point) const;
    /// The side that the end under a point looks from: the nearer one of two.
    std::optional<OrbitCamera::Side> getSideAt(const td::Point<double>& point, const glm::dmat3& rotation) const;

    /// What the pointer is over; the disc shows with any. @return whether that is new
    bool setPointed(bool isPointed, std::optional<OrbitCamera::Side> side);

    /// Draws over what is there. @return as Drawing::draw
    bool draw(const Eye& eye);

private:
    static constexpr int cEnds = 6; // of the axes, the positive ones first

    OrbitCamera::Side sideOf(int end) const;
    static glm::dvec3 placeOf(int end, const glm::dmat3& rotation);
    void build(const glm::dmat3& rotation);
    void addEnd(int end, const glm::dvec3& place);

    OrbitCamera::Up _up;
    td::Point<double> _center;
    bool _isPointed = false;
    std::optional<OrbitCamera::Side> _pointedSide;
    std::optional<glm::dmat3> _built; // for which the drawing is
    Drawing _drawing;
};

} // namespace gui::draw
