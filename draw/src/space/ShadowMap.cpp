#include "ShadowMap.h"

#include "ModelSight.h"

#include <gui/gl/Context.h>
#include <gui/gl/Textures.h>

#include <vo/Log.h>

#include <glm/common.hpp>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace gui::draw
{

namespace
{

using Polygon = std::vector<glm::dvec3>;

// What of a polygon is where a plane's distance is at least 0 (Sutherland and Hodgman, 1974).
Polygon clipped(const Polygon& polygon, const glm::dvec4& plane)
{
    Polygon result;
    for (std::size_t i = 0; i < polygon.size(); ++i)
    {
        const glm::dvec3 &a = polygon[i], &b = polygon[(i + 1) % polygon.size()];
        const double da = glm::dot(plane, glm::dvec4(a, 1)), db = glm::dot(plane, glm::dvec4(b, 1));
        if (da >= 0)
            result.push_back(a);
        if ((da >= 0) != (db >= 0))
            result.push_back(a + da / (da - db) * (b - a));
    }
    return result;
}

// The corners of what is in a box and seen: of its faces, and of the view's nearest end. From the eye's position.
Polygon findSeen(const Box3& bounds, const Eye& eye)
{
    const glm::dmat4 toClip = eye.getProjection() * glm::dmat4(eye.getRotation());
    const auto row = [&](int i) { return glm::dvec4(toClip[0][i], toClip[1][i], toClip[2][i], toClip[3][i]); };
    // What is behind the eye has no place; how near it begins does not matter.
    const std::array<glm::dvec4, 5> planes{row(3) + row(0), row(3) - row(0), row(3) + row(1), row(3) - row(1), row(3)};
    Polygon corners;
    for (unsigned int axis = 0; axis < 3; ++axis)
        for (const unsigned int side : {0U, 1U})
        {
            Polygon face;
            const unsigned int u = 1U << (axis + 1) % 3, v = 1U << (axis + 2) % 3, first = side << axis;
            for (const unsigned int corner : {first, first | u, first | u | v, first | v})
                face.push_back(bounds.getCorner(corner) - eye.getPosition());
            for (const glm::dvec4& plane : planes)
                face = clipped(face, plane);
            corners.insert(corners.end(), face.begin(), face.end());
        }
    if (bounds.contains(eye.getPosition()))
        corners.emplace_back(0);
    return corners;
}

int sizeOf(Shadows::Quality quality)
{
    return quality == Shadows::Quality::High ? 4096 : quality == Shadows::Quality::Medium ? 2048 : 1024;
}

} // namespace

bool ShadowMap::look(const Shadows& shadows, const Box3& bounds, const Eye& eye)
{
    if (bounds.isEmpty() || !bounds.isFinite() || !eye.isValid() || !(bounds.getRadius() > 0))
        return false;
    const Polygon seen = findSeen(bounds, eye);
    if (seen.empty())
        return false;
    const glm::dvec3 back = ModelSight::getDirection(shadows.direction);
    const glm::dvec3 upwards = std::abs(back.z) < 0.9 ? glm::dvec3(0, 0, 1) : glm::dvec3(0, 1, 0);
    const glm::dvec3 right = glm::normalize(glm::cross(upwards, back)), up = glm::cross(back, right);
    const glm::dmat3 rotation = glm::transpose(glm::dmat3(right, up, back));
    Box3 box;
    for (const glm::dvec3& corner : seen)
        box.add(rotation * (corner + eye.getPosition() - bounds.getCenter()));
    _size = sizeOf(shadows.quality);
    _radius = shadows.quality == Shadows::Quality::High ? 2 : shadows.quality == Shadows::Quality::Medium ? 1 : 0;
    // Steps of size and place, so that edges keep still while the eye turns a little.
    constexpr double cStepsPerOctave = 4;
    const double radius = bounds.getRadius();
    const double wanted = std::clamp(std::max(box.max.x - box.min.x, box.max.y - box.min.y), 1e-6 * radius, 2 * radius);
    const double side = 1.05 * std::exp2(std::ceil(cStepsPerOctave * std::log2(wanted)) / cStepsPerOctave);
    _texelSize = side / _size;
    const auto snapped = [&](double x) { return std::round(x / _texelSize) * _texelSize; };
    const glm::dvec2 middle(snapped((box.min.x + box.max.x) / 2), snapped((box.min.y + box.max.y) / 2));
    const glm::dvec3 position = bounds.getCenter() + middle.x * right + middle.y * up + 1.1 * radius * back;
    const double half = side / 2, size = _size;
    _eye = Eye(position, rotation, glm::ortho(-half, half, -half, half, 0.0, 2.2 * radius), {size, size});
    _eye.setClipping(eye.getClipping());
    return _eye.isValid();
}

bool ShadowMap::begin()
{
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &_drawBefore);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &_readBefore);
    glGetIntegerv(GL_VIEWPORT, _viewportBefore);
    if (_texture == 0 || _made != _size || _home.getID() != gl::CurrentContext::getID())
    {
        release();
        _home.set(gl::CurrentContext::getID());
        glGenTextures(1, &_texture);
        gl::Context::setActiveTextureUnit(gl::Texture::Unit::T5);
        glBindTexture(GL_TEXTURE_2D, _texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT24, _size, _size, 0, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT,
                     nullptr);
        for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_2D, filter, GL_LINEAR);
        for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
            glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenFramebuffers(1, &_framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, _texture, 0);
        constexpr GLenum cNone = GL_NONE;
        glDrawBuffers(1, &cNone);
        glReadBuffer(GL_NONE);
        _made = _size;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, _framebuffer);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
    {
        end();
        vo::dbgLog("Error! DepthCanvas: GL has no room for shadows");
        return false;
    }
    glViewport(0, 0, _size, _size);
    return true;
}

void ShadowMap::end()
{
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(_drawBefore));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(_readBefore));
    glViewport(_viewportBefore[0], _viewportBefore[1], _viewportBefore[2], _viewportBefore[3]);
}

void ShadowMap::tell(gl::Program& program, unsigned int toShadowMap, unsigned int shadowSize, gl::Texture::Unit unit,
                     const glm::dvec3& origin) const
{
    // From clip space to three numbers from 0 to 1.
    glm::mat4 toMap(0.5F);
    toMap[3] = {0.5F, 0.5F, 0.5F, 1};
    program.setUniformValue(toShadowMap, toMap * _eye.getMatrix(origin));
    program.setUniformValue(shadowSize, glm::vec3(_texelSize, 1.0 / _size, _radius));
    gl::Textures::bindToSamplerUnit(_texture, unit, gl::Texture::Type::Tex2D);
}

void ShadowMap::release()
{
    _home.deleteName(gl::CurrentContext::Kind::Framebuffer, _framebuffer);
    _home.deleteName(gl::CurrentContext::Kind::Texture, _texture);
    _framebuffer = _texture = 0;
}

} // namespace gui::draw
