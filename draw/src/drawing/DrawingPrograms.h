#pragma once

#include "ShapeTables.h"
#include "Sight.h"

#include <gui/gl/ContextResource.h>
#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>

#include <map>
#include <memory>

namespace gui::draw
{

/// Draws shapes of some features, or the inside of opaque fills.
class ShapeProgram final : public gl::Program
{
public:
    bool link(unsigned int features);
    void activateFor(const ShapeTables& tables, const Sight& sight);

protected:
    void onLinked() override;

private:
    unsigned int _center = 0;
    unsigned int _coarseness = 0;
    unsigned int _toPixels = 0;
    unsigned int _halfSize = 0;
    unsigned int _pixelsPerPoint = 0;
};

/// Lays a layer over what is there.
class LayerProgram final : public gl::Program
{
public:
    bool link() { return Program::link(":draw/layer.vert", ":draw/layer.frag"); }

    int corner = -1;
    int opacity = -1;

protected:
    void onLinked() override;
};

/// What all drawings of a context draw with.
class DrawingPrograms
{
public:
    /// The unit behind those of the tables.
    static constexpr gl::Texture::Unit cLayerUnit = gl::Texture::Unit::T7;
    static constexpr gl::Texture::Unit cImageUnit = gl::Texture::Unit::T8;
    static constexpr gl::Texture::Unit cPictureUnit = gl::Texture::Unit::T9;
    static constexpr gl::Texture::Unit cColoredUnit = gl::Texture::Unit::T10;
    static constexpr gl::Texture::Unit cLongElementsUnit = gl::Texture::Unit::T11;

    /// Beside features: the first pass, of what is inside of opaque fills; and nothing but pictures of glyphs.
    static constexpr unsigned int cCore = 1U << 16, cPicturesAlone = 1U << 17;

    /// Those of the current context, made when there are none yet.
    static std::shared_ptr<DrawingPrograms> get();

    /// In the current context.
    DrawingPrograms();

    /// Linked when it is first asked for, once: it may not be OK.
    ShapeProgram& find(unsigned int features);
    LayerProgram& getLayer() { return _layer; }
    gl::Quads& getQuads() { return _quads; }
    /// In whose context they are; the one that took its place after a loss.
    gl::CurrentContext::ID getContext() const { return _home.getID(); }

private:
    std::map<unsigned int, std::unique_ptr<ShapeProgram>> _programs; // by features
    LayerProgram _layer;
    gl::Quads _quads;
    gl::ContextResource _home{[](void*, gl::ContextResource::Event) {}, nullptr};
};

} // namespace gui::draw
