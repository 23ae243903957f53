#pragma once

#include "Eye.h"
#include "OrbitCamera.h"
#include "Shadows.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/Framebuffer.h>
#include <gui/gl/Texture2DProgram.h>

#include <td/Export.h>
#include <td/Size.h>

#include <array>
#include <memory>
#include <vector>

namespace gui::gl
{
class Buffer;
}

namespace gui::draw
{

class Occlusion;
class ShadowMap;

/// What a scene in space is drawn into, so that its depth tells apart what is near and what is far: from a tenth of a
/// metre to the ends of a planet. OrbitView has one (see OrbitView::setDepth); in views of other kinds:
///
///     void onDraw(const td::RectNormalized<double>&) override
///     {
///         const draw::Eye eye = _canvas.getEye(_camera, getPixelHiDPIScale());
///         draw::DepthCanvas::Frame frame(_canvas, eye);
///         gl::Context::clear(gl::Context::Clear::Color, "#202830");
///         while (const draw::Eye* pEye = frame.next())
///             _model.draw(*pEye);
///     } // what was drawn is in the view
///
/// - Usual: the depth buffer that is bound. It tells apart what is at some distance, and up to 10^4 times as far.
/// - Reversed: a framebuffer of its own with floats as depth, in OpenGL 4.5 or with ARB_clip_control. It tells apart
///   what differs by some 10^-7 of its distance, at all distances.
/// - Sliced: the buffer that is bound, and the scene drawn two or three times, from the farthest part to the nearest.
///   It tells apart what differs by some 10^-4 of its distance, at all distances.
///
/// Where Reversed is not to be had, Sliced takes its place, with one log line: "Warning! DepthCanvas: no reversed depth
/// here, the scene is drawn in slices".
///
/// Translucent surfaces of models are drawn when next is called again, so that they are over all that was drawn before,
/// in whatever order that came.
///
/// While a Frame draws with reversed depth, GL's clip space has z from 0 to w: what goes by the screen, such as a
/// Drawing, is drawn after the frame. Programs that set a depth function take Eye::getNearer for it.
class GUIGL_API DepthCanvas
{
public:
    using Depth = Eye::Depth; ///< of the buffer

    /// See setDepth.
    explicit DepthCanvas(Depth depth = Depth::Usual);
    ~DepthCanvas();
    DepthCanvas(const DepthCanvas&) = delete;
    DepthCanvas& operator=(const DepthCanvas&) = delete;

    /// What the scene is to be drawn with, from the next frame on.
    void setDepth(Depth depth);
    /// What it is in the current context; what was asked for without one.
    Depth getDepth() const;
    /// Per pixel, of the framebuffer that Reversed makes: 1, 2, 4 (at first), 8 or 16.
    void setSamples(int n);

    /// What the scene casts upon itself, from the next frame on; nothing at first. A frame begins with the sun's eye
    /// then: the scene is drawn once more.
    /// @param bounds  around all that casts and gets shadows
    void setShadows(const Shadows& shadows, const Box3& bounds);
    const Shadows& getShadows() const { return _shadows; } ///< see setShadows

    /// How a camera sees into it. @param scale  device pixels per point
    Eye getEye(const OrbitCamera& camera, double scale) const { return camera.getEye(scale, getDepth()); }

    /// A frame, from its background to its end, which is that of its life. What is bound when it begins is what it
    /// draws into at last; the viewport has to be over all of that. Depth test, depth function and what the depth is
    /// cleared to are usual ones afterwards, the test off.
    class GUIGL_API Frame
    {
    public:
        /// @param canvas  not owned  @param eye  as its getEye gave it, or a part of that (Eye::getPart)
        /// @param isAside  whether to draw into what is bound in any case, which has to have a depth buffer of floats
        ///                 then if the eye's depth is reversed: for small pictures that nobody sees. Nothing is
        ///                 translucent in them
        Frame(DepthCanvas& canvas, const Eye& eye, bool isAside = false);
        ~Frame();
        Frame(const Frame&) = delete;
        Frame& operator=(const Frame&) = delete;

        /// Clears the depth, and turns its test on, nearer passing. Between the constructor and the first call is the
        /// time for the background.
        /// @return the eye to draw the scene with, valid until the next call; null when all has been drawn
        const Eye* next();

    private:
        void flush();
        const Eye* beginShadows();

        DepthCanvas& _canvas;
        std::shared_ptr<SpaceLayers> _pLayers; // what is translucent waits there
        std::vector<Eye> _eyes;                // the last one first
        Eye _eye;
        bool _isReversed;
        bool _isBound = false; // the canvas' own framebuffer
        bool _isAside, _hasBegun = false;
        bool _isInShadows = false; // the sun's eye is out
        bool _isDrawn = false;     // with the eye that is out
    };

private:
    bool begin();
    void end();

    Depth _depth;
    int _nSamples = 4;
    gl::Framebuffer _framebuffer;
    gl::Texture2DProgram _program;
    Shadows _shadows;
    Box3 _bounds; // of what casts them
    std::unique_ptr<ShadowMap> _pShadowMap;
    std::unique_ptr<Occlusion> _pOcclusion;
    std::unique_ptr<gl::Buffer> _pBuffer;
    // Of the context that was asked last.
    mutable gl::CurrentContext::ID _asked = 0;
    mutable bool _hasClipControl = true;
    mutable bool _saidSliced = false;
};

} // namespace gui::draw
