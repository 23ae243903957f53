#include "ModelPainter.h"

#include "ShadowMap.h"

#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>

#include <vo/Log.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

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
constexpr float cLargestOutline = 24; // pixels, all of which the shader looks through

float linearOf(unsigned int channel)
{
    const double c = channel / 255.0;
    return static_cast<float>(c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4));
}

glm::vec3 linearOf(td::Color color) { return {linearOf(color.red()), linearOf(color.green()), linearOf(color.blue())}; }

// Of colours times their alpha.
void beginBlending()
{
    glBlendEquation(GL_FUNC_ADD);
    gl::Context::enable(gl::Context::Flag::Blend);
    gl::Context::setBlendFunction(gl::Blend::Factor::One, gl::Blend::Factor::OneMinusSrcAlpha);
}

// A length in points; 0 for what is none.
float inPixels(double points, float scale)
{
    return points > 0 ? static_cast<float>(std::min(points * static_cast<double>(scale), 1e6)) : 0;
}

double inUnit(double value) { return value >= 1 ? 1 : value > 0 ? value : 0; }

// Four numbers of 16 bits as NormShort4 has them, in two floats.
std::array<float, 2> packedNormal(const glm::vec3& normal)
{
    std::array<std::int16_t, 4> shorts{};
    for (std::size_t i = 0; i < 3; ++i)
        shorts[i] = static_cast<std::int16_t>(std::lround(normal[static_cast<int>(i)] * 32767.0F));
    return std::bit_cast<std::array<float, 2>>(shorts);
}

} // namespace

ModelPainter::~ModelPainter()
{
    if (const std::shared_ptr<SpaceLayers> pLayers = _pLayers.lock())
        pLayers->remove(this);
}

void ModelPainter::setGeometry(ModelGeometry&& geometry, bool hasTextureCoordinates)
{
    _bounds = geometry.bounds;
    _origin = geometry.origin;
    _levels = std::move(geometry.levels);
    _indices = std::move(geometry.indices);
    _hasRests = geometry.hasRests;
    _hasTextureCoordinates = hasTextureCoordinates;
    _vertices.clear();
    _vertices.reserve(geometry.vertices.size() * getFloatsPerVertex());
    for (const MeshSurface::Vertex& vertex : geometry.vertices)
    {
        const std::array<float, 2> normal = packedNormal(vertex.normal);
        _vertices.insert(_vertices.end(), {vertex.position.x, vertex.position.y, vertex.position.z, normal[0],
                                           normal[1], static_cast<float>(vertex.part)});
        if (_hasTextureCoordinates)
            _vertices.insert(_vertices.end(), {vertex.textureCoordinate.x, vertex.textureCoordinate.y});
        if (_hasRests)
            _vertices.insert(_vertices.end(), {vertex.rest.x, vertex.rest.y, vertex.rest.z});
    }
    _edges.clear();
    for (const MeshSurface::Edge& edge : geometry.edges)
    {
        for (std::size_t i = 0; i < 2; ++i)
            _edges.emplace_back(edge.positions[i], static_cast<float>(edge.parts[i]));
        for (std::size_t i = 0; i < 2 && _hasRests; ++i)
            _edges.emplace_back(edge.rests[i], 0);
    }
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
            {_hasTextureCoordinates ? part.texture : 0, part.wires, part.isVisible, part.isSelected, isGlass});
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
    using gl::DataType;
    using Layout = std::initializer_list<DataType>;
    const std::size_t nVertices = _vertices.size() / getFloatsPerVertex();
    const auto init = [&](const Layout& layout) { return buffer.init(0, nVertices, _indices.size(), layout); };
    if (_hasTextureCoordinates && _hasRests)
        init({DataType::Vec3, DataType::NormShort4, DataType::Float, DataType::Vec2, DataType::Vec3});
    else if (_hasTextureCoordinates)
        init({DataType::Vec3, DataType::NormShort4, DataType::Float, DataType::Vec2});
    else if (_hasRests)
        init({DataType::Vec3, DataType::NormShort4, DataType::Float, DataType::Vec3});
    else
        init({DataType::Vec3, DataType::NormShort4, DataType::Float});
    buffer.appendVertices(_vertices.data(), nVertices);
    buffer.appendIndices(_indices.data(), _indices.size());
    if (!buffer.commit() || !buffer.isCommitted())
    {
        _pGL.reset();
        return fail("GL has no room for its triangles");
    }
    _partTexels.clear();
    _arePartsChanged = true; // until they are there
    return uploadParts(parts, look.section.hatch, _sight.scale);
}

