#include "FlatRing.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace examples
{

namespace
{

// Points this close to a pole are the ends and steps of a line along it, no coast.
constexpr double cPole = 89.99;

} // namespace

FlatRing::FlatRing(const TopoJSON::Ring& ring, double middle)
{
    for (const td::Point<double>& point : ring)
        if (std::abs(point.y) < cPole)
            points.emplace_back(std::remainder(point.x - middle, 360), point.y);
    if (points.empty())
        return;

    // Begin where the ring comes in at the map's edge, and go on from there by steps of less than half the globe.
    const auto isAcross = [](const td::Point<double>& a, const td::Point<double>& b)
    { return std::abs(a.x - b.x) > 180; };
    const auto beforeEdge = std::adjacent_find(points.begin(), points.end(), isAcross);
    if (beforeEdge != points.end())
        std::rotate(points.begin(), beforeEdge + 1, points.end());
    for (std::size_t i = 1; i < points.size(); ++i)
        points[i].x = points[i - 1].x + std::remainder(points[i].x - points[i - 1].x, 360);

    nLinePoints = points.size();
    isLoop = !isAcross(points.front(), points.back());
    if (isLoop)
    {
        const double sum = std::accumulate(points.begin(), points.end(), 0.0,
                                           [](double x, const td::Point<double>& point) { return x + point.x; });
        const double shift = -360 * std::round(sum / static_cast<double>(points.size()) / 360);
        for (td::Point<double>& point : points)
            point.x += shift;
        return;
    }
    const double pole = std::copysign(90, points.front().y);
    points.emplace_back(points.back().x, pole);
    points.emplace_back(points.front().x, pole);
}

} // namespace examples
