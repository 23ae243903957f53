#include <gui/gl/Buffer.h>

#include "DynamicBuffer.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>
#include <climits>

// What buffers do whose data changes, and of which memory has only what GL lacks.

namespace gui::gl
{

namespace
{

// A call of GL's costs about as much as copying some kilobytes.
constexpr std::size_t cLeastAtOnce = 4096;
constexpr std::size_t cMostQueuedPieces = 512; // that are searched one after the other

} // namespace

bool Buffer::isInGLAlone() const { return _pDynamic && _pDynamic->isInGLAlone; }

void Buffer::setInGLAlone(bool isInGLAlone)
{
    _pDynamic->isInGLAlone = isInGLAlone;
    for (ChangingArray* pArray : {&_pDynamic->vertices, &_pDynamic->indices, &_pDynamic->instances})
        pArray->pieces.setResendable(!isInGLAlone);
    // Larger ones would want all of them again.
    _pDynamic->isNarrow = !isInGLAlone;
    _isWatched = _pDynamic->isRing() || isInGLAlone;
}

// What GL has goes from memory.
void Buffer::leaveToGL()
{
    moveToFront();
    DynamicBuffer& dynamic = *_pDynamic;
    dynamic.isSent = false;
    if (_nVertexFloats != 0)
        dynamic.room = std::max(dynamic.room, _vertexData.capacity() / _nVertexFloats);
    if (dynamic.isNarrow)
        dynamic.indices.pieces.forget();
    setInGLAlone(true);
    getVertexPart().queued().dropThere();
    getIndexPart().queued().dropThere();
    getInstancePart().queued().dropThere();
    if (_vertexData.size() == 0)
        _vertexData.release();
    if (_indices.size() == 0 && dynamic.indices.pieces.size() > 0)
        _indices.release();
    if (_instanceData.size() == 0 && dynamic.instances.pieces.size() > 0)
        emptyInstances();
}

void Buffer::emptyInstances() const
{
    getInstancePart().queued().empty();
    // Appending instances needs some room.
    if (_instanceData.capacity() == 0)
        _instanceData.reserve(_nInstanceFloats);
}

// What is behind the last of each is as the kept form counts it.
void Buffer::noteQueued() const
{
    const DynamicBuffer& dynamic = *_pDynamic;
    QueuedEdits<float> vertices = getVertexPart().queued();
    vertices.noteAppended();
    const std::size_t n = dynamic.vertices.pieces.size();
    if (dynamic.isRing() && n > dynamic.nKept)
        vertices.remove(0, n - dynamic.nKept);
    getIndexPart().queued().noteAppended();
    getInstancePart().queued().noteAppended();
}

// @return whether nothing is left to do
bool Buffer::isAppended(const float* data, std::size_t nFloats)
{
    if (!_pDynamic->isInGLAlone)
    {
        makeRoomInRing(nFloats);
        return false;
    }
    if (isSentAtOnce(data, nFloats))
        return true;
    if (_pDynamic->isRing() && _vertexData.size() / 2 > _pDynamic->nKept * _nVertexFloats)
        noteAppended();
    return false;
}

bool Buffer::isSentAtOnce(const float* data, std::size_t nFloats)
{
    if (nFloats * sizeof(float) < cLeastAtOnce || _vertexData.size() != 0 || _state != 1 ||
        _home.getID() != CurrentContext::getID())
        return false;
    ChangingArray& vertices = _pDynamic->vertices;
    std::size_t n = nFloats / _nVertexFloats;
    if (_pDynamic->isRing())
    {
        const std::size_t nStay = _pDynamic->nKept - std::min(n, _pDynamic->nKept), nThere = vertices.pieces.size();
        if (nThere > nStay)
        {
            vertices.pieces.remove(0, nThere - nStay);
            _pDynamic->isSent = false;
        }
        n = std::min(n, _pDynamic->nKept);
        data += nFloats - n * _nVertexFloats;
    }
    return vertices.append(_vbo, data, n, _vertexRecLenInBytes);
}

void Buffer::sendManyPieces() const
{
    _pDynamic->isSent = false;
    if (_state != 1 || _home.getID() != CurrentContext::getID())
        return;
    const DynamicBuffer& dynamic = *_pDynamic;
    for (const ChangingArray* pArray : {&dynamic.vertices, &dynamic.indices, &dynamic.instances})
        if (pArray->pieces.all().size() > cMostQueuedPieces)
        {
            uploadChanges(0, 0, 0);
            return;
        }
}

// Most of the time what arrived was sent at once.
bool Buffer::isAllSent() const
{
    const DynamicBuffer& dynamic = *_pDynamic;
    if (!dynamic.isInGLAlone || !dynamic.isSent || !dynamic.isLaidOut ||
        _vertexData.size() + _indices.size() + _instanceData.size() != 0)
        return false;
    _inGL.nVertices = static_cast<unsigned int>(std::min<std::size_t>(dynamic.vertices.pieces.size(), INT_MAX));
    return true;
}

// What went with its context.
void Buffer::dropLost() const
{
    bool isAnyLost = false;
    for (ChangingArray* pArray : {&_pDynamic->vertices, &_pDynamic->indices, &_pDynamic->instances})
        isAnyLost |= pArray->pieces.dropThere();
    if (!isAnyLost)
        return;
    _isLossSaid = false;
    sayLoss();
}

const cnt::PushBackVector<float, 0>& Buffer::getDynamicVertices() const
{
    if (isInGLAlone())
    {
        static const cnt::PushBackVector<float, 0> s_none;
        vo::dbgLog("Error! Buffer::getVertices: the data of this dynamic buffer is in GL alone");
        return s_none;
    }
    moveToFront();
    return _vertexData;
}

} // namespace gui::gl
