#include "NaturalEarth.h"

#include "FlatRing.h"

#include <numbers>
#include <utility>

namespace examples
{

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
    const FlatRing flat(ring, _middle);
    Outline outline{{}, flat.nLinePoints, flat.isLoop};
    for (const td::Point<double>& point : flat.points)
        outline.points.push_back(project(point.x, point.y));
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
        std::vector<td::Point<float>> meridian;
        for (int latitude = -90; latitude <= 90; latitude += 2)
            meridian.push_back(project(longitude, latitude));
        net.push_back(std::move(meridian));
    }
    for (int latitude = degrees - 90; latitude < 90; latitude += degrees)
        net.push_back({project(-180, latitude), project(180, latitude)});
    return net;
}

} // namespace examples