bool ModelPainter::uploadParts(const std::vector<ModelPart>& parts, const Model::Hatch& hatch, float scale)
{
    std::vector<glm::vec4> texels;
    texels.reserve(cTexelsPerPart * parts.size());
    for (const ModelPart& part : parts)
    {
        const double polish = inUnit(part.material.shininess);
        const int flags = (part.isVisible ? 1 : 0) | (part.material.isTwoSided ? 2 : 0) |
                          (part.texture != 0 && _hasTextureCoordinates ? 4 : 0);
        texels.emplace_back(linearOf(part.material.color), static_cast<float>(flags));
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
    if (_pGL->edges.getSize() == _edges.size())
        return true;
    if (!_pGL->edges.resize(_edges.size()))
        return fail("GL has no room for its edges");
    _pGL->edges.write(0, _edges.data(), _edges.size());
    return true;
}

const ModelGeometry::Level& ModelPainter::chooseLevel(const Eye& eye, double tolerance) const
{
    std::size_t level = 0;
    double nearest = std::numeric_limits<double>::infinity();
    for (unsigned int i = 0; i < 8; ++i)
        nearest = std::min(nearest, eye.getDistance(_bounds.getCorner(i)));
    if (!eye.isOrthographic() && !(nearest > eye.getNearest()))
        return _levels.front();
    const double step = eye.getSizeAt(eye.getPosition() + nearest * eye.getDirection()) * tolerance;
    while (level + 1 < _levels.size() && _levels[level + 1].step <= step)
        ++level;
    return _levels[level];
}

ModelProgram* ModelPainter::activate(unsigned int features, const ModelLook& look)
{
    const bool isFace = (features & ModelProgram::Faces) != 0;
    const bool isSurface = !isFace && (features & (ModelProgram::Edges | ModelProgram::Outline)) == 0;
    if (isSurface && _hasTextureCoordinates)
        features |= ModelProgram::Textured;
    if (_hasRests && (features & ModelProgram::Outline) == 0)
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
    pProgram->setBuffer(isSurface ? &_pGL->triangles : isFace ? &_pGL->section.triangles : nullptr);
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
        program.setUniformValue(program.at(ModelProgram::LightColor),
                                glm::vec4(linearOf(look.light.color), inUnit(look.light.ambient)));
    }
    if ((features & ModelProgram::Shadowed) != 0)
    {
        const ShadowMap& map = *_sight.pShadowMap;
        program.setUniformValue(program.at(ModelProgram::ToShadowMap), map.getMatrix(_origin + _sight.reference));
        program.setUniformValue(program.at(ModelProgram::ShadowSize),
                                glm::vec3(map.getTexelSize(), 1 / map.getEye().getSize().width, map.getRadius()));
        gl::Textures::bindToSamplerUnit(map.getTexture(), ModelProgram::cShadowUnit, gl::Texture::Type::Tex2D);
    }
    _pGL->parts.bind(ModelProgram::cPartsUnit);
    return pProgram;
}

