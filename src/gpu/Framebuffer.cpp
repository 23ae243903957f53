#include <gui/gl/Framebuffer.h>

#include "../context/FrameReader.h"
#include "../context/GLNumber.h"
#include "../context/Restoration.h"
#include "../context/Samples.h"
#include "../context/TextureBinding.h"

#include <gui/Texture.h>
#include <gui/gl/Context.h>
#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <tuple>
#include <utility>

namespace gui::gl
{

namespace
{

struct ColorFormat
{
    GLenum internal;
    GLenum components;
    std::size_t nComponents;
    GLenum type; // that OpenGL ES takes it as
};

// By Framebuffer::Color.
constexpr std::array<ColorFormat, 4> cColorFormats{{{GL_RGBA8, GL_RGBA, 4, GL_UNSIGNED_BYTE},
                                                    {GL_R8, GL_RED, 1, GL_UNSIGNED_BYTE},
                                                    {GL_R16F, GL_RED, 1, GL_FLOAT},
                                                    {GL_RGBA16F, GL_RGBA, 4, GL_FLOAT}}};
static_assert(cColorFormats.size() == std::size_t(Framebuffer::Color::RGBA16F) + 1);

const ColorFormat& colorFormat(Framebuffer::Color color) { return cColorFormats[std::size_t(color)]; }

// @return 0 for none
GLenum depthFormat(const Framebuffer::Format& format)
{
    constexpr int cFloatBits = 32;
    constexpr int cMediumBits = 24;
    // A request that coded both sizes: it knows what the values mean.
    const Context sizes(format.depth, format.stencil, Context::Profile::Core41);
    const int depthBits = sizes.getDepthBufferSize();
    if (sizes.getStencilBufferSize() > 0)
        return depthBits == cFloatBits ? GL_DEPTH32F_STENCIL8 : GL_DEPTH24_STENCIL8;
    if (depthBits == cFloatBits)
        return GL_DEPTH_COMPONENT32F;
    if (depthBits == cMediumBits)
        return GL_DEPTH_COMPONENT24;
    return depthBits > 0 ? GL_DEPTH_COMPONENT16 : 0;
}

int largestSize() { return std::min(glNumber(GL_MAX_TEXTURE_SIZE), glNumber(GL_MAX_RENDERBUFFER_SIZE)); }

// For the framebuffer that is bound. Without samples GL takes it for a plain one.
// @param before  its name in a context that was lost, 0 if there was none
unsigned int attachRenderbuffer(GLenum attachment, GLenum format, const td::Size<int>& size, int nSamples,
                                GLuint before)
{
    const GLuint name = Restoration::makeName(CurrentContext::Kind::Renderbuffer, before);
    if (name == 0)
        return 0;
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, nSamples > 1 ? nSamples : 0, format, size.width, size.height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, name);
    return name;
}

unsigned int attachTexture(Framebuffer::Color color, const td::Size<int>& size, GLuint before)
{
    const GLuint name = Restoration::makeName(CurrentContext::Kind::Texture, before);
    if (name == 0)
        return 0;
    bindTexture(Texture::Type::Tex2D, name);
    const ColorFormat& format = colorFormat(color);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format.internal), size.width, size.height, 0, format.components,
                 format.type, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, name, 0);
    bindTexture(Texture::Type::Tex2D, 0);
    return name;
}

// Of the texture that is bound: rows from the lowest on.
void uploadValues(const td::Size<int>& size, const ColorFormat& format, const std::vector<float>& rows)
{
    if (!Context::isES() || format.type == GL_FLOAT)
    {
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size.width, size.height, format.components, GL_FLOAT, rows.data());
        return;
    }
    // Rows begin at multiples of 4 bytes.
    const std::size_t rowLength = static_cast<std::size_t>(size.width) * format.nComponents;
    const std::size_t paddedLength = (rowLength + 3) / 4 * 4;
    std::vector<unsigned char> bytes(paddedLength * static_cast<std::size_t>(size.height));
    for (std::size_t i = 0; i < rows.size(); ++i)
        bytes[i / rowLength * paddedLength + i % rowLength] =
            static_cast<unsigned char>(std::lround(std::clamp(rows[i], 0.0F, 1.0F) * 255));
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size.width, size.height, format.components, GL_UNSIGNED_BYTE, bytes.data());
}

