#pragma once

#include "BoundTarget.h"

#include <gui/gl/ContextResource.h>
#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace gui::draw
{

/// Puts translucent surfaces over what is bound in the order in which they are seen, pixel by pixel and sample by
/// sample, whatever order they are drawn in: they are drawn once for each layer, from the nearest on, each time with
/// what is not behind the layer before left out (depth peeling, Everitt, 2001; the nearest depth is found by blending,
/// as Bavoil and Myers do, 2008, so that samples of a pixel need not be drawn one by one). What lies behind the last
/// layer is blended in the order of drawing. A layer that nothing is in ends it, which the GPU finds out by itself.
///
/// OpenGL ES asks the GPU whether a layer has something in it, and copies no depth of several samples: there layers
/// have the depth buffer of what is drawn into, or one sample, where that is a frame. Where it blends no floats, the
/// nearest depth is found by the depth test, and written as the bytes of its bits.
class GlassCanvas
{
public:
    /// One drawing of all surfaces.
    struct Pass
    {
        enum class Kind
        {
            Nearest, ///< finds the nearest layer
            Next,    ///< finds the one behind a layer
            Layer,   ///< draws a layer
            Rest,    ///< draws a layer and all that is behind it
            Unsorted ///< draws everything, where layers can't be told apart
        };
        Kind kind;
        int nSamples;          ///< of a pixel
        unsigned int nearness; ///< a texture with a layer, of as many samples
        bool isPacked = false; ///< which has bytes, and is found by the depth test
    };
    /// Draws some surfaces, with the blending that there is.
    using Source = std::function<void(const Pass& pass)>;

    static constexpr int cLayers = 16; ///< that are in order
    /// Of textures that a pass has.
    static constexpr gl::Texture::Unit cUnit = gl::Texture::Unit::T4;

    /// The current context's, made when there is none yet.
    static std::shared_ptr<GlassCanvas> get();

    /// In the current context.
    GlassCanvas() { _home.set(gl::CurrentContext::getID()); }
    ~GlassCanvas() { release(); }
    GlassCanvas(const GlassCanvas&) = delete;
    GlassCanvas& operator=(const GlassCanvas&) = delete;

    gl::CurrentContext::ID getContext() const { return _home.getID(); }

    /// Draws into the framebuffer and viewport that are bound, behind what is there already.
    void draw(std::span<const Source> sources);

    /// Makes a pass' texture known to a program's sampler. The program must be active.
    static void bind(const Pass& pass);

private:
    class CompositeProgram;

    BoundTarget find(const BoundTarget& target);
    bool prepare(const BoundTarget& wanted);
    unsigned int makeTexture(unsigned int format) const;
    void attachDepth(unsigned int renderbuffer) const;
    bool isEmpty(std::size_t layer) const;
    void drawLayers(const BoundTarget& target, std::span<const Source> sources);
    void composite(const BoundTarget& target);
    void release();

    // Two for layers that are found in turn, and one for what is drawn.
    std::array<unsigned int, 3> _framebuffers{}, _textures{};
    unsigned int _depth = 0;
    std::array<unsigned int, cLayers + 1> _queries{};
    BoundTarget _made; // what they are for; of a place only the size counts
    bool _isRefused = false, _isSaid = false;
    bool _isPacked = false;        // see Pass
    unsigned int _sharedDepth = 0; // of what is drawn into, where that is used; else 0
    std::shared_ptr<CompositeProgram> _pComposite;
    gl::Quads _quads;
    gl::ContextResource _home{
        [](void* pThis, gl::ContextResource::Event) { static_cast<GlassCanvas*>(pThis)->release(); }, this};
};

} // namespace gui::draw
