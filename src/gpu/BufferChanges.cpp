#include <gui/gl/Buffer.h>

#include "AttributeType.h"
#include "DynamicBuffer.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

// What buffers do whose data changes after the commit.

namespace gui::gl
{

namespace
{

// With 16 bits, 65535 stands for 0xFFFFFFFF where GL_PRIMITIVE_RESTART_FIXED_INDEX is on.
constexpr unsigned int cMostNarrow = 0xFFFE;

bool isRange(std::size_t first, std::size_t n, std::size_t count) { return first <= count && n <= count - first; }

// Of a ring: so many more than are kept, that moving all of them out of the way costs little for each that arrives.
std::size_t roomOfRing(std::size_t nKept) { return nKept + nKept / 2 + 1; }

template <typename T>
void shrinkTo(cnt::PushBackVector<T, 0>& vector, std::size_t n)
{
    vector.reset();
    vector.pushSlots(n);
}

template <typename T>
void eraseFrom(cnt::PushBackVector<T, 0>& vector, std::size_t first, std::size_t n)
{
    if (n == 0)
        return;
    std::copy(vector.begin() + first + n, vector.end(), vector.begin() + first);
    shrinkTo(vector, vector.size() - n);
}

bool hasWideIndex(const Pieces& pieces, const unsigned int* indices)
{
    for (const Pieces::Piece& piece : pieces.all())
    {
        if (!piece.isThere() && std::any_of(indices, indices + piece.n, [](unsigned int i) { return i > cMostNarrow; }))
            return true;
        indices += piece.n;
    }
    return false;
}

} // namespace

bool Buffer::isEmpty() const
{
    return _state != 1 && _vao == 0 && _vertexData.size() + _indices.size() + _instanceData.size() == 0;
}

void Buffer::setDynamic()
{
    TD_ASSERT(isEmpty());
    if (!_pDynamic)
        _pDynamic = std::make_unique<DynamicBuffer>();
    setInGLAlone(!_isKept);
}

void Buffer::setRing(std::size_t nVertices)
{
    TD_ASSERT(nVertices > 0);
    TD_ASSERT(isEmpty());
    setDynamic();
    _pDynamic->nKept = nVertices;
    _isWatched = true;
}

// Nothing is there, in whatever layout comes.
void Buffer::beginAnew()
{
    const std::size_t nKept = _pDynamic->nKept, room = _pDynamic->room;
    *_pDynamic = {};
    _pDynamic->nKept = nKept;
    _pDynamic->room = room;
    setInGLAlone(!_isKept);
    if (_state == 1)
        _state = 2;
}

std::size_t Buffer::getRoom(std::size_t nVertices) const
{
    return _pDynamic && _pDynamic->isRing() ? std::max(nVertices, roomOfRing(_pDynamic->nKept)) : nVertices;
}

std::size_t Buffer::findFirstFloat() const
{
    if (_pDynamic->isInGLAlone)
        return 0;
    const std::size_t size = _vertexData.size(), nMost = _pDynamic->nKept * _nVertexFloats;
    return _pDynamic->isRing() && size > nMost ? std::max(_pDynamic->first, size - nMost) : _pDynamic->first;
}

// Appending needs no more than this: what arrived and what left a ring is found out when it matters.
void Buffer::noteAppended() const
{
    if (_pDynamic->isInGLAlone)
        return noteQueued();
    DynamicBuffer& dynamic = *_pDynamic;
    const std::size_t first = findFirstFloat();
    if (_nVertexFloats != 0)
    {
        Pieces& vertices = dynamic.vertices.pieces;
        vertices.remove(0, std::min((first - dynamic.first) / _nVertexFloats, vertices.size()));
        vertices.extendTo((_vertexData.size() - first) / _nVertexFloats);
    }
    dynamic.first = first;
    dynamic.indices.pieces.extendTo(_indices.size());
    if (_nInstanceFloats != 0)
        dynamic.instances.pieces.extendTo(_instanceData.size() / _nInstanceFloats);
}

// Those that are gone already make place for the vertices that are there.
void Buffer::moveToFront() const
{
    noteAppended();
    eraseFrom(_vertexData, 0, std::exchange(_pDynamic->first, 0));
}

// @param nFloats  that will be appended
void Buffer::makeRoomInRing(std::size_t nFloats)
{
    const std::size_t nMost = _pDynamic->nKept * _nVertexFloats;
    if (nFloats <= _vertexData.capacity() - _vertexData.size())
        return;
    if (_vertexData.capacity() < roomOfRing(_pDynamic->nKept) * _nVertexFloats && nFloats <= nMost)
        return; // it grows
    noteAppended();
    const std::size_t nBefore = _vertexData.size() - _pDynamic->first;
    const std::size_t nStay = std::min(nBefore, nFloats < nMost ? nMost - nFloats : 0);
    _pDynamic->vertices.pieces.remove(0, (nBefore - nStay) / _nVertexFloats);
    eraseFrom(_vertexData, 0, _vertexData.size() - nStay);
    _pDynamic->first = 0;
}

// @param pos  the float that it begins at
void Buffer::notePointChanged(std::size_t pos)
{
    noteAppended();
    const std::size_t first = (pos - _pDynamic->first) / _nVertexFloats;
    const std::size_t end = (pos + 1 - _pDynamic->first) / _nVertexFloats + 1;
    _pDynamic->vertices.pieces.change(first, end - first);
}

// Before it is. All behind it may be cut into vertices in another way then.
void Buffer::notePointInserted(std::size_t pos)
{
    noteAppended();
    Pieces& vertices = _pDynamic->vertices.pieces;
    if (pos >= _vertexData.size())
        return; // appended
    const std::size_t first = (pos - _pDynamic->first) / _nVertexFloats;
    if (_nVertexFloats == 2)
        vertices.insert(first, 1);
    else
        vertices.change(first, vertices.size() - first);
}

Buffer::Part<float> Buffer::getVertexPart() const
{
    return {_vertexData, _pDynamic ? &_pDynamic->vertices : nullptr, _nVertexFloats, getFirstFloat()};
}

Buffer::Part<unsigned int> Buffer::getIndexPart() const
{
    return {_indices, _pDynamic ? &_pDynamic->indices : nullptr, 1};
}

Buffer::Part<float> Buffer::getInstancePart() const
{
    return {_instanceData, _pDynamic ? &_pDynamic->instances : nullptr, _nInstanceFloats};
}

template <typename T>
void Buffer::update(const Part<T>& part, std::size_t first, const T* data, std::size_t n)
{
    if (n == 0)
        return;
    if (isInGLAlone())
    {
        part.queued().update(first, data, n);
        return sendManyPieces();
    }
    if (part.pArray != nullptr)
    {
        noteAppended();
        part.pArray->pieces.change(first, n);
    }
    std::memmove(part.data.begin() + part.begin + first * part.nEach, data, n * part.nEach * sizeof(T));
}

template <typename T>
void Buffer::remove(const Part<T>& part, std::size_t first, std::size_t n)
{
    if (isInGLAlone())
    {
        part.queued().remove(first, n);
        return sendManyPieces();
    }
    if (part.pArray != nullptr)
    {
        noteAppended();
        part.pArray->pieces.remove(first, n);
    }
    eraseFrom(part.data, part.begin + first * part.nEach, n * part.nEach);
}

void Buffer::updateVertices(std::size_t first, const float* data, std::size_t n)
{
    if (isClosed())
        return;
    const std::size_t count = getNoOfVertices();
    TD_ASSERT(isRange(first, n, count));
    update(getVertexPart(), first, data, n);
}

void Buffer::updateInstances(std::size_t first, const float* data, std::size_t n)
{
    if (isClosed())
        return;
    TD_ASSERT(_nInstanceFloats > 0);
    const std::size_t count = getNoOfInstances() / _nInstanceFloats;
    TD_ASSERT(isRange(first, n, count));
    update(getInstancePart(), first, data, n);
}

void Buffer::updateIndices(std::size_t first, const unsigned int* indices, std::size_t n)
{
    if (isClosed())
        return;
    const std::size_t count = getNoOfIndices();
    TD_ASSERT(isRange(first, n, count));
    update(getIndexPart(), first, indices, n);
}

void Buffer::removeVertices(std::size_t first, std::size_t n)
{
    if (isClosed())
        return;
    const std::size_t count = getNoOfVertices();
    TD_ASSERT(isRange(first, n, count));
    if (!_pDynamic || isInGLAlone() || first != 0 || n == count)
        return remove(getVertexPart(), first, n);
    // The oldest go without a copy, until more are gone than are left.
    noteAppended();
    _pDynamic->vertices.pieces.remove(0, n);
    _pDynamic->first += n * _nVertexFloats;
    if (_pDynamic->first > _vertexData.size() / 2)
        moveToFront();
}

void Buffer::removeInstances(std::size_t first, std::size_t n)
{
    if (isClosed())
        return;
    TD_ASSERT(_nInstanceFloats > 0);
    const std::size_t count = getNoOfInstances() / _nInstanceFloats;
    TD_ASSERT(isRange(first, n, count));
    remove(getInstancePart(), first, n);
}

void Buffer::removeIndices(std::size_t first, std::size_t n)
{
    if (isClosed())
        return;
    const std::size_t count = getNoOfIndices();
    TD_ASSERT(isRange(first, n, count));
    remove(getIndexPart(), first, n);
}

// Into a new vertex array, which is bound. The names are those of a context that was lost, or 0.
bool Buffer::uploadDynamic(unsigned int oldVBO, unsigned int oldEBO, unsigned int oldIBO) const
{
    noteAppended();
    if (_pDynamic->isInGLAlone)
        dropLost();
    for (ChangingArray* pArray : {&_pDynamic->vertices, &_pDynamic->indices, &_pDynamic->instances})
        pArray->pieces.forget();
    _pDynamic->isLaidOut = _pDynamic->isSent = false;
    if (!uploadChanges(oldVBO, oldEBO, oldIBO))
        return false;
    layOut();
    return true;
}

bool Buffer::uploadChanges(unsigned int oldVBO, unsigned int oldEBO, unsigned int oldIBO) const
{
    noteAppended();
    DynamicBuffer& dynamic = *_pDynamic;
    const auto update =
        [&](ChangingArray& array, unsigned int& name, unsigned int before, const ChangingArray::Source& source)
    {
        const unsigned int nameBefore = name;
        const std::size_t baseBefore = array.getBase();
        const bool isDone = array.update(name, before, source, _home);
        dynamic.isLaidOut &= name == nameBefore && array.getBase() == baseBefore;
        return isDone;
    };
    const bool isQueue = dynamic.isInGLAlone;
    const std::size_t inMemory = _nVertexFloats != 0 ? _vertexData.capacity() / _nVertexFloats : 0;
    const ChangingArray::Source vertices{.data = _vertexData.begin() + dynamic.first,
                                         .elementBytes = _vertexRecLenInBytes,
                                         .room = getRoom(isQueue ? dynamic.room : inMemory),
                                         .isQueue = isQueue};
    if (!update(dynamic.vertices, _vbo, oldVBO, vertices))
    {
        vo::dbgLog("ERROR! Buffer::commit cannot create VBO!");
        return false;
    }
    if (isQueue)
        getVertexPart().queued().empty();
    if (_indices.capacity() > 0 || dynamic.indices.pieces.size() > 0 || _ebo != 0)
    {
        const bool isWidened = dynamic.isNarrow && hasWideIndex(dynamic.indices.pieces, _indices.begin());
        const bool isNarrow = dynamic.isNarrow && !isWidened;
        unsigned int name = isWidened ? 0 : _ebo;
        if (isWidened)
            dynamic.indices.pieces.forget();
        const ChangingArray::Source indices{.data = _indices.begin(),
                                            .elementBytes = isNarrow ? sizeof(std::uint16_t) : sizeof(std::uint32_t),
                                            .room = _indices.capacity(),
                                            .isNarrowed = isNarrow,
                                            .canSlide = false,
                                            .isQueue = isQueue};
        if (!update(dynamic.indices, name, oldEBO, indices))
        {
            vo::dbgLog("ERROR! Buffer::commit cannot create EBO!");
            return false;
        }
        if (isWidened)
            _home.deleteName(CurrentContext::Kind::Buffer, _ebo);
        dynamic.isNarrow = isNarrow;
        _ebo = name;
        if (isQueue)
            getIndexPart().queued().empty();
    }
    if (_instanceData.capacity() > 0)
    {
        const ChangingArray::Source instances{.data = _instanceData.begin(),
                                              .elementBytes = _instanceRecLenInBytes,
                                              .room = _instanceData.capacity() / _nInstanceFloats,
                                              .isQueue = isQueue};
        if (!update(dynamic.instances, _ibo, oldIBO, instances))
        {
            vo::dbgLog("ERROR! Buffer::commit cannot create IBO!");
            return false;
        }
        if (isQueue)
            emptyInstances();
    }
    noteCounts();
    dynamic.isSent = true;
    return true;
}

// Tells the bound vertex array where everything is.
void Buffer::layOut() const
{
    glBindBuffer(GL_ARRAY_BUFFER, _vbo);
    unsigned int location = 0;
    std::size_t offset = _pDynamic->vertices.getBase() * _vertexRecLenInBytes;
    for (const DataType type : _vertexLayout)
        offset = AttributeType::enable(location++, type, _vertexRecLenInBytes, offset);
    if (_ebo != 0)
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, _ebo);
    if (_ibo != 0)
    {
        glBindBuffer(GL_ARRAY_BUFFER, _ibo);
        enableInstances(location, _pDynamic->instances.getBase() * _instanceRecLenInBytes);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    _pDynamic->isLaidOut = true;
}

bool Buffer::commitChanges() const
{
    if (!CurrentContext::isThere("Buffer::commit"))
        return false;
    if (_home.getID() != CurrentContext::getID() || isAllSent())
        return true;
    if (!uploadChanges(0, 0, 0))
        return false;
    if (!_pDynamic->isLaidOut)
    {
        glBindVertexArray(_vao);
        layOut();
        glBindVertexArray(0);
    }
    return true;
}

void Buffer::activateDynamic() const
{
    if (!isAllSent())
        uploadChanges(0, 0, 0);
    glBindVertexArray(_vao);
    if (!_pDynamic->isLaidOut)
        layOut();
}

} // namespace gui::gl
