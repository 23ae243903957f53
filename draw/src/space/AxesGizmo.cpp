#include "AxesGizmo.h"

#include <gui/draw/Path.h>
#include <gui/gl/StateGuard.h>

#include <td/Color.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

// In points.
constexpr double cArm = 33;         // from the middle to an end's middle
constexpr double cEndRadius = 10.5; // with a letter
constexpr double cBackRadius = 7.5;
constexpr double cEndReach = 2; // beyond an end

// Of x, y and z, on light and on dark.
constexpr std::array<td::Color, 3> cAxisColors{td::Color("#e0484c"), td::Color("#479c3c"), td::Color("#3a7be6")};

td::Color mixedColor(td::Color a, td::Color b, double part)
{
    const auto mix = [part](int from, int to)
    { return static_cast<unsigned int>(std::lround(std::lerp(from, to, part))); };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()), mix(a.alpha(), b.alpha())};
}

Path axisLetter(int axis, double x, double y)
{
    constexpr double cX = 3.1, cY = 4;
    Path path;
    if (axis == 0)
        path.moveTo({x - cX, y - cY}).lineTo({x + cX, y + cY}).moveTo({x + cX, y - cY}).lineTo({x - cX, y + cY});
    else if (axis == 1)
        path.moveTo({x - cX, y - cY}).lineTo({x, y}).lineTo({x + cX, y - cY}).moveTo({x, y}).lineTo({x, y + cY});
    else
        path.moveTo({x - cX, y - cY}).lineTo({x + cX, y - cY}).lineTo({x - cX, y + cY}).lineTo({x + cX, y + cY});
    return path;
}

} // namespace

OrbitCamera::Side AxesGizmo::sideOf(int end) const
{
    using Side = OrbitCamera::Side;
    constexpr std::array<Side, cEnds> cUpY{Side::Right, Side::Top, Side::Front, Side::Left, Side::Bottom, Side::Back};
    constexpr std::array<Side, cEnds> cUpZ{Side::Right, Side::Back, Side::Top, Side::Left, Side::Front, Side::Bottom};
    return (_up == OrbitCamera::Up::Y ? cUpY : cUpZ)[static_cast<std::size_t>(end)];
}

// From the middle, on the screen (y downwards) and towards the viewer, of length 1.
glm::dvec3 AxesGizmo::placeOf(int end, const glm::dmat3& rotation)
{
    const glm::dvec3 axis = rotation[end % 3] * (end < 3 ? 1.0 : -1.0);
    return {axis.x, -axis.y, axis.z};
}

bool AxesGizmo::contains(const td::Point<double>& point) const
{
    return std::hypot(point.x - _center.x, point.y - _center.y) <= cRadius;
}

std::optional<OrbitCamera::Side> AxesGizmo::getSideAt(const td::Point<double>& point, const glm::dmat3& rotation) const
{
    std::optional<OrbitCamera::Side> side;
    double nearest = -2;
    for (int end = 0; end < cEnds; ++end)
    {
        const glm::dvec3 place = placeOf(end, rotation);
        const double reach = (end < 3 ? cEndRadius : cBackRadius) + cEndReach;
        const double distance = std::hypot(point.x - _center.x - cArm * place.x, point.y - _center.y - cArm * place.y);
        if (distance > reach || place.z < nearest)
            continue;
        nearest = place.z;
        side = sideOf(end);
    }
    return side;
}

bool AxesGizmo::setPointed(bool isPointed, std::optional<OrbitCamera::Side> side)
{
    const bool isNew = isPointed != _isPointed || side != _pointedSide;
    _isPointed = isPointed;
    _pointedSide = side;
    if (isNew)
        _built.reset();
    return isNew;
}

void AxesGizmo::addEnd(int end, const glm::dvec3& place)
{
    const int axis = end % 3;
    const bool isPositive = end < 3, isPointed = _pointedSide == sideOf(end);
    const double x = cRadius + cArm * place.x, y = cRadius + cArm * place.y;
    // What points away is a little fainter.
    constexpr double cFaint = 0.25;
    const td::Color grey(128, 128, 128, 255), white(255, 255, 255, 255);
    const td::Color color = mixedColor(cAxisColors[static_cast<std::size_t>(axis)], grey, cFaint * (1 - place.z) / 2);
    if (isPositive)
    {
        Path arm;
        arm.moveTo({cRadius, cRadius}).lineTo({x, y});
        _drawing.stroke(arm, {.width = 2.5, .cap = Cap::Round}, color);
    }
    Path disc;
    disc.addCircle({x, y}, isPositive ? cEndRadius : cBackRadius);
    _drawing.fill(disc, isPositive || isPointed ? color : mixedColor(color, grey, 0.6));
    if (!isPositive || isPointed)
        _drawing.stroke(disc, {.width = isPointed ? 2.0 : 1.5}, isPointed ? white : color);
    if (isPositive)
        _drawing.stroke(axisLetter(axis, x, y), {.width = 1.7, .cap = Cap::Round, .join = Join::Round}, white);
}

void AxesGizmo::build(const glm::dmat3& rotation)
{
    if (_built == rotation)
        return;
    _built = rotation;
    _drawing.clear();
    if (_isPointed)
        _drawing.fill(Path().addCircle({cRadius, cRadius}, cRadius), td::Color(128, 128, 128, 60));
    std::array<std::pair<double, int>, cEnds> ends;
    for (int end = 0; end < cEnds; ++end)
        ends[static_cast<std::size_t>(end)] = {placeOf(end, rotation).z, end};
    std::sort(ends.begin(), ends.end());
    for (const auto& [z, end] : ends)
        addEnd(end, placeOf(end, rotation));
}

bool AxesGizmo::draw(const Eye& eye)
{
    build(eye.getRotation());
    // The drawing's layer is as large as the viewport: this one is no larger than it has to be.
    const gl::StateGuard guard;
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    const double scale = eye.getScale();
    if (2 * cRadius * scale > std::min(viewport[2], viewport[3]))
        return true; // a scale that is none of this viewport
    const auto side = static_cast<int>(std::ceil(2 * cRadius * scale));
    const auto left = static_cast<int>(std::lround((_center.x - cRadius) * scale));
    const auto top = static_cast<int>(std::lround((_center.y - cRadius) * scale));
    glViewport(viewport[0] + left, viewport[1] + viewport[3] - top - side, side, side);
    return _drawing.draw(Affine(), scale);
}

} // namespace gui::draw
