#include "Countries.h"

namespace worldmap
{

bool Countries::load()
{
    using examples::TopoJSON;
    constexpr double cGrain = 1.0 / 7; // degrees
    TopoJSON world, thinned;
    if (!thinned.loadCompiled(":worldmap/countries-50m.json", "countries", cGrain, &world))
        return false;
    fine = {world, cMiddleLongitude};
    coarse = {thinned, cMiddleLongitude};
    const std::vector<std::size_t> colors = world.color(cNoOfColors);
    for (const TopoJSON::Area& area : world.getAreas())
        all.push_back({area.name, colors[all.size()], true});
    for (const TopoJSON::Border& border : world.getBorders())
        for (const std::size_t area : border.areas)
            all[area].isAlone = false;
    return true;
}

} // namespace worldmap
