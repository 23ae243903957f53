#include "FrameModel.h"

#include "Error.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace replay
{

namespace
{

using gui::gl::InternalFormat;

constexpr std::int64_t cMostPixels = 16384; // in a direction
constexpr std::int64_t cMostLevels = 15;
constexpr std::int64_t cMostSamples = 32;

unsigned int nameAt(CallArguments arguments, std::size_t i) { return static_cast<unsigned int>(arguments[i].integer); }

// Whole indices, so that none is half of what was written and half of what never was.
void reach(FrameModel::Buffer& buffer, std::uint64_t end)
{
    const std::uint64_t whole = std::min((end + 7) / 8 * 8, buffer.size);
    if (buffer.bytes.size() < whole)
        buffer.bytes.resize(whole);
}

} // namespace

FrameModel::Handler FrameModel::handlerOf(const GLCall& call)
{
    static const std::unordered_map<const void*, Handler> cHandlers{
        {&glActiveTexture, &FrameModel::activeTexture},
        {&glBindBuffer, &FrameModel::bindBuffer},
        {&glBindFramebuffer, &FrameModel::bindFramebuffer},
        {&glBindRenderbuffer, &FrameModel::bindRenderbuffer},
        {&glBindTexture, &FrameModel::bindTexture},
        {&glBindVertexArray, &FrameModel::bindVertexArray},
        {&glBufferData, &FrameModel::bufferData},
        {&glBufferSubData, &FrameModel::bufferSubData},
        {&glCopyBufferSubData, &FrameModel::copyBuffer},
        {&glDisable, &FrameModel::disable},
        {&glDisableVertexAttribArray, &FrameModel::disableAttribute},
        {&glDrawArrays, &FrameModel::drawArrays},
        {&glDrawArraysInstanced, &FrameModel::drawArraysInstanced},
        {&glDrawBuffers, &FrameModel::drawBuffers},
        {&glDrawElements, &FrameModel::drawElements},
        {&glDrawElementsBaseVertex, &FrameModel::drawElementsBaseVertex},
        {&glDrawElementsInstanced, &FrameModel::drawElementsInstanced},
        {&glDrawRangeElements, &FrameModel::drawRange},
        {&glEnable, &FrameModel::enable},
        {&glEnableVertexAttribArray, &FrameModel::enableAttribute},
        {&glGenerateMipmap, &FrameModel::mipmap},
        {&glMultiDrawElementsBaseVertex, &FrameModel::multiDraw},
        {&glPrimitiveRestartIndex, &FrameModel::restartIndex},
        {&glRenderbufferStorage, &FrameModel::storage},
        {&glRenderbufferStorageMultisample, &FrameModel::storageWithSamples},
        {&glTexImage2D, &FrameModel::image},
        {&glTexImage2DMultisample, &FrameModel::imageWithSamples},
        {&glUseProgram, &FrameModel::useProgram},
        {&glVertexAttribDivisor, &FrameModel::attributeDivisor},
        {&glVertexAttribIPointer, &FrameModel::attributeIPointer},
        {&glVertexAttribPointer, &FrameModel::attributePointer},
    };
    const auto it = cHandlers.find(call.slot);
    return call.slot != nullptr && it != cHandlers.end() ? it->second : nullptr;
}

void FrameModel::follow(const GLCall& call, CallArguments arguments)
{
    using Role = GLCall::Role;
    if (call.role == Role::Heard)
        throw Error(std::string(call.name) + " is no call of a captured frame");
    if (std::strcmp(call.name, "guiglProgram") == 0)
        return makeProgram(arguments);
    checkNames(call, arguments);
    if (std::strcmp(call.name, "guiglDeleteProgram") == 0)
        return deleteProgram(arguments);
    if (call.role == Role::Generate)
        return generate(call.kind, arguments);
    if (call.role == Role::Delete)
        return remove(call.kind, arguments);
    if (const Handler handler = handlerOf(call))
        (this->*handler)(arguments);
}

void FrameModel::checkNames(const GLCall& call, CallArguments arguments) const
{
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const GLCall::Kind kind = GLCall::kindOf(call.signature[i]);
        if (kind != GLCall::Kind::None && arguments[i].integer != 0 && !_names.contains({kind, nameAt(arguments, i)}))
            throw Error(std::string(call.name) + " with the name " + std::to_string(arguments[i].integer) +
                        ", which nothing has");
    }
}

