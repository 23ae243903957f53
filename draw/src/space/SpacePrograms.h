#pragma once

#include "ClipState.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace gui::draw
{

/// One of the programs that draw lines, points and instances in space, with the uniforms that it has, or some of them.
class SpaceProgram final : public gl::Program
{
public:
    /// Which shaders.
    enum class Kind : std::uint8_t
    {
        Lines,
        Points,
        Instances
    };
    /// The shaders' names for these are in the source, in the same order.
    enum Feature : unsigned int
    {
        Colors = 1,   ///< of each point of a line
        Spheres = 2,  ///< points as such
        Plain = 4,    ///< one colour
        Ids = 8,      ///< the thing's number as a colour
        Clipped = 16, ///< with planes that cut something away
        Shadowed = 32 ///< what is lit, under a sun's shadows
    };
    enum Uniform : std::size_t
    {
        ToClip,
        ToEye,
        Projection,
        Reference,
        HalfSize,
        Corner,
        Scale,
        PixelsAtOne,
        ToDepth,
        NearSide,
        Viewer,
        ToLight,
        LightColor,
        Up,
        Stage,
        PlainColor,
        FirstId,
        First,
        Size,
        Polish,
        ToShadowMap,
        ShadowSize,
        cUniforms
    };
    /// What a draw of lines or points does to a pixel.
    enum class Pass : std::uint8_t
    {
        Core,  ///< colours what is covered (nearly) whole, and writes its depth
        Rims,  ///< colours the rest
        Depth, ///< of what is covered by more than half, and not core
        Flat   ///< all that is covered by half, without a rim
    };

    bool link(Kind kind, unsigned int features);
    const ClipState::Locations& getClipLocations() const { return _clipLocations; }
    unsigned int at(Uniform uniform) const { return static_cast<unsigned int>(_uniforms[uniform]); }
    void setPass(Pass pass) { setUniformValue(at(Stage), static_cast<int>(pass)); }
    /// For Plain and Ids.
    void setFlat(td::Color color, std::uint32_t firstId);

    static constexpr gl::Texture::Unit cThingsUnit = gl::Texture::Unit::T0, cLinesUnit = gl::Texture::Unit::T1;
    static constexpr gl::Texture::Unit cColorsUnit = gl::Texture::Unit::T2, cShadowUnit = gl::Texture::Unit::T3;

protected:
    void onLinked() override;

private:
    std::array<int, cUniforms> _uniforms{};
    ClipState::Locations _clipLocations;
};

/// What all lines, points and instances of a context draw with.
class SpacePrograms
{
public:
    /// Those of the current context, made when there are none yet.
    static std::shared_ptr<SpacePrograms> get();

    /// In the current context.
    SpacePrograms() { _home.set(gl::CurrentContext::getID()); }

    /// @return null when it does not link, which is tried once
    SpaceProgram* find(SpaceProgram::Kind kind, unsigned int features);
    gl::Quads& getQuads() { return _quads; }
    /// In whose context they are; the one that took its place after a loss.
    gl::CurrentContext::ID getContext() const { return _home.getID(); }

private:
    std::map<std::pair<SpaceProgram::Kind, unsigned int>, std::unique_ptr<SpaceProgram>> _programs;
    gl::Quads _quads;
    gl::ContextResource _home{[](void*, gl::ContextResource::Event) {}, nullptr};
};

} // namespace gui::draw
