#include "EarthView.h"

#include <common/Paint.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <cmath>

namespace globe
{

using examples::starlight;
using glm::vec3;

// The Milky Way lies along a circle, with dark dust in its middle.
vec3 starsIn(const vec3& direction)
{
    const vec3 pole = glm::normalize(vec3(0.48F, 0.62F, 0.62F)), center = glm::normalize(vec3(-0.8F, 0.6F, 0.02F));
    const float aside = glm::dot(direction, pole);
    const float band = std::exp(-aside * aside * 22);
    vec3 color(0.004F, 0.006F, 0.014F);
    if (band > 0.02F)
    {
        const float clouds = examples::clouds(5.0F * direction + 3.0F, 5);
        const float dust = examples::clouds(9.0F * direction + 31.0F, 5);
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