// Of the framebuffer that is bound, rows from the lowest on. OpenGL ES gives four components, and bytes of bytes.
void readRows(const td::Size<int>& size, const ColorFormat& format, std::vector<float>& rows)
{
    if (!Context::isES())
    {
        glReadPixels(0, 0, size.width, size.height, format.components, GL_FLOAT, rows.data());
        return;
    }
    constexpr std::size_t cAll = 4;
    const std::size_t nPixels = rows.size() / format.nComponents;
    std::vector<float> floats(format.type == GL_FLOAT ? cAll * nPixels : 0);
    std::vector<unsigned char> bytes(format.type == GL_FLOAT ? 0 : cAll * nPixels);
    glReadPixels(0, 0, size.width, size.height, GL_RGBA, format.type,
                 format.type == GL_FLOAT ? static_cast<void*>(floats.data()) : bytes.data());
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const std::size_t from = i / format.nComponents * cAll + i % format.nComponents;
        rows[i] = format.type == GL_FLOAT ? floats[from] : static_cast<float>(bytes[from]) / 255;
    }
}

/// A texture's pixels, where OpenGL ES copies none to several samples.
class CopyProgram final : public Program
{
public:
    bool link()
    {
        return Program::link("#version 330 core\n"
                             "void main()\n"
                             "{\n"
                             "    vec2 corner = vec2(gl_VertexID % 2, gl_VertexID / 2);\n"
                             "    gl_Position = vec4(2.0 * corner - 1.0, 0.0, 1.0);\n"
                             "}\n",
                             "#version 330 core\n"
                             "uniform sampler2D image;\n"
                             "out vec4 color;\n"
                             "void main() { color = texelFetch(image, ivec2(gl_FragCoord.xy), 0); }\n");
    }

protected:
    void onLinked() override {}
};

// To the framebuffer of the same size that is bound.
void drawCopy(unsigned int texture, const td::Size<int>& size)
{
    const StateGuard guard;
    CopyProgram program;
    if (!program.link())
        return;
    for (const Context::Flag flag : {Context::Flag::DepthTest, Context::Flag::CullFace, Context::Flag::StencilTest,
                                     Context::Flag::Blend, Context::Flag::ScissorTest})
        Context::disable(flag);
    Context::maskColorBuffer(true, true, true, true);
    glViewport(0, 0, size.width, size.height);
    program.activate();
    Textures::bindToSamplerUnit(texture, Textures::Unit::T0, Texture::Type::Tex2D);
    Quads quads;
    const Quads::Range all{0, 1};
    quads.draw(std::span(&all, 1));
    Textures::bindToSamplerUnit(0, Textures::Unit::T0, Texture::Type::Tex2D);
}

bool isComplete(unsigned int& status)
{
    status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    return status == GL_FRAMEBUFFER_COMPLETE;
}

} // namespace

Framebuffer::~Framebuffer() { release(); }

// @param names  those that it had in a context that was lost, or zeros  @return the status of the framebuffer that GL
//               does not like, or that of a complete one
unsigned int Framebuffer::make(Names& names, const td::Size<int>& size, const Format& format, int nSamples)
{
    const BoundFramebuffers before;
    const int renderbufferBefore = glNumber(GL_RENDERBUFFER_BINDING);
    unsigned int status = 0;
    const Names old = std::exchange(names, {});
    names.framebuffer = Restoration::makeName(CurrentContext::Kind::Framebuffer, old.framebuffer);
    if (names.framebuffer == 0) // what is attached below would go to the window's
        return 0;
    glBindFramebuffer(GL_FRAMEBUFFER, names.framebuffer);
    if (nSamples > 1)
        names.color =
            attachRenderbuffer(GL_COLOR_ATTACHMENT0, colorFormat(format.color).internal, size, nSamples, old.color);
    else
        names.texture = attachTexture(format.color, size, old.texture);
    if (const GLenum depth = depthFormat(format); depth != 0)
    {
        const bool hasStencil = depth == GL_DEPTH24_STENCIL8 || depth == GL_DEPTH32F_STENCIL8;
        names.depth = attachRenderbuffer(hasStencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT, depth, size,
                                         nSamples, old.depth);
    }
    // Without one of them it may be complete all the same.
    const bool isWhole =
        (nSamples > 1 ? names.color : names.texture) != 0 && (depthFormat(format) == 0 || names.depth != 0);
    if (isWhole && isComplete(status) && nSamples > 1)
    {
        names.resolved = Restoration::makeName(CurrentContext::Kind::Framebuffer, old.resolved);
        status = 0;
        if (names.resolved != 0)
        {
            glBindFramebuffer(GL_FRAMEBUFFER, names.resolved);
            names.texture = attachTexture(format.color, size, old.texture);
            isComplete(status);
        }
    }
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(renderbufferBefore));
    return status;
}

