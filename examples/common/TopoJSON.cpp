#include "TopoJSON.h"

#include <gui/Res.h>
#include <vo/Log.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <set>
#include <span>
#include <stdexcept>
#include <utility>

namespace examples
{

namespace
{

using nlohmann::json;

constexpr std::size_t cMaxPoints = 10'000'000;

// Quantised coordinates end up this much beyond the edges of the globe at most, by rounding.
constexpr double cDegreeTolerance = 1e-6;

// What is beyond these follows the edge of a map: by as much as files have it beside that.
constexpr double cEdgeLongitude = 179.99, cEdgeLatitude = 89.99;

struct Broken : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

[[noreturn]] void fail(const std::string& cause) { throw Broken(cause); }

std::string numbered(const char* thing, std::size_t number) { return thing + (' ' + std::to_string(number)); }

const json& member(const json& parent, std::string_view name, json::value_t type, std::string_view where)
{
    const auto it = parent.find(name);
    if (it == parent.end() || it->type() != type)
        fail(std::string(where) + " has no " + (type == json::value_t::array ? "list \"" : "\"") + std::string(name) +
             '"');
    return *it;
}

td::Point<double> pair(const json& value, const std::string& where)
{
    if (!value.is_array() || value.size() < 2 || !value[0].is_number() || !value[1].is_number())
        fail(where + " is no pair of numbers");
    return {value[0].get<double>(), value[1].get<double>()};
}

/// The arcs of a file, in degrees.
class Arcs
{
public:
    explicit Arcs(const json& topology)
    {
        const auto transform = topology.find("transform");
        _isQuantised = transform != topology.end();
        if (_isQuantised)
        {
            _scale = pair(member(*transform, "scale", json::value_t::array, "transform"), "scale");
            _translate = pair(member(*transform, "translate", json::value_t::array, "transform"), "translate");
        }
        const json& arcs = member(topology, "arcs", json::value_t::array, "file");
        _arcs.reserve(arcs.size());
        for (const json& arc : arcs)
            _arcs.push_back(decode(arc, numbered("arc", _arcs.size())));
        _areas.resize(_arcs.size());
    }

    /// Those of another one with fewer points, that no areas have named.
    Arcs(const Arcs& arcs, double grain)
    {
        _arcs.reserve(arcs._arcs.size());
        for (const TopoJSON::Ring& arc : arcs._arcs)
            _arcs.push_back(thinned(arc, grain));
        _areas.resize(_arcs.size());
    }

    /// Joins the arcs that a ring of an area names. Negative numbers count from -1 and mean the arc backwards.
    TopoJSON::Ring join(const json& numbers, std::size_t area, const std::string& where)
    {
        if (!numbers.is_array() || numbers.empty())
            fail(where + " has a ring that is no list of arcs");
        // Counted before memory is taken: a long arc may be named any number of times.
        for (const json& number : numbers)
        {
            const std::size_t arc = find(number, where).first;
            _nPoints += _arcs[arc].size();
            // Areas come one after the other.
            if (_areas[arc].empty() || _areas[arc].back() != area)
                _areas[arc].push_back(area);
        }
        if (_nPoints > cMaxPoints)
            fail("more than " + std::to_string(cMaxPoints) + " points");
        TopoJSON::Ring ring;
        for (const json& number : numbers)
        {
            const auto [index, isBackwards] = find(number, where);
            const TopoJSON::Ring& arc = _arcs[index];
            if (!ring.empty() && ring.back() != (isBackwards ? arc.back() : arc.front()))
                fail(where + " has arcs that don't meet");
            if (!ring.empty())
                ring.pop_back();
            if (isBackwards)
                ring.insert(ring.end(), arc.rbegin(), arc.rend());
            else
                ring.insert(ring.end(), arc.begin(), arc.end());
        }
        if (ring.size() < 4 || ring.front() != ring.back())
            fail(where + " has a ring that is not closed");
        ring.pop_back();
        return ring;
    }

