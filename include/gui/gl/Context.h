#pragma once

#include "Texture.h"

#include <td/Color.h>
#include <td/ColorID.h>
#include <td/Export.h>
#include <td/Types.h>

#include <initializer_list>
#include <tuple>

namespace gui::gl
{

/// The depth buffer: how many bits a context asks for, and how fragments are compared with it.
struct DepthBuffer
{
    /// Each size has a second value, one above, that means the same number of bits; other values mean none.
    enum class Size : td::BYTE
    {
        None = 0,
        Bits8 = 2,
        Bits16 = 4,
        Bits24 = 6,
        Bits32 = 8
    };

    /// When a fragment passes: its depth compared with the stored one. The order is not that of
    /// StencilBuffer::Function.
    enum class Function : td::BYTE
    {
        Always,
        Never,
        Less,
        Equal,
        LessOrEqual,
        Greater,
        NotEqual,
        GreaterOrEqual
    };
};

/// The stencil buffer: how many bits a context asks for, how fragments are compared with it and what becomes of it.
struct StencilBuffer
{
    /// As DepthBuffer::Size.
    enum class Size : td::BYTE
    {
        None = 0,
        Bits8 = 2,
        Bits16 = 4,
        Bits24 = 6,
        Bits32 = 8
    };

    /// When a fragment passes: the reference value compared with the stored one, both masked.
    enum class Function : td::BYTE
    {
        Never,
        Less,
        LessOrEqual,
        Greater,
        GreaterOrEqual,
        Equal,
        NotEqual,
        Always
    };

    /// What becomes of the stored value.
    enum class Operation : td::BYTE
    {
        Keep,
        Zero,
        Replace, ///< the reference value
        Increment,
        IncrementWrap,
        Decrement,
        DecrementWrap,
        Invert
    };
};

/// Blending of what is drawn with what is there.
struct Blend
{
    /// What the source's or the destination's colour is multiplied by.
    enum class Factor : td::BYTE
    {
        Zero,
        One,
        SrcColor,
        OneMinusSrcColor,
        DstColor,
        OneMinusDstColor,
        SrcAlpha,
        OneMinusSrcAlpha,
        DstAlpha,
        OneMinusDstAlpha,
        ConstantColor,
        OneMinusConstantColor,
        ConstantAlpha,
        OneMinusConstantAlpha,
        SrcAlphaSaturate,
        Src1Color,
        OneMinusSrc1Color,
        Src1Alpha,
        OneMinusSrc1Alpha
    };
};

/// Two things: as a value, the request for a GL context that a view hands over when it creates its surface; as a set of
/// static operations, the place for GL render state.
///
/// The static operations act on the context that is current on the calling thread. A value outside an enumeration is a
/// programming error (an assertion); the operation then makes no GL call. GL errors are not queried. Nothing of the
/// state is kept or compared here: each operation is its GL call, and holds until the next, from frame to frame.
class GUIGL_API Context
{
public:
    /// Whether the view begins animated; see View::startAnimation for later.
    enum class Animation : td::BYTE
    {
        On, ///< frames follow the display's clock
        Off ///< frames are drawn on request
    };

    /// The OpenGL to ask for. A newer one that has it may come; View::getOpenGLVersion says what came.
    enum class Profile : td::BYTE
    {
        Core32, ///< OpenGL 3.2 core
        Core41, ///< OpenGL 4.1 core; where the driver is older, 3.2 or what follows it, and one log line in a program:
                ///< "Warning! OffscreenContext asked for OpenGL 4.1 core, got OpenGL 3.2 core", for a window SDLContext
        ES31    ///< OpenGL ES 3.1, with texture buffers where the driver has them; what it lacks stands in docs/es.md
    };

    /// A buffer to clear.
    enum class Clear : td::BYTE
    {
        Color = 1,
        Depth,
        Stencil
    };

    /// What enable turns on; all are off in a new context.
    enum class Flag : td::BYTE
    {
        DepthTest,
        CullFace,
        StencilTest,
        Blend,
        ScissorTest,  ///< see setScissor
        PolygonOffset ///< of filled triangles; see setPolygonOffset
    };

    /// What triangles are drawn as: whole, their edges, or their corners.
    enum class PolygonMode : td::BYTE
    {
        Fill,
        Line,
        Point
    };

    /// A request with 24 colour bits, 8 alpha bits and no preferred frame rate.
    Context(Animation animation, DepthBuffer::Size depthBufferSize, StencilBuffer::Size stencilBufferSize,
            Profile profile);

    /// The same without animation.
    Context(DepthBuffer::Size depthBufferSize, StencilBuffer::Size stencilBufferSize, Profile profile);

    bool isAnimation() const { return _isAnimation; }
    Profile getProfile() const { return _profile; }

    /// The number of bits asked for: 0, 8, 16, 24 or 32.
    unsigned char getDepthBufferSize() const;
    unsigned char getStencilBufferSize() const;

    /// @param colorBits  red, green and blue together
    void setRGBSize(unsigned char colorBits, unsigned char alphaBits);
    /// Colour bits (red, green and blue together), alpha bits.
    std::tuple<unsigned char, unsigned char> getRGBSize() const { return {_colorBits, _alphaBits}; }