void Framebuffer::remove(const Names& names, CurrentContext::ID contextID)
{
    using Kind = CurrentContext::Kind;
    CurrentContext::deleteName(contextID, Kind::Framebuffer, names.framebuffer);
    CurrentContext::deleteName(contextID, Kind::Framebuffer, names.resolved);
    CurrentContext::deleteName(contextID, Kind::Renderbuffer, names.color);
    CurrentContext::deleteName(contextID, Kind::Renderbuffer, names.depth);
    if (names.texture != 0)
        forgetTexture();
    CurrentContext::deleteName(contextID, Kind::Texture, names.texture);
}

bool Framebuffer::create(const td::Size<int>& size) { return create(size, {}); }

bool Framebuffer::create(const td::Size<int>& size, const Format& format)
{
    TD_ASSERT(isSampleCount(format.samples), false);
    TD_ASSERT(std::size_t(format.color) < cColorFormats.size(), false);
    TD_ASSERT(!_isDrawing || !isOk(), false);
    if (!CurrentContext::isThere("Framebuffer::create") || !replace(size, format))
        return false;
    if (_nSamples != format.samples)
        vo::dbgLog("Warning! Framebuffer asked for %d samples, got %d", format.samples, _nSamples);
    return true;
}

bool Framebuffer::replace(const td::Size<int>& size, const Format& format)
{
    const int largest = largestSize();
    if (size.width < 1 || size.height < 1 || size.width > largest || size.height > largest)
    {
        vo::dbgLog("Error! Framebuffer::create with a size of %d x %d pixels; the driver takes 1 to %d", size.width,
                   size.height, largest);
        return false;
    }

    // Of a context that was lost: there is nothing to delete any more.
    Names names = std::exchange(_lost, {});
    const CurrentContext::ID contextID = CurrentContext::getID();
    int nSamples = format.samples;
    const int mostSamples = std::max(glNumber(GL_MAX_SAMPLES), 1);
    while (nSamples > mostSamples)
        nSamples /= 2;
    unsigned int status = make(names, size, format, nSamples);
    while (status != GL_FRAMEBUFFER_COMPLETE)
    {
        remove(std::exchange(names, {}), contextID);
        if (nSamples == 1 || status != GL_FRAMEBUFFER_UNSUPPORTED)
        {
            vo::dbgLog("ERROR! Framebuffer::create the driver has no framebuffer of %d x %d pixels with %d samples "
                       "(status %x)",
                       size.width, size.height, format.samples, status);
            return false;
        }
        nSamples /= 2;
        status = make(names, size, format, nSamples);
    }
    release();
    _names = names;
    _home.set(contextID);
    _kept.clear();
    _size = size;
    _format = format;
    _nSamples = samplesOf(names.framebuffer);
    _isDrawing = _saidBegin = _saidTwice = _saidEnd = _saidResolve = false;
    return true;
}

bool Framebuffer::resize(const td::Size<int>& size)
{
    bool isSaid = false;
    if (!isHere("resize", isSaid))
        return false;
    TD_ASSERT(!_isDrawing, false);
    return size == _size || replace(size, Format(_format));
}

void Framebuffer::release()
{
    if (std::exchange(_isDrawing, false) && isOk() && CurrentContext::getID() == _home.getID())
        restore();
    remove(std::exchange(_names, {}), _home.getID());
}

bool Framebuffer::isHere(const char* operation, bool& isSaid) const
{
    if (isOk() && CurrentContext::getID() == _home.getID())
        return true;
    if (!std::exchange(isSaid, true))
        vo::dbgLog("Error! Framebuffer::%s without a framebuffer in the current context", operation);
    return false;
}

bool Framebuffer::begin()
{
    if (!isHere("begin", _saidBegin))
        return false;
    if (_isDrawing)
    {
        if (!std::exchange(_saidTwice, true))
            vo::dbgLog("Error! Framebuffer::begin twice without an end");
        return false;
    }
    _drawBefore = glNumber(GL_DRAW_FRAMEBUFFER_BINDING);
    _readBefore = glNumber(GL_READ_FRAMEBUFFER_BINDING);
    glGetIntegerv(GL_VIEWPORT, _viewportBefore);
    glBindFramebuffer(GL_FRAMEBUFFER, _names.framebuffer);
    glViewport(0, 0, _size.width, _size.height);
    _isDrawing = true;
    return true;
}

