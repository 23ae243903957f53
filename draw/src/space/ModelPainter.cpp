#include "ModelPainter.h"

#include "ShadowMap.h"

#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>

#include <td/GUIThread.h>
#include <vo/Log.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <epoxy/gl.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace gui::draw
{

namespace
{

constexpr std::size_t cTexelsPerPart = 4;

// A length in points; 0 for what is none.
float inPixels(double points, float scale)
{
    return points > 0 ? static_cast<float>(std::min(points * static_cast<double>(scale), 1e6)) : 0;
}

} // namespace

ModelPainter::~ModelPainter()
{
    if (const std::shared_ptr<SpaceLayers> pLayers = _pLayers.lock())
        pLayers->remove(this);
}

void ModelPainter::setData(ModelData&& data)
{
    _data = std::move(data);
    _pGL.reset();
    _section.setChanged();
    markChanged(true);
}

bool ModelPainter::fail(const char* reason)
{
    if (_lastFailure != reason)
        vo::dbgLog("Error! Model::draw: %s!", reason);
    _lastFailure = reason;
    return false;
}

void ModelPainter::collectStates(const std::vector<ModelPart>& parts)
{
    _states.clear();
    _kinds = {};
    for (const ModelPart& part : parts)
    {
        const bool isGlass = part.material.color.alpha() < 255 && part.wires != Model::Wires::Alone;
        _states.push_back(
            {_data.hasTextureCoordinates ? part.texture : 0, part.wires, part.isVisible, part.isSelected, isGlass});
        if (!part.isVisible)
            continue;
        // Wires on what is translucent are by themselves, before it.
        _kinds.areOver = _kinds.areOver || (part.wires == Model::Wires::Over && !isGlass);
        _kinds.areAlone =
            _kinds.areAlone || part.wires == Model::Wires::Alone || (part.wires == Model::Wires::Over && isGlass);
        _kinds.areGlass = _kinds.areGlass || isGlass;
        _kinds.areSelected = _kinds.areSelected || part.isSelected;
        _kinds.areTwoSided = _kinds.areTwoSided || part.material.isTwoSided;
    }
    _areStatesChanged = false;
}

bool ModelPainter::prepare(const ModelLook& look, const std::vector<ModelPart>& parts)
{
    _arePartsChanged = _arePartsChanged || _scale != _sight.scale;
    if (_areStatesChanged)
        collectStates(parts);
    if (_pGL && _pGL->contextID == gl::CurrentContext::getID() && _pGL->triangles.isCommitted())
        return !_arePartsChanged || uploadParts(parts, look.section.hatch, _sight.scale);
    // What another context has goes when that is current.
    _pGL = std::make_unique<InGL>();
    _pGL->contextID = gl::CurrentContext::getID();
    _pGL->pPrograms = ModelPrograms::get();
    for (gl::BufferTexture* pTable : {&_pGL->parts, &_pGL->edges})
        pTable->setKeptForRestore(false);
    gl::Buffer& buffer = _pGL->triangles;
    buffer.setKeptForRestore(false);
    const std::size_t nVertices = _data.vertices.size() / _data.getFloatsPerVertex();
    initBuffer(buffer, nVertices, _data.indices.size());
    buffer.appendVertices(_data.vertices.data(), nVertices);
    buffer.appendIndices(_data.indices.data(), _data.indices.size());
    if (!buffer.commit() || !buffer.isCommitted())
    {
        _pGL.reset();
        return fail("GL has no room for its triangles");
    }
    _partTexels.clear();
    _arePartsChanged = true; // until they are there
    return uploadParts(parts, look.section.hatch, _sight.scale);
}

void ModelPainter::initBuffer(gl::Buffer& buffer, std::size_t nVertices, std::size_t nIndices) const
{
    using gl::DataType;
    using Layout = std::initializer_list<DataType>;
    const auto init = [&](const Layout& layout) { return buffer.init(0, nVertices, nIndices, layout); };
    if (_data.hasTextureCoordinates && _data.hasRests)
        init({DataType::Vec3, DataType::NormShort4, DataType::Float, DataType::Vec2, DataType::Vec3});
    else if (_data.hasTextureCoordinates)
        init({DataType::Vec3, DataType::NormShort4, DataType::Float, DataType::Vec2});
    else if (_data.hasRests)
        init({DataType::Vec3, DataType::NormShort4, DataType::Float, DataType::Vec3});
    else
        init({DataType::Vec3, DataType::NormShort4, DataType::Float});
}

// Without geometry shaders: each triangle has corners of its own.
bool ModelPainter::uploadCorners()
{
    gl::Buffer& corners = _pGL->corners;
    if (corners.isCommitted())
        return true;
    corners.setKeptForRestore(false);
    initBuffer(corners, _data.indices.size(), 0);
    const std::size_t nFloats = _data.getFloatsPerVertex();
    for (const std::uint32_t index : _data.indices)
        corners.appendVertices(_data.vertices.data() + nFloats * index, 1);
    return (corners.commit() && corners.isCommitted()) || fail("GL has no room for its wires");
}

bool ModelPainter::uploadParts(const std::vector<ModelPart>& parts, const Model::Hatch& hatch, float scale)
{
    std::vector<glm::vec4> texels;
    texels.reserve(cTexelsPerPart * parts.size());
    for (const ModelPart& part : parts)
    {
        const double polish = ModelSight::getShare(part.material.shininess);
        const int flags = (part.isVisible ? 1 : 0) | (part.material.isTwoSided ? 2 : 0) |
                          (part.texture != 0 && _data.hasTextureCoordinates ? 4 : 0);
        texels.emplace_back(ModelSight::getLinear(part.material.color), static_cast<float>(flags));
        // Blinn's exponent from 4 to 2048; below a quarter the reflection itself goes.
        texels.emplace_back(std::exp2(2 + 9 * polish), std::min(4 * polish, 1.0),
                            static_cast<float>(part.material.color.alpha()) / 255.0F, 0);
        const Model::Hatch& lines = part.hatch ? *part.hatch : hatch;
        const double side = part.hatch || texels.size() % (2 * cTexelsPerPart) < cTexelsPerPart ? 1 : -1;
        const double angle = std::isfinite(lines.angle) ? side * glm::radians(lines.angle) : 0;
        texels.push_back(ModelProgram::premultiplied(lines.color));
        texels.emplace_back(-std::sin(angle), std::cos(angle), inPixels(lines.spacing, scale),
                            inPixels(lines.width, scale));
    }
    if (_pGL->parts.getSize() != texels.size())
    {
        if (!_pGL->parts.resize(texels.size()))
            return fail("GL has no room for its parts");
        _partTexels.clear();
    }
    const auto end = std::min(texels.size(), _partTexels.size());
    std::size_t first = 0, last = texels.size();
    while (first < end && texels[first] == _partTexels[first])
        ++first;
    while (last > first && last <= end && texels[last - 1] == _partTexels[last - 1])
        --last;
    if (last > first)
        _pGL->parts.write(first, texels.data() + first, last - first);
    _partTexels = std::move(texels);
    _arePartsChanged = false;
    _scale = scale;
    return true;
}

bool ModelPainter::uploadEdges()
{
    if (_pGL->edges.getSize() == _data.edges.size())
        return true;
    if (!_pGL->edges.resize(_data.edges.size()))
        return fail("GL has no room for its edges");
    _pGL->edges.write(0, _data.edges.data(), _data.edges.size());
    return true;
}

const ModelGeometry::Level& ModelPainter::chooseLevel(const Eye& eye, double tolerance) const
{
    std::size_t level = 0;
    double nearest = std::numeric_limits<double>::infinity();
    for (unsigned int i = 0; i < 8; ++i)
        nearest = std::min(nearest, eye.getDistance(_data.bounds.getCorner(i)));
    if (!eye.isOrthographic() && !(nearest > eye.getNearest()))
        return _data.levels.front();
    const double step = eye.getSizeAt(eye.getPosition() + nearest * eye.getDirection()) * tolerance;
    while (level + 1 < _data.levels.size() && _data.levels[level + 1].step <= step)
        ++level;
    return _data.levels[level];
}

ModelProgram* ModelPainter::activate(unsigned int features, const ModelLook& look)
{
    const bool isFace = (features & ModelProgram::Faces) != 0;
    const bool isSurface = !isFace && (features & (ModelProgram::Edges | ModelProgram::Outline)) == 0;
    if (isSurface && _data.hasTextureCoordinates)
        features |= ModelProgram::Textured;
    if (_data.hasRests && (features & ModelProgram::Outline) == 0)
        features |= ModelProgram::Rests;
    const bool isLit = isSurface && (features & (ModelProgram::Plain | ModelProgram::Ids)) == 0;
    if (isLit && _sight.pShadowMap != nullptr)
        features |= ModelProgram::Shadowed;
    if (!_sight.clipping.isEmpty() && (features & ModelProgram::Outline) == 0)
        features |= ModelProgram::Clipped;
    ModelProgram* pProgram = _pGL->pPrograms->find(features);
    if (pProgram == nullptr)
    {
        fail("its program does not link");
        return nullptr;
    }
    _hasCorners = (features & ModelProgram::Wires) != 0 && gl::Context::isES();
    if (_hasCorners && !uploadCorners())
        return nullptr;
    pProgram->setBuffer(_hasCorners ? &_pGL->corners
                        : isSurface ? &_pGL->triangles
                        : isFace    ? &_pGL->section.triangles
                                    : nullptr);
    pProgram->activate();
    pProgram->setBuffer(nullptr);
    ModelProgram& program = *pProgram;
    program.setUniformValue(program.at(ModelProgram::ToClip), _sight.toClip);
    program.setUniformValue(program.at(ModelProgram::Reference), glm::vec3(_sight.reference));
    program.setUniformValue(program.at(ModelProgram::HalfSize), _sight.halfSize);
    if ((features & ModelProgram::Clipped) != 0)
        _sight.setClipUniforms(program.getClipLocations());
    if (isLit)
    {
        program.setUniformValue(program.at(ModelProgram::Viewer), _sight.viewer);
        program.setUniformValue(program.at(ModelProgram::ToLight), _sight.toLight);
        program.setUniformValue(program.at(ModelProgram::Up), _sight.up);
        program.setUniformValue(
            program.at(ModelProgram::LightColor),
            glm::vec4(ModelSight::getLinear(look.light.color), ModelSight::getShare(look.light.ambient)));
    }
    if ((features & ModelProgram::Shadowed) != 0)
        _sight.pShadowMap->tell(program, program.at(ModelProgram::ToShadowMap), program.at(ModelProgram::ShadowSize),
                                ModelProgram::cShadowUnit, _data.origin + _sight.reference);
    _pGL->parts.bind(ModelProgram::cPartsUnit);
    return pProgram;
}

// @param lineWidth  in pixels, of what lies on the surfaces: they go behind it by what they fall in half of that
void ModelPainter::beginSurfaces(float lineWidth)
{
    using gl::Context;
    _sight.beginDrawing();
    if (lineWidth > 0)
    {
        const float sign = _sight.isReversed ? -1.0F : 1.0F;
        Context::setPolygonOffset(sign * (1 + lineWidth / 2), sign * 2);
        Context::enable(Context::Flag::PolygonOffset);
    }
    // What is not drawn anyway need not be found out for each of its pixels.
    if (!_kinds.areTwoSided)
        Context::enable(Context::Flag::CullFace);
}

void ModelPainter::flush(std::uint32_t first, std::uint32_t end)
{
    if (first >= end)
        return;
    gl::Command* pCommand = _commands.get();
    if (_hasCorners)
        pCommand->createDrawArrays(gl::Primitive::Triangles, first, end - first);
    else
        pCommand->createDrawElements(gl::Primitive::Triangles, first, end - first);
    _commands.encode(pCommand);
}

// Cells that follow each other are drawn together.
// @param pImages  null where textures don't matter
bool ModelPainter::drawCells(const Level& level, ImageStore* pImages, const IsWanted& isWanted, bool isBetween)
{
    _commands.reset();
    std::uint32_t first = 0, end = 0, texture = 0;
    for (const ModelCell& cell : level.cells)
    {
        const State& state = _states[cell.part];
        if (!state.isVisible || !isWanted(state) || !_sight.isSeen(cell, isBetween))
            continue;
        const bool isOther = pImages != nullptr && state.texture != 0 && state.texture != texture;
        if (cell.first != end || isOther)
        {
            flush(first, end);
            first = cell.first;
        }
        end = cell.first + cell.count;
        if (isOther)
        {
            _commands.execute();
            _commands.reset();
            texture = state.texture;
            const unsigned int name = pImages->getTexture(texture);
            if (name == 0)
                return fail("GL has no room for a texture");
            gl::Textures::bindToSamplerUnit(name, ModelProgram::cTextureUnit, gl::Texture::Type::Tex2D);
        }
    }
    flush(first, end);
    _commands.execute();
    return true;
}

// @return whether there is something to draw; else what to answer is in isDone
bool ModelPainter::begin(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts, bool& isDone)
{
    TD_ASSERT_GUI_THREAD(false);
    isDone = gl::CurrentContext::isThere("Model::draw");
    const auto scale = static_cast<float>(eye.getScale());
    const float reach =
        std::max({ModelSight::getWidth(look.edges, scale), ModelSight::getWidth(look.section.outline, scale),
                  2 * ModelSight::getWidth(look.outline, scale)});
    _sight.pShadowMap = nullptr;
    if (!isDone || getNumberOfTriangles() == 0 || !_sight.look(eye, look.light, _data.origin, _data.bounds, reach))
        return false;
    isDone = prepare(look, parts) && cutSection();
    return isDone;
}

bool ModelPainter::draw(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts, ImageStore& images,
                        const std::shared_ptr<SpaceLayers>& pLayers)
{
    bool isDone = false;
    if (!begin(eye, look, parts, isDone))
        return isDone;
    if (pLayers && pLayers->getWhat() == SpaceLayers::What::Shadows)
        return drawShadows(eye, look);
    _sight.pShadowMap = pLayers && look.light.kind == Light::Kind::Sun ? pLayers->getShadowMap() : nullptr;
    const gl::StateGuard guard;
    const Level& level = chooseLevel(eye, look.tolerance);
    // Where only depth counts there are no lines, before which surfaces would lie behind where they are.
    const bool hasLines = !pLayers || pLayers->getWhat() != SpaceLayers::What::Solid;
    const float edgeWidth = level.edgeCells.empty() ? 0 : ModelSight::getWidth(look.edges, _sight.scale);
    beginSurfaces(hasLines ? getLineWidth(level, look) : 0);
    const bool hasGlass = _kinds.areGlass && hasLines;
    // Wires on glass are by themselves: where it counts as solid, it is drawn below them all the same.
    const auto isSolid = [=](const State& state)
    { return state.isGlass ? !hasGlass : state.wires == Model::Wires::None; };
    {
        // Of programs that say nothing of clip distances, as those of lines do, nobody knows what is clipped.
        const ClipState clip(_sight.clipping);
        if (activate(0, look) == nullptr || !drawCells(level, &images, isSolid) ||
            !drawFaces({}, look, [](const State& state) { return state.wires != Model::Wires::Alone; }) ||
            !drawWires(Model::Wires::Over, level, look, images))
            return false;
    }
    if (hasLines && ((edgeWidth > 0 && !drawEdges(level, look)) || !drawSectionLines(look)))
        return false;
    {
        // Wires that one looks through come last: they cover pixels in part.
        const ClipState clip(_sight.clipping);
        if (!drawWires(Model::Wires::Alone, level, look, images))
            return false;
    }
    if (hasLines && _kinds.areSelected && ModelSight::getWidth(look.outline, _sight.scale) > 0 &&
        !drawOutline(level, look))
        return false;
    if (hasGlass)
    {
        const ShadowMap* const pShadowMap = _sight.pShadowMap;
        GlassCanvas::Source source = [this, pShadowMap, eye, &look, &parts, &images](const GlassCanvas::Pass& pass)
        { drawGlass(eye, look, parts, images, pass, pShadowMap); };
        _pGL->pGlass = GlassCanvas::get();
        _pLayers = pLayers;
        if (pLayers)
            pLayers->add(this, std::move(source));
        else
            _pGL->pGlass->draw(std::span(&source, 1));
    }
    _lastFailure = nullptr;
    return true;
}

// Of what lies on the surfaces, in pixels.
float ModelPainter::getLineWidth(const Level& level, const ModelLook& look) const
{
    const float edges = level.edgeCells.empty() ? 0 : ModelSight::getWidth(look.edges, _sight.scale);
    const float section = _sight.clipping.isEmpty() ? 0 : ModelSight::getWidth(look.section.outline, _sight.scale);
    return std::max(edges, section);
}

} // namespace gui::draw