    /// Of the areas whose rings were joined.
    std::vector<TopoJSON::Border> findBorders() const
    {
        std::vector<TopoJSON::Border> borders;
        for (std::size_t arc = 0; arc < _arcs.size(); ++arc)
            if (_areas[arc].size() > 1)
                borders.push_back({_areas[arc], _arcs[arc]});
        return borders;
    }

    std::vector<TopoJSON::Border> findCoasts() const
    {
        std::vector<TopoJSON::Border> coasts;
        for (std::size_t arc = 0; arc < _arcs.size(); ++arc)
            if (_areas[arc].size() == 1)
                for (TopoJSON::Line& line : withoutEdges(_arcs[arc]))
                    coasts.push_back({_areas[arc], std::move(line)});
        return coasts;
    }

private:
    static TopoJSON::Line thinned(const TopoJSON::Line& arc, double grain)
    {
        TopoJSON::Line kept{arc.front()};
        for (std::size_t i = 1; i + 1 < arc.size(); ++i)
            if (std::hypot(arc[i].x - kept.back().x, arc[i].y - kept.back().y) >= grain)
                kept.push_back(arc[i]);
        kept.push_back(arc.back());
        return kept.size() < 4 ? arc : kept;
    }

    static std::vector<TopoJSON::Line> withoutEdges(const TopoJSON::Line& arc)
    {
        std::vector<TopoJSON::Line> lines;
        for (std::size_t i = 1; i < arc.size(); ++i)
        {
            const td::Point<double>&from = arc[i - 1], &to = arc[i];
            const double east = std::min(std::abs(from.x), std::abs(to.x));
            const double north = std::min(std::abs(from.y), std::abs(to.y));
            if (east > cEdgeLongitude || north > cEdgeLatitude)
                continue;
            if (lines.empty() || lines.back().back() != from)
                lines.push_back({from});
            lines.back().push_back(to);
        }
        return lines;
    }

    TopoJSON::Ring decode(const json& arc, const std::string& where) const
    {
        if (!arc.is_array() || arc.size() < 2)
            fail(where + " has fewer than two positions");
        TopoJSON::Ring points;
        points.reserve(arc.size());
        td::Point<double> sum{0, 0};
        for (const json& position : arc)
        {
            td::Point<double> point = pair(position, where);
            if (_isQuantised)
            {
                sum.x += point.x;
                sum.y += point.y;
                point = {sum.x * _scale.x + _translate.x, sum.y * _scale.y + _translate.y};
            }
            // Written so that a NaN is refused too.
            if (!(std::abs(point.x) <= 180 + cDegreeTolerance && std::abs(point.y) <= 90 + cDegreeTolerance))
                fail(where + " leaves the globe");
            points.push_back(point);
        }
        return points;
    }

    // The arc's index, and whether it is meant backwards.
    std::pair<std::size_t, bool> find(const json& number, const std::string& where) const
    {
        if (!number.is_number_integer())
            fail(where + " names an arc that is no number");
        const bool isBackwards = !number.is_number_unsigned() && number.get<std::int64_t>() < 0;
        const std::uint64_t index =
            isBackwards ? static_cast<std::uint64_t>(~number.get<std::int64_t>()) : number.get<std::uint64_t>();
        if (index >= _arcs.size())
            fail(where + " names arc " + number.dump() + " of " + std::to_string(_arcs.size()));
        return {static_cast<std::size_t>(index), isBackwards};
    }

