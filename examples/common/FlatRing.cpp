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

void layOnMap(const TopoJSON::Line& line, bool isRing, double middle, std::vector<TopoJSON::Line>& lines)
{
    TopoJSON::Line laid;
    td::Point<double> last{middle, 0};
    for (const td::Point<double>& point : line)
        if (std::abs(point.y) < cPole)
            laid.push_back(last = {last.x + std::remainder(point.x - last.x, 360), point.y});
    if (laid.empty())
        return;
    if (const double around = last.x - laid.front().x; isRing && std::abs(around) > 180)
    {
        const double end = laid.front().x + std::copysign(360, around), pole = std::copysign(90, last.y);
        laid.insert(laid.end(), {{end, laid.front().y}, {end, pole}, {laid.front().x, pole}});
    }
    const auto [west, east] = std::minmax_element(laid.begin(), laid.end(), [](auto& a, auto& b) { return a.x < b.x; });
    const double begin = west->x - middle, end = east->x - middle, home = -360 * std::round((begin + end) / 720);
    for (const double shift : {home, home + 360, home - 360})
        if (begin + shift < 180 && end + shift > -180)
            for (TopoJSON::Line& copy = lines.emplace_back(laid); td::Point<double> & point : copy)
                point.x += shift;
}

std::vector<TopoJSON::Line> layOnMap(const TopoJSON::Area& area, double middle)
{
    std::vector<TopoJSON::Line> rings;
    for (const TopoJSON::Polygon& polygon : area.polygons)
        for (const TopoJSON::Ring& ring : polygon)
            layOnMap(ring, true, middle, rings);
    return rings;
}

} // namespace examples
