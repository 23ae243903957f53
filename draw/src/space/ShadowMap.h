#pragma once

#include <gui/draw/Eye.h>
#include <gui/draw/Shadows.h>

#include <gui/gl/ContextResource.h>

#include <glm/mat4x4.hpp>

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

    unsigned int getTexture() const { return _texture; }
    /// From distances from an origin to the map: three numbers from 0 to 1.
    glm::mat4 getMatrix(const glm::dvec3& origin) const;
    /// Of a texel, in model units.
    double getTexelSize() const { return _texelSize; }
    /// Half a side of the square of texels that shaders look at, without the one in the middle.
    int getRadius() const { return _radius; }

private:
    void release();

    Eye _eye;
    double _texelSize = 0;
    int _radius = 0, _size = 0, _made = 0;
    unsigned int _texture = 0, _framebuffer = 0;
    int _drawBefore = 0, _readBefore = 0;
    int _viewportBefore[4] = {};
    gl::ContextResource _home{
        [](void* pThis, gl::ContextResource::Event) { static_cast<ShadowMap*>(pThis)->release(); }, this};
};

} // namespace gui::draw