// @param lineWidth  in pixels, of what lies on the surfaces: they go behind it by what they fall in half of that
void ModelPainter::beginSurfaces(float lineWidth)
{
    using gl::Context;
    for (const Context::Flag flag :
         {Context::Flag::StencilTest, Context::Flag::PolygonOffset, Context::Flag::CullFace, Context::Flag::Blend})
        Context::disable(flag);
    Context::setPolygonMode(Context::PolygonMode::Fill);
    Context::maskColorBuffer(true, true, true, true);
    Context::enable(Context::Flag::DepthTest);
    Context::maskDepthBuffer(true);
    Context::setDepthBufferFunction(_sight.nearer);
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
    pCommand->createDrawElements(gl::Primitive::Triangles, first, end - first);
    _commands.encode(pCommand);
}

// Cells that follow each other are drawn together.
// @param pImages  null where textures don't matter
template <typename IsWanted>
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
    beginBlending();
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
        beginBlending();
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
        ModelProgram* pProgram = activate(ModelProgram::Plain, look);
        if (pProgram == nullptr)
            return false;
        pProgram->setUniformValue(pProgram->at(ModelProgram::PlainColor), glm::vec4(1));
        // Of a slice of the depth, what is before and behind it too: it has no outline there.
        const bool isClamped = glIsEnabled(GL_DEPTH_CLAMP) == GL_TRUE;
        glEnable(GL_DEPTH_CLAMP);
        const ClipState clip(_sight.clipping);
        const auto isSelected = [](const State& state) { return state.isSelected; };
        drawCells(level, nullptr, isSelected, false);
        drawFaces({ModelProgram::Plain, glm::vec4(1)}, look, isSelected);
        if (!isClamped)
            glDisable(GL_DEPTH_CLAMP);
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
    beginBlending();
    const gl::Quads::Range one{0, 1};
    return _pGL->pPrograms->getQuads().draw(std::span(&one, 1)) || fail("there is no vertex array");
}

// @return whether there is something to draw; else what to answer is in isDone
bool ModelPainter::begin(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts, bool& isDone)
{
    isDone = gl::CurrentContext::isThere("Model::draw");
    const auto scale = static_cast<float>(eye.getScale());
    const float reach =
        std::max({ModelSight::getWidth(look.edges, scale), ModelSight::getWidth(look.section.outline, scale),
                  2 * ModelSight::getWidth(look.outline, scale)});
    _sight.pShadowMap = nullptr;
    if (!isDone || getNumberOfTriangles() == 0 || !_sight.look(eye, look.light, _origin, _bounds, reach))
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
    const float edgeWidth = level.edgeCells.empty() ? 0 : ModelSight::getWidth(look.edges, _sight.scale);
    beginSurfaces(getLineWidth(level, look));
    const bool hasGlass = _kinds.areGlass && !(pLayers && pLayers->getWhat() == SpaceLayers::What::Solid);
    const auto isSolid = [=](const State& state)
    { return state.wires == Model::Wires::None && !(hasGlass && state.isGlass); };
    {
        // Of programs that say nothing of clip distances, as those of lines do, nobody knows what is clipped.
        const ClipState clip(_sight.clipping);
        if (activate(0, look) == nullptr || !drawCells(level, &images, isSolid) ||
            !drawFaces({}, look, [](const State& state) { return state.wires != Model::Wires::Alone; }) ||
            !drawWires(Model::Wires::Over, level, look, images))
            return false;
    }
    if ((edgeWidth > 0 && !drawEdges(level, look)) || !drawSectionLines(look))
        return false;
    {
        // Wires that one looks through come last: they cover pixels in part.
        const ClipState clip(_sight.clipping);
        if (!drawWires(Model::Wires::Alone, level, look, images))
            return false;
    }
    if (_kinds.areSelected && ModelSight::getWidth(look.outline, _sight.scale) > 0 && !drawOutline(level, look))
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

// Of what lies on the surfaces, in pixels.
float ModelPainter::getLineWidth(const Level& level, const ModelLook& look) const
{
    const float edges = level.edgeCells.empty() ? 0 : ModelSight::getWidth(look.edges, _sight.scale);
    const float section = _sight.clipping.isEmpty() ? 0 : ModelSight::getWidth(look.section.outline, _sight.scale);
    return std::max(edges, section);
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
