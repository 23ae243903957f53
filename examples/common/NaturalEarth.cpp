#include "NaturalEarth.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace examples
{

namespace
{

// Points this close to a pole are the ends and steps of a line along it, no coast.
constexpr double cPole = 89.99;

} // namespace

NaturalEarth::NaturalEarth(double middle)
    : _middle(middle)
{
}

td::Point<float> NaturalEarth::project(double longitude, double latitude)
{
    const double lambda = longitude * std::numbers::pi / 180;
    const double phi = latitude * std::numbers::pi / 180;
    const double phi2 = phi * phi;
    const double phi4 = phi2 * phi2;
    const double x =
        lambda * (0.8707 - 0.131979 * phi2 + phi4 * (-0.013791 + phi4 * (0.003971 * phi2 - 0.001529 * phi4)));
    const double y = phi * (1.007226 + phi2 * (0.015085 + phi4 * (-0.044475 + 0.028874 * phi2 - 0.005916 * phi4)));
    return {static_cast<float>(x), static_cast<float>(y)};
}

NaturalEarth::Outline NaturalEarth::project(const TopoJSON::Ring& ring) const
{
    TopoJSON::Ring points;
    for (const td::Point<double>& point : ring)
        if (std::abs(point.y) < cPole)
            points.emplace_back(std::remainder(point.x - _middle, 360), point.y);
    Outline outline;
    if (points.empty())
        return outline;

    // Begin where the ring comes in at the map's edge, and go on from there by steps of less than half the globe.
    const auto isAcross = [](const td::Point<double>& a, const td::Point<double>& b)
    { return std::abs(a.x - b.x) > 180; };
    const auto beforeEdge = std::adjacent_find(points.begin(), points.end(), isAcross);
    if (beforeEdge != points.end())
        std::rotate(points.begin(), beforeEdge + 1, points.end());
    for (std::size_t i = 1; i < points.size(); ++i)
        points[i].x = points[i - 1].x + std::remainder(points[i].x - points[i - 1].x, 360);

    outline.isLoop = !isAcross(points.front(), points.back());
    double shift = 0;
    if (outline.isLoop)
    {
        const double sum = std::accumulate(points.begin(), points.end(), 0.0,
                                           [](double x, const td::Point<double>& point) { return x + point.x; });
        shift = -360 * std::round(sum / static_cast<double>(points.size()) / 360);
    }
    for (const td::Point<double>& point : points)
        outline.points.push_back(project(point.x + shift, point.y));
    outline.nLinePoints = outline.points.size();
    if (!outline.isLoop)
    {
        const double pole = std::copysign(90, points.front().y);
        outline.points.push_back(project(points.back().x, pole));
        outline.points.push_back(project(points.front().x, pole));
    }
    return outline;
}

std::vector<td::Point<float>> NaturalEarth::getEdge()
{
    std::vector<td::Point<float>> edge;
    for (int latitude = -90; latitude <= 90; ++latitude)
        edge.push_back(project(180, latitude));
    for (int latitude = 90; latitude >= -90; --latitude)
        edge.push_back(project(-180, latitude));
    return edge;
}

std::vector<std::vector<td::Point<float>>> NaturalEarth::getNet(int degrees)
{
    std::vector<std::vector<td::Point<float>>> net;
    for (int longitude = -180; longitude <= 180; longitude += degrees)
    {
        std::vector<td::Point<float>>& meridian = net.emplace_back();
        for (int latitude = -90; latitude <= 90; latitude += 2)
            meridian.push_back(project(longitude, latitude));
    }
    for (int latitude = degrees - 90; latitude < 90; latitude += degrees)
        net.push_back({project(-180, latitude), project(180, latitude)});
    return net;
}

} // namespace examples