void FrameModel::generate(GLCall::Kind kind, CallArguments arguments)
{
    const auto* pBytes = static_cast<const unsigned char*>(arguments[1].pointer);
    for (std::int64_t i = 0; i < arguments[0].integer; ++i, pBytes += sizeof(GLuint))
    {
        GLuint name = 0;
        std::memcpy(&name, pBytes, sizeof name);
        if (name == 0 || !_names.insert({kind, name}).second)
            throw Error("the name " + std::to_string(name) + " is made twice");
        if (kind == GLCall::Kind::Buffer)
            _buffers[name] = std::make_shared<Buffer>();
        else if (kind == GLCall::Kind::VertexArray)
            _vertexArrays[name] = {};
    }
}

void FrameModel::removeBuffer(unsigned int name)
{
    const std::shared_ptr<Buffer> pBuffer = _buffers[name];
    _buffers.erase(name);
    std::erase_if(_boundBuffers, [name](const auto& bound) { return bound.second == name; });
    // Only the vertex array that is bound lets go of it.
    if (const auto it = _vertexArrays.find(_vertexArray); it != _vertexArrays.end())
    {
        if (it->second.pElements == pBuffer)
            it->second.pElements = nullptr;
        for (Attribute& attribute : it->second.attributes)
            if (attribute.pBuffer == pBuffer)
                attribute.pBuffer = nullptr;
    }
}

void FrameModel::remove(GLCall::Kind kind, CallArguments arguments)
{
    const auto* pBytes = static_cast<const unsigned char*>(arguments[1].pointer);
    for (std::int64_t i = 0; i < arguments[0].integer; ++i, pBytes += sizeof(GLuint))
    {
        GLuint name = 0;
        std::memcpy(&name, pBytes, sizeof name);
        if (_names.erase({kind, name}) == 0)
            throw Error("the name " + std::to_string(name) + " is deleted, which nothing has");
        if (kind == GLCall::Kind::Buffer)
            removeBuffer(name);
        else if (kind == GLCall::Kind::VertexArray)
        {
            _vertexArrays.erase(name);
            _vertexArray = _vertexArray == name ? 0 : _vertexArray;
        }
        else if (kind == GLCall::Kind::Framebuffer)
            _drawFramebuffer = _drawFramebuffer == name ? 0 : _drawFramebuffer;
        else if (kind == GLCall::Kind::Renderbuffer)
            _renderbuffer = _renderbuffer == name ? 0 : _renderbuffer;
        else if (kind == GLCall::Kind::Texture)
            std::erase_if(_boundTextures, [name](const auto& bound) { return bound.second == name; });
    }
}

void FrameModel::makeProgram(CallArguments arguments)
{
    if (arguments[0].integer == 0)
        throw Error("a program with the name 0");
    _names.insert({GLCall::Kind::Program, nameAt(arguments, 0)});
}

void FrameModel::deleteProgram(CallArguments arguments)
{
    if (_names.erase({GLCall::Kind::Program, nameAt(arguments, 0)}) == 0)
        throw Error("the program 0 is deleted");
}

// Bindings.

std::shared_ptr<FrameModel::Buffer>* FrameModel::boundBuffer(std::int64_t target)
{
    if (target == GL_ELEMENT_ARRAY_BUFFER)
    {
        const auto it = _vertexArrays.find(_vertexArray);
        return it != _vertexArrays.end() && it->second.pElements ? &it->second.pElements : nullptr;
    }
    const auto bound = _boundBuffers.find(target);
    const auto it = bound != _boundBuffers.end() ? _buffers.find(bound->second) : _buffers.end();
    return it != _buffers.end() ? &it->second : nullptr;
}

