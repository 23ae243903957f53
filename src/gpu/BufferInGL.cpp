#include <gui/gl/Buffer.h>

#include "DynamicBuffer.h"
#include "QueuedEdits.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>

// What buffers do whose data changes, and of which memory has only what GL lacks.

namespace gui::gl
{

namespace
{

// A call of GL's costs about as much as copying some kilobytes.
constexpr std::size_t cLeastAtOnce = 4096;
constexpr std::size_t cLargestQueue = std::size_t(1) << 18; // numbers, that room is kept for
constexpr std::size_t cMostQueuedPieces = 512;              // that are searched one after the other

template <typename T>
void emptyQueue(cnt::PushBackVector<T, 0>& queue)
{
    if (queue.capacity() > cLargestQueue)
        queue.release();
    else
        queue.reset();
}

} // namespace

bool Buffer::isInGLAlone() const { return _pDynamic && _pDynamic->isInGLAlone; }

void Buffer::setInGLAlone(bool isInGLAlone)
{
    _pDynamic->isInGLAlone = isInGLAlone;
    for (ChangingArray* pArray : {&_pDynamic->vertices, &_pDynamic->indices, &_pDynamic->instances})
        pArray->pieces.setResendable(!isInGLAlone);
    // Larger ones would want all of them again.
    _pDynamic->isNarrow = !isInGLAlone;
    _isWatched = _isRing || isInGLAlone;
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
    QueuedEdits(dynamic.vertices.pieces, _vertexData, _nVertexFloats).dropThere();
    QueuedEdits(dynamic.indices.pieces, _indices, 1).dropThere();
    QueuedEdits(dynamic.instances.pieces, _instanceData, _nInstanceFloats).dropThere();
    if (_vertexData.size() == 0)
        _vertexData.release();
    if (_indices.size() == 0 && dynamic.indices.pieces.size() > 0)
        _indices.release();
    if (_instanceData.size() == 0 && dynamic.instances.pieces.size() > 0)
        emptyInstances();
}

void Buffer::emptyInstances() const
{
    emptyQueue(_instanceData);
    // Appending instances needs some room.
    if (_instanceData.capacity() == 0)
        _instanceData.reserve(_nInstanceFloats);
}

void Buffer::emptyVertices() const { emptyQueue(_vertexData); }

void Buffer::emptyIndices() const { emptyQueue(_indices); }

// What is behind the last of each is as the kept form counts it.
void Buffer::noteQueued() const
{
    DynamicBuffer& dynamic = *_pDynamic;
    QueuedEdits vertices(dynamic.vertices.pieces, _vertexData, _nVertexFloats);
    vertices.noteAppended();
    const std::size_t n = dynamic.vertices.pieces.size();
    if (_isRing && n > dynamic.nKept)
        vertices.remove(0, n - dynamic.nKept);
    QueuedEdits(dynamic.indices.pieces, _indices, 1).noteAppended();
    QueuedEdits(dynamic.instances.pieces, _instanceData, _nInstanceFloats).noteAppended();
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
    if (_isRing && _vertexData.size() / 2 > _pDynamic->nKept * _nVertexFloats)
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
    if (_isRing)
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

void Buffer::updateQueued(std::size_t first, const float* data, std::size_t n)
{
    QueuedEdits(_pDynamic->vertices.pieces, _vertexData, _nVertexFloats).update(first, data, n);
    sendManyPieces();
}

void Buffer::insertQueued(std::size_t i, const float* data)
{
    noteAppended();
    Pieces& vertices = _pDynamic->vertices.pieces;
    QueuedEdits(vertices, _vertexData, _nVertexFloats).insert(std::min(i, vertices.size()), data, 1);
    sendManyPieces();
}

void Buffer::updateQueuedInstances(std::size_t first, const float* data, std::size_t n)
{
    QueuedEdits(_pDynamic->instances.pieces, _instanceData, _nInstanceFloats).update(first, data, n);
    sendManyPieces();
}

void Buffer::updateQueuedIndices(std::size_t first, const unsigned int* indices, std::size_t n)
{
    QueuedEdits(_pDynamic->indices.pieces, _indices, 1).update(first, indices, n);
    sendManyPieces();
}

void Buffer::removeQueued(std::size_t first, std::size_t n)
{
    QueuedEdits(_pDynamic->vertices.pieces, _vertexData, _nVertexFloats).remove(first, n);
    sendManyPieces();
}

void Buffer::removeQueuedInstances(std::size_t first, std::size_t n)
{
    QueuedEdits(_pDynamic->instances.pieces, _instanceData, _nInstanceFloats).remove(first, n);
    sendManyPieces();
}

void Buffer::removeQueuedIndices(std::size_t first, std::size_t n)
{
    QueuedEdits(_pDynamic->indices.pieces, _indices, 1).remove(first, n);
    sendManyPieces();
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
