#include "SpacePrograms.h"

#include "SharedInContext.h"

#include <gui/Res.h>

#include <algorithm>
#include <bit>
#include <string>

namespace gui::draw
{

namespace
{

constexpr std::array<const char*, 6> cSpaceFeatures{"COLORS", "SPHERES", "PLAIN", "IDS", "CLIPPED", "SHADOWED"};

// By SpaceProgram::Kind.
constexpr std::array<const char*, 3> cSpaceShaders{":draw/lines3", ":draw/points3", ":draw/instances"};

// By SpaceProgram::Uniform.
constexpr std::array<const char*, SpaceProgram::cUniforms> cSpaceUniforms{
    "toClip",  "toEye",    "projection", "reference", "halfSize",    "corner",    "scale", "pixelsAtOne",
    "toDepth", "nearSide", "viewer",     "toLight",   "lightColor",  "up",        "stage", "plainColor",
    "firstId", "first",    "size",       "polish",    "toShadowMap", "shadowSize"};

} // namespace

bool SpaceProgram::link(Kind kind, unsigned int features)
{
    std::string head = "#version 330 core\n";
    for (std::size_t i = 0; i < cSpaceFeatures.size(); ++i)
        if ((features >> i & 1U) != 0)
            head += std::string("#define ") + cSpaceFeatures[i] + '\n';
    const std::string name = cSpaceShaders[static_cast<std::size_t>(kind)];
    const auto text = [](const std::string& resource)
    { return std::string(gui::getResText(resource.c_str()).c_str()); };
    std::string vertex = head, fragment = head;
    if ((features & Clipped) != 0)
    {
        // Lines and points are left out in whole or by the pixel.
        vertex += (kind == Kind::Instances ? "#define CLIPS\n" : "") + text(":draw/clipping.glsl");
        fragment += text(":draw/clipping.glsl");
    }
    if (kind != Kind::Lines && (features & (Plain | Ids)) == 0)
        fragment += text(":draw/light.glsl");
    vertex += text(name + ".vert");
    fragment += text(name + ".frag");
    return Program::link(vertex.c_str(), fragment.c_str());
}

void SpaceProgram::setFlat(td::Color color, std::uint32_t firstId)
{
    setUniformValue(at(PlainColor), glm::vec4(color.red(), color.green(), color.blue(), color.alpha()) / 255.0F);
    setUniformValue(at(FirstId), std::bit_cast<int>(firstId));
}

void SpaceProgram::onLinked()
{
    std::transform(cSpaceUniforms.begin(), cSpaceUniforms.end(), _uniforms.begin(),
                   [this](const char* name) { return getUniformLocation(name); });
    _clipLocations = {getUniformLocation("clipPlanes"), getUniformLocation("clipKind")};
    activate();
    const auto setUnit = [this](const char* name, gl::Texture::Unit unit)
    { setUniformValue(static_cast<unsigned int>(getUniformLocation(name)), static_cast<int>(unit)); };
    setUnit("things", cThingsUnit);
    setUnit("lines", cLinesUnit);
    setUnit("colors", cColorsUnit);
    setUnit("shadowMap", cShadowUnit);
}

std::shared_ptr<SpacePrograms> SpacePrograms::get() { return getSharedInContext<SpacePrograms>(); }

SpaceProgram* SpacePrograms::find(SpaceProgram::Kind kind, unsigned int features)
{
    std::unique_ptr<SpaceProgram>& pProgram = _programs[{kind, features}];
    if (!pProgram)
    {
        pProgram = std::make_unique<SpaceProgram>();
        pProgram->link(kind, features);
    }
    return pProgram->isOK() ? pProgram.get() : nullptr;
}

} // namespace gui::draw
