#include "Countries.h"

#include "Coloring.h"

#include <gui/Res.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

namespace worldmap
{

namespace
{

using examples::TopoJSON;

constexpr double cWest = cMiddleLongitude - 180;
constexpr double cEast = cMiddleLongitude + 180;

Box boxOf(const TopoJSON::Ring& points)
{
    Box box{points.front(), points.front()};
    for (const td::Point<double>& point : points)
    {
        box.min = {std::min(box.min.x, point.x), std::min(box.min.y, point.y)};
        box.max = {std::max(box.max.x, point.x), std::max(box.max.y, point.y)};
    }
    return box;
}

double areaOf(const TopoJSON::Ring& points)
{
    double sum = 0;
    const td::Point<double>* pLast = &points.back();
    for (const td::Point<double>& point : points)
    {
        sum += pLast->x * point.y - point.x * pLast->y;
        pLast = &point;
    }
    return std::abs(sum) / 2;
}

// Whether a line from the point to the far right crosses the ring an odd number of times.
bool isIn(const TopoJSON::Ring& points, const td::Point<double>& point)
{
    bool isInside = false;
    const td::Point<double>* pLast = &points.back();
    for (const td::Point<double>& next : points)
    {
        if ((next.y > point.y) != (pLast->y > point.y) &&
            point.x < next.x + (point.y - next.y) / (pLast->y - next.y) * (pLast->x - next.x))
            isInside = !isInside;
        pLast = &next;
    }
    return isInside;
}

// A line around the earth goes on beyond the map's edges, to the points that are on the other side.
void continueBeyondEdges(examples::FlatRing& line)
{
    const double pole = line.points.back().y;
    line.points.resize(line.nLinePoints);
    td::Point<double> before = line.points.back();
    td::Point<double> behind = line.points.front();
    const double around = std::copysign(360, before.x - behind.x);
    before.x -= around;
    behind.x += around;
    line.points.insert(line.points.begin(), before);
    line.points.insert(line.points.end(), {behind, {behind.x, pole}, {before.x, pole}});
    line.nLinePoints += 2;
}

} // namespace

bool Countries::load()
{
    TopoJSON world;
    std::span<const td::BYTE> file;
    if (!gui::Res::getCompiled(":worldmap/countries-50m.json", file) ||
        !world.load({reinterpret_cast<const char*>(file.data()), file.size()}, "countries"))
        return false;

    const std::vector<std::size_t> colors = color(world.getAreas().size(), world.getBorders());
    for (const TopoJSON::Area& area : world.getAreas())
    {
        for (const TopoJSON::Polygon& polygon : area.polygons)
            for (const TopoJSON::Ring& ring : polygon)
                addRing(ring, _countries.size(), &ring != &polygon.front());
        _countries.push_back({area.name, colors[_countries.size()]});
    }
    std::stable_sort(_rings.begin(), _rings.end(), [](const Ring& a, const Ring& b) { return a.area > b.area; });

    for (const TopoJSON::Border& border : world.getBorders())
    {
        Line& line = _borders.emplace_back();
        for (const td::Point<double>& point : border.line)
            line.emplace_back(cMiddleLongitude + std::remainder(point.x - cMiddleLongitude, 360), point.y);
    }
    return true;
}

void Countries::addRing(const TopoJSON::Ring& points, std::size_t country, bool isHole)
{
    Ring ring{{points, cMiddleLongitude}, country, isHole, {}, 0};
    if (ring.line.points.empty())
        return; // it only followed the pole
    if (!ring.line.isLoop)
        continueBeyondEdges(ring.line);
    for (td::Point<double>& point : ring.line.points)
        point.x += cMiddleLongitude;
    ring.box = boxOf(ring.line.points);
    ring.area = areaOf(ring.line.points);
    // A hole in the land around the pole is that land's coast.
    ring.isHole = isHole && ring.line.isLoop;
    if (ring.isHole)
        ring.area *= 1 + 1e-9; // before the country that fills it
    _rings.push_back(ring);

    const double shift = ring.box.min.x < cWest ? 360 : ring.box.max.x > cEast ? -360 : 0;
    if (shift == 0 || !ring.line.isLoop)
        return;
    for (td::Point<double>& point : ring.line.points)
        point.x += shift;
    ring.box.min.x += shift;
    ring.box.max.x += shift;
    _rings.push_back(std::move(ring));
}

std::size_t Countries::find(const td::Point<double>& degrees) const
{
    for (auto ring = _rings.rbegin(); ring != _rings.rend(); ++ring)
        if (ring->box.contains(degrees) && isIn(ring->line.points, degrees))
            return ring->isHole ? cNone : ring->country;
    return cNone;
}

} // namespace worldmap
