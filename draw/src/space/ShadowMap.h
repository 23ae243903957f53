#pragma once

#include <gui/draw/Eye.h>
#include <gui/draw/Shadows.h>

#include <gui/gl/ContextResource.h>
#include <gui/gl/Program.h>

namespace gui::draw
{

/// How deep a scene is as its sun sees it: what is behind that is in the shadow (Williams, 1978).
class ShadowMap
{
public:
    ShadowMap() = default;
    ~ShadowMap() { release(); }
    ShadowMap(const ShadowMap&) = delete;
    ShadowMap& operator=(const ShadowMap&) = delete;

    /// Looks from the sun at what an eye sees of a scene, and at what stands before that.
    /// @return false when there is nothing to see
    bool look(const Shadows& shadows, const Box3& bounds, const Eye& eye);
    /// How the sun sees: in texels.
    const Eye& getEye() const { return _eye; }

    /// From here to end it is drawn into. @return false when GL has no room for it
    bool begin();
    void end();

    /// Tells the active program, whose fragment shader begins with light.glsl and has SHADOWED defined.
    /// @param toShadowMap, shadowSize  locations  @param unit  of shadowMap  @param origin  of the shader's places
    void tell(gl::Program& program, unsigned int toShadowMap, unsigned int shadowSize, gl::Texture::Unit unit,
              const glm::dvec3& origin) const;

private:
    void release();

    Eye _eye;
    double _texelSize = 0; // in model units
    int _radius = 0;       // half a side of the square of texels that shaders look at, without the one in the middle
    int _size = 0, _made = 0;
    unsigned int _texture = 0, _framebuffer = 0;
    int _drawBefore = 0, _readBefore = 0;
    int _viewportBefore[4] = {};
    gl::ContextResource _home{
        [](void* pThis, gl::ContextResource::Event) { static_cast<ShadowMap*>(pThis)->release(); }, this};
};

} // namespace gui::draw
