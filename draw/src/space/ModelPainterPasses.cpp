#include "ModelPainter.h"

#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>

#include <bit>

// What a model is drawn for besides being seen: shadows, layers of glass, masks and ids.

namespace gui::draw
{

// What casts shadows, into a depth buffer alone.
bool ModelPainter::drawShadows(const Eye& eye, const ModelLook& look)
{
    const gl::StateGuard guard;
    const ClipState clip(_sight.clipping);
    beginSurfaces(0);
    // Surfaces do not shade themselves: they lie a little deeper than they are.
    gl::Context::setPolygonOffset(1.5F, 2);
    gl::Context::enable(gl::Context::Flag::PolygonOffset);
    const auto castsShadow = [](const State& state) { return !state.isGlass && state.wires != Model::Wires::Alone; };
    if (activate(ModelProgram::Plain, look) == nullptr ||
        !drawCells(chooseLevel(eye, look.tolerance), nullptr, castsShadow) ||
        !drawFaces({ModelProgram::Plain, glm::vec4(1), 0}, look, castsShadow))
        return false;
    _lastFailure = nullptr;
    return true;
}

// Its translucent parts, one time of many.
void ModelPainter::drawGlass(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts,
                             ImageStore& images, const GlassCanvas::Pass& pass, const ShadowMap* pShadowMap)
{
    bool isDone = false;
    if (!begin(eye, look, parts, isDone))
        return;
    _sight.pShadowMap = pShadowMap;
    const Level& level = chooseLevel(eye, look.tolerance);
    const ClipState clip(_sight.clipping);
    beginSurfaces(getLineWidth(level, look));
    gl::Context::maskDepthBuffer(false);
    gl::Context::enable(gl::Context::Flag::Blend);
    using Kind = GlassCanvas::Pass::Kind;
    unsigned int features = ModelProgram::Glass;
    if (pass.kind == Kind::Nearest || pass.kind == Kind::Next)
        features |= ModelProgram::Plain;
    if (pass.nSamples > 1 && pass.kind != Kind::Unsorted)
        features |= ModelProgram::Samples;
    if (pass.isPacked)
        features |= ModelProgram::Packed;
    if (pass.isPacked && (features & ModelProgram::Plain) != 0)
    {
        gl::Context::maskDepthBuffer(true);
        gl::Context::disable(gl::Context::Flag::Blend);
    }
    ModelProgram* pProgram = activate(features, look);
    if (pProgram == nullptr)
        return;
    pProgram->setUniformValue(pProgram->at(ModelProgram::SampleCount), pass.nSamples);
    pProgram->setUniformValue(pProgram->at(ModelProgram::GlassPass), static_cast<int>(pass.kind));
    pProgram->setUniformValue(pProgram->at(ModelProgram::IsReversed), _sight.isReversed ? 1 : 0);
    GlassCanvas::bind(pass);
    drawCells(level, &images, [](const State& state) { return state.isGlass; });
    gl::Context::maskDepthBuffer(true);
}

void ModelPainter::Flat::tell(ModelProgram& program) const
{
    if ((features & ModelProgram::Ids) != 0)
        program.setUniformValue(program.at(ModelProgram::FirstId), std::bit_cast<int>(firstId));
    if ((features & ModelProgram::Plain) != 0)
        program.setUniformValue(program.at(ModelProgram::PlainColor), color);
}

bool ModelPainter::drawFlat(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts,
                            const Flat& flat)
{
    bool isDone = false;
    if (!begin(eye, look, parts, isDone))
        return isDone;
    const gl::StateGuard guard;
    const ClipState clip(_sight.clipping);
    beginSurfaces(0);
    ModelProgram* pProgram = activate(flat.features, look);
    if (pProgram == nullptr)
        return false;
    const auto isAny = [](const State&) { return true; };
    flat.tell(*pProgram);
    if (!drawCells(chooseLevel(eye, look.tolerance), nullptr, isAny) || !drawFaces(flat, look, isAny))
        return false;
    _lastFailure = nullptr;
    return true;
}

} // namespace gui::draw
