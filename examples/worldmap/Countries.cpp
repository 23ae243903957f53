#include "Countries.h"

#include <common/FlatRing.h>
#include <gui/Res.h>

#include <span>

namespace worldmap
{

bool Countries::load()
{
    using examples::TopoJSON;
    constexpr double cGrain = 1.0 / 7; // degrees
    std::span<const td::BYTE> file;
    if (!gui::Res::getCompiled(":worldmap/countries-50m.json", file))
        return false;
    const std::string_view json(reinterpret_cast<const char*>(file.data()), file.size());
    TopoJSON world, thinned;
    if (!thinned.load(json, "countries", cGrain, &world))
        return false;
    for (Outlines* pOutlines : {&fine, &coarse})
    {
        const TopoJSON& from = pOutlines == &fine ? world : thinned;
        for (const TopoJSON::Area& area : from.getAreas())
            pOutlines->countries.push_back(examples::layOnMap(area, cMiddleLongitude));
        for (const TopoJSON::Border& coast : from.getCoasts())
            examples::layOnMap(coast.line, false, cMiddleLongitude, pOutlines->coasts);
        for (const TopoJSON::Border& border : from.getBorders())
            examples::layOnMap(border.line, false, cMiddleLongitude, pOutlines->borders);
    }
    const std::vector<std::size_t> colors = world.color(cNoOfColors);
    for (const TopoJSON::Area& area : world.getAreas())
        all.push_back({area.name, colors[all.size()], true});
    for (const TopoJSON::Border& border : world.getBorders())
        for (const std::size_t area : border.areas)
            all[area].isAlone = false;
    return true;
}

} // namespace worldmap
