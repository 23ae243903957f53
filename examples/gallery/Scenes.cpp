#include "Scenes.h"

namespace gallery
{

namespace
{

constexpr SceneInfo cScenes[] = {
    {"coastline", "Coastlines of the world",
     "The 1,629 outlines of all countries, nearly a hundred thousand points in one buffer, each outline drawn by one "
     "recorded command in a colour of its own.",
     makeCoastline},
};

} // namespace

std::span<const SceneInfo> scenes() { return cScenes; }

} // namespace gallery
