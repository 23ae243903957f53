#include "SpaceSight.h"

#include "NearestFloat.h"
#include "SpacePrograms.h"

#include <gui/gl/Context.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/mat3x3.hpp>

#include <epoxy/gl.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace gui::draw
{

bool SpaceSight::look(const Eye& from, const Light& light, const glm::dvec3& start, const Box3& places, double reach,
                      double bias)
{
    if (!ModelSight::look(from, light, start, places, static_cast<float>(std::min(2 * reach, 1e6))))
        return false;
    slack = 0;
    toEye = from.getViewMatrix(origin + reference);
    projection = glm::mat4(from.getProjection());

    // Nearer by a share of its distance, what z of clip space is and w follow from z of the eye, in which they are
    // linear: so z / w is linear in what it was.
    const glm::dmat4& p = from.getProjection();
    const double sizeAtOne = 2 / (std::abs(p[1][1]) * from.getSize().height);
    const double step = std::isfinite(bias) ? bias * sizeAtOne : 0;
    const double times = 1 / std::max(1 + p[2][3] * step, 0.01), plus = p[2][2] * step * times;
    const glm::dvec2 usual = isReversed ? glm::dvec2(1, 0) : glm::dvec2(0.5, 0.5);
    toDepth = glm::vec2(usual.x * times, usual.x * plus + usual.y);
    pixelsAtOne = static_cast<float>(std::abs(p[1][1])) * halfSize.y;
    return true;
}

void SpaceSight::tell(SpaceProgram& program) const
{
    using U = SpaceProgram;
    program.setUniformValue(program.at(U::ToClip), toClip);
    program.setUniformValue(program.at(U::ToEye), toEye);
    program.setUniformValue(program.at(U::Projection), projection);
    program.setUniformValue(program.at(U::Reference), glm::vec3(reference));
    program.setUniformValue(program.at(U::HalfSize), halfSize);
    program.setUniformValue(program.at(U::Corner), corner);
    program.setUniformValue(program.at(U::Scale), scale);
    program.setUniformValue(program.at(U::PixelsAtOne), pixelsAtOne);
    program.setUniformValue(program.at(U::ToDepth), toDepth);
    program.setUniformValue(program.at(U::NearSide), isReversed ? glm::vec2(1, -1) : glm::vec2(1, 1));
    if (!clipping.isEmpty())
        setClipUniforms(program.getClipLocations());
}

void SpaceSight::tellLight(SpaceProgram& program, const Light& light, bool areEyeAxes) const
{
    using U = SpaceProgram;
    const glm::mat3 turn = areEyeAxes ? glm::mat3(toEye) : glm::mat3(1);
    program.setUniformValue(program.at(U::Viewer), viewer);
    program.setUniformValue(program.at(U::ToLight), turn * toLight);
    program.setUniformValue(program.at(U::Up), turn * up);
    program.setUniformValue(program.at(U::LightColor),
                            glm::vec4(getLinear(light.color), static_cast<float>(getShare(light.ambient))));
}

void writePlace(const glm::dvec3& place, const glm::dvec3& origin, std::uint32_t* pPlace, std::uint32_t* pRest)
{
    for (int k = 0; k < 3; ++k)
    {
        const double distance = place[k] - origin[k];
        const float nearest = nearestFloat(distance);
        pPlace[k] = std::bit_cast<std::uint32_t>(nearest);
        pRest[k] = std::bit_cast<std::uint32_t>(nearestFloat(distance - static_cast<double>(nearest)));
    }
}

glm::dvec3 readPlace(const std::uint32_t* pPlace, const glm::dvec3& origin)
{
    return origin + glm::dvec3(std::bit_cast<float>(pPlace[0]), std::bit_cast<float>(pPlace[1]),
                               std::bit_cast<float>(pPlace[2]));
}

Box3 grownByRounding(const Box3& box, const glm::dvec3& origin)
{
    if (box.isEmpty())
        return box;
    constexpr double cRounding = 6e-8; // of floats
    const glm::dvec3 reach = cRounding * glm::max(glm::abs(box.min - origin), glm::abs(box.max - origin));
    return {box.min - reach, box.max + reach};
}

bool isPlace(const glm::dvec3& place)
{
    constexpr double cLargest = 1e30;
    return std::abs(place.x) <= cLargest && std::abs(place.y) <= cLargest && std::abs(place.z) <= cLargest;
}

std::uint32_t wordOf(td::Color color)
{
    return std::uint32_t(color.red()) | std::uint32_t(color.green()) << 8 | std::uint32_t(color.blue()) << 16 |
           std::uint32_t(color.alpha()) << 24;
}

} // namespace gui::draw
