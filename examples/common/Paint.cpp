#include "Paint.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <cmath>
#include <cstdint>

namespace examples
{

namespace
{

// The clouds of one size: values at whole numbers, blended between them.
float blended(const glm::vec3& place)
{
    const glm::vec3 corner = glm::floor(place);
    const glm::vec3 within = place - corner;
    const glm::vec3 weight = within * within * (3.0F - 2.0F * within);
    const glm::ivec3 cell(corner);
    const auto at = [&cell](int x, int y, int z) { return scatter(cell + glm::ivec3(x, y, z)); };
    const auto along = [&](int y, int z) { return glm::mix(at(0, y, z), at(1, y, z), weight.x); };
    return glm::mix(glm::mix(along(0, 0), along(1, 0), weight.y), glm::mix(along(0, 1), along(1, 1), weight.y),
                    weight.z);
}

} // namespace

gui::Texture paint(int width, int height, const std::function<glm::vec3(const glm::vec2&)>& color)
{
    gui::Texture image;
    gui::TextureHelper helper(&image);
    helper.reserve(static_cast<unsigned int>(3 * width * height));
    helper.updateInfo(width, height, 3);
    td::BYTE* pTo = image.getBytes();
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            const glm::vec2 place = (glm::vec2(x, y) + 0.5F) / glm::vec2(width, height);
            const glm::vec3 bytes = glm::round(255.0F * glm::clamp(color(place), 0.0F, 1.0F));
            for (int i = 0; i < 3; ++i)
                *pTo++ = static_cast<td::BYTE>(bytes[i]);
        }
    }
    return image;
}

float scatter(const glm::ivec3& point, int kind)
{
    std::uint32_t bits = static_cast<std::uint32_t>(kind) * 0x27d4eb2fU;
    for (int i = 0; i < 3; ++i)
    {
        bits = (bits ^ static_cast<std::uint32_t>(point[i])) * 0x9e3779b1U;
        bits ^= bits >> 15;
    }
    bits *= 0x85ebca77U;
    bits ^= bits >> 13;
    return static_cast<float>(bits >> 8) / static_cast<float>(1 << 24);
}

float clouds(const glm::vec3& place, int nOctaves)
{
    float sum = 0, weights = 0, weight = 1;
    glm::vec3 scaled = place;
    for (int i = 0; i < nOctaves; ++i)
    {
        sum += weight * blended(scaled);
        weights += weight;
        weight /= 2;
        scaled = 2.0F * scaled + 17.3F; // no grid lies on the one before
    }
    return sum / weights;
}

glm::vec3 starlight(const glm::vec3& direction, float cellsPerRadian, float share)
{
    using glm::vec3;
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

} // namespace examples
