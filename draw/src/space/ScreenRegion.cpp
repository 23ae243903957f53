#include "ScreenRegion.h"

#include "../path/FinitePoint.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace gui::draw
{

namespace
{

// Above 0 with p on the left of the line from a to b, for y upwards.
double sideOf(const glm::dvec2& a, const glm::dvec2& b, const glm::dvec2& p)
{
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

bool isApart(const glm::dvec2& least, const glm::dvec2& greatest, const glm::dvec2& a, const glm::dvec2& b)
{
    return std::max(a.x, b.x) < least.x || std::min(a.x, b.x) > greatest.x || std::max(a.y, b.y) < least.y ||
           std::min(a.y, b.y) > greatest.y;
}

// Touching counts.
bool cross(const glm::dvec2& a, const glm::dvec2& b, const glm::dvec2& c, const glm::dvec2& d)
{
    if (isApart(glm::min(a, b), glm::max(a, b), c, d))
        return false;
    const auto isBetween = [](double s, double t) { return !(s > 0 && t > 0) && !(s < 0 && t < 0); };
    return isBetween(sideOf(a, b, c), sideOf(a, b, d)) && isBetween(sideOf(c, d, a), sideOf(c, d, b));
}

int windingOf(std::span<const glm::dvec2> ring, const glm::dvec2& p)
{
    int winding = 0;
    for (std::size_t i = 0; i < ring.size(); ++i)
    {
        const glm::dvec2 &a = ring[i], &b = ring[i + 1 == ring.size() ? 0 : i + 1];
        if (a.y <= p.y && b.y > p.y && sideOf(a, b, p) > 0)
            ++winding;
        else if (a.y > p.y && b.y <= p.y && sideOf(a, b, p) < 0)
            --winding;
    }
    return winding;
}

} // namespace

ScreenRegion::ScreenRegion(const Eye& eye, std::span<const td::Point<double>> lasso, FillRule rule)
    : _eye(eye)
    , _nearest(eye.getNearest())
    , _rule(rule)
    , _isValid(eye.isValid() && !lasso.empty())
{
    for (const td::Point<double>& point : lasso)
    {
        _corners.emplace_back(point.x, point.y);
        _isValid = _isValid && isFinitePoint(point);
    }
    _all.resize(_corners.size());
    std::iota(_all.begin(), _all.end(), 0U);
}

ScreenRegion::Seen ScreenRegion::see(const glm::dvec3& point) const
{
    const glm::dvec3 seen = _eye.getRotation() * (point - _eye.getPosition());
    const glm::dvec4 clip = _eye.getProjection() * glm::dvec4(seen, 1);
    return {{(clip.w + clip.x) / 2 * _eye.getSize().width, (clip.w - clip.y) / 2 * _eye.getSize().height},
            clip.w,
            -seen.z - _nearest};
}

bool ScreenRegion::contains(const glm::dvec2& point) const
{
    const int winding = windingOf(_corners, point);
    return _rule == FillRule::EvenOdd ? winding % 2 != 0 : winding != 0;
}

ScreenRegion::Place ScreenRegion::find(const Box3& box, Edges edges, std::vector<std::uint32_t>& touching) const
{
    const std::size_t nBefore = touching.size();
    glm::dvec2 least(std::numeric_limits<double>::infinity()), greatest(-least);
    std::size_t nBehind = 0;
    for (unsigned int i = 0; i < 8; ++i)
    {
        const Seen seen = see(box.getCorner(i));
        if (!(seen.distance > 0 && seen.w > 0))
        {
            ++nBehind;
            continue;
        }
        least = glm::min(least, seen.place / seen.w);
        greatest = glm::max(greatest, seen.place / seen.w);
    }
    if (nBehind == 8)
    {
        // All, unless it is rounding that says so.
        const double distance = _eye.getDistance(box.getCenter()) - _nearest;
        if (distance < -1.001 * box.getRadius())
            return Place::Outside;
    }
    // Far from rounding.
    const glm::dvec2 slack = (glm::max(glm::abs(least), glm::abs(greatest)) + 1.0) * 1e-9;
    least -= slack;
    greatest += slack;
    for (const std::uint32_t edge : edges)
    {
        const glm::dvec2 &a = _corners[edge], &b = _corners[edge + 1 == _corners.size() ? 0 : edge + 1];
        if (nBehind == 0)
        {
            if (isApart(least, greatest, a, b))
                continue;
            const double sides[] = {sideOf(a, b, least), sideOf(a, b, greatest), sideOf(a, b, {least.x, greatest.y}),
                                    sideOf(a, b, {greatest.x, least.y})};
            const auto isLeft = [](double side) { return side > 0; };
            const auto isRight = [](double side) { return side < 0; };
            if (std::all_of(sides, sides + 4, isLeft) || std::all_of(sides, sides + 4, isRight))
                continue;
        }
        touching.push_back(edge);
    }
    if (nBehind != 0 || touching.size() != nBefore)
        return Place::Either;
    return contains((least + greatest) * 0.5) ? Place::Inside : Place::Outside;
}

bool ScreenRegion::has(std::span<const glm::dvec3> corners, bool isWhole, Edges edges) const
{
    std::array<Seen, 3> seen{};
    std::transform(corners.begin(), corners.end(), seen.begin(), [this](const glm::dvec3& p) { return see(p); });
    // Cut where the eye begins to see.
    std::array<glm::dvec2, 4> polygon;
    std::size_t n = 0;
    const auto add = [&](const glm::dvec2& place, double w)
    {
        if (w > 0 && n < polygon.size())
            polygon[n++] = place / w;
    };
    for (std::size_t i = 0; i < corners.size(); ++i)
    {
        const Seen &a = seen[i], &b = seen[i + 1 == corners.size() ? 0 : i + 1];
        const bool isSeen = a.distance >= 0, isNextSeen = b.distance >= 0;
        if (isWhole && !isSeen)
            return false;
        if (isSeen)
            add(a.place, a.w);
        if (isSeen != isNextSeen)
        {
            const double t = a.distance / (a.distance - b.distance);
            add(a.place + t * (b.place - a.place), a.w + t * (b.w - a.w));
        }
    }
    if (n == 0)
        return false;
    bool isCrossed = false;
    for (std::size_t i = 0; i < n && !isCrossed; ++i)
        isCrossed = std::any_of(edges.begin(), edges.end(),
                                [&](std::uint32_t edge)
                                {
                                    return cross(polygon[i], polygon[i + 1 == n ? 0 : i + 1], _corners[edge],
                                                 _corners[edge + 1 == _corners.size() ? 0 : edge + 1]);
                                });
    if (isCrossed)
        return !isWhole;
    return contains(polygon[0]) || (!isWhole && windingOf({polygon.data(), n}, _corners[0]) != 0);
}

} // namespace gui::draw
