#include <gui/gl/BufferTexture.h>

#include "../context/Features.h"
#include "../context/Restoration.h"

#include <gui/gl/Textures.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <array>
#include <cstring>

namespace gui::gl
{

namespace
{

struct FormatOfGL
{
    GLenum internal;
    std::size_t nBytes;
};

constexpr std::array<FormatOfGL, 6> cFormats{
    {{GL_R32F, 4}, {GL_RGBA32F, 16}, {GL_RG32I, 8}, {GL_RGBA32I, 16}, {GL_R32UI, 4}, {GL_RGBA32UI, 16}}};

const FormatOfGL& formatOf(BufferTexture::Format format) { return cFormats[static_cast<std::size_t>(format)]; }

} // namespace

BufferTexture::BufferTexture(Format format)
    : _format(format)
{
    TD_ASSERT(static_cast<std::size_t>(format) < cFormats.size());
}

BufferTexture::~BufferTexture() { release(); }

std::size_t BufferTexture::getTexelSize() const { return formatOf(_format).nBytes; }

bool BufferTexture::resize(std::size_t nTexels)
{
    if (!CurrentContext::isThere("BufferTexture::resize"))
        return false;
    if (!Features::get().hasTextureBuffers)
    {
        vo::dbgLog("Error! BufferTexture::resize: this OpenGL ES has no texture buffers!");
        return false;
    }
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &most);
    if (nTexels > static_cast<std::size_t>(most))
    {
        vo::dbgLog("Error! BufferTexture::resize: %zu texels, the driver has %d at most!", nTexels, most);
        return false;
    }
    if (_home.getID() != CurrentContext::getID())
        release();
    if (_buffer != 0 && nTexels == _nTexels)
        return true;
    if (_buffer == 0 && !makeNames())
        return false;
    if (_isKept)
        _kept.assign(nTexels * getTexelSize(), 0);
    makeRoom(nTexels, nullptr);
    return true;
}

bool BufferTexture::makeNames()
{
    _buffer = Restoration::makeName(CurrentContext::Kind::Buffer, _buffer);
    _texture = Restoration::makeName(CurrentContext::Kind::Texture, _texture);
    _home.set(CurrentContext::getID());
    if (_buffer == 0 || _texture == 0)
    {
        vo::dbgLog("Error! BufferTexture::resize cannot create its buffer and its texture!");
        release();
        return false;
    }
    return true;
}

// The texture is of the buffer, whatever the room in it.
void BufferTexture::makeRoom(std::size_t nTexels, const void* data)
{
    glBindBuffer(GL_TEXTURE_BUFFER, _buffer);
    glBufferData(GL_TEXTURE_BUFFER, static_cast<GLsizeiptr>(nTexels * getTexelSize()), data, GL_DYNAMIC_DRAW);
    if (!_isAttached)
    {
        glBindTexture(GL_TEXTURE_BUFFER, _texture);
        glTexBuffer(GL_TEXTURE_BUFFER, formatOf(_format).internal, _buffer);
        glBindTexture(GL_TEXTURE_BUFFER, 0);
    }
    glBindBuffer(GL_TEXTURE_BUFFER, 0);
    _isAttached = true;
    _nTexels = nTexels;
}

void BufferTexture::write(std::size_t first, const void* data, std::size_t n)
{
    TD_ASSERT(first <= getSize() && n <= getSize() - first);
    writeBytes(first * getTexelSize(), data, n * getTexelSize());
}

void BufferTexture::writeBytes(std::size_t offset, const void* data, std::size_t nBytes)
{
    const std::size_t size = getSize() * getTexelSize();
    TD_ASSERT(offset <= size && nBytes <= size - offset);
    if (nBytes == 0)
        return;
    glBindBuffer(GL_TEXTURE_BUFFER, _buffer);
    glBufferSubData(GL_TEXTURE_BUFFER, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(nBytes), data);
    glBindBuffer(GL_TEXTURE_BUFFER, 0);
    if (offset + nBytes <= _kept.size())
        std::memcpy(_kept.data() + offset, data, nBytes);
}

void BufferTexture::copyBytes(std::size_t offset, const BufferTexture& from, std::size_t fromOffset, std::size_t nBytes)
{
    const std::size_t size = getSize() * getTexelSize(), fromSize = from.getSize() * from.getTexelSize();
    TD_ASSERT(offset <= size && nBytes <= size - offset);
    TD_ASSERT(fromOffset <= fromSize && nBytes <= fromSize - fromOffset);
    TD_ASSERT(_home.getID() == from._home.getID());
    if (nBytes == 0)
        return;
    glBindBuffer(GL_COPY_READ_BUFFER, from._buffer);
    glBindBuffer(GL_TEXTURE_BUFFER, _buffer);
    glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_TEXTURE_BUFFER, static_cast<GLintptr>(fromOffset),
                        static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(nBytes));
    glBindBuffer(GL_TEXTURE_BUFFER, 0);
    glBindBuffer(GL_COPY_READ_BUFFER, 0);
    if (offset + nBytes > _kept.size())
        return;
    if (fromOffset + nBytes <= from._kept.size())
        std::memmove(_kept.data() + offset, from._kept.data() + fromOffset, nBytes);
    else
        std::memset(_kept.data() + offset, 0, nBytes);
}

void BufferTexture::bind(Texture::Unit unit) const
{
    glActiveTexture(Textures::getZavPosID(unit));
    glBindTexture(GL_TEXTURE_BUFFER, getSize() != 0 ? _texture : 0);
}

void BufferTexture::release()
{
    deleteNames();
    _texture = _buffer = 0;
    _isAttached = false;
    _nTexels = 0;
    _kept = {};
    _home.set(0);
}

void BufferTexture::deleteNames() const
{
    _home.deleteName(CurrentContext::Kind::Texture, _texture);
    _home.deleteName(CurrentContext::Kind::Buffer, _buffer);
}

void BufferTexture::onContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Leaving)
    {
        deleteNames();
        return;
    }
    _isAttached = false;
    const std::size_t nBytes = _nTexels * getTexelSize();
    if (_kept.size() != nBytes || nBytes == 0)
    {
        // Names that the library has here no more.
        _texture = _buffer = 0;
        release();
    }
    else if (makeNames())
        makeRoom(_nTexels, _kept.data());
}

} // namespace gui::gl
