#include "ModelPainter.h"

#include <gui/gl/Context.h>
#include <gui/gl/Framebuffer.h>
#include <gui/gl/Textures.h>

#include <glm/common.hpp>

#include <epoxy/gl.h>

#include <algorithm>

namespace gui::draw
{

namespace
{

// Of a slice of the depth, what is before and behind it too: it has no outline there.
constexpr unsigned int cMask = ModelProgram::Plain | ModelProgram::Mask;

constexpr float cLargestOutline = 24; // pixels, all of which the shader looks through

} // namespace

bool ModelPainter::drawEdges(const Level& level, const ModelLook& look)
{
    _ranges.clear();
    for (const ModelCell& cell : level.edgeCells)
        if (_sight.isSeen(cell))
        {
            if (!_ranges.empty() && _ranges.back().first + _ranges.back().count == cell.first)
                _ranges.back().count += cell.count;
            else
                _ranges.push_back({cell.first, cell.count});
        }
    if (_ranges.empty())
        return true;
    if (!uploadEdges())
        return false;
    ModelProgram* pProgram = activate(ModelProgram::Edges, look);
    if (pProgram == nullptr)
        return false;
    return drawLines(*pProgram, _pGL->edges, look.edges);
}

// Those of _ranges.
bool ModelPainter::drawLines(ModelProgram& program, const gl::BufferTexture& lines, const Model::Line& line)
{
    program.setUniformValue(program.at(ModelProgram::LineColor), ModelProgram::premultiplied(line.color));
    program.setUniformValue(program.at(ModelProgram::LineWidth), ModelSight::getWidth(line, _sight.scale));
    program.setUniformValue(program.at(ModelProgram::LeastCover), 0.0F);
    program.setUniformValue(program.at(ModelProgram::Corner), _sight.corner);
    program.setUniformValue(program.at(ModelProgram::ToDepth),
                            _sight.isReversed ? glm::vec2(1, 0) : glm::vec2(0.5, 0.5));
    lines.bind(ModelProgram::cEdgesUnit);
    ModelSight::beginBlending();
    gl::Context::disable(gl::Context::Flag::CullFace);
    // Where lines meet, the rim of one must not keep the other away; what is drawn later must know of both.
    gl::Context::maskDepthBuffer(false);
    if (!_pGL->pPrograms->getQuads().draw(_ranges))
        return fail("there is no vertex array");
    gl::Context::maskDepthBuffer(true);
    gl::Context::maskColorBuffer(false, false, false, false);
    program.setUniformValue(program.at(ModelProgram::LeastCover), 0.5F);
    _pGL->pPrograms->getQuads().draw(_ranges);
    gl::Context::maskColorBuffer(true, true, true, true);
    return true;
}

bool ModelPainter::drawWires(Model::Wires wires, const Level& level, const ModelLook& look, ImageStore& images)
{
    const float width = ModelSight::getWidth(look.wires, _sight.scale);
    const bool areAlone = wires == Model::Wires::Alone;
    if (!(areAlone ? _kinds.areAlone && width > 0 : _kinds.areOver))
        return true;
    ModelProgram* pProgram = activate(ModelProgram::Wires, look);
    if (pProgram == nullptr)
        return false;
    pProgram->setUniformValue(pProgram->at(ModelProgram::LineColor), ModelProgram::premultiplied(look.wires.color));
    pProgram->setUniformValue(pProgram->at(ModelProgram::LineWidth), width);
    pProgram->setUniformValue(pProgram->at(ModelProgram::WiresAlone), areAlone ? 1 : 0);
    if (areAlone)
        ModelSight::beginBlending();
    return drawCells(level, &images,
                     [=](const State& state)
                     {
                         const bool isOver = state.wires == Model::Wires::Over;
                         return areAlone ? state.wires == wires || (isOver && state.isGlass) : isOver && !state.isGlass;
                     });
}

// Around what is selected of what is seen, in clip space: its least x and y, and its largest ones.
glm::vec4 ModelPainter::findSelected(const Level& level) const
{
    glm::vec2 low(9), high(-9); // none
    for (const ModelCell& cell : level.cells)
    {
        const State& state = _states[cell.part];
        if (!state.isVisible || !state.isSelected || !_sight.isSeen(cell, false))
            continue;
        for (unsigned int i = 0; i < 8; ++i)
        {
            const glm::vec3 side((i & 1U) != 0 ? 1 : -1, (i & 2U) != 0 ? 1 : -1, (i & 4U) != 0 ? 1 : -1);
            const glm::vec3 corner = cell.center + side * cell.halfSize - glm::vec3(_sight.reference);
            const glm::vec4 clip = _sight.toClip * glm::vec4(corner, 1);
            if (!(clip.w > 0))
                return {-1, -1, 1, 1};
            low = glm::min(low, glm::vec2(clip) / clip.w);
            high = glm::max(high, glm::vec2(clip) / clip.w);
        }
    }
    return {low, high};
}

bool ModelPainter::drawOutline(const Level& level, const ModelLook& look)
{
    using gl::Context;
    const float width = std::min(ModelSight::getWidth(look.outline, _sight.scale), cLargestOutline);
    const glm::vec2 reach = (width + 1) / _sight.halfSize;
    const glm::vec4 box = findSelected(level) + glm::vec4(-reach, reach);
    if (box.x > box.z)
        return true;
    const td::Size<int> size(static_cast<int>(2 * _sight.halfSize.x), static_cast<int>(2 * _sight.halfSize.y));
    gl::Framebuffer& mask = _pGL->mask;
    if (!(mask.getSize() == size))
    {
        // The unit of its texture loses what is bound to it.
        Context::setActiveTextureUnit(ModelProgram::cMaskUnit);
        if (!mask.create(size, {.color = gl::Framebuffer::Color::R8, .samples = 4}))
            return fail("there is no framebuffer of the viewport's size");
    }
    Context::disable(Context::Flag::DepthTest);
    Context::disable(Context::Flag::PolygonOffset);
    Context::disable(Context::Flag::Blend);
    const bool isScissored = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    {
        const gl::Framebuffer::Drawing drawing(mask);
        if (!drawing)
            return fail("its mask cannot be drawn into");
        Context::disable(Context::Flag::ScissorTest);
        glClearColor(0, 0, 0, 0);
        Context::clear(Context::Clear::Color);
        ModelProgram* pProgram = activate(cMask, look);
        if (pProgram == nullptr)
            return false;
        pProgram->setUniformValue(pProgram->at(ModelProgram::PlainColor), glm::vec4(1));
        const ClipState clip(_sight.clipping);
        const auto isSelected = [](const State& state) { return state.isSelected; };
        drawCells(level, nullptr, isSelected, false);
        drawFaces({cMask, glm::vec4(1)}, look, isSelected);
    }
    if (isScissored)
        Context::enable(Context::Flag::ScissorTest);
    ModelProgram* pProgram = activate(ModelProgram::Outline, look);
    if (pProgram == nullptr)
        return false;
    gl::Textures::bindToSamplerUnit(mask.getTextureID(), ModelProgram::cMaskUnit, gl::Texture::Type::Tex2D);
    pProgram->setUniformValue(pProgram->at(ModelProgram::LineColor), ModelProgram::premultiplied(look.outline.color));
    pProgram->setUniformValue(pProgram->at(ModelProgram::LineWidth), width);
    pProgram->setUniformValue(pProgram->at(ModelProgram::Box), glm::clamp(box, -1.0F, 1.0F));
    pProgram->setUniformValue(pProgram->at(ModelProgram::Corner), _sight.corner);
    Context::disable(Context::Flag::CullFace);
    ModelSight::beginBlending();
    const gl::Quads::Range one{0, 1};
    return _pGL->pPrograms->getQuads().draw(std::span(&one, 1)) || fail("there is no vertex array");
}

} // namespace gui::draw
