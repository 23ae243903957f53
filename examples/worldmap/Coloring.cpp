#include "Coloring.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>

namespace worldmap
{

std::vector<std::size_t> color(std::size_t nAreas, const std::vector<examples::TopoJSON::Border>& borders)
{
    std::vector<std::set<std::size_t>> neighbours(nAreas);
    for (const examples::TopoJSON::Border& border : borders)
        for (const std::size_t a : border.areas)
            for (const std::size_t b : border.areas)
                if (a != b)
                    neighbours[a].insert(b);

    // Every flat map has an area with five neighbours at most, and has one still without that one. Taken away one by
    // one and put back in reverse, each area finds five neighbours at most that have a colour already.
    std::vector<std::set<std::size_t>> left = neighbours;
    std::vector<std::size_t> order;
    std::vector<bool> isTaken(nAreas, false);
    while (order.size() < nAreas)
    {
        std::size_t next = nAreas;
        for (std::size_t area = 0; area < nAreas; ++area)
            if (!isTaken[area] && (next == nAreas || left[area].size() < left[next].size()))
                next = area;
        isTaken[next] = true;
        order.push_back(next);
        for (const std::size_t area : left[next])
            left[area].erase(next);
    }

    std::vector<std::size_t> colors(nAreas, cNoOfColors);
    std::array<std::size_t, cNoOfColors> nUses{};
    for (auto area = order.rbegin(); area != order.rend(); ++area)
    {
        std::array<std::size_t, cNoOfColors> nClashes{};
        for (const std::size_t neighbour : neighbours[*area])
            if (colors[neighbour] < cNoOfColors)
                ++nClashes[colors[neighbour]];
        std::size_t best = 0;
        for (std::size_t i = 1; i < cNoOfColors; ++i)
            if (std::tie(nClashes[i], nUses[i]) < std::tie(nClashes[best], nUses[best]))
                best = i;
        colors[*area] = best;
        ++nUses[best];
    }
    return colors;
}

} // namespace worldmap
