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
constexpr std::int64_t cMostStride = 1 << 16;
constexpr std::size_t cMostRanges = 1 << 16; // that are remembered

unsigned int nameAt(CallArguments arguments, std::size_t i) { return static_cast<unsigned int>(arguments[i].integer); }

std::uint64_t widthOf(std::int64_t indexType)
{
    switch (indexType)
    {
    case GL_UNSIGNED_BYTE:
        return 1;
    case GL_UNSIGNED_SHORT:
        return 2;
    case GL_UNSIGNED_INT:
        return 4;
    default:
        return 0;
    }
}

// Of a value with n numbers; 0 for a type that vertices don't have.
std::uint64_t bytesOfValue(std::int64_t n, std::int64_t type)
{
    if (n == GL_BGRA)
        n = 4;
    if (n < 1 || n > 4)
        return 0;
    switch (type)
    {
    case GL_BYTE:
    case GL_UNSIGNED_BYTE:
        return static_cast<std::uint64_t>(n);
    case GL_SHORT:
    case GL_UNSIGNED_SHORT:
    case GL_HALF_FLOAT:
        return 2 * static_cast<std::uint64_t>(n);
    case GL_INT:
    case GL_UNSIGNED_INT:
    case GL_FLOAT:
        return 4 * static_cast<std::uint64_t>(n);
    case GL_DOUBLE:
        return 8 * static_cast<std::uint64_t>(n);
    case GL_INT_2_10_10_10_REV:
    case GL_UNSIGNED_INT_2_10_10_10_REV:
        return 4;
    default:
        return 0;
    }
}

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

// Vertices.

FrameModel::Attribute& FrameModel::attributeAt(std::int64_t index)
{
    const auto it = _vertexArrays.find(_vertexArray);
    if (it == _vertexArrays.end() || index >= static_cast<std::int64_t>(VertexArray::cMostAttributes))
        throw Error("an attribute without a vertex array, or the attribute " + std::to_string(index));
    return it->second.attributes[static_cast<std::size_t>(index)];
}

void FrameModel::enableAttribute(CallArguments arguments) { attributeAt(arguments[0].integer).isEnabled = true; }
void FrameModel::disableAttribute(CallArguments arguments) { attributeAt(arguments[0].integer).isEnabled = false; }

void FrameModel::attributeDivisor(CallArguments arguments)
{
    attributeAt(arguments[0].integer).divisor = static_cast<std::uint64_t>(arguments[1].integer);
}

void FrameModel::attributePointer(CallArguments arguments)
{
    setAttribute(arguments, arguments[4].integer, arguments[5].integer);
}

void FrameModel::attributeIPointer(CallArguments arguments)
{
    setAttribute(arguments, arguments[3].integer, arguments[4].integer);
}

void FrameModel::setAttribute(CallArguments arguments, std::int64_t stride, std::int64_t offset)
{
    Attribute& attribute = attributeAt(arguments[0].integer);
    const std::int64_t n = arguments[1].integer, type = arguments[2].integer;
    const std::uint64_t nBytes = bytesOfValue(n, type);
    std::shared_ptr<Buffer>* const ppBuffer = boundBuffer(GL_ARRAY_BUFFER);
    if (nBytes == 0 || stride < 0 || stride > cMostStride || offset < 0 ||
        offset > static_cast<std::int64_t>(cMostBytes) || (ppBuffer == nullptr && offset != 0))
        throw Error("vertices with an attribute of another kind, or of no buffer");
    attribute.pBuffer = ppBuffer != nullptr ? *ppBuffer : nullptr;
    attribute.buffer = ppBuffer != nullptr ? _boundBuffers[GL_ARRAY_BUFFER] : 0;
    attribute.n = n == GL_BGRA ? 4 : n;
    attribute.type = static_cast<unsigned int>(type);
    attribute.bytes = nBytes;
    attribute.stride = stride != 0 ? static_cast<std::uint64_t>(stride) : nBytes;
    attribute.offset = static_cast<std::uint64_t>(offset);
}

void FrameModel::checkDraw(Range vertices, std::int64_t nInstances)
{
    const auto it = _vertexArrays.find(_vertexArray);
    if (it == _vertexArrays.end())
        throw Error("a draw without a vertex array");
    if (vertices.max < vertices.min || nInstances <= 0)
        return;
    if (vertices.min < 0)
        throw Error("a draw that reads before the first vertex");
    for (std::size_t i = 0; i < it->second.attributes.size(); ++i)
    {
        const Attribute& attribute = it->second.attributes[i];
        if (!attribute.isEnabled)
            continue;
        const std::uint64_t last = attribute.divisor == 0
                                       ? static_cast<std::uint64_t>(vertices.max)
                                       : static_cast<std::uint64_t>(nInstances - 1) / attribute.divisor;
        const std::uint64_t end = attribute.offset + last * attribute.stride + attribute.bytes;
        if (!attribute.pBuffer || end > attribute.pBuffer->size)
            throw Error("a draw reads attribute " + std::to_string(i) + " of vertex array " +
                        std::to_string(_vertexArray) + " behind the end of its buffer");
    }
}