    /// How many samples each pixel has, 1 at first. With more than one, edges are smooth: what covers a part of a pixel
    /// takes that share of it. The driver may have less; View::getSamples and OffscreenContext::getSamples say how many
    /// it gave, and the environment's GUIGL_SAMPLES goes before what a program asks for.
    /// @param n  1, 2, 4, 8 or 16; others are misuse ("isSampleCount(n)") and change nothing
    void setSamples(int n);
    int getSamples() const { return _nSamples; }

    /// Whether the desktop shows through what a view draws with an alpha below 1, in a window of the library's own;
    /// colours are premultiplied then, red at most alpha, as blending by the factors One and OneMinusSrcAlpha leaves
    /// them. Off at first, and the alpha of a window's frame means nothing. Where it is not to be had (with
    /// SDL2 on X11; without a compositor), the window is opaque.
    void setTransparent(bool isTransparent) { _isTransparent = isTransparent; }
    bool isTransparent() const { return _isTransparent; } ///< see setTransparent

    /// The range that an animated view's frames per second should lie in. Nothing is checked here: a range that is not
    /// above 0, or whose maximum is below its minimum, means the display's own rate.
    void setPreferredFrameRateRange(float min, float max);
    /// Minimum, maximum.
    std::tuple<float, float> getPreferredFrameRateRange() const { return {_minFrameRate, _maxFrameRate}; }

    /// Whether the context that is current is one of OpenGL ES. False without a context that CurrentContext knows.
    static bool isES();
    /// Whether the context that is current has a version at least: ten times the major number, and the minor one.
    /// @param version  of OpenGL, 33 for OpenGL 3.3  @param versionES  of OpenGL ES; 0 for none
    static bool isAtLeast(int version, int versionES);

    /// Clears one buffer.
    static void clear(Clear what);
    /// Clears one buffer after setting the colour that the colour buffer is cleared to.
    static void clear(Clear what, td::ColorID color);
    static void clear(Clear what, td::Color color);
    /// Clears the named buffers with one GL call; with an empty list the call is glClear(0).
    static void clear(const std::initializer_list<Clear>& what);
    /// Sets the colour that the colour buffer is cleared to; alpha is always 1. It clears nothing by itself.
    static void clear(td::ColorID color);
    /// The same with the colour's own alpha: clear("#204060"), clear(td::Color(32, 64, 96, 128)).
    static void clear(td::Color color);
    /// Sets the depth that the depth buffer is cleared to, from 0 to 1; 1 in a new context.
    static void setClearDepth(float depth);

    /// What the next bind of a texture is for.
    static void setActiveTextureUnit(Texture::Unit unit);
    /// @param textureID  not 0 (an assertion)
    static void bindTextureToCurrentlyActiveTextureUnit(unsigned int textureID, Texture::Type type);

    /// They stay as they are until the other is called, from frame to frame.
    static void enable(Flag flag);
    static void disable(Flag flag);

    /// @param writes  whether fragments that pass write their depth
    static void maskDepthBuffer(bool writes);
    static void setDepthBufferFunction(DepthBuffer::Function function);

    /// @param mask  the bits that may be written
    static void setStencilBufferMask(unsigned int mask);
    static void setStencilBufferFunction(StencilBuffer::Function function, int ref, unsigned int mask);
    /// @param sfail  when the stencil test fails  @param dpfail  when the depth test fails  @param dppass  when both
    ///               pass
    static void setStencilBufferOperation(StencilBuffer::Operation sfail, StencilBuffer::Operation dpfail,
                                          StencilBuffer::Operation dppass);

    /// Takes effect where Flag::Blend is on: src times what is drawn, plus dst times what is there. SrcAlpha and
    /// OneMinusSrcAlpha are the usual choice.
    static void setBlendFunction(Blend::Factor src, Blend::Factor dst);
    /// Takes effect where Flag::ScissorTest is on: nothing is drawn or cleared outside of the rectangle. It stays when
    /// the size changes and when another framebuffer is drawn into, and limits neither the reading of frames nor what
    /// Framebuffer resolves. In a new context it is the whole window as it was at first.
    /// @param x, y           the bottom left corner, in device pixels from that of what is drawn into
    /// @param width, height  in device pixels, not below 0 (an assertion)
    static void setScissor(int x, int y, int width, int height);
    /// Takes effect where Flag::PolygonOffset is on: adds to the depth of filled triangles, before the test, what they
    /// lie above each other. Negative values bring them nearer, as lines over a face want it; -1 and -1 are usual.
    /// @param factor  times the triangle's steepest slope in depth  @param units  times the least difference in depth
    /// that the depth buffer knows
    static void setPolygonOffset(float factor, float units);
    /// Which channels are written, by clearing too; all in a new context. It stays from frame to frame.
    static void maskColorBuffer(bool red, bool green, bool blue, bool alpha);
    /// On OpenGL ES, it reaches programs whose vertex shader says nothing of gl_PointSize.
    /// @param size  in device pixels
    static void setPointSize(float size);
    /// For front and back faces alike. OpenGL ES fills triangles and nothing else: there it is commands that draw the
    /// sides or corners of their triangles instead, those of culled faces too, and more slowly; GL calls of others
    /// fill.
    static void setPolygonMode(PolygonMode mode);

private:
    Profile _profile;
    DepthBuffer::Size _depthBufferSize;
    StencilBuffer::Size _stencilBufferSize;
    float _minFrameRate = 0;
    float _maxFrameRate = 0;
    bool _isAnimation;
    unsigned char _colorBits = 24;
    unsigned char _alphaBits = 8;
    unsigned char _nSamples = 1;
    bool _isTransparent = false;
};

} // namespace gui::gl