bool Framebuffer::end()
{
    if (!_isDrawing)
    {
        if (!std::exchange(_saidEnd, true))
            vo::dbgLog("Error! Framebuffer::end without a begin");
        return false;
    }
    if (!isHere("end", _saidEnd))
        return false;
    restore();
    _isDrawing = false;
    return resolve();
}

// What was bound may be gone by now, and a name that is none would be an error.
void Framebuffer::restore()
{
    const auto bind = [](GLenum target, int name)
    {
        const auto framebuffer = static_cast<GLuint>(name);
        glBindFramebuffer(target, glIsFramebuffer(framebuffer) == GL_TRUE ? framebuffer : 0);
    };
    bind(GL_DRAW_FRAMEBUFFER, _drawBefore);
    bind(GL_READ_FRAMEBUFFER, _readBefore);
    glViewport(_viewportBefore[0], _viewportBefore[1], _viewportBefore[2], _viewportBefore[3]);
}

bool Framebuffer::resolve()
{
    if (!isHere("resolve", _saidResolve))
        return false;
    if (_names.resolved != 0)
        resolveColors(_names.framebuffer, _names.resolved, _size);
    keep();
    return true;
}

void Framebuffer::setKeptForRestore(bool isKept)
{
    _isKept = isKept;
    _kept.clear();
    if (isKept && isOk() && CurrentContext::getID() == _home.getID())
        keep();
}

void Framebuffer::keep()
{
    if (!_isKept)
        return;
    _isKept = false; // reading resolves
    std::ignore = readValues(_kept);
    _isKept = true;
}

void Framebuffer::onContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Restored)
    {
        makeAgain();
        return;
    }
    if (!isOk())
        return;
    const bool wasKept = std::exchange(_isKept, true);
    keep();
    _isKept = wasKept;
    remove(_names, _home.getID());
}

void Framebuffer::makeAgain()
{
    _isDrawing = false;
    _lost = std::exchange(_names, {});
    const std::vector<float> values = std::move(_kept);
    if (_lost.framebuffer == 0 || !replace(_size, Format(_format)))
        return;
    const BoundFramebuffers before;
    const ColorFormat& format = colorFormat(_format.color);
    const std::size_t rowLength = static_cast<std::size_t>(_size.width) * format.nComponents;
    glBindFramebuffer(GL_FRAMEBUFFER, _names.framebuffer);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    if (values.size() == rowLength * static_cast<std::size_t>(_size.height))
    {
        std::vector<float> rows;
        rows.reserve(values.size());
        for (auto row = values.end(); row != values.begin();)
        {
            row -= static_cast<std::ptrdiff_t>(rowLength);
            rows.insert(rows.end(), row, row + static_cast<std::ptrdiff_t>(rowLength));
        }
        bindTexture(Texture::Type::Tex2D, _names.texture);
        uploadValues(_size, format, rows);
        bindTexture(Texture::Type::Tex2D, 0);
        // What is drawn on is of several samples: each has their mean.
        if (_names.resolved != 0 && Context::isES())
            drawCopy(_names.texture, _size);
        else if (_names.resolved != 0)
            resolveColors(_names.resolved, _names.framebuffer, _size);
        if (_isKept)
            _kept = values;
    }
}

bool Framebuffer::readPixels(gui::Texture& picture, bool withAlpha)
{
    bool isSaid = false;
    if (!isHere("readPixels", isSaid) || !resolve() || !readFrame(readable(), _size, picture, withAlpha ? 4 : 3))
        return false;
    picture.setOpaque(false);
    return true;
}

bool Framebuffer::readValues(std::vector<float>& values)
{
    bool isSaid = false;
    if (!isHere("readValues", isSaid) || !resolve())
        return false;
    const ColorFormat& format = colorFormat(_format.color);
    const std::size_t rowLength = static_cast<std::size_t>(_size.width) * format.nComponents;
    std::vector<float> read(rowLength * static_cast<std::size_t>(_size.height));
    {
        const BoundForReading bound(readable(), _size);
        readRows(_size, format, read);
    }
    float* pLow = read.data();
    for (float* pHigh = pLow + read.size() - rowLength; pLow < pHigh; pLow += rowLength, pHigh -= rowLength)
        std::swap_ranges(pLow, pLow + rowLength, pHigh);
    values = std::move(read);
    return true;
}

bool Framebuffer::savePicture(const char* path, bool withAlpha)
{
    TD_ASSERT(path != nullptr, false);
    gui::Texture picture;
    return readPixels(picture, withAlpha) && picture.saveToFile(path);
}

} // namespace gui::gl
