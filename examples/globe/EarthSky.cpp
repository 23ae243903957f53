#include "Earth.h"

#include <common/Paint.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <cmath>

namespace globe
{

namespace
{

using glm::vec3;

// Stars of one size: a grid around the eye whose cells have one or none.
vec3 starlight(const vec3& direction, float cellsPerRadian, float share)
{
    using examples::scatter;
    const glm::ivec3 cell(glm::floor(cellsPerRadian * direction));
    if (scatter(cell) > share)
        return vec3(0);
    const vec3 middle = vec3(cell) + 0.35F + 0.3F * vec3(scatter(cell, 1), scatter(cell, 2), scatter(cell, 3));
    // Seen on the sphere around the eye, not in the depth of the grid.
    const float distance = glm::length(direction - glm::normalize(middle)) * cellsPerRadian;
    const float size = scatter(cell, 4), heat = 2 * scatter(cell, 5) - 1;
    const vec3 color =
        glm::mix(vec3(1, 0.97F, 0.92F), heat < 0 ? vec3(1, 0.72F, 0.5F) : vec3(0.66F, 0.78F, 1), glm::abs(heat));
    return (0.15F + size * size * size) * std::exp(-distance * distance * 26) * color;
}

} // namespace

// The Milky Way lies along a circle, with dark dust in its middle.
glm::vec3 Earth::paintSky(const vec3& direction)
{
    const vec3 pole = glm::normalize(vec3(0.48F, 0.62F, 0.62F)), center = glm::normalize(vec3(-0.8F, 0.6F, 0.02F));
    const float aside = glm::dot(direction, pole);
    const float band = std::exp(-aside * aside * 22);
    vec3 color(0.004F, 0.006F, 0.014F);
    if (band > 0.02F)
    {
        const float clouds = examples::clouds(5.0F * direction + 3.0F, 5);
        const float dust = examples::clouds(vec3(9.0F * direction) + 31.0F, 5);
        const float bulge = 0.55F + 0.45F * glm::smoothstep(-0.4F, 1.0F, glm::dot(direction, center));
        const float lane = glm::smoothstep(0.44F, 0.64F, dust) * std::exp(-aside * aside * 160);
        const float light = band * glm::smoothstep(0.28F, 0.80F, clouds) * bulge * (1 - 0.85F * lane);
        color += 0.45F * light * glm::mix(vec3(0.62F, 0.70F, 1), vec3(1, 0.84F, 0.70F), band * bulge);
    }
    const float crowd = 0.6F + 1.6F * band;
    return color + 0.40F * starlight(direction, 150, 0.030F * crowd) +
           0.75F * starlight(direction, 100, 0.012F * crowd) + 1.5F * starlight(direction, 62, 0.006F * crowd);
}

} // namespace globe
