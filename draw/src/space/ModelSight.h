#pragma once

#include "ClipState.h"
#include "ModelGeometry.h"

#include <gui/draw/Clipping.h>
#include <gui/draw/Eye.h>
#include <gui/draw/Light.h>
#include <gui/draw/Model.h>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <array>

namespace gui::draw
{

class ShadowMap;

/// A frame's eye, as a model's shaders and cells are told of it.
struct ModelSight
{
    /// A plane of which what is seen is on the side that it points to, from the model's origin.
    struct Plane
    {
        glm::vec3 normal;
        float distance;
    };

    glm::mat4 toClip;            ///< from the reference
    glm::dvec3 reference{0};     ///< from the model's origin
    glm::dvec3 origin{0};        ///< the model's
    std::array<Plane, 7> planes; ///< those of the depth at the end
    glm::vec4 viewer{0};  ///< where the eye is from the reference, and 1; or where it is seen from everywhere, and 0
    glm::vec3 toLight{0}; ///< of length 1
    glm::vec3 up{0};
    glm::vec2 halfSize{0}; ///< of the viewport, in pixels
    glm::vec2 corner{0};   ///< its lower left one
    float scale = 1;       ///< pixels per point
    bool isReversed = false;
    gl::DepthBuffer::Function nearer = gl::DepthBuffer::Function::LessOrEqual;
    const ShadowMap* pShadowMap = nullptr; ///< of the frame; null for a light that casts no shadows
    Eye eye;
    Clipping clipping; ///< its
    double slack = 0;  ///< by which more is cut off: what lies in a plane goes, and the face of the cut takes its place

    /// Looks, with the viewport that there is, at what is in bounds. @param lineWidth  in pixels, of what reaches out
    /// @return false when nothing of it is seen
    bool look(const Eye& from, const Light& light, const glm::dvec3& modelOrigin, const Box3& bounds, float lineWidth);

    /// Whether some of its box may be. @param isBetween  whether it has to be in the eye's depth too
    bool isSeen(const ModelCell& cell, bool isBetween = true) const;

    void setClipUniforms(const ClipState::Locations& at) const
    {
        ClipState::setUniforms(clipping, at, origin + reference, slack);
    }

    /// GL's state to draw it with: no flag set but the depth test, and everything written.
    void beginDrawing() const;
    /// Blending of colours that are times their alpha.
    static void beginBlending();

    /// A colour as light is added up, from 0 to 1.
    static glm::vec3 getLinear(td::Color color);
    /// From 0 to 1, where NaN is 0.
    static double getShare(double value) { return value >= 1 ? 1 : value > 0 ? value : 0; }
    /// Of length 1; (0, 0, 1) for what has none.
    static glm::dvec3 getDirection(const glm::dvec3& v);

    /// In pixels; 0 for a line that is not seen.
    static float getWidth(const Model::Line& line, float scale);
};

} // namespace gui::draw
