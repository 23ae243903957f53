#pragma once

#include <gallery/Scenes.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace test
{

/// Whether a scene computes for seconds where nothing is optimised. The build reads the names here.
inline bool isSlow(const gallery::SceneInfo& scene)
{
    constexpr std::string_view cNames[] = {"blueprint", "camera", "coastline", "horizon", "instances",
                                           "labels",    "meshes", "scatter",   "sky",     "swarm"};
    return std::ranges::find(cNames, scene.name) != std::end(cNames);
}

} // namespace test
