#include "Shell.h"

#include <common/Paint.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <numbers>

namespace gallery
{

namespace
{

using glm::vec3;

constexpr std::uint32_t cShellSteps = 300, cTubeSteps = 44;
constexpr float cShellTurn = 2 * std::numbers::pi_v<float>;
constexpr float cWhorls = 5.6F;
constexpr float cLip = 0.35F; // of a turn, where the lip is

const vec3 cShellSun = glm::normalize(vec3(-0.5F, 0.85F, 0.75F));

// A whorl on the way from the tip to the lip, at an angle around its tube.
vec3 shellAt(float way, float angle)
{
    const float t = cShellTurn * (cWhorls * (way - 1) + cLip);
    const float size = std::exp(0.125F * (t - cShellTurn * cLip));
    const float lip = glm::smoothstep(0.965F, 1.0F, way);
    const float ribs = 0.045F * std::cos(11 * t) * (1 - lip) + 0.012F * std::cos(12 * angle);
    const float radius = size * (1 + ribs + 0.16F * lip);
    // Wider below, where the next whorl hides it.
    const float outwards = 0.62F * radius * std::cos(angle);
    const float upwards = (0.66F + 0.12F * std::max(-std::sin(angle), 0.0F)) * radius * std::sin(angle);
    const float middle = 0.72F * size + outwards;
    return {middle * std::cos(t), 1.35F - 2.25F * size + upwards, middle * std::sin(t)};
}

vec3 shellColor(float way, float angle)
{
    const vec3 cream(0.95F, 0.87F, 0.74F), brown(0.63F, 0.36F, 0.20F), rose(0.93F, 0.62F, 0.52F);
    const float whirl = examples::clouds(vec3(60 * way, 3 * std::cos(angle), 3 * std::sin(angle)), 4) - 0.5F;
    const float bands = 0.5F + 0.5F * std::sin(4 * angle + 5 * whirl);
    const vec3 color = glm::mix(cream, brown, 0.75F * glm::smoothstep(0.45F, 0.95F, bands));
    return glm::mix(color, rose, std::max(glm::smoothstep(0.97F, 1.0F, way), 0.5F - 2 * way));
}

} // namespace

Shell::Shell()
{
    addSurface();
    std::vector<vec3> places;
    for (const Vertex& vertex : _vertices)
        places.push_back(vertex.position);
    _index.setTriangles(places, _indices);
    light();
}

void Shell::addSurface()
{
    for (std::uint32_t i = 0; i <= cShellSteps; ++i)
        for (std::uint32_t k = 0; k < cTubeSteps; ++k)
        {
            const float way = static_cast<float>(i) / cShellSteps,
                        angle = cShellTurn * static_cast<float>(k) / cTubeSteps;
            _vertices.push_back({shellAt(way, angle), shellColor(way, angle), 1});
            if (i == cShellSteps)
                continue;
            const std::uint32_t next = (k + 1) % cTubeSteps;
            const std::uint32_t a = i * cTubeSteps + k, b = i * cTubeSteps + next, c = a + cTubeSteps,
                                d = b + cTubeSteps;
            _indices.insert(_indices.end(), {a, b, c, b, d, c});
        }
}

// What sun and sky reach of it, by rays.
void Shell::light()
{
    std::vector<vec3> normals(_vertices.size());
    for (std::size_t i = 0; i < _indices.size(); i += 3)
    {
        const vec3 &a = _vertices[_indices[i]].position, &b = _vertices[_indices[i + 1]].position,
                   &c = _vertices[_indices[i + 2]].position;
        for (std::size_t k = 0; k < 3; ++k)
            normals[_indices[i + k]] += glm::cross(b - a, c - a);
    }
    for (std::size_t i = 0; i < _vertices.size(); ++i)
    {
        Vertex& vertex = _vertices[i];
        const vec3 normal = glm::normalize(normals[i]);
        const vec3 from = vertex.position + 0.004F * normal;
        const auto isFree = [&](const vec3& to, double distance) {
            return !_index.getNearest({from, glm::normalize(to)}, {}, distance);
        };
        constexpr int cSky = 10;
        float sky = 0;
        for (int k = 0; k < cSky; ++k)
        {
            // On the ball above the surface, as sunflowers have their seeds.
            const float z = 1 - (2.0F * static_cast<float>(k) + 1) / cSky, turn = 2.4F * static_cast<float>(k);
            const vec3 way(std::sqrt(1 - z * z) * std::cos(turn), z, std::sqrt(1 - z * z) * std::sin(turn));
            sky += isFree(normal + way * 0.98F, 0.6) ? 1.0F / cSky : 0;
        }
        const float facing = std::max(glm::dot(normal, cShellSun), 0.0F);
        const float sun = facing > 0 && isFree(cShellSun, 10) ? facing : 0;
        vertex.color *= sky * (vec3(0.30F, 0.33F, 0.42F) + 0.10F * normal.y) + sun * vec3(0.66F, 0.61F, 0.53F);
    }
}

std::vector<std::uint32_t> Shell::getAround(const std::vector<std::uint32_t>& triangles) const
{
    std::vector<bool> isCorner(_vertices.size());
    for (const std::uint32_t triangle : triangles)
        for (std::size_t k = 0; k < 3; ++k)
            isCorner[_indices[3 * triangle + k]] = true;
    std::vector<std::uint32_t> around;
    for (std::uint32_t i = 0; i < _indices.size() / 3; ++i)
        if (isCorner[_indices[3 * i]] || isCorner[_indices[3 * i + 1]] || isCorner[_indices[3 * i + 2]])
            around.push_back(i);
    return around;
}

} // namespace gallery
