#include "ClipState.h"

#include <gui/gl/Context.h>
#include <gui/gl/CurrentContext.h>

#include <glm/vec4.hpp>

#include <epoxy/gl.h>

namespace gui::draw
{

namespace
{

using Equations = std::array<glm::vec4, Clipping::cMostPlanes>;

void setClipUniforms(const ClipState::Locations& at, const Equations& equations, bool isNotch)
{
    glUniform4fv(at.planes, Clipping::cMostPlanes, &equations[0].x);
    glUniform1i(at.kind, isNotch ? 1 : 0);
}

// Asked of the driver once for each context.
bool hasDistances()
{
    static gl::CurrentContext::ID s_asked = 0;
    static bool s_areThere = true;
    const gl::CurrentContext::ID id = gl::CurrentContext::getID();
    if (id != s_asked)
        s_areThere = !gl::Context::isES() || epoxy_has_gl_extension("GL_EXT_clip_cull_distance");
    s_asked = id;
    return s_areThere;
}

} // namespace

ClipState::ClipState(const Clipping& clipping, What what)
{
    // What a notch takes from a model has no convex rest: it is left out pixel by pixel.
    const bool isByDistance = what == What::Face || clipping.getKind() == Clipping::Kind::Cut;
    if (!isByDistance || clipping.isEmpty() || !hasDistances())
        return;
    for (std::size_t i = 0; i < clipping.getNumberOfPlanes(); ++i)
    {
        const GLenum distance = GL_CLIP_DISTANCE0 + static_cast<GLenum>(i);
        _wasOff[i] = glIsEnabled(distance) == GL_FALSE;
        glEnable(distance);
    }
}

ClipState::~ClipState()
{
    for (std::size_t i = 0; i < _wasOff.size(); ++i)
        if (_wasOff[i])
            glDisable(GL_CLIP_DISTANCE0 + static_cast<GLenum>(i));
}

void ClipState::setUniforms(const Clipping& clipping, const Locations& at, const glm::dvec3& reference, double slack)
{
    if (clipping.isEmpty())
        return;
    const bool isNotch = clipping.getKind() == Clipping::Kind::Notch;
    // Of the planes that there are not, everything is before or, in a notch, behind.
    Equations equations;
    equations.fill({0, 0, 0, isNotch ? -1 : 1});
    for (std::size_t i = 0; i < clipping.getNumberOfPlanes(); ++i)
    {
        equations[i] = clipping.getEquation(i, reference);
        equations[i].w -= static_cast<float>(slack);
    }
    setClipUniforms(at, equations, isNotch);
}

void ClipState::setNoUniforms(const Locations& at)
{
    Equations equations;
    equations.fill({0, 0, 0, 1});
    setClipUniforms(at, equations, false);
}

void ClipState::setFaceUniforms(const Clipping& clipping, std::size_t plane, const Locations& at,
                                const glm::dvec3& reference)
{
    const float side = clipping.getKind() == Clipping::Kind::Notch ? -1.0F : 1.0F;
    Equations equations;
    equations.fill({0, 0, 0, 1});
    for (std::size_t i = 0; i < clipping.getNumberOfPlanes(); ++i)
        if (i != plane)
            equations[i] = side * clipping.getEquation(i, reference);
    setClipUniforms(at, equations, false);
}

} // namespace gui::draw
