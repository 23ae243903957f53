#include <gui/gl/Buffer.h>

#include "../context/Restoration.h"
#include "ActiveBuffer.h"
#include "AttributeType.h"
#include "DynamicBuffer.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <limits>
#include <utility>

namespace gui::gl
{

namespace
{

constexpr std::size_t cMaxFloats = std::numeric_limits<unsigned char>::max();

bool areTypesKnown(const std::initializer_list<DataType>& layout)
{
    return std::all_of(layout.begin(), layout.end(), [](DataType type) { return AttributeType::of(type).nFloats > 0; });
}

// In 16 bits it would wrap for layouts of thousands of positions, and be accepted.
std::size_t sumOfFloats(const std::initializer_list<DataType>& layout)
{
    std::size_t nFloats = 0;
    for (const DataType type : layout)
        nFloats += AttributeType::of(type).nFloats;
    return nFloats;
}

template <typename T>
void copyTo(cnt::SafeFullVector<T, false>& vector, const std::initializer_list<T>& values)
{
    vector.reserve(values.size());
    std::copy(values.begin(), values.end(), vector.begin());
}

// @param before  its name in a context that was lost, 0 if there was none
GLuint generateBuffer(GLuint before) { return Restoration::makeName(CurrentContext::Kind::Buffer, before); }

void uploadTo(GLenum target, GLuint id, const void* pData, std::size_t nBytes)
{
    glBindBuffer(target, id);
    glBufferData(target, static_cast<GLsizeiptr>(nBytes), pData, GL_STATIC_DRAW);
}

// Where point i starts among the floats, point 0 at first; past every end if there can be no such point.
std::size_t floatOfPoint(std::size_t i, std::size_t first)
{
    constexpr std::size_t cMax = std::numeric_limits<std::size_t>::max();
    return i < (cMax - first) / 2 ? first + 2 * i : cMax - 1;
}

} // namespace

Buffer::Buffer() = default;

Buffer::Buffer(const std::initializer_list<DataType>& layout) { init(0, 0, 0, layout); }

Buffer::~Buffer() { release(); }

bool Buffer::init(std::size_t nCommands, std::size_t nVertices, std::size_t nIndices,
                  const std::initializer_list<DataType>& layout)
{
    if (layout.size() == 0)
    {
        vo::dbgLog("Error! Buffer::init with 0 layout vertex positions!");
        TD_ASSERT(false, false);
    }
    TD_ASSERT(areTypesKnown(layout), false);
    const std::size_t vertexFloatUnits = sumOfFloats(layout);
    TD_ASSERT(vertexFloatUnits <= 255, false);

    if (_pDynamic)
        beginAnew();
    if (nCommands != 0)
        _commandList.reserve(nCommands);
    copyTo(_vertexLayout, layout);
    _nVertexFloats = static_cast<unsigned char>(vertexFloatUnits);
    _vertexRecLenInBytes = static_cast<unsigned short>(vertexFloatUnits * sizeof(VertexType));
    if (isInGLAlone())
        _pDynamic->room = nVertices;
    _vertexData.reserve(isInGLAlone() ? 0 : vertexFloatUnits * getRoom(nVertices));
    if (nIndices != 0)
        _indices.reserve(nIndices);
    return true;
}

bool Buffer::init(std::size_t nCommands, std::size_t nVertices, std::size_t nIndices, std::size_t nInstances,
                  const std::initializer_list<DataType>& layout, const std::initializer_list<DataType>& instanceLayout,
                  const std::initializer_list<unsigned short>& divisors)
{
    // Refused before the plain form runs, unless that one refuses first.
    const bool isLayoutGood = layout.size() != 0 && areTypesKnown(layout) && sumOfFloats(layout) <= cMaxFloats;
    if (isLayoutGood)
    {
        if (instanceLayout.size() == 0)
        {
            vo::dbgLog("Error! Buffer::init instanced buffer with 0 layout instanced positions!");
            TD_ASSERT(false, false);
        }
        TD_ASSERT(areTypesKnown(instanceLayout), false);
        const std::size_t instanceFloatUnits = sumOfFloats(instanceLayout);
        TD_ASSERT(instanceFloatUnits <= 255, false);
    }
    if (!init(nCommands, nVertices, nIndices, layout))
        return false;

    const std::size_t nFloats = sumOfFloats(instanceLayout);
    copyTo(_instanceLayout, instanceLayout);
    _nInstanceFloats = static_cast<unsigned char>(nFloats);
    _instanceRecLenInBytes = static_cast<unsigned short>(nFloats * sizeof(VertexType));
    _instanceData.reserve(nFloats * nInstances);
    _divisors.reserve(0);
    if (divisors.size() == instanceLayout.size())
        copyTo(_divisors, divisors);
    else if (divisors.size() != 0)
        vo::dbgLog("Warning! Buffer::init number of divisors doesn't correspond to number of layout positions and will "
                   "be ignored");
    return true;
}

bool Buffer::isAddOnCommitted() const
{
    if (_pDynamic || !isCommitted())
        return false;
    vo::dbgLog("ERROR! Buffer::append vertices on committed buffer! Call reset first!");
    TD_ASSERT(false, true);
    return true;
}

void Buffer::appendVertexUnits(const float* data, std::size_t nVertexFloats)
{
    if (isAddOnCommitted())
        return;
    TD_ASSERT(_vertexRecLenInBytes > 0);
    TD_ASSERT(((nVertexFloats * sizeof(gui::gl::VertexType)) % _vertexRecLenInBytes) == 0);
    if (_isWatched && isAppended(data, nVertexFloats))
        return;
    _vertexData.push_back(data, nVertexFloats);
}

void Buffer::appendVertex(const td::Point<float>& pt)
{
    if (isAddOnCommitted())
        return;
    TD_ASSERT(_vertexRecLenInBytes > 0);
    TD_ASSERT(((2 * sizeof(gui::gl::VertexType)) % _vertexRecLenInBytes) == 0);
    const float xy[2] = {pt.x, pt.y};
    if (_isWatched && isAppended(xy, 2))
        return;
    _vertexData.push_back(xy, 2);
}

Command* Buffer::appendShape(Primitive primitive, const float* data, std::size_t n)
{
    if (isAddOnCommitted())
        return nullptr;
    TD_ASSERT(_vertexRecLenInBytes > 0, nullptr);
    TD_ASSERT(primitive <= Primitive::Patches, nullptr);
    Command* const pCommand = createCommand();
    pCommand->createDrawArrays(primitive, getNoOfVertices(), static_cast<unsigned int>(n));
    appendVertices(data, n);
    return pCommand;
}

void Buffer::appendInstances(const float* data, std::size_t nInstances)
{
    if (isAddOnCommitted())
        return;
    TD_ASSERT(_instanceData.capacity() > 0);
    TD_ASSERT(_nInstanceFloats > 0);
    _instanceData.push_back(data, nInstances * _nInstanceFloats);
}

void Buffer::updateVertex(std::size_t i, const td::Point<float>& pt)
{
    if (isAddOnCommitted())
        return;
    if (isInGLAlone())
    {
        TD_ASSERT(_nVertexFloats == 2);
        const float xy[2] = {pt.x, pt.y};
        updateVertices(i, xy, 1);
        return;
    }
    const std::size_t pos = floatOfPoint(i, getFirstFloat());
    float& y = _vertexData.at(pos + 1);
    _vertexData.at(pos) = pt.x;
    y = pt.y;
    if (_pDynamic)
        notePointChanged(pos);
}

void Buffer::getVertex(std::size_t i, td::Point<float>& pt) const
{
    if (isAddOnCommitted())
        return;
    if (isInGLAlone())
    {
        vo::dbgLog("Error! Buffer::getVertex: the data of this dynamic buffer is in GL alone");
        return;
    }
    const std::size_t pos = floatOfPoint(i, getFirstFloat());
    pt.y = _vertexData.at(pos + 1);
    pt.x = _vertexData.at(pos);
}

void Buffer::insertVertex(std::size_t i, const td::Point<float>& pt)
{
    if (isAddOnCommitted())
        return;
    const float x = pt.x;
    const float y = pt.y;
    if (isInGLAlone())
    {
        TD_ASSERT(_nVertexFloats == 2);
        const float xy[2] = {x, y};
        noteAppended();
        getVertexPart().queued().insert(std::min(i, _pDynamic->vertices.pieces.size()), xy, 1);
        return sendManyPieces();
    }
    const std::size_t pos = floatOfPoint(i, getFirstFloat());
    if (_pDynamic)
        notePointInserted(pos);
    _vertexData.insert(pos, x);
    _vertexData.insert(pos + 1, y);
}

std::size_t Buffer::getNoOfVertices() const
{
    const std::size_t nRecLen = _vertexRecLenInBytes;
    TD_ASSERT(nRecLen > 0, 0);
    if (isInGLAlone())
    {
        noteAppended();
        return _pDynamic->vertices.pieces.size();
    }
    const std::size_t nVBOBytes = (_vertexData.size() - getFirstFloat()) * sizeof(VertexType);
    TD_ASSERT((nVBOBytes % nRecLen) == 0, 0);
    return nVBOBytes / nRecLen;
}

std::size_t Buffer::getNoOfIndices() const
{
    if (!isInGLAlone())
        return _indices.size();
    noteAppended();
    return _pDynamic->indices.pieces.size();
}

std::size_t Buffer::getNoOfInstances() const
{
    if (!isInGLAlone())
        return _instanceData.size();
    noteAppended();
    return _pDynamic->instances.pieces.size() * _nInstanceFloats;
}

bool Buffer::commit()
{
    if (isCommitted())
        return !_pDynamic || commitChanges();
    if (isDataLost() || !CurrentContext::isThere("Buffer::commit"))
        return false;
    // What a commit that failed left: there is nothing more to do until the reset.
    if (_state == 0 && _vao != 0 && _home.isAlive())
        return true;
    deleteObjects();
    _state = 0;
    _home.set(CurrentContext::getID());
    if (!upload())
        return false;
    _isLost = false;
    if (!_isKept && !_pDynamic)
        freeData();
    return true;
}

// What was made before a failure is kept, and the vertex array stays bound.
bool Buffer::upload()
{
    // Of a context that was lost, or all 0.
    const GLuint oldVBO = std::exchange(_vbo, 0), oldEBO = std::exchange(_ebo, 0), oldIBO = std::exchange(_ibo, 0);
    _vao = Restoration::makeName(CurrentContext::Kind::VertexArray, _vao);
    if (_vao == 0)
    {
        vo::dbgLog("ERROR! Buffer::commit cannot create VAO!");
        return false;
    }
    glBindVertexArray(_vao);
    if (!(_pDynamic ? uploadDynamic(oldVBO, oldEBO, oldIBO) : uploadClosed(oldVBO, oldEBO, oldIBO)))
        return false;
    _state = 1;
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    return true;
}

// The same as uploadDynamic, of data that stays as it is.
bool Buffer::uploadClosed(unsigned int oldVBO, unsigned int oldEBO, unsigned int oldIBO)
{
    _vbo = generateBuffer(oldVBO);
    if (_vbo == 0)
    {
        vo::dbgLog("ERROR! Buffer::commit cannot create VBO!");
        return false;
    }
    uploadTo(GL_ARRAY_BUFFER, _vbo, _vertexData.begin(), _vertexData.size() * sizeof(VertexType));
    GLuint location = 0;
    std::size_t offset = 0;
    for (const DataType type : _vertexLayout)
        offset = AttributeType::enable(location++, type, _vertexRecLenInBytes, offset);

    if (_indices.size() > 0)
    {
        _ebo = generateBuffer(oldEBO);
        if (_ebo == 0)
        {
            vo::dbgLog("ERROR! Buffer::commit cannot create EBO!");
            return false;
        }
        uploadTo(GL_ELEMENT_ARRAY_BUFFER, _ebo, _indices.begin(), _indices.size() * sizeof(unsigned int));
    }
    else
        TD_ASSERT(_ebo == 0, false);

    if (_instanceData.size() > 0)
    {
        TD_ASSERT(_ibo == 0, false);
        _ibo = generateBuffer(oldIBO);
        if (_ibo == 0)
        {
            vo::dbgLog("ERROR! Buffer::commit cannot create IBO!");
            return false;
        }
        uploadTo(GL_ARRAY_BUFFER, _ibo, _instanceData.begin(), _instanceData.size() * sizeof(VertexType));
        enableInstances(location, 0);
    }
    noteCounts();
    return true;
}

// The instances' attributes, in the bound array buffer.
void Buffer::enableInstances(unsigned int location, std::size_t offset) const
{
    for (std::size_t j = 0; j < _instanceLayout.size(); ++j, ++location)
    {
        offset = AttributeType::enable(location, _instanceLayout[j], _instanceRecLenInBytes, offset);
        glVertexAttribDivisor(location, _divisors.size() != 0 ? _divisors[j] : 1);
    }
}

// What GL has of each now, for commands that draw all of it.
void Buffer::noteCounts() const
{
    const auto fit = [](std::size_t n) { return static_cast<unsigned int>(std::min<std::size_t>(n, INT_MAX)); };
    _inGL = {.nVertices = _nVertexFloats != 0 ? fit(getNoOfVertices()) : 0, .nIndices = fit(getNoOfIndices())};
    if (_instanceLayout.size() == 0)
        return;
    // The first attribute that ends says when all of them do.
    std::size_t nEach = _divisors.size() == 0 ? 1 : SIZE_MAX;
    for (const unsigned short divisor : _divisors)
        nEach = std::min<std::size_t>(nEach, std::max<std::size_t>(divisor, 1));
    _inGL.nInstances = fit(getNoOfInstances() / std::max<std::size_t>(_nInstanceFloats, 1) * nEach);
}

void Buffer::deleteObjects()
{
    deleteNames();
    _vbo = _ibo = _ebo = _vao = 0;
}

void Buffer::deleteNames() const
{
    for (const GLuint name : {_vbo, _ibo, _ebo})
        _home.deleteName(CurrentContext::Kind::Buffer, name);
    _home.deleteName(CurrentContext::Kind::VertexArray, _vao);
}

void Buffer::setKeptForRestore(bool isKept)
{
    _isKept = isKept;
    if (_pDynamic)
    {
        if (!isKept && !_pDynamic->isInGLAlone)
            leaveToGL();
        else if (isKept && isEmpty())
            setInGLAlone(false);
        return;
    }
    if (!isKept && isCommitted())
        freeData();
}

void Buffer::freeData()
{
    _vertexData.release();
    _indices.release();
    // Appending instances needs some room.
    const bool hasRoom = _instanceData.capacity() > 0;
    _instanceData.release();
    if (hasRoom)
        _instanceData.reserve(_nInstanceFloats);
    _isFreed = true;
}

bool Buffer::isDataLost() const
{
    // Nobody has told it of its loss when no other context took the first one's place.
    if (!_isFreed || (!_isLost && (_state != 1 || _home.isAlive())))
        return false;
    sayLoss();
    return true;
}

void Buffer::sayLoss() const
{
    if (!std::exchange(_isLossSaid, true))
        vo::dbgLog("Error! Buffer: what was committed went with its context, as it is not kept for restoring");
}

void Buffer::onContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Leaving)
    {
        deleteNames();
        return;
    }
    if (_state == 1 && !_isFreed)
    {
        _state = 0;
        upload();
        return;
    }
    _isLost = _vao != 0;
    _vbo = _ibo = _ebo = _vao = 0;
    if (!_isFreed)
        return;
    _commandList.reset();
    _state = 2;
}

