#pragma once

#include "Context.h"
#include "ContextResource.h"

#include <td/Export.h>
#include <td/Size.h>
#include <td/Types.h>

#include <vector>

namespace gui
{
class Texture;
}

namespace gui::gl
{

/// Pixels to draw into beside the frame: a picture that is made once and shown often, a mirror, a mask, a picture
/// larger than any window.
/// @code
/// _aside.create({512, 512}, {.color = Framebuffer::Color::RGBA8, .samples = 4});
/// {
///     const Framebuffer::Drawing drawing(_aside);
///     Context::clear(Context::Clear::Color, "#204060");
///     _program.draw(_buffer);
/// } // what was drawn into before is again, with its viewport
/// _texturedProgram.activate();
/// Context::setActiveTextureUnit(Texture::Unit::T0);
/// Context::bindTextureToCurrentlyActiveTextureUnit(_aside.getTextureID(), Texture::Type::Tex2D);
/// @endcode
/// It has a colour, which is a texture to sample, and depth and stencil if they are asked for. Its rows count from the
/// bottom, as GL's do, and so does t of the texture. Framebuffers cannot be shared between contexts: all but queries
/// and release need the context current that was at create. When that dies, the pixels are gone and isOk is false. Not
/// copyable. GUI thread only.
///
/// When the context is lost and another takes its place (see View), the framebuffer is made anew. Its colours are as
/// they were where the old context still worked, as it does when a host brings another one; after a reset of the GPU
/// they are 0, and a picture that is made once is made again in onContextRestored, unless setKeptForRestore keeps it.
///
/// Operations that return a bool say in one log line why they return false, and have changed nothing then. Those that a
/// frame calls over and over (begin, end, resolve) say so once, until the next create that succeeds.
class GUIGL_API Framebuffer
{
public:
    /// The format of the colour. Those of 16 bits hold numbers beyond 0 and 1, and fractions.
    enum class Color : td::BYTE
    {
        RGBA8,
        R8, ///< red alone: a mask or a coverage
        R16F,
        RGBA16F
    };

    /// What to make.
    struct Format
    {
        Color color = Color::RGBA8;
        /// 8 bits mean 16. With a stencil the depth has 24 bits, or 32 where that is asked for.
        DepthBuffer::Size depth = DepthBuffer::Size::None;
        /// Any but None means 8 bits, and a depth of 24 bits at least.
        StencilBuffer::Size stencil = StencilBuffer::Size::None;
        /// Per pixel: 1, 2, 4, 8 or 16. More than one smooths edges. What the driver lacks becomes the next smaller it
        /// has.
        int samples = 1;
    };

    Framebuffer() = default;
    /// Needs no context.
    ~Framebuffer();
    Framebuffer(const Framebuffer&) = delete;
    Framebuffer& operator=(const Framebuffer&) = delete;

    /// Makes the framebuffer, in the place of one that was made before; the pixels are undefined. What is bound stays
    /// bound, but for the active unit's 2D texture, which is none afterwards. Misuse, with nothing changed, are a
    /// number of samples that is none of those, a color that is none, and a call between begin and end.
    /// @param size  in device pixels
    /// @return false without a current context ("Error! Framebuffer::create without a current GL context!"), with a
    ///         size that is none ("Error! Framebuffer::create with a size of W x H pixels; the driver takes 1 to N"),
    ///         and when the driver refuses ("ERROR! Framebuffer::create the driver has no framebuffer of W x H pixels
    ///         with N samples (status X)"). Other samples than were asked for are a log line: "Warning! Framebuffer
    ///         asked for N samples, got N"
    [[nodiscard]] bool create(const td::Size<int>& size, const Format& format);
    /// The same in the default format: RGBA8 alone, one sample.
    [[nodiscard]] bool create(const td::Size<int>& size);

    /// Another size in the same format; the pixels are undefined, and the GL names may be new. The same size changes
    /// nothing, the pixels included. @return as create; false too when nothing was created yet
    [[nodiscard]] bool resize(const td::Size<int>& size);

    /// Deletes everything. Needs no context. What is drawn into then is the frame, if it was this.
    void release();

    /// True from a successful create to release, and to the end of the context.
    bool isOk() const { return _names.framebuffer != 0 && _home.isAlive(); }
    td::Size<int> getSize() const { return isOk() ? _size : td::Size<int>(); } ///< in device pixels
    /// As it was asked for.
    const Format& getFormat() const { return _format; }
    /// How many the driver gave; 0 without a framebuffer.
    int getSamples() const { return isOk() ? _nSamples : 0; }

