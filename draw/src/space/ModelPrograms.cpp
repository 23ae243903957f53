#include "ModelPrograms.h"

#include "GlassCanvas.h"
#include "SharedInContext.h"

#include <gui/Res.h>
#include <gui/gl/Context.h>

#include <glm/vec3.hpp>

#include <algorithm>
#include <string>

namespace gui::draw
{

namespace
{

constexpr std::array<const char*, 14> cModelFeatures{"TEXTURED", "RESTS",    "WIRES",   "PLAIN", "IDS",
                                                     "EDGES",    "OUTLINE",  "CLIPPED", "FACES", "GLASS",
                                                     "SAMPLES",  "SHADOWED", "MASK",    "PACKED"};

// By ModelProgram::Uniform.
constexpr std::array<const char*, ModelProgram::cUniforms> cUniformNames{
    "toClip",     "reference",   "viewer",      "toLight",   "lightColor", "up",        "lineColor",
    "lineWidth",  "leastCover",  "halfSize",    "toDepth",   "plainColor", "firstId",   "wiresAlone",
    "corner",     "box",         "faceU",       "faceV",     "faceColor",  "pixelSize", "glassPass",
    "isReversed", "sampleCount", "toShadowMap", "shadowSize"};

} // namespace

glm::vec4 ModelProgram::premultiplied(td::Color color)
{
    const glm::vec4 c = glm::vec4(color.red(), color.green(), color.blue(), color.alpha()) / 255.0F;
    return {glm::vec3(c) * c.a, c.a};
}

bool ModelProgram::link(unsigned int features)
{
    std::string head = "#version 330 core\n";
    if ((features & Samples) != 0)
        head += "#extension GL_ARB_sample_shading : enable\n";
    for (std::size_t i = 0; i < cModelFeatures.size(); ++i)
        if ((features >> i & 1U) != 0)
            head += std::string("#define ") + cModelFeatures[i] + '\n';
    // OpenGL ES may have no such shaders, and slow ones: there each triangle has corners of its own.
    const bool hasGeometry = (features & Wires) != 0 && !gl::Context::isES();
    if (hasGeometry)
        head += "#define GEOMETRY\n";
    const char* name = (features & Edges) != 0     ? ":draw/modeledge"
                       : (features & Faces) != 0   ? ":draw/modelface"
                       : (features & Outline) != 0 ? ":draw/modeloutline"
                                                   : ":draw/model";
    const std::string clipping = (features & Clipped) != 0 ? gui::getResText(":draw/clipping.glsl").c_str() : "";
    const std::string light =
        (features & (Plain | Ids | Edges | Outline | Faces)) == 0 ? gui::getResText(":draw/light.glsl").c_str() : "";
    const auto source = [&](const char* stage, const std::string& before)
    { return head + before + gui::getResText((std::string(name) + stage).c_str()).c_str(); };
    const std::string clips = ((features & Edges) == 0 ? "#define CLIPS\n" : "") + clipping;
    const std::string vertex = source(".vert", clips), fragment = source(".frag", clipping + light);
    if (!hasGeometry)
        return Program::link(vertex.c_str(), fragment.c_str());
    return Program::link(vertex.c_str(), fragment.c_str(), source(".geom", clips).c_str());
}

void ModelProgram::onLinked()
{
    std::transform(cUniformNames.begin(), cUniformNames.end(), _uniforms.begin(),
                   [this](const char* name) { return getUniformLocation(name); });
    _clipLocations = {getUniformLocation("clipPlanes"), getUniformLocation("clipKind")};
    activate();
    const auto setUnit = [this](const char* name, gl::Texture::Unit unit)
    { setUniformValue(static_cast<unsigned int>(getUniformLocation(name)), static_cast<int>(unit)); };
    setUnit("parts", cPartsUnit);
    setUnit("edges", cEdgesUnit);
    setUnit("picture", cTextureUnit);
    setUnit("mask", cMaskUnit);
    setUnit("nearness", GlassCanvas::cUnit);
    setUnit("shadowMap", cShadowUnit);
}

std::shared_ptr<ModelPrograms> ModelPrograms::get() { return getSharedInContext<ModelPrograms>(); }

ModelProgram* ModelPrograms::find(unsigned int features)
{
    std::unique_ptr<ModelProgram>& pProgram = _programs[features];
    if (!pProgram)
    {
        pProgram = std::make_unique<ModelProgram>();
        pProgram->link(features);
    }
    return pProgram->isOK() ? pProgram.get() : nullptr;
}

} // namespace gui::draw
