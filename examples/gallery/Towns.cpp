#include "Towns.h"

#include "TownNames.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <unordered_map>

namespace gallery
{

namespace
{

using examples::TopoJSON;
using Point = td::Point<double>;

constexpr double cNearest = 0.12;    // degrees from a town to the next
constexpr double cAround = 1.6;      // degrees, in which towns gather around larger ones
constexpr int cMostTries = 60;       // to find a place for one
constexpr double cSmallestPart = .3; // square degrees, of a country's rings that have towns

struct Land
{
    std::vector<const TopoJSON::Polygon*> polygons; // the largest one first
    std::vector<double> areas;                      // theirs, and those of all before
    Point middle;
    double weight = 0;
};

struct Box
{
    double west = 180, south = 90, east = -180, north = -90;
};

Box boxOf(const TopoJSON::Ring& ring)
{
    Box box;
    for (const Point& point : ring)
        box = {std::min(box.west, point.x), std::min(box.south, point.y), std::max(box.east, point.x),
               std::max(box.north, point.y)};
    return box;
}

double widthAt(double latitude) { return std::cos(latitude * std::numbers::pi / 180); }

// In square degrees of the equator.
double areaOf(const TopoJSON::Ring& ring)
{
    double area = 0;
    for (std::size_t i = 0; i < ring.size(); ++i)
    {
        const Point &a = ring[i], &b = ring[(i + 1) % ring.size()];
        area += (a.x * b.y - b.x * a.y) / 2;
    }
    const Box box = boxOf(ring);
    return std::abs(area) * widthAt((box.south + box.north) / 2);
}

// By the even-odd rule, holes included.
bool isIn(const TopoJSON::Polygon& polygon, Point point)
{
    bool isInside = false;
    for (const TopoJSON::Ring& ring : polygon)
        for (std::size_t i = 0, before = ring.size() - 1; i < ring.size(); before = i++)
        {
            const Point &a = ring[i], &b = ring[before];
            if ((a.y > point.y) != (b.y > point.y) && point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x)
                isInside = !isInside;
        }
    return isInside;
}

// Few people live where it is cold.
double warmth(double latitude) { return latitude < -60 ? 0 : std::clamp((74 - std::abs(latitude)) / 20, 0.05, 1.0); }

Land landOf(const TopoJSON::Area& country)
{
    Land land;
    std::vector<std::pair<double, const TopoJSON::Polygon*>> parts;
    for (const TopoJSON::Polygon& polygon : country.polygons)
        parts.emplace_back(areaOf(polygon.front()), &polygon);
    std::ranges::stable_sort(parts, std::greater(), &std::pair<double, const TopoJSON::Polygon*>::first);
    double sum = 0;
    for (const auto& [area, pPolygon] : parts)
    {
        if (area < cSmallestPart && sum > 0)
            break;
        sum += area;
        land.polygons.push_back(pPolygon);
        land.areas.push_back(sum);
    }
    if (land.polygons.empty())
        return land;
    const Box box = boxOf(land.polygons.front()->front());
    land.middle = {(box.west + box.east) / 2, (box.south + box.north) / 2};
    land.weight = std::pow(sum, 0.62) * warmth(land.middle.y);
    return land;
}

/// Places towns so that no two are too near to each other.
class Settlers
{
public:
    /// @return false when there was no room
    bool settle(const Land& land, const std::vector<Town>& towns, std::size_t firstOfLand, Point& place)
    {
        for (int i = 0; i < cMostTries; ++i)
        {
            const auto part = std::ranges::lower_bound(land.areas, fraction() * land.areas.back()) - land.areas.begin();
            const TopoJSON::Polygon& polygon = *land.polygons[static_cast<std::size_t>(part)];
            const Box box = boxOf(polygon.front());
            place = {std::lerp(box.west, box.east, fraction()), std::lerp(box.south, box.north, fraction())};
            // Every other one in the neighbourhood of one of the largest.
            const std::size_t nOfLand = towns.size() - firstOfLand, nLargest = nOfLand / 12;
            if (nLargest > 0 && fraction() < 0.5)
            {
                const auto near = static_cast<std::size_t>(fraction() * static_cast<double>(nLargest));
                const Point center = towns[firstOfLand + near].place;
                const double angle = 2 * std::numbers::pi * fraction(), distance = cAround * fraction();
                place = {center.x + distance * std::cos(angle) / std::max(widthAt(center.y), 0.2),
                         center.y + distance * std::sin(angle)};
            }
            if (fraction() < warmth(place.y) && isIn(polygon, place) && take(place))
                return true;
        }
        return false;
    }

private:
    double fraction() { return static_cast<double>(_random()) / 0x1p32; }

    static long squareOf(double degrees) { return std::lround(std::floor(degrees / cNearest)); }
    static long keyOf(long x, long y) { return x * 10000 + y; }

    bool take(Point place)
    {
        const long x = squareOf(place.x), y = squareOf(place.y);
        for (long row = y - 1; row <= y + 1; ++row)
            for (long column = x - 1; column <= x + 1; ++column)
                if (const auto found = _taken.find(keyOf(column, row));
                    found != _taken.end() &&
                    std::hypot(found->second.x - place.x, found->second.y - place.y) < cNearest)
                    return false;
        return _taken.try_emplace(keyOf(x, y), place).second;
    }

    std::mt19937 _random{5};
    std::unordered_map<long, Point> _taken; // by squares
};

} // namespace

std::vector<Town> makeTowns(const std::vector<TopoJSON::Area>& countries, std::size_t n)
{
    std::vector<Land> lands;
    double sum = 0;
    for (const TopoJSON::Area& country : countries)
        sum += lands.emplace_back(landOf(country)).weight;
    TownNames names;
    Settlers settlers;
    std::mt19937 random(11);
    std::vector<Town> towns;
    // What small countries have no room for, the next ones get.
    double wanted = 0;
    for (const Land& land : lands)
    {
        wanted += land.weight / sum * static_cast<double>(n);
        const std::size_t first = towns.size();
        // The largest town, and the others by Zipf's law, more or less.
        const double largest = 2e5 * std::pow(land.weight, 0.9);
        while (static_cast<double>(towns.size()) < std::round(wanted))
        {
            Point place;
            if (!settlers.settle(land, towns, first, place))
                break;
            const double rank = static_cast<double>(towns.size() - first + 1);
            const double luck = 0.6 + 0.8 * static_cast<double>(random()) / 0x1p32;
            towns.push_back({names.make(land.middle.x, land.middle.y), place, largest / rank * luck});
        }
    }
    return towns;
}

} // namespace gallery