void Buffer::activate() const
{
    if (_isLost)
    {
        sayLoss();
        glBindVertexArray(0);
        return;
    }
    TD_ASSERT(_vao > 0);
    TD_ASSERT(_home.isAlive());
    if (_pDynamic && _state == 1 && _home.getID() == CurrentContext::getID())
        activateDynamic();
    else
        glBindVertexArray(_vao);
    const bool isNarrow = _pDynamic && _pDynamic->isNarrow;
    s_activeBuffer = {.indexType = isNarrow ? GLenum(GL_UNSIGNED_SHORT) : GLenum(GL_UNSIGNED_INT),
                      .indexShift = isNarrow ? 1U : 2U,
                      .nVertices = _inGL.nVertices,
                      .nIndices = _inGL.nIndices,
                      .isIndexed = _ebo != 0,
                      .nInstances = _inGL.nInstances};
}

void Buffer::deActivate() const
{
    glBindVertexArray(0);
    s_activeBuffer = {};
}

void Buffer::reserveCommands(std::size_t n) { _commandList.reserve(n); }

Command* Buffer::createCommand() { return _commandList.get(); }

bool Buffer::encode(Command* pCommand) { return _commandList.encode(pCommand); }

bool Buffer::remove(Command* pCommand) { return _commandList.remove(pCommand); }

void Buffer::reset()
{
    _commandList.reset();
    _vertexData.reset();
    _indices.reset();
    _instanceData.reset();
    if (_pDynamic)
        beginAnew();
    _state = 2;
    _isFreed = _isLost = _isLossSaid = false;
}

void Buffer::release()
{
    reset();
    _commandList.release();
    _vertexData.release();
    _indices.release();
    _instanceData.release();
    deleteObjects();
    _state = 0;
}

} // namespace gui::gl