void FrameModel::bindBuffer(CallArguments arguments)
{
    const std::int64_t target = arguments[0].integer;
    const unsigned int name = nameAt(arguments, 1);
    switch (target)
    {
    case GL_ARRAY_BUFFER:
    case GL_COPY_READ_BUFFER:
    case GL_COPY_WRITE_BUFFER:
    case GL_TEXTURE_BUFFER:
    case GL_UNIFORM_BUFFER:
        _boundBuffers[target] = name;
        break;
    case GL_ELEMENT_ARRAY_BUFFER:
        if (const auto it = _vertexArrays.find(_vertexArray); it != _vertexArrays.end())
        {
            it->second.elements = name;
            it->second.pElements = name != 0 ? _buffers[name] : nullptr;
        }
        break;
    default: // where GL would take offsets for pointers
        throw Error("a buffer is bound to a target that captured frames don't have");
    }
}

void FrameModel::bindTexture(CallArguments arguments)
{
    _boundTextures[{_unit, arguments[0].integer}] = nameAt(arguments, 1);
}

void FrameModel::bindVertexArray(CallArguments arguments) { _vertexArray = nameAt(arguments, 0); }

void FrameModel::bindFramebuffer(CallArguments arguments)
{
    if (arguments[0].integer != GL_READ_FRAMEBUFFER)
        _drawFramebuffer = nameAt(arguments, 1);
}

void FrameModel::bindRenderbuffer(CallArguments arguments) { _renderbuffer = nameAt(arguments, 1); }
void FrameModel::activeTexture(CallArguments arguments) { _unit = arguments[0].integer; }
void FrameModel::useProgram(CallArguments arguments) { _program = nameAt(arguments, 0); }

void FrameModel::enable(CallArguments arguments)
{
    _restarts |= arguments[0].integer == GL_PRIMITIVE_RESTART;
    _restartsFixed |= arguments[0].integer == GL_PRIMITIVE_RESTART_FIXED_INDEX;
}

void FrameModel::disable(CallArguments arguments)
{
    _restarts &= arguments[0].integer != GL_PRIMITIVE_RESTART;
    _restartsFixed &= arguments[0].integer != GL_PRIMITIVE_RESTART_FIXED_INDEX;
}

void FrameModel::restartIndex(CallArguments arguments) { _restartIndex = arguments[0].integer; }

// Memory.

void FrameModel::count(std::uint64_t before, std::uint64_t now)
{
    _nBytes = _nBytes - before + now;
    if (now > cMostBytes || _nBytes > cMostBytes)
        throw Error("it wants more than 2 GiB of GL's memory");
}

void FrameModel::bufferData(CallArguments arguments)
{
    std::shared_ptr<Buffer>* const ppBuffer = boundBuffer(arguments[0].integer);
    if (ppBuffer == nullptr)
        return;
    Buffer& buffer = **ppBuffer;
    const auto size = static_cast<std::uint64_t>(arguments[1].integer);
    count(buffer.size, size);
    buffer.size = size;
    buffer.version = ++_nChanges;
    const auto* const pBytes = static_cast<const unsigned char*>(arguments[2].pointer);
    if (pBytes != nullptr)
        buffer.bytes.assign(pBytes, pBytes + size);
    else
        buffer.bytes.clear();
}

void FrameModel::bufferSubData(CallArguments arguments)
{
    std::shared_ptr<Buffer>* const ppBuffer = boundBuffer(arguments[0].integer);
    const std::int64_t offset = arguments[1].integer, size = arguments[2].integer;
    if (ppBuffer == nullptr || offset < 0 || size <= 0)
        return;
    Buffer& buffer = **ppBuffer;
    const auto first = static_cast<std::uint64_t>(offset), n = static_cast<std::uint64_t>(size);
    if (first > buffer.size || n > buffer.size - first)
        return;
    buffer.version = ++_nChanges;
    reach(buffer, first + n);
    std::memcpy(buffer.bytes.data() + first, arguments[3].pointer, n);
}

void FrameModel::copyBuffer(CallArguments arguments)
{
    std::shared_ptr<Buffer>* const ppFrom = boundBuffer(arguments[0].integer);
    std::shared_ptr<Buffer>* const ppTo = boundBuffer(arguments[1].integer);
    const std::int64_t from = arguments[2].integer, to = arguments[3].integer, size = arguments[4].integer;
    if (ppFrom == nullptr || ppTo == nullptr || from < 0 || to < 0 || size <= 0)
        return;
    Buffer& source = **ppFrom;
    Buffer& target = **ppTo;
    const auto n = static_cast<std::uint64_t>(size), first = static_cast<std::uint64_t>(from);
    const auto at = static_cast<std::uint64_t>(to);
    if (first > source.size || n > source.size - first || at > target.size || n > target.size - at)
        return;
    reach(source, first + n);
    reach(target, at + n);
    target.version = ++_nChanges;
    std::memmove(target.bytes.data() + at, source.bytes.data() + first, n);
}

