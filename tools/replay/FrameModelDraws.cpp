// What draws read: vertices, and indices.

#include "FrameModel.h"

#include "Error.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace replay
{

namespace
{

constexpr std::int64_t cMostStride = 1 << 16;
constexpr std::size_t cMostRanges = 1 << 16; // that are remembered

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

} // namespace

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
