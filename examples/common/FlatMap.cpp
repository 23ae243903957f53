#include "FlatMap.h"

#include "FlatRing.h"

namespace examples
{

FlatMap::FlatMap(const TopoJSON& map, double middle)
{
    for (const TopoJSON::Area& area : map.getAreas())
        areas.push_back(layOnMap(area, middle));
    for (const TopoJSON::Border& coast : map.getCoasts())
        layOnMap(coast.line, false, middle, coasts);
    for (const TopoJSON::Border& border : map.getBorders())
        layOnMap(border.line, false, middle, borders);
}

gui::draw::Path pathOf(const TopoJSON::Line& degrees, const MapProjection& project)
{
    gui::draw::Path path;
    path.reserve(degrees.size());
    for (const td::Point<double>& point : degrees)
        path.lineTo(project(point));
    return path;
}

gui::draw::Path areaOf(const std::vector<TopoJSON::Line>& rings, const MapProjection& project)
{
    gui::draw::Path area;
    for (const TopoJSON::Line& ring : rings)
        area.addPath(pathOf(ring, project).close());
    return area;
}

} // namespace examples
