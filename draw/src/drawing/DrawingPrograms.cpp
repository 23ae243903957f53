#include "DrawingPrograms.h"

#include "../space/SharedInContext.h"

#include <gui/Res.h>

#include <array>
#include <string>

namespace gui::draw
{

namespace
{

/// The shaders' names for ShapeFeature's bits.
constexpr std::array<const char*, 14> cFeatures{"FILLS",    "STROKES",   "ROUND",  "CAPS",   "DASHES",
                                                "LINKS",    "GRADIENTS", "FAR",    "GLYPHS", "IMAGES",
                                                "PICTURES", "HALOS",     "COLORS", "PLACED"};

} // namespace

bool ShapeProgram::link(unsigned int features)
{
    std::string head = "#version 330 core\n";
    for (std::size_t i = 0; i < cFeatures.size(); ++i)
        if ((features >> i & 1U) != 0)
            head += std::string("#define ") + cFeatures[i] + '\n';
    head += gui::getResText(":draw/drawing.glsl").c_str();
    const std::string name = (features & DrawingPrograms::cCore) != 0            ? ":draw/core"
                             : (features & DrawingPrograms::cPicturesAlone) != 0 ? ":draw/picture"
                                                                                 : ":draw/drawing";
    const std::string vertex = head + gui::getResText((name + ".vert").c_str()).c_str();
    const std::string fragment = head + gui::getResText((name + ".frag").c_str()).c_str();
    return Program::link(vertex.c_str(), fragment.c_str());
}

void ShapeProgram::activateFor(const ShapeTables& tables, const Sight& sight)
{
    activate();
    const int coarseness = tables.getCoarseness(sight.center);
    const std::array<std::uint32_t, 2> x = tables.toUnits(sight.center.x, coarseness),
                                       y = tables.toUnits(sight.center.y, coarseness);
    setUniformValue(_center, glm::uvec4(x[0], x[1], y[0], y[1]));
    setUniformValue(_coarseness, coarseness);
    const Affine& map = sight.toPixels;
    setUniformValue(_toPixels, glm::vec4(map.a, map.b, map.c, map.d));
    setUniformValue(_halfSize, glm::vec2(sight.size.width / 2.0, sight.size.height / 2.0));
    setUniformValue(_pixelsPerPoint, static_cast<float>(sight.pixelsPerPoint));
}

void ShapeProgram::onLinked()
{
    const auto find = [this](const char* name) { return static_cast<unsigned int>(getUniformLocation(name)); };
    _center = find("center");
    _coarseness = find("coarseness");
    _toPixels = find("toPixels");
    _halfSize = find("halfSize");
    _pixelsPerPoint = find("pixelsPerPoint");
    activate();
    int unit = 0;
    setUniformValue(find("image"), static_cast<int>(DrawingPrograms::cImageUnit));
    setUniformValue(find("pictures"), static_cast<int>(DrawingPrograms::cPictureUnit));
    setUniformValue(find("coloredPictures"), static_cast<int>(DrawingPrograms::cColoredUnit));
    setUniformValue(find("longElements"), static_cast<int>(DrawingPrograms::cLongElementsUnit));
    for (const char* name : {"shapes", "elements", "points", "nodes", "numbers", "links", "glyphs"})
        setUniformValue(find(name), unit++);
}

void LayerProgram::onLinked()
{
    corner = getUniformLocation("corner");
    opacity = getUniformLocation("opacity");
    activate();
    setUniformValue(static_cast<unsigned int>(getUniformLocation("layer")),
                    static_cast<int>(DrawingPrograms::cLayerUnit));
}

std::shared_ptr<DrawingPrograms> DrawingPrograms::get() { return getSharedInContext<DrawingPrograms>(); }

DrawingPrograms::DrawingPrograms()
{
    _home.set(gl::CurrentContext::getID());
    _layer.link();
}

ShapeProgram& DrawingPrograms::find(unsigned int features)
{
    std::unique_ptr<ShapeProgram>& pProgram = _programs[features];
    if (!pProgram)
    {
        pProgram = std::make_unique<ShapeProgram>();
        pProgram->link(features);
    }
    return *pProgram;
}

} // namespace gui::draw
