#pragma once

#include <td/Export.h>
#include <td/Types.h>

#include <glm/vec3.hpp>

namespace gui::draw
{

/// What a scene casts upon itself: the shadows of a sun, and the darkness of corners that little light gets into from
/// anywhere (ambient occlusion). A value:
///
///     setShadows({.quality = Shadows::Quality::Medium, .direction = {1, -2, 3}}); // of an OrbitView
///     _model.setLight(Light::sun({1, -2, 3}));
///
/// The sun's shadows fall from all that drawScene draws, whatever program draws it, upon models, instances and spheres
/// whose light is a sun; give them the same direction. Lines and discs, which have no size in the model, cast none, nor
/// does what is translucent. The dark of corners falls upon all.
struct GUIGL_API Shadows
{
    /// How fine they are, and how much they cost.
    enum class Quality : td::BYTE
    {
        None,
        Low,    ///< a map of 1024 texels a side, read four times; 8 looks about each pixel
        Medium, ///< 2048, 16 times; 12 looks
        High    ///< 4096, 36 times, for the softest edge; 20 looks
    };

    Quality quality = Quality::None; ///< see Quality
    /// From the model towards the sun, as Light::direction.
    glm::dvec3 direction{0, 0, 1};
    /// How dark corners become, 0 to 1; 0 for no such dark.
    double occlusion = 0.8;
    /// How far what is near darkens, in model units; 0 for a twentieth of the bounds' radius.
    double reach = 0;

    bool operator==(const Shadows&) const = default;
};

} // namespace gui::draw
