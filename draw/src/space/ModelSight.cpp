#include "ModelSight.h"

#include "NearestFloat.h"

#include <gui/gl/Context.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace gui::draw
{

namespace
{

// Of a model's size: a few times what floats are wrong by in its shaders.
constexpr double cClipSlack = 5e-7;

} // namespace

glm::vec3 ModelSight::getLinear(td::Color color)
{
    const auto linear = [](unsigned int channel)
    {
        const double c = channel / 255.0;
        return static_cast<float>(c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4));
    };
    return {linear(color.red()), linear(color.green()), linear(color.blue())};
}

void ModelSight::beginDrawing() const
{
    using gl::Context;
    for (const Context::Flag flag :
         {Context::Flag::StencilTest, Context::Flag::PolygonOffset, Context::Flag::CullFace, Context::Flag::Blend})
        Context::disable(flag);
    Context::setPolygonMode(Context::PolygonMode::Fill);
    Context::maskColorBuffer(true, true, true, true);
    Context::enable(Context::Flag::DepthTest);
    Context::maskDepthBuffer(true);
    Context::setDepthBufferFunction(nearer);
}

void ModelSight::beginBlending()
{
    glBlendEquation(GL_FUNC_ADD);
    gl::Context::enable(gl::Context::Flag::Blend);
    gl::Context::setBlendFunction(gl::Blend::Factor::One, gl::Blend::Factor::OneMinusSrcAlpha);
}

glm::dvec3 ModelSight::getDirection(const glm::dvec3& v)
{
    const double largest = std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
    return largest > 0 && std::isfinite(largest) ? glm::normalize(v / largest) : glm::dvec3(0, 0, 1);
}

float ModelSight::getWidth(const Model::Line& line, float scale)
{
    const double width = line.width * static_cast<double>(scale);
    return line.color.alpha() > 0 && width > 0 ? static_cast<float>(std::min(width, 1000.0)) : 0;
}

bool ModelSight::look(const Eye& from, const Light& light, const glm::dvec3& modelOrigin, const Box3& bounds,
                      float lineWidth)
{
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    if (bounds.isEmpty() || !from.isValid() || viewport[2] <= 0 || viewport[3] <= 0)
        return false;
    eye = from;
    origin = modelOrigin;
    halfSize = glm::vec2(viewport[2], viewport[3]) / 2.0F;
    corner = {viewport[0], viewport[1]};
    scale = static_cast<float>(eye.getScale());
    isReversed = eye.getDepth() == Eye::Depth::Reversed;
    nearer = eye.getNearerOrEqual();
    clipping = eye.getClipping();
    slack = cClipSlack * 2 * bounds.getRadius();

    // Shaders begin with the distance from a reference, which floats have exactly near there: at what is seen largest.
    const glm::dvec3 place = eye.getPosition() - origin, low = bounds.min - origin, high = bounds.max - origin;
    glm::dvec3 nearest = place;
    if (eye.isOrthographic())
        nearest += glm::dot((low + high) / 2.0 - place, eye.getDirection()) * eye.getDirection();
    nearest = glm::clamp(nearest, low, high);
    for (int k = 0; k < 3; ++k)
        reference[k] = static_cast<double>(nearestFloat(nearest[k]));
    toClip = eye.getMatrix(origin + reference);
    viewer = eye.isOrthographic() ? glm::vec4(-eye.getDirection(), 0) : glm::vec4(glm::vec3(place - reference), 1);
    const glm::dvec3 shining = light.kind == Light::Kind::Sun
                                   ? getDirection(light.direction)
                                   : glm::normalize(0.55 * eye.getUp() - 0.4 * eye.getRight() - eye.getDirection());
    toLight = glm::vec3(shining);
    up = glm::vec3(light.kind == Light::Kind::Sun ? shining : eye.getUp());

    // What is seen has x and y of clip space from -w to w, w above 0, and z from -w to w, or from w to 0. Lines reach
    // into it from outside.
    const glm::dvec2 size = 1.0 + (1 + static_cast<double>(lineWidth) / 2) / glm::dvec2(halfSize);
    glm::dmat4 view(eye.getRotation());
    view[3] = glm::dvec4(eye.getRotation() * -place, 1);
    const glm::dmat4 inClip = eye.getProjection() * view;
    const auto row = [&](int i) { return glm::dvec4(inClip[0][i], inClip[1][i], inClip[2][i], inClip[3][i]); };
    const std::array<glm::dvec4, 7> rows{size.x * row(3) + row(0),
                                         size.x * row(3) - row(0),
                                         size.y * row(3) + row(1),
                                         size.y * row(3) - row(1),
                                         row(3),
                                         row(3) - row(2),
                                         isReversed ? row(2) : row(3) + row(2)};
    for (std::size_t i = 0; i < planes.size(); ++i)
    {
        const double length = glm::length(glm::dvec3(rows[i]));
        // A far plane may be infinitely far.
        const glm::dvec4 plane = length > 0 ? rows[i] / length : glm::dvec4(0, 0, 0, 1);
        planes[i] = {glm::vec3(plane), static_cast<float>(plane.w)};
    }
    const glm::dvec3 middle = (low + high) / 2.0;
    return isSeen({glm::vec3(middle), glm::vec3(high - middle) * 1.000001F, 0, 0, 0});
}

// Floats are a little less exact than the planes: far from them by that.
bool ModelSight::isSeen(const ModelCell& cell, bool isBetween) const
{
    for (const Plane& plane : std::span(planes).first(isBetween ? 7 : 5))
    {
        const float middle = glm::dot(plane.normal, cell.center);
        const float reach = glm::dot(glm::abs(plane.normal), cell.halfSize);
        const float slackOfFloats =
            1e-6F * (glm::dot(glm::abs(plane.normal), glm::abs(cell.center)) + reach + std::abs(plane.distance));
        if (middle + plane.distance + reach + slackOfFloats < 0)
            return false;
    }
    if (clipping.isEmpty())
        return true;
    Box3 box;
    box.add(origin + glm::dvec3(cell.center - cell.halfSize));
    box.add(origin + glm::dvec3(cell.center + cell.halfSize));
    return clipping.isSeen(box);
}

} // namespace gui::draw
