#pragma once

#include <td/Color.h>
#include <td/Export.h>
#include <td/Types.h>

#include <glm/vec3.hpp>

namespace gui::draw
{

/// Where the light on a Model comes from. A value:
///
///     model.setLight(Light::sun({1, -2, 4}));
struct GUIGL_API Light
{
    /// What it moves with.
    enum class Kind : td::BYTE
    {
        Camera, ///< the eye: it shines over the viewer's left shoulder
        Sun     ///< the model: it comes from one direction
    };

    Kind kind = Kind::Camera; ///< see Kind
    /// From the model towards the sun, of any length but 0 (and infinity and NaN), which count as (0, 0, 1).
    glm::dvec3 direction{0, 0, 1};
    td::Color color = td::ColorID::White; ///< its alpha does not count
    /// How bright surfaces are that it does not reach, of what it is, 0 to 1; those that look away from it have half.
    double ambient = 0.3;

    /// White, from a direction. @param direction  from the model towards the sun
    static Light sun(const glm::dvec3& direction) { return {.kind = Kind::Sun, .direction = direction}; }

    bool operator==(const Light&) const = default;
};

} // namespace gui::draw
