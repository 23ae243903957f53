#include <gui/gl/Context.h>

#include "Features.h"
#include "Samples.h"
#include "StateOfES.h"
#include "TextureBinding.h"

#include <gui/gl/Color.h>

#include <td/Assert.h>

#include <epoxy/gl.h>

#include <array>
#include <cstddef>
#include <optional>

namespace gui::gl
{

namespace
{

constexpr std::array<GLenum, 6> cZavFlags{GL_DEPTH_TEST, GL_CULL_FACE,    GL_STENCIL_TEST,
                                          GL_BLEND,      GL_SCISSOR_TEST, GL_POLYGON_OFFSET_FILL};
static_assert(cZavFlags.size() == std::size_t(Context::Flag::PolygonOffset) + 1);

constexpr std::array<GLenum, 8> cDepthFunctions{GL_ALWAYS, GL_NEVER,   GL_LESS,     GL_EQUAL,
                                                GL_LEQUAL, GL_GREATER, GL_NOTEQUAL, GL_GEQUAL};
static_assert(cDepthFunctions.size() == std::size_t(DepthBuffer::Function::GreaterOrEqual) + 1);

constexpr std::array<GLenum, 8> cStencilFunctions{GL_NEVER,  GL_LESS,  GL_LEQUAL,   GL_GREATER,
                                                  GL_GEQUAL, GL_EQUAL, GL_NOTEQUAL, GL_ALWAYS};
static_assert(cStencilFunctions.size() == std::size_t(StencilBuffer::Function::Always) + 1);

constexpr std::array<GLenum, 8> cStencilOperations{GL_KEEP,      GL_ZERO, GL_REPLACE,   GL_INCR,
                                                   GL_INCR_WRAP, GL_DECR, GL_DECR_WRAP, GL_INVERT};
static_assert(cStencilOperations.size() == std::size_t(StencilBuffer::Operation::Invert) + 1);

constexpr std::array<GLenum, 19> cBlendFactors{GL_ZERO,
                                               GL_ONE,
                                               GL_SRC_COLOR,
                                               GL_ONE_MINUS_SRC_COLOR,
                                               GL_DST_COLOR,
                                               GL_ONE_MINUS_DST_COLOR,
                                               GL_SRC_ALPHA,
                                               GL_ONE_MINUS_SRC_ALPHA,
                                               GL_DST_ALPHA,
                                               GL_ONE_MINUS_DST_ALPHA,
                                               GL_CONSTANT_COLOR,
                                               GL_ONE_MINUS_CONSTANT_COLOR,
                                               GL_CONSTANT_ALPHA,
                                               GL_ONE_MINUS_CONSTANT_ALPHA,
                                               GL_SRC_ALPHA_SATURATE,
                                               GL_SRC1_COLOR,
                                               GL_ONE_MINUS_SRC1_COLOR,
                                               GL_SRC1_ALPHA,
                                               GL_ONE_MINUS_SRC1_ALPHA};
static_assert(cBlendFactors.size() == std::size_t(Blend::Factor::OneMinusSrc1Alpha) + 1);

constexpr std::array<GLenum, 3> cPolygonModes{GL_FILL, GL_LINE, GL_POINT};
static_assert(cPolygonModes.size() == std::size_t(Context::PolygonMode::Point) + 1);

constexpr std::array<unsigned char, 10> cBufferBits{0, 0, 8, 8, 16, 16, 24, 24, 32, 32};

unsigned char toBits(std::size_t size)
{
    return size < cBufferBits.size() ? cBufferBits[size] : static_cast<unsigned char>(0);
}

GLbitfield toClearBit(Context::Clear what)
{
    switch (what)
    {
    case Context::Clear::Color:
        return GL_COLOR_BUFFER_BIT;
    case Context::Clear::Depth:
        return GL_DEPTH_BUFFER_BIT;
    case Context::Clear::Stencil:
        return GL_STENCIL_BUFFER_BIT;
    }
    return 0;
}

std::optional<GLenum> getStencilFn(StencilBuffer::Function function)
{
    const auto index = static_cast<std::size_t>(function);
    if (index >= cStencilFunctions.size())
        TD_ASSERT(false, std::nullopt);
    return cStencilFunctions[index];
}

std::optional<GLenum> getStencilOp(StencilBuffer::Operation operation)
{
    const auto index = static_cast<std::size_t>(operation);
    if (index >= cStencilOperations.size())
        TD_ASSERT(false, std::nullopt);
    return cStencilOperations[index];
}

} // namespace

Context::Context(Animation animation, DepthBuffer::Size depthBufferSize, StencilBuffer::Size stencilBufferSize,
                 Profile profile)
    : _profile(profile)
    , _depthBufferSize(depthBufferSize)
    , _stencilBufferSize(stencilBufferSize)
    , _isAnimation(animation == Animation::On)
{
}

Context::Context(DepthBuffer::Size depthBufferSize, StencilBuffer::Size stencilBufferSize, Profile profile)
    : Context(Animation::Off, depthBufferSize, stencilBufferSize, profile)
{
}

unsigned char Context::getDepthBufferSize() const { return toBits(static_cast<std::size_t>(_depthBufferSize)); }

unsigned char Context::getStencilBufferSize() const { return toBits(static_cast<std::size_t>(_stencilBufferSize)); }

void Context::setRGBSize(unsigned char colorBits, unsigned char alphaBits)
{
    _colorBits = colorBits;
    _alphaBits = alphaBits;
}

void Context::setSamples(int n)
{
    TD_ASSERT(isSampleCount(n));
    _nSamples = static_cast<unsigned char>(n);
}

void Context::setPreferredFrameRateRange(float min, float max)
{
    _minFrameRate = min;
    _maxFrameRate = max;
}

bool Context::isES() { return Features::get().isES; }

bool Context::isAtLeast(int version, int versionES)
{
    const Features& features = Features::get();
    const int wanted = features.isES ? versionES : version;
    return wanted > 0 && features.version >= wanted;
}

void Context::clear(Clear what)
{
    const GLbitfield bit = toClearBit(what);
    if (bit == 0)
        TD_ASSERT(false);
    glClear(bit);
}

void Context::clear(Clear what, td::ColorID color)
{
    clear(color);
    clear(what);
}

void Context::clear(Clear what, td::Color color)
{
    clear(color);
    clear(what);
}

void Context::clear(const std::initializer_list<Clear>& what)
{
    GLbitfield bits = 0;
    for (const Clear one : what)
    {
        const GLbitfield bit = toClearBit(one);
        if (bit == 0)
            TD_ASSERT(false);
        bits |= bit;
    }
    glClear(bits);
}

void Context::clear(td::ColorID color)
{
    glm::vec3 rgb;
    Color::get(color, rgb);
    glClearColor(rgb.r, rgb.g, rgb.b, 1.0f);
}

void Context::clear(td::Color color)
{
    glm::vec4 rgba;
    Color::get(color, rgba);
    glClearColor(rgba.r, rgba.g, rgba.b, rgba.a);
}

void Context::setClearDepth(float depth)
{
    if (isES())
        glClearDepthf(depth);
    else
        glClearDepth(static_cast<GLdouble>(depth));
}

void Context::setActiveTextureUnit(Texture::Unit unit) { activateUnit(unit); }

void Context::bindTextureToCurrentlyActiveTextureUnit(unsigned int textureID, Texture::Type type)
{
    TD_ASSERT(textureID != 0);
    bindTexture(type, textureID);
}

void Context::enable(Flag flag)
{
    TD_ASSERT(static_cast<std::size_t>(flag) < cZavFlags.size());
    glEnable(cZavFlags[static_cast<std::size_t>(flag)]);
}

void Context::disable(Flag flag)
{
    TD_ASSERT(static_cast<std::size_t>(flag) < cZavFlags.size());
    glDisable(cZavFlags[static_cast<std::size_t>(flag)]);
}

void Context::maskDepthBuffer(bool writes) { glDepthMask(writes ? GL_TRUE : GL_FALSE); }

void Context::setDepthBufferFunction(DepthBuffer::Function function)
{
    const auto index = static_cast<std::size_t>(function);
    if (index >= cDepthFunctions.size())
        TD_ASSERT(false);
    glDepthFunc(cDepthFunctions[index]);
}

void Context::setStencilBufferMask(unsigned int mask) { glStencilMask(mask); }

void Context::setStencilBufferFunction(StencilBuffer::Function function, int ref, unsigned int mask)
{
    if (const std::optional<GLenum> glFunction = getStencilFn(function))
        glStencilFunc(*glFunction, ref, mask);
}

void Context::setStencilBufferOperation(StencilBuffer::Operation sfail, StencilBuffer::Operation dpfail,
                                        StencilBuffer::Operation dppass)
{
    const std::optional<GLenum> glSFail = getStencilOp(sfail);
    const std::optional<GLenum> glDPFail = getStencilOp(dpfail);
    const std::optional<GLenum> glDPPass = getStencilOp(dppass);
    if (glSFail && glDPFail && glDPPass)
        glStencilOp(*glSFail, *glDPFail, *glDPPass);
}

void Context::setBlendFunction(Blend::Factor src, Blend::Factor dst)
{
    TD_ASSERT(static_cast<std::size_t>(src) < cBlendFactors.size());
    TD_ASSERT(static_cast<std::size_t>(dst) < cBlendFactors.size());
    glBlendFunc(cBlendFactors[static_cast<std::size_t>(src)], cBlendFactors[static_cast<std::size_t>(dst)]);
}

void Context::setScissor(int x, int y, int width, int height)
{
    TD_ASSERT(width >= 0 && height >= 0);
    glScissor(x, y, width, height);
}

void Context::setPolygonOffset(float factor, float units) { glPolygonOffset(factor, units); }

void Context::maskColorBuffer(bool red, bool green, bool blue, bool alpha)
{
    const auto toGL = [](bool writes) { return static_cast<GLboolean>(writes ? GL_TRUE : GL_FALSE); };
    glColorMask(toGL(red), toGL(green), toGL(blue), toGL(alpha));
}

void Context::setPointSize(float size) { gl::setPointSize(size); }

void Context::setPolygonMode(PolygonMode mode)
{
    const auto index = static_cast<std::size_t>(mode);
    if (index >= cPolygonModes.size())
        TD_ASSERT(false);
    gl::setPolygonMode(cPolygonModes[index]);
}

} // namespace gui::gl