    /// The GL name, for binding it by hand: call resolve afterwards. 0 without a framebuffer.
    unsigned int getID() const { return isOk() ? _names.framebuffer : 0; }
    /// The GL name of the colour, a 2D texture with linear filters that clamps to its edges, as it was at the last end,
    /// resolve or read. Owned by this object. 0 without a framebuffer.
    unsigned int getTextureID() const { return isOk() ? _names.texture : 0; }

    /// true reads the colours after each end and resolve, for a context that is lost without notice: it costs a wait
    /// for the GPU each time, 16 bytes per pixel, and 4 for one of a single number. false, the default, keeps nothing.
    void setKeptForRestore(bool isKept);
    bool isKeptForRestore() const { return _isKept; }

    /// From here to end it is drawn into and read from, with the viewport over all of it. Other state stays as it is,
    /// the scissor test for one. Others may be begun in between, and ended before.
    /// @return false when there is none ("Error! Framebuffer::begin without a framebuffer in the current context") or
    ///         it was begun already ("Error! Framebuffer::begin twice without an end")
    [[nodiscard]] bool begin();
    /// Resolves, and restores what was bound at begin, and the viewport.
    /// @return false when it was not begun ("Error! Framebuffer::end without a begin") or another context is current
    ///         ("Error! Framebuffer::end without a framebuffer in the current context"), where it may be called again
    bool end();

    /// Begins, and ends when it goes out of scope.
    class Drawing
    {
    public:
        /// @param framebuffer  not owned
        explicit Drawing(Framebuffer& framebuffer)
            : _pFramebuffer(framebuffer.begin() ? &framebuffer : nullptr)
        {
        }
        Drawing(const Drawing&) = delete;
        Drawing& operator=(const Drawing&) = delete;
        ~Drawing()
        {
            if (_pFramebuffer != nullptr)
                _pFramebuffer->end();
        }

        /// Whether begin succeeded: what is drawn would go into the frame otherwise.
        explicit operator bool() const { return _pFramebuffer != nullptr; }

    private:
        Framebuffer* _pFramebuffer;
    };

    /// Brings the texture up to date: of several samples of a pixel it has their mean. With one sample there is nothing
    /// to do. What is bound stays bound, and a scissor test is passed over.
    /// @return false, as begin
    bool resolve();

    /// Reads the pixels, upright (the first row is the top), after a resolve. Numbers beyond 0 and 1 are brought in
    /// between, and what the colour lacks is 0, or 255 for alpha.
    /// @param withAlpha  4 bytes per pixel, with the alpha as it was drawn, not premultiplied by this; else 3
    /// @return false, with the picture unchanged: without a framebuffer ("Error! Framebuffer::readPixels without a
    ///         framebuffer in the current context"), or when it is more than an image can hold
    [[nodiscard]] bool readPixels(gui::Texture& picture, bool withAlpha = false);

    /// Reads the colour's numbers as they are: upright, 1 per pixel of R8 and R16F, else 4; bytes divided by 255.
    /// @return false, with the values unchanged, as readPixels
    [[nodiscard]] bool readValues(std::vector<float>& values);

    /// Saves the pixels as a PNG file, upright. @param withAlpha  else opaque
    /// @return false, with a log line, when they could not be read or written
    [[nodiscard]] bool savePicture(const char* path, bool withAlpha = false);

private:
    // Each 0 where there is none.
    struct Names
    {
        unsigned int framebuffer = 0;
        unsigned int texture = 0;
        unsigned int depth = 0;    // a renderbuffer, with the stencil
        unsigned int color = 0;    // a renderbuffer, of several samples
        unsigned int resolved = 0; // the framebuffer of the texture then
    };

    bool replace(const td::Size<int>& size, const Format& format);
    static unsigned int make(Names& names, const td::Size<int>& size, const Format& format, int nSamples);
    static void remove(const Names& names, CurrentContext::ID contextID);
    bool isHere(const char* operation, bool& isSaid) const;
    void restore();
    void keep();
    void onContext(ContextResource::Event event);
    void makeAgain();
    unsigned int readable() const { return _names.resolved != 0 ? _names.resolved : _names.framebuffer; }

    Names _names;
    Names _lost; // with a context; while it is made anew
    td::Size<int> _size;
    Format _format;
    int _nSamples = 0;
    bool _isKept = false;
    std::vector<float> _kept; // as readValues gives them
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<Framebuffer*>(pThis)->onContext(event); }, this};
    // What was bound at begin.
    int _drawBefore = 0;
    int _readBefore = 0;
    int _viewportBefore[4] = {};
    bool _isDrawing = false;
    // What the log says, once each.
    bool _saidBegin = false;
    bool _saidTwice = false;
    bool _saidEnd = false;
    bool _saidResolve = false;
};

} // namespace gui::gl
