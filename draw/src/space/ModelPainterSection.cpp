#include "ModelPainter.h"

#include <gui/draw/Ray.h>

#include <gui/gl/Context.h>

#include <glm/geometric.hpp>

#include <cmath>

namespace gui::draw
{

namespace
{

constexpr float cFaceLightness = 0.45F; // from the material to white

} // namespace

// @return false when there is something to cut and no room for it
bool ModelPainter::cutSection()
{
    if (_sight.clipping.isEmpty())
        return true;
    const SectionCutter::Source source{_data.vertices, _data.getFloatsPerVertex(),
                                       _data.hasRests ? _data.getFloatsPerVertex() - 3 : 0, _data.indices,
                                       _data.levels.front().cells};
    _section.cut(_sight.clipping, source, _data.origin, _sight.slack, _data.hasRests);
    return _section.upload(_pGL->section) || fail("GL has no room for its section");
}

bool ModelPainter::drawFaces(const Flat& flat, const ModelLook& look, const IsWanted& isWanted)
{
    if (_sight.clipping.isEmpty() || !look.section.isClosed || !_pGL->section.triangles.isCommitted())
        return true;
    ModelProgram* pProgram = activate(flat.features | ModelProgram::Faces, look);
    if (pProgram == nullptr)
        return false;
    const ClipState clip(_sight.clipping, ClipState::What::Face);
    gl::Context::disable(gl::Context::Flag::CullFace);
    flat.tell(*pProgram);
    if (flat.features == 0)
    {
        const td::Color color = look.section.color;
        pProgram->setUniformValue(pProgram->at(ModelProgram::PlainColor), ModelProgram::premultiplied(color));
        pProgram->setUniformValue(pProgram->at(ModelProgram::FaceColor),
                                  glm::vec2(cFaceLightness, color.alpha() > 0 ? 1 : 0));
    }
    for (std::size_t i = 0; i < _section.getFaces().size(); ++i)
    {
        const ModelSection::Face& face = _section.getFaces()[i];
        const auto axis = [&](const glm::dvec3& along) {
            return glm::vec4(glm::vec3(along), static_cast<float>(glm::dot(_sight.reference - face.plane.base, along)));
        };
        ClipState::setFaceUniforms(_sight.clipping, i, pProgram->getClipLocations(), _data.origin + _sight.reference);
        pProgram->setUniformValue(pProgram->at(ModelProgram::FaceU), axis(face.plane.u));
        pProgram->setUniformValue(pProgram->at(ModelProgram::FaceV), axis(face.plane.v));
        pProgram->setUniformValue(pProgram->at(ModelProgram::PixelSize), getPixelSizeOn(face.plane));
        _commands.reset();
        for (const ModelSection::Range& range : face.ranges)
            if (_states[range.part].isVisible && isWanted(_states[range.part]))
                flush(range.first, range.first + range.count);
        _commands.execute();
    }
    if (!_kinds.areTwoSided)
        gl::Context::enable(gl::Context::Flag::CullFace);
    return true;
}

bool ModelPainter::drawSectionLines(const ModelLook& look)
{
    if (_sight.clipping.isEmpty() || _section.isEmpty() ||
        ModelSight::getWidth(look.section.outline, _sight.scale) <= 0)
        return true;
    ModelProgram* pProgram = activate(ModelProgram::Edges, look);
    if (pProgram == nullptr)
        return false;
    const auto drawRange = [&](const gl::Quads::Range& range)
    {
        _ranges.assign(1, range);
        return range.count == 0 || drawLines(*pProgram, _pGL->section.lines, look.section.outline);
    };
    for (std::size_t i = 0; i < _section.getFaces().size(); ++i)
    {
        ClipState::setFaceUniforms(_sight.clipping, i, pProgram->getClipLocations(), _data.origin + _sight.reference);
        if (!drawRange(_section.getFaces()[i].lines))
            return false;
    }
    ClipState::setNoUniforms(pProgram->getClipLocations());
    return !look.section.isClosed || drawRange(_section.getCreases());
}

// Model units in a pixel, about where a plane is seen.
float ModelPainter::getPixelSizeOn(const SectionPlane& plane) const
{
    const glm::dvec3 middle = _data.bounds.getCenter();
    glm::dvec3 place = middle - glm::dot(middle - _data.origin - plane.base, plane.normal) * plane.normal;
    const Ray ray = _sight.eye.getRay({_sight.eye.getSize().width / 2, _sight.eye.getSize().height / 2});
    const double towards = glm::dot(ray.direction, plane.normal);
    const double way = glm::dot(_data.origin + plane.base - ray.origin, plane.normal) / towards;
    if (std::abs(towards) > 1e-6 && way > 0 && _data.bounds.contains(ray.at(way)))
        place = ray.at(way);
    const double size = _sight.eye.getSizeAt(place) / _sight.eye.getScale();
    return size > 0 ? static_cast<float>(size) : 1;
}

} // namespace gui::draw
