#pragma once

#include <gui/Texture.h>

#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <functional>

/// Images that a program computes, pixel by pixel. Colours are red, green and blue from 0 to 1; what is beyond is cut
/// off.
namespace examples
{

/// @param color  of a place in the image, (0, 0) to (1, 1), the middle of each pixel; rows begin at y = 0
gui::Texture paint(int width, int height, const std::function<glm::vec3(const glm::vec2&)>& color);

/// A number from 0 to 1 for each point of the grid of whole numbers, the same on every machine and without any order.
float scatter(const glm::ivec3& point, int kind = 0);

/// Clouds of values from 0 to 1, 0.5 on the average, that change over a distance of about 1.
/// @param nOctaves  how many sizes of detail, each half of the one before
float clouds(const glm::vec3& place, int nOctaves);

/// Stars of about one size: the light of one, if any, that is seen in a direction.
/// @param direction       a unit vector
/// @param cellsPerRadian  how small they are: the sky is a grid of cells, which have one star or none
/// @param share           of the cells that have one, 0 to 1
glm::vec3 starlight(const glm::vec3& direction, float cellsPerRadian, float share);

} // namespace examples
