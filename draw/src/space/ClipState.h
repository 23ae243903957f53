#pragma once

#include <gui/draw/Clipping.h>

#include <glm/vec3.hpp>

#include <array>
#include <cstddef>

namespace gui::draw
{

/// Turns GL's clip distances on as long as it lives, for programs whose shaders begin with clipping.glsl and have
/// CLIPPED defined, and off again where they were. For a clipping without a plane, whose programs have not, it does
/// nothing.
class ClipState
{
public:
    /// What is drawn.
    enum class What
    {
        Model, ///< what a clipping cuts away
        Face   ///< what it adds in one of its planes
    };

    explicit ClipState(const Clipping& clipping, What what = What::Model);
    ~ClipState();
    ClipState(const ClipState&) = delete;
    ClipState& operator=(const ClipState&) = delete;

    /// Where a program has clipping.glsl's uniforms.
    struct Locations
    {
        int planes = -1; ///< of clipPlanes
        int kind = -1;   ///< of clipKind
    };

    /// Tells the active program of a model.
    /// @param reference  what its shaders take places from, in model units
    /// @param slack      by how much more is cut off, in model units
    static void setUniforms(const Clipping& clipping, const Locations& at, const glm::dvec3& reference,
                            double slack = 0);
    /// Tells the active program of the face in a plane, which the other planes bound.
    static void setFaceUniforms(const Clipping& clipping, std::size_t plane, const Locations& at,
                                const glm::dvec3& reference);
    /// Tells it that nothing is cut away.
    static void setNoUniforms(const Locations& at);

private:
    std::array<bool, Clipping::cMostPlanes> _wasOff{};
};

} // namespace gui::draw
