#pragma once

#include <gui/Texture.h>

#include <glm/vec3.hpp>

#include <array>
#include <functional>

namespace gui::gl
{

/// Images of the faces of a cube map, in the order in which Textures::appendCubeMap takes them.
/// @param size, color  as that operation takes them, checked
std::array<gui::Texture, 6> paintCubeMap(int size, const std::function<glm::vec3(const glm::vec3&)>& color);

} // namespace gui::gl