    std::vector<TopoJSON::Ring> _arcs;
    std::vector<std::vector<std::size_t>> _areas; // that name each arc
    td::Point<double> _scale{1, 1};
    td::Point<double> _translate{0, 0};
    std::size_t _nPoints = 0; // in rings so far
    bool _isQuantised = false;
};

TopoJSON::Polygon readPolygon(const json& rings, Arcs& arcs, std::size_t area, const std::string& where)
{
    if (!rings.is_array())
        fail(where + " has a polygon that is no list of rings");
    TopoJSON::Polygon polygon;
    for (const json& ring : rings)
        polygon.push_back(arcs.join(ring, area, where));
    return polygon;
}

TopoJSON::Area readArea(const json& geometry, Arcs& arcs, std::size_t index)
{
    const std::string where = numbered("geometry", index);
    TopoJSON::Area area;
    const auto properties = geometry.find("properties");
    if (properties != geometry.end() && properties->is_object())
    {
        const auto name = properties->find("name");
        if (name != properties->end() && name->is_string())
            area.name = name->get<std::string>();
    }
    const json& type = member(geometry, "type", json::value_t::string, where);
    if (type != "Polygon" && type != "MultiPolygon")
        fail(where + " is neither Polygon nor MultiPolygon");
    const json& lists = member(geometry, "arcs", json::value_t::array, where);
    if (type == "Polygon")
        area.polygons.push_back(readPolygon(lists, arcs, index, where));
    else
        for (const json& polygon : lists)
            area.polygons.push_back(readPolygon(polygon, arcs, index, where));
    return area;
}

json parse(std::string_view text)
{
    json topology = json::parse(text, nullptr, false);
    if (topology.is_discarded())
        fail("no valid JSON");
    const auto type = topology.find("type");
    if (type == topology.end() || *type != "Topology")
        fail("no TopoJSON");
    return topology;
}

struct Map
{
    std::vector<TopoJSON::Area> areas;
    std::vector<TopoJSON::Border> borders;
    std::vector<TopoJSON::Border> coasts;
};

Map readMap(const json& topology, const std::string& object, Arcs arcs)
{
    const json& objects = member(topology, "objects", json::value_t::object, "file");
    const json& collection = member(objects, object, json::value_t::object, "file");
    Map map;
    for (const json& geometry : member(collection, "geometries", json::value_t::array, "object"))
        map.areas.push_back(readArea(geometry, arcs, map.areas.size()));
    map.borders = arcs.findBorders();
    map.coasts = arcs.findCoasts();
    return map;
}

} // namespace

bool TopoJSON::load(std::string_view json, const std::string& object, double grain, TopoJSON* pWhole)
{
    const auto take = [](TopoJSON& to, Map map)
    {
        to._areas = std::move(map.areas);
        to._borders = std::move(map.borders);
        to._coasts = std::move(map.coasts);
    };
    try
    {
        const nlohmann::json topology = parse(json);
        const Arcs arcs(topology);
        Map map = readMap(topology, object, grain > 0 ? Arcs(arcs, grain) : arcs);
        if (pWhole != nullptr)
            take(*pWhole, readMap(topology, object, arcs));
        take(*this, std::move(map));
        return true;
    }
    catch (const Broken& broken)
    {
        vo::dbgLog("ERROR! TopoJSON::load cannot read object: %s (%s)", object.c_str(), broken.what());
        return false;
    }
}

bool TopoJSON::loadCompiled(const char* resource, const std::string& object, double grain, TopoJSON* pWhole)
{
    std::span<const td::BYTE> file; // with nothing in it, no JSON either
    gui::Res::getCompiled(resource, file);
    return load({reinterpret_cast<const char*>(file.data()), file.size()}, object, grain, pWhole);
}

std::size_t TopoJSON::getNoOfRings() const
{
    std::size_t n = 0;
    for (const Area& area : _areas)
        for (const Polygon& polygon : area.polygons)
            n += polygon.size();
    return n;
}

// Those with the most neighbours choose first: of the colours that no neighbour has, the one that is used least.
std::vector<std::size_t> TopoJSON::color(std::size_t n) const
{
    std::vector<std::set<std::size_t>> neighbours(_areas.size());
    for (const Border& border : _borders)
        for (const std::size_t area : border.areas)
            neighbours[area].insert(border.areas.begin(), border.areas.end());
    std::vector<std::size_t> order(_areas.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return neighbours[a].size() > neighbours[b].size(); });
    std::vector<std::size_t> colors(_areas.size(), n), nUses(n, 0);
    for (const std::size_t area : order)
    {
        std::vector<std::size_t> costs = nUses;
        costs.push_back(0); // of those that have none yet
        for (const std::size_t neighbour : neighbours[area])
            costs[colors[neighbour]] += _areas.size();
        costs.pop_back();
        colors[area] = static_cast<std::size_t>(std::min_element(costs.begin(), costs.end()) - costs.begin());
        ++nUses[colors[area]];
    }
    return colors;
}

} // namespace examples
