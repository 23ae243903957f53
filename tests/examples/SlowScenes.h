#pragma once

#include <gallery/Scenes.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>

namespace test
{

/// Whether a scene computes for seconds where nothing is optimised.
inline bool isSlow(const gallery::SceneInfo& scene)
{
    std::istringstream names(GUIGL_SLOW_SCENES); // which the build has
    return std::find(std::istream_iterator<std::string>(names), {}, scene.name) != std::istream_iterator<std::string>();
}

} // namespace test