void FrameModel::drawArrays(CallArguments arguments)
{
    checkDraw({arguments[1].integer, arguments[1].integer + arguments[2].integer - 1}, 1);
}

void FrameModel::drawArraysInstanced(CallArguments arguments)
{
    checkDraw({arguments[1].integer, arguments[1].integer + arguments[2].integer - 1}, arguments[3].integer);
}

template <typename T>
FrameModel::Range FrameModel::rangeOf(const unsigned char* bytes, std::uint64_t count) const
{
    constexpr auto cFixed = static_cast<std::int64_t>(static_cast<T>(-1));
    // With both on the fixed one counts.
    const bool restarts = _restarts || _restartsFixed;
    const std::int64_t restart = _restartsFixed ? cFixed : _restartIndex;
    Range range{INT64_MAX, -1};
    for (std::uint64_t i = 0; i < count; ++i, bytes += sizeof(T))
    {
        T index = 0;
        std::memcpy(&index, bytes, sizeof index);
        const auto value = static_cast<std::int64_t>(index);
        if (restarts && value == restart)
            continue;
        range.min = std::min(range.min, value);
        range.max = std::max(range.max, value);
    }
    return range;
}

FrameModel::Range FrameModel::rangeOf(const Buffer& buffer, std::int64_t type, std::uint64_t offset,
                                      std::uint64_t count)
{
    const std::int64_t kind = type + (_restartsFixed ? 1 << 20 : _restarts ? (_restartIndex + 1) << 21 : 0);
    if (_ranges.size() > cMostRanges)
        _ranges.clear();
    const auto [it, isNew] = _ranges.try_emplace({&buffer, buffer.version, kind, offset, count});
    if (!isNew)
        return it->second;
    const std::uint64_t width = widthOf(type), there = buffer.bytes.size();
    // What was never written is 0.
    const std::uint64_t nThere = offset >= there ? 0 : std::min(count, (there - offset) / width);
    const unsigned char* const bytes = buffer.bytes.data() + std::min(offset, there);
    Range range = width == 1   ? rangeOf<std::uint8_t>(bytes, nThere)
                  : width == 2 ? rangeOf<std::uint16_t>(bytes, nThere)
                               : rangeOf<std::uint32_t>(bytes, nThere);
    if (nThere < count)
        range = {0, std::max<std::int64_t>(range.max, 0)};
    return it->second = range;
}

void FrameModel::checkElements(std::int64_t count, std::int64_t type, std::int64_t offset, std::int64_t baseVertex,
                               std::int64_t nInstances)
{
    const auto it = _vertexArrays.find(_vertexArray);
    if (it == _vertexArrays.end() || !it->second.pElements)
        throw Error("a draw of indices that are in no buffer");
    const Buffer& buffer = *it->second.pElements;
    const std::uint64_t width = widthOf(type);
    if (count <= 0 || width == 0)
        return;
    const auto first = static_cast<std::uint64_t>(offset), n = static_cast<std::uint64_t>(count);
    if (offset < 0 || first % width != 0 || first > buffer.size || n > (buffer.size - first) / width)
        throw Error("a draw reads indices behind the end of buffer " + std::to_string(it->second.elements));
    Range range = rangeOf(buffer, type, first, n);
    if (range.max >= range.min)
        range = {range.min + baseVertex, range.max + baseVertex};
    checkDraw(range, nInstances);
}

void FrameModel::drawElements(CallArguments arguments)
{
    checkElements(arguments[1].integer, arguments[2].integer, arguments[3].integer, 0, 1);
}

void FrameModel::drawElementsBaseVertex(CallArguments arguments)
{
    checkElements(arguments[1].integer, arguments[2].integer, arguments[3].integer, arguments[4].integer, 1);
}

void FrameModel::drawElementsInstanced(CallArguments arguments)
{
    checkElements(arguments[1].integer, arguments[2].integer, arguments[3].integer, 0, arguments[4].integer);
}

void FrameModel::drawRange(CallArguments arguments)
{
    checkElements(arguments[3].integer, arguments[4].integer, arguments[5].integer, 0, 1);
}

void FrameModel::multiDraw(CallArguments arguments)
{
    const auto* const counts = static_cast<const unsigned char*>(arguments[1].pointer);
    const auto* const offsets = static_cast<const unsigned char*>(arguments[3].pointer);
    const auto* const bases = static_cast<const unsigned char*>(arguments[5].pointer);
    for (std::int64_t i = 0; i < arguments[4].integer; ++i)
    {
        std::int32_t count = 0, base = 0;
        std::int64_t offset = 0;
        std::memcpy(&count, counts + 4 * i, sizeof count);
        std::memcpy(&offset, offsets + 8 * i, sizeof offset);
        std::memcpy(&base, bases + 4 * i, sizeof base);
        checkElements(count, arguments[2].integer, offset, base, 1);
    }
}

} // namespace replay
