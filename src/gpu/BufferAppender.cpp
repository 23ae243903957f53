#include <gui/gl/Buffer.h>

#include "DynamicBuffer.h"

#include <cstring>

namespace gui::gl
{

Buffer::Appender::Appender(Buffer& buffer, std::size_t nVertices)
    : _buffer(buffer)
{
    if (buffer.isClosed())
        return;
    TD_ASSERT(buffer._vertexRecLenInBytes > 0);
    _nFloats = buffer._nVertexFloats;
    grow(nVertices * _nFloats);
}

Buffer::Appender::~Appender() { handOver(); }

void Buffer::Appender::handOver()
{
    // Its slots have their values already.
    if (_pEnd != nullptr)
        _buffer._vertexData.pushSlots(
            static_cast<std::size_t>(reinterpret_cast<float*>(_pEnd) - _buffer._vertexData.end()));
}

void Buffer::Appender::appendGrowing(const void* data, std::size_t nBytes)
{
    if (!grow(nBytes / sizeof(float)))
        return;
    std::memcpy(_pEnd, data, nBytes);
    _pEnd += nBytes;
}

bool Buffer::Appender::grow(std::size_t nFloats)
{
    if (_nFloats == 0 || nFloats == 0)
        return false;
    cnt::PushBackVector<float, 0>& data = _buffer._vertexData;
    handOver();
    // None of a ring's vertices goes before others are there.
    if (_buffer._pDynamic && _buffer._pDynamic->isRing() && !_buffer.isInGLAlone() &&
        data.capacity() - data.size() < nFloats)
        _buffer.moveToFront();
    const std::size_t size = data.size();
    if (data.capacity() - size < nFloats)
    {
        data.pushSlots(nFloats);
        data.reset();
        data.pushSlots(size);
    }
    _pEnd = reinterpret_cast<char*>(data.end());
    _pLimit = reinterpret_cast<char*>(data.getEndPos());
    return true;
}

} // namespace gui::gl
