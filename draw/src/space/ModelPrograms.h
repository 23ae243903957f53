#pragma once

#include "ClipState.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>

#include <td/Color.h>

#include <glm/vec4.hpp>

#include <array>
#include <cstdint>
#include <map>
#include <memory>

namespace gui::draw
{

/// One of the programs that draw models, with the uniforms that they have, or some of them.
class ModelProgram final : public gl::Program
{
public:
    /// The shaders' names for these are in the source, in the same order.
    enum Feature : unsigned int
    {
        Textured = 1,    ///< vertices have texture coordinates
        Rests = 2,       ///< and what floats lack of their positions
        Wires = 4,       ///< triangles with their sides
        Plain = 8,       ///< one colour
        Ids = 16,        ///< the part's number as a colour
        Edges = 32,      ///< quads about edges
        Outline = 64,    ///< the outline of a mask
        Clipped = 128,   ///< with planes that cut something away
        Faces = 256,     ///< faces of cuts
        Glass = 512,     ///< translucent, for a GlassCanvas
        Samples = 1024,  ///< several of a pixel
        Shadowed = 2048, ///< by a ShadowMap
        Mask = 4096,     ///< for the mask of an outline, at any depth
        Packed = 8192    ///< how near glass is, as bytes
    };
    enum Uniform : std::size_t
    {
        ToClip,
        Reference,
        Viewer,
        ToLight,
        LightColor,
        Up,
        LineColor,
        LineWidth,
        LeastCover,
        HalfSize,
        ToDepth,
        PlainColor,
        FirstId,
        WiresAlone,
        Corner,
        Box,
        FaceU,
        FaceV,
        FaceColor,
        PixelSize,
        GlassPass,
        IsReversed,
        SampleCount,
        ToShadowMap,
        ShadowSize,
        cUniforms
    };

    /// A colour times its alpha.
    static glm::vec4 premultiplied(td::Color color);

    bool link(unsigned int features);
    const ClipState::Locations& getClipLocations() const { return _clipLocations; }
    unsigned int at(Uniform uniform) const { return static_cast<unsigned int>(_uniforms[uniform]); }

    static constexpr gl::Texture::Unit cPartsUnit = gl::Texture::Unit::T0, cEdgesUnit = gl::Texture::Unit::T1;
    static constexpr gl::Texture::Unit cTextureUnit = gl::Texture::Unit::T2, cMaskUnit = gl::Texture::Unit::T3;
    static constexpr gl::Texture::Unit cShadowUnit = gl::Texture::Unit::T5;

protected:
    void onLinked() override;

private:
    std::array<int, cUniforms> _uniforms{};
    ClipState::Locations _clipLocations;
};

/// What all models of a context draw with.
class ModelPrograms
{
public:
    /// Those of the current context, made when there are none yet.
    static std::shared_ptr<ModelPrograms> get();

    /// In the current context.
    ModelPrograms() { _home.set(gl::CurrentContext::getID()); }

    /// @return null when it does not link, which is tried once
    ModelProgram* find(unsigned int features);
    gl::Quads& getQuads() { return _quads; }
    /// In whose context they are; the one that took its place after a loss.
    gl::CurrentContext::ID getContext() const { return _home.getID(); }

private:
    std::map<unsigned int, std::unique_ptr<ModelProgram>> _programs;
    gl::Quads _quads;
    gl::ContextResource _home{[](void*, gl::ContextResource::Event) {}, nullptr};
};

} // namespace gui::draw
