#include "PlotPainter.h"

#include <gui/Res.h>
#include <gui/gl/Context.h>

#include <vo/Log.h>

#include <glm/vec2.hpp>
#include <glm/vec4.hpp>

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace gui::draw
{

namespace
{

constexpr gl::Texture::Unit cTableUnit = gl::Texture::Unit::T0;

struct PassShaders
{
    const char* vertex;
    const char* fragment;
    const char* define;
};

// In the order of PlotScene::Kind, and lines with dashes.
constexpr std::array<PassShaders, 6> cPassShaders{{{":draw/plotmark.vert", ":draw/plotmark.frag", ""},
                                                   {":draw/plottile.vert", ":draw/plotline.frag", ""},
                                                   {":draw/plottile.vert", ":draw/plotarea.frag", ""},
                                                   {":draw/plotmark.vert", ":draw/plotmark.frag", "#define CLOUD\n"},
                                                   {":draw/plotgrid.vert", ":draw/plotgrid.frag", ""},
                                                   {":draw/plottile.vert", ":draw/plotline.frag", "#define DASHES\n"}}};
constexpr std::size_t cDashedLine = 5, cMostDashes = 8;

// Some room beyond what is needed, since the next frame may need a little more.
constexpr std::size_t cTableStep = 4096;

glm::vec4 premultiplied(td::Color color)
{
    const float alpha = static_cast<float>(color.alpha()) / 255;
    return {static_cast<float>(color.red()) / 255 * alpha, static_cast<float>(color.green()) / 255 * alpha,
            static_cast<float>(color.blue()) / 255 * alpha, alpha};
}

} // namespace

class PlotPainter::PassProgram final : public gl::Program
{
public:
    bool link(const PassShaders& shaders)
    {
        std::string head = gui::getResText(":draw/plot.glsl").c_str();
        head.insert(head.find('\n') + 1, shaders.define);
        const std::string vertex = head + gui::getResText(shaders.vertex).c_str();
        const std::string fragment = head + gui::getResText(shaders.fragment).c_str();
        return Program::link(vertex.c_str(), fragment.c_str());
    }

    void activateFor(const PlotScene::Pass& pass, const td::Size<int>& size)
    {
        activate();
        setUniformValue(_base, static_cast<int>(pass.first));
        setUniformValue(_halfSize, glm::vec2(size.width / 2.0, size.height / 2.0));
        if (pass.kind == PlotScene::Kind::Line)
        {
            setUniformValue(_halfWidth, pass.halfWidth);
            setUniformValue(_lineColor, premultiplied(pass.shade.from));
            if (!pass.dashes.empty())
                sendDashes(pass.dashes);
        }
        else if (pass.kind == PlotScene::Kind::Area)
        {
            setUniformValue(_fromColor, premultiplied(pass.shade.from));
            setUniformValue(_toColor, premultiplied(pass.shade.to));
            setUniformValue(_shadeY, glm::vec2(pass.shade.fromY, pass.shade.toY));
        }
        else if (pass.kind == PlotScene::Kind::Grid)
        {
            const PlotScene::GridLook& grid = *pass.pGrid;
            const auto toVector = [](const std::array<double, 4>& v) { return glm::vec4(v[0], v[1], v[2], v[3]); };
            setUniformValue(_box, glm::vec4(pass.box.left, pass.box.top, pass.box.right, pass.box.bottom));
            setUniformValue(_toPlace, toVector(grid.toPlace));
            setUniformValue(_toCell, toVector(grid.toCell));
            setUniformValue(_look,
                            glm::vec4(grid.areLogarithmic[0], grid.areLogarithmic[1], grid.isSmooth, grid.nSamples));
            setUniformValue(_cells, glm::vec2(grid.columns, grid.rows));
            setUniformValue(_range, glm::vec2(grid.low, (ColorMap::cSize - 1) / (grid.high - grid.low)));
        }
        else if (pass.kind == PlotScene::Kind::Cloud)
        {
            setUniformValue(_toPixels,
                            glm::vec4(pass.toPixels[0], pass.toPixels[1], pass.toPixels[2], pass.toPixels[3]));
            setUniformValue(_look, glm::vec4(PlotScene::shapeOf(pass.marker), pass.size / 2, pass.edgeWidth, 0));
            setUniformValue(_edge, premultiplied(pass.edge));
        }
    }

protected:
    void onLinked() override
    {
        const auto find = [this](const char* name) { return static_cast<unsigned int>(getUniformLocation(name)); };
        _base = find("base");
        _halfSize = find("halfSize");
        _halfWidth = find("halfWidth");
        _lineColor = find("lineColor");
        _fromColor = find("fromColor");
        _toColor = find("toColor");
        _shadeY = find("shadeY");
        _toPixels = find("toPixels");
        _look = find("look");
        _edge = find("edge");
        _box = find("box");
        _toPlace = find("toPlace");
        _toCell = find("toCell");
        _cells = find("cells");
        _range = find("range");
        _nDashes = find("nDashes");
        for (std::size_t i = 0; i < cMostDashes; ++i)
            _dashes[i] = find(("dashes[" + std::to_string(i) + "]").c_str());
        activate();
        setUniformValue(find("table"), static_cast<int>(cTableUnit));
    }

private:
    void sendDashes(const std::vector<float>& dashes)
    {
        const std::size_t n = std::min(dashes.size(), cMostDashes);
        float end = 0;
        for (std::size_t i = 0; i < n; ++i)
            setUniformValue(_dashes[i], end += dashes[i]);
        setUniformValue(_nDashes, static_cast<int>(n));
    }

    unsigned int _base = 0, _halfSize = 0, _halfWidth = 0, _lineColor = 0, _fromColor = 0, _toColor = 0, _shadeY = 0;
    unsigned int _nDashes = 0, _toPixels = 0, _look = 0, _edge = 0;
    unsigned int _box = 0, _toPlace = 0, _toCell = 0, _cells = 0, _range = 0;
    std::array<unsigned int, cMostDashes> _dashes{};
};

// What tables hold is in the scene, for a context that is lost as well.
PlotPainter::PlotPainter() { _table.setKeptForRestore(false); }
PlotPainter::~PlotPainter() = default;

bool PlotPainter::fail(const char* reason)
{
    if (_lastFailure != reason)
        vo::dbgLog("Error! Plot::draw: %s!", reason);
    _lastFailure = reason;
    return false;
}

PlotPainter::PassProgram* PlotPainter::programFor(std::size_t number)
{
    std::unique_ptr<PassProgram>& pProgram = _programs[number];
    if (!pProgram)
    {
        pProgram = std::make_unique<PassProgram>();
        pProgram->link(cPassShaders[number]);
    }
    return pProgram->isOK() ? pProgram.get() : nullptr;
}

PlotPainter::Kept& PlotPainter::keep(std::uint64_t id, AllKept& all, gl::BufferTexture::Format format)
{
    std::unique_ptr<Kept>& pKept = all[id];
    if (!pKept)
        pKept = std::make_unique<Kept>(format);
    pKept->isUsed = true;
    return *pKept;
}

bool PlotPainter::bindCloud(const PlotScene::Cloud& cloud)
{
    Kept& kept = keep(cloud.id, _clouds, gl::BufferTexture::Format::UInt4);
    if (kept.version != cloud.version || kept.table.getSize() == 0)
    {
        // Other numbers of them are other tables, with what was there forgotten.
        if (!kept.table.resize(cloud.texels.size()))
            return fail("there is no room for its markers");
        kept.table.write(0, cloud.texels.data(), cloud.texels.size());
        kept.version = cloud.version;
    }
    kept.table.bind(cTableUnit);
    return true;
}

bool PlotPainter::bindGrid(const PlotScene::GridLook& grid)
{
    Kept& kept = keep(grid.id, _grids, gl::BufferTexture::Format::UInt);
    if (kept.version != grid.version || kept.table.getSize() == 0)
    {
        if (!kept.table.resize(ColorMap::cSize + grid.values.size()))
            return fail("there is no room for its cells");
        kept.table.write(0, grid.pMap->getColors().data(), ColorMap::cSize);
        kept.table.write(ColorMap::cSize, grid.values.data(), grid.values.size());
        kept.version = grid.version;
    }
    kept.table.bind(cTableUnit);
    return true;
}

bool PlotPainter::draw(const PlotScene& scene, bool isChanged)
{
    if (gl::CurrentContext::getID() == 0)
        return fail("there is no current context");
    if (_contextID != gl::CurrentContext::getID())
    {
        _contextID = gl::CurrentContext::getID();
        _programs = {};
        _table.release();
        _clouds.clear();
        _grids.clear();
        isChanged = true;
    }
    if (scene.isEmpty())
        return true;
    for (AllKept* pAll : {&_clouds, &_grids})
        for (auto& [id, pKept] : *pAll)
            pKept->isUsed = false;
    const std::vector<PlotScene::Texel>& texels = scene.getTexels();
    if (isChanged || _table.getSize() < texels.size())
    {
        if (_table.getSize() < texels.size() &&
            !_table.resize((texels.size() + texels.size() / 4 + cTableStep) / cTableStep * cTableStep))
            return fail("there is no room for its table");
        _table.write(0, texels.data(), texels.size());
    }
    _table.bind(cTableUnit);
    std::array<int, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    gl::Context::enable(gl::Context::Flag::Blend);
    gl::Context::setBlendFunction(gl::Blend::Factor::One, gl::Blend::Factor::OneMinusSrcAlpha);
    gl::Context::enable(gl::Context::Flag::ScissorTest);
    for (const PlotScene::Pass& pass : scene.getPasses())
    {
        if (pass.count == 0)
            continue;
        PassProgram* const pProgram =
            programFor(pass.dashes.empty() ? static_cast<std::size_t>(pass.kind) : cDashedLine);
        if (pProgram == nullptr)
            return fail("its program does not link");
        const int left = static_cast<int>(std::floor(pass.clip.left)),
                  top = static_cast<int>(std::floor(pass.clip.top));
        const int right = static_cast<int>(std::ceil(pass.clip.right));
        const int bottom = static_cast<int>(std::ceil(pass.clip.bottom));
        gl::Context::setScissor(viewport[0] + left, viewport[1] + viewport[3] - bottom, std::max(right - left, 0),
                                std::max(bottom - top, 0));
        if ((pass.pCloud != nullptr && !bindCloud(*pass.pCloud)) || (pass.pGrid && !bindGrid(*pass.pGrid)))
            return false;
        pProgram->activateFor(pass, {viewport[2], viewport[3]});
        const gl::Quads::Range range{0, pass.count};
        if (!_quads.draw(std::span(&range, 1)))
            return fail("there is no vertex array");
        if (pass.pCloud != nullptr || pass.pGrid)
            _table.bind(cTableUnit);
    }
    for (AllKept* pAll : {&_clouds, &_grids})
        std::erase_if(*pAll, [](const auto& entry) { return !entry.second->isUsed; });
    _lastFailure = nullptr;
    return true;
}

} // namespace gui::draw