void FrameModel::keep(unsigned int texture, std::int64_t target, std::int64_t level, std::uint64_t nBytes)
{
    std::uint64_t& kept = _images[{texture, target, level}];
    count(kept, nBytes);
    kept = nBytes;
}

void FrameModel::keepImage(std::int64_t target, std::int64_t level, std::int64_t internalFormat, std::int64_t width,
                           std::int64_t height, std::int64_t nSamples)
{
    const bool isFace = target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z;
    if (target != GL_TEXTURE_2D && target != GL_TEXTURE_2D_MULTISAMPLE && !isFace)
        throw Error("an image of a texture that is neither 2D nor a cube map");
    const InternalFormat* const pFormat = InternalFormat::find(internalFormat);
    if (pFormat == nullptr)
        throw Error("a texture with an internal format that captured frames don't have");
    if (level < 0 || level > cMostLevels || width < 0 || height < 0 || width > cMostPixels || height > cMostPixels ||
        nSamples < 0 || nSamples > cMostSamples)
        throw Error("a texture of " + std::to_string(width) + " x " + std::to_string(height) + " pixels, level " +
                    std::to_string(level) + ", " + std::to_string(nSamples) + " samples");
    const auto bound = _boundTextures.find({_unit, isFace ? GL_TEXTURE_CUBE_MAP : target});
    const auto nPixels = static_cast<std::uint64_t>(width * height * std::max<std::int64_t>(nSamples, 1));
    keep(bound != _boundTextures.end() ? bound->second : 0, target, level, nPixels * pFormat->bytes);
}

void FrameModel::image(CallArguments arguments)
{
    keepImage(arguments[0].integer, arguments[1].integer, arguments[2].integer, arguments[3].integer,
              arguments[4].integer, 1);
}

void FrameModel::imageWithSamples(CallArguments arguments)
{
    keepImage(arguments[0].integer, 0, arguments[2].integer, arguments[3].integer, arguments[4].integer,
              arguments[1].integer);
}

// The levels are a third of the first, and of cube maps there are six.
void FrameModel::mipmap(CallArguments arguments)
{
    const auto bound = _boundTextures.find({_unit, arguments[0].integer});
    if (bound == _boundTextures.end())
        return;
    std::uint64_t nBytes = 0;
    for (const auto& [image, n] : _images)
        if (std::get<0>(image) == bound->second && std::get<2>(image) == 0)
            nBytes += n;
    keep(bound->second, -1, -1, nBytes / 2);
}

void FrameModel::keepStorage(std::int64_t nSamples, std::int64_t internalFormat, std::int64_t width,
                             std::int64_t height)
{
    const InternalFormat* const pFormat = InternalFormat::find(internalFormat);
    if (pFormat == nullptr || width < 0 || height < 0 || width > cMostPixels || height > cMostPixels || nSamples < 0 ||
        nSamples > cMostSamples)
        throw Error("a renderbuffer of " + std::to_string(width) + " x " + std::to_string(height) + " pixels, " +
                    std::to_string(nSamples) + " samples");
    keep(_renderbuffer, 0, -1,
         static_cast<std::uint64_t>(width * height * std::max<std::int64_t>(nSamples, 1)) * pFormat->bytes);
}

void FrameModel::storage(CallArguments arguments)
{
    keepStorage(1, arguments[1].integer, arguments[2].integer, arguments[3].integer);
}

void FrameModel::storageWithSamples(CallArguments arguments)
{
    keepStorage(arguments[1].integer, arguments[2].integer, arguments[3].integer, arguments[4].integer);
}

void FrameModel::drawBuffers(CallArguments arguments)
{
    constexpr std::int64_t cMost = 8;
    if (arguments[0].integer > cMost)
        throw Error("glDrawBuffers with " + std::to_string(arguments[0].integer) + " buffers");
}

} // namespace replay
