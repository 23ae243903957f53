#pragma once

#include "CommandList.h"
#include "ContextResource.h"
#include "CurrentContext.h"
#include "DataType.h"
#include "Texture.h"

#include <cnt/PushBackVector.h>
#include <cnt/SafeFullVector.h>
#include <td/Assert.h>
#include <td/Export.h>
#include <td/Point.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <type_traits>

namespace gui::gl
{

struct DynamicBuffer;

/// Vertices, indices and instances collected in memory and uploaded at once: init, append, commit; then activate and
/// draw. Beside them it keeps the list of commands that draw them.
///
/// Committed data stays in memory but is closed: appending, inserting, changing and reading a point writes "ERROR!
/// Buffer::append vertices on committed buffer! Call reset first!" and asserts, until reset() opens the buffer for new
/// data. When the context is lost and another takes its place (see View), what was committed is uploaded again, from
/// that memory; a program that is short of it declines by setKeptForRestore. A buffer whose data changes all the time
/// is made so by setDynamic or setRing, and is never closed. Not copyable. commit, activate and
/// deActivate need the view's context current. GUI thread only.
class GUIGL_API Buffer
{
public:
    class Appender;

    Buffer();
    /// With a layout, as init sets it: Buffer triangles{DataType::Vec2, DataType::Vec4};
    Buffer(const std::initializer_list<DataType>& layout);
    ~Buffer();
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// Sets the layout of a vertex and makes room. Data already appended is dropped.
    /// @param nCommands  commands to make room for; those recorded are dropped. 0 leaves the command list alone
    /// @param nVertices, nIndices  how many to make room for; more can be appended. 0 indices leave the indices alone
    /// @param layout  the type of each vertex attribute, in the order of their locations from 0; 255 floats at most
    /// @return true; false, with nothing changed, after an assertion: an empty layout (after the log line
    ///         "Error! Buffer::init with 0 layout vertex positions!"), one that is too long, an unknown type
    bool init(std::size_t nCommands, std::size_t nVertices, std::size_t nIndices,
              const std::initializer_list<DataType>& layout);

    /// The same with attributes that advance per instance, at the locations after the vertex's own.
    /// @param instanceLayout  an empty one writes "Error! Buffer::init instanced buffer with 0 layout instanced
    ///                        positions!"
    /// @param divisors  after how many instances each attribute advances; empty means 1 for all. A list of another
    ///                  length than instanceLayout is ignored with "Warning! Buffer::init number of divisors doesn't
    ///                  correspond to number of layout positions and will be ignored"
    bool init(std::size_t nCommands, std::size_t nVertices, std::size_t nIndices, std::size_t nInstances,
              const std::initializer_list<DataType>& layout, const std::initializer_list<DataType>& instanceLayout,
              const std::initializer_list<unsigned short>& divisors);

    /// For data that changes after the commit: everything may be appended, changed and removed at any time, and what
    /// was is sent to GL when the buffer is drawn next (by Program::draw, activate or commit): that, once, and nothing
    /// else, without waiting for frames that are still being drawn. GL copies by itself what only moves. Without a
    /// call here a buffer is closed by its commit.
    ///
    ///     Buffer track{DataType::Vec2};
    ///     track.setDynamic();
    ///     track.createCommand()->createDrawAll(Primitive::LineStrip);
    ///     // and in every frame
    ///     track.appendVertices(arrived.data(), arrived.size());
    ///     program.draw(track);
    ///
    /// A recorded command goes on drawing the vertices or indices that it names, counted from the first that there is:
    /// after something was removed before them, those are others; when some of them are there no more, what is drawn
    /// is undefined. Command::createDrawAll draws all there is. Indices are as they were appended, whatever happens to
    /// the vertices. They take 16 bits each in GL, as long as all are below 65,535; commands know which it is.
    /// The data stays in memory, and survives its context, unless setKeptForRestore(false) leaves it to GL alone.
    /// Before the first data: later is a programming error ("isEmpty()") and changes nothing.
    void setDynamic();

    /// The same for the newest nVertices alone: as many stay, and older ones go when others arrive. Vertex 0 is the
    /// oldest that is there. Appended vertices must not be the buffer's own. Memory and GL have room for half as
    /// many more when it is called before init, for up to three times as many otherwise, so that the oldest go without
    /// a copy, and no vertex is sent twice.
    /// @param nVertices  above 0 ("nVertices > 0")
    void setRing(std::size_t nVertices);
    bool isDynamic() const { return _pDynamic != nullptr; }

    /// @param data  nVertices times the floats of a vertex, one vertex after the other. The layout must be set.
    void appendVertices(const float* data, std::size_t nVertices)
    {
        if (isClosed()) [[unlikely]]
            return;
        TD_ASSERT(_vertexRecLenInBytes > 0);
        // From the 8 bits of _nVertexFloats, compilers conclude that few floats are copied, and choose a slow way.
        const std::size_t nFloats = nVertices * (_vertexRecLenInBytes / sizeof(float));
        if (_isWatched) [[unlikely]]
        {
            if (isAppended(data, nFloats))
                return;
        }
        _vertexData.push_back(data, nFloats);
    }
    /// @param nVertexFloats  floats, a whole number of vertices (an assertion)
    void appendVertexUnits(const float* data, std::size_t nVertexFloats);
    /// x and y of each point; points and vertices must come out even (an assertion).
    void appendVertices(const td::Point<float>* pts, std::size_t n)
    {
        const float* const data = reinterpret_cast<const float*>(pts);
        if (_nVertexFloats == 2)
            appendVertices(data, n);
        else
            appendVertexUnits(data, 2 * n);
    }
    void appendVertices(const cnt::PushBackVector<td::Point<float>, 0>& pts)
    {
        appendVertices(pts.begin(), pts.size());
    }
    /// For layouts of 2 floats, or of 1 (an assertion).
    void appendVertex(const td::Point<float>& pt);

    /// Vertices as structures, for layouts with packed types (see DataType) and without.
    /// @param records  nVertices of the layout's size (an assertion)
    template <typename Record>
    void appendRecords(const Record* records, std::size_t nVertices)
    {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof(Record) % sizeof(float) == 0);
        TD_ASSERT(sizeof(Record) == _vertexRecLenInBytes);
        appendVertices(reinterpret_cast<const float*>(records), nVertices);
    }

    /// @param data  nInstances times the floats of an instance. Needs the instanced init with room for at least one.
    void appendInstances(const float* data, std::size_t nInstances);

    /// Appends a shape: vertices, and the command that draws them as one primitive.
    /// @param data  n times the floats of a vertex. The layout must be set.
    /// @return the command, good until the next one is created. It is not encoded yet: give it a colour or a texture if
    ///         it is to have one, then encode it, or leave that to Program::draw. Null, with nothing appended, on a
    ///         committed buffer (as appending), without a layout or for an unknown primitive (assertions)
    Command* appendShape(Primitive primitive, const float* data, std::size_t n);

    /// Indices count vertices from the buffer's first.
    void appendIndices(const unsigned int* indices, std::size_t n)
    {
        if (isClosed() || n == 0)
            return;
        _indices.push_back(indices, n);
    }
    void appendIndices(const cnt::PushBackVector<unsigned int, 0>& indices)
    {
        appendIndices(indices.begin(), indices.size());
    }
    void appendIndex(unsigned int index)
    {
        if (isClosed())
            return;
        _indices.push_back(index);
    }

    /// Appends a cube around the origin and records the command that draws it, Primitive::Triangles; encoding and
    /// committing stay with the caller. Unknown types ("false"), no layout ("nRecLen > 0"), one of another length
    /// ("_nVertexFloats == nFloats") and a committed buffer are programming errors.
    /// @param size     the length of an edge
    /// @param type     Texture::Type::CubeStrip: 24 vertices of position and texture coordinate (5 floats), each face
    ///                 with a sixth of the texture's width: +z, +x, -z, -x, +y, -y from left to right.
    ///                 Texture::Type::CubeMap: 8 vertices of a position (3 floats), the direction into the cube map at
    ///                 once
    /// @param normals  not used: there are none
    /// @return the command, good until the list creates its next one; null after a programming error, nothing appended
    Command* addCube(float size, Texture::Type type, bool normals = false);

    /// Appends a sphere around the origin, its poles on the z axis, and records the command that draws it, as addCube.
    /// Its triangles turn against the clock seen from outside. It may be called on a committed buffer, which draws what
    /// was added after the next reset and commit only.
    /// @param sectors  around the axis, at least 1; 3 and more look like something  @param stacks  from pole to pole,
    ///                 likewise
    /// @param type     Texture::Type::Tex2D adds texture coordinates: u from 0 to 1 eastwards, beginning on the x axis,
    ///                 v from 0 at the north pole (+z) to 1 at the south pole, so the image's first row belongs to the
    ///                 north
    /// @param normals  adds the normal of each vertex, before the texture coordinate: the direction from the origin
    /// @param xyScale  widens (above 1) or narrows the sphere across its axis
    /// @return as addCube. What does not fit 32-bit indices or a command is refused ("isSphereInRange(sectors, stacks,
    ///         base, first)"). Layouts: position, normal, texture coordinate, of 3, 6, 5 or 8 floats
    Command* addSphere(float radius, unsigned int sectors, unsigned int stacks, Texture::Type type, bool normals = true,
                       float xyScale = 1);

    /// Point access, for layouts of 2 floats. i must be below the number of vertices: element access stops the program.
    /// A dynamic buffer that is not kept for restoring has no vertices to read ("Error! Buffer::getVertex: the data of
    /// this dynamic buffer is in GL alone", nothing changes), and asserts ("isRange(first, n, count)") and changes
    /// nothing where there is no such vertex, or the layout is another one ("_nVertexFloats == 2").
    void updateVertex(std::size_t i, const td::Point<float>& pt);
    void getVertex(std::size_t i, td::Point<float>& pt) const;
    /// Moves vertices from i up by one place; at or past the end it appends.
    void insertVertex(std::size_t i, const td::Point<float>& pt);

    /// Other values for n vertices, instances or indices from the first on, all of which must be there ("isRange(first,
    /// n, count)"). Refused on a committed buffer, as appending, unless it is dynamic.
    /// @param data  n times the floats of a vertex, or of an instance; records, as those of appendRecords
    void updateVertices(std::size_t first, const float* data, std::size_t n);
    template <typename Record>
    void updateRecords(std::size_t first, const Record* records, std::size_t n)
    {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof(Record) % sizeof(float) == 0);
        TD_ASSERT(sizeof(Record) == _vertexRecLenInBytes);
        updateVertices(first, reinterpret_cast<const float*>(records), n);
    }
    void updateInstances(std::size_t first, const float* data, std::size_t n);
    void updateIndices(std::size_t first, const unsigned int* indices, std::size_t n);
    /// Those behind n from the first on take their places. The same conditions.
    void removeVertices(std::size_t first, std::size_t n);
    void removeInstances(std::size_t first, std::size_t n);
    void removeIndices(std::size_t first, std::size_t n);

    /// 0 without a layout (an assertion).
    std::size_t getNoOfVertices() const;
    std::size_t getNoOfIndices() const;
    /// The number of floats in the instance data. It is not divided by the floats of an instance.
    std::size_t getNoOfInstances() const;
    /// Bytes from one vertex, or instance, to the next.
    unsigned short getVertexStride() const { return _vertexRecLenInBytes; }
    unsigned short getInstanceStride() const { return _instanceRecLenInBytes; }
    /// Their floats. Of a dynamic buffer a reference is good until the next change; the call takes time by the number
    /// of vertices after some were removed at the beginning, or left a ring. Of one that is not kept for restoring
    /// there are none, and the log says "Error! Buffer::getVertices: the data of this dynamic buffer is in GL alone".
    const cnt::PushBackVector<float, 0>& getVertices() const { return _pDynamic ? getDynamicVertices() : _vertexData; }
    /// False when data may be appended; see the class for what it does on a committed buffer, where the answer is true.
    bool isAddOnCommitted() const;
    /// True from commit to reset or release, and to the end of the context that it was committed in.
    bool isCommitted() const { return _state == 1 && _home.isAlive(); }

    /// Uploads what was appended. Does nothing on a committed buffer, but for what has changed in a dynamic one since;
    /// one whose context has died is uploaded anew.
    /// @return false when GL has no object to give, after "ERROR! Buffer::commit cannot create VAO!" (or VBO, EBO,
    ///         IBO). Objects made so far are kept. Once there is a VAO, further calls do nothing and answer true,
    ///         though isCommitted stays false and Program::draw draws nothing: reset the buffer and fill it again to
    ///         start over
    bool commit();

    /// Binds the vertex array. Commit first (an assertion). Of a dynamic buffer it uploads what has changed.
    void activate() const;
    /// Binds no vertex array.
    void deActivate() const;

    /// false frees the memory of the data after each commit, and now if it is committed; GL alone has it then. The
    /// buffer counts no vertices, indices and instances any more, and getVertices is empty. When the context is lost
    /// the data is too: the commands are dropped, and until reset or release the buffer draws nothing and commit is
    /// refused ("Error! Buffer: what was committed went with its context, as it is not kept for restoring", once).
    /// true, the default, costs the bytes that were appended, and holds from the next commit of new data on.
    ///
    /// Of a dynamic buffer or a ring it is GL alone that has what was sent, and memory what will be sent next.
    /// Appending some kilobytes or more goes straight to GL, as long as the context that it was committed in is current
    /// and has room; with less, and elsewhere, it waits for the next draw, activate or commit. All is counted, changed
    /// and removed as before; only reading is over (see getVertices, getVertex), and indices take 32 bits in GL. When
    /// the context is lost, what it had is gone, which the log says by the line above: the buffer is empty but for what
    /// was not sent yet, keeps its commands, and goes on with what is appended next. true holds from the next reset,
    /// release or init on.
    void setKeptForRestore(bool isKept);
    bool isKeptForRestore() const { return _isKept; }

    /// The buffer's own commands. createCommand's pointer is good until the next one is created (see CommandList).
    CommandList& getCommandList() { return _commandList; }
    void reserveCommands(std::size_t n);
    Command* createCommand();
    bool encode(Command* pCommand);
    bool remove(Command* pCommand);

    /// Drops data and commands, keeps their memory and the layout. The GL objects live on until the next commit.
    void reset();
    /// The same, and frees the memory and deletes the GL objects. Needs no context.
    void release();

private:
    // Appending is inline: a call takes as long as copying a few vertices.
    bool isClosed() const
    {
        if (_state != 1) [[likely]]
            return false;
        return isAddOnCommitted();
    }
    bool isEmpty() const;
    // Of dynamic buffers.
    void beginAnew();
    std::size_t getRoom(std::size_t nVertices) const;
    std::size_t getFirstFloat() const { return _pDynamic ? findFirstFloat() : 0; }
    std::size_t findFirstFloat() const;
    void makeRoomInRing(std::size_t nFloats);
    void moveToFront() const;
    const cnt::PushBackVector<float, 0>& getDynamicVertices() const;
    void noteAppended() const;
    void notePointChanged(std::size_t pos);
    void notePointInserted(std::size_t pos);
    bool uploadDynamic(unsigned int oldVBO, unsigned int oldEBO, unsigned int oldIBO) const;
    bool uploadChanges(unsigned int oldVBO, unsigned int oldEBO, unsigned int oldIBO) const;
    void layOut() const;
    bool commitChanges() const;
    void activateDynamic() const;
    // Of those that GL alone keeps.
    bool isInGLAlone() const;
    void setInGLAlone(bool isInGLAlone);
    void leaveToGL();
    bool isAppended(const float* data, std::size_t nFloats);
    bool isSentAtOnce(const float* data, std::size_t nFloats);
    void noteQueued() const;
    void emptyInstances() const;
    void sendManyPieces() const;
    // Its vertices, indices and instances, which are edited in the same ways.
    template <typename T>
    struct Part;
    Part<float> getVertexPart() const;
    Part<unsigned int> getIndexPart() const;
    Part<float> getInstancePart() const;
    template <typename T>
    void update(const Part<T>& part, std::size_t first, const T* data, std::size_t n);
    template <typename T>
    void remove(const Part<T>& part, std::size_t first, std::size_t n);
    bool isAllSent() const;
    void dropLost() const;
    void enableInstances(unsigned int location, std::size_t offset) const;
    void noteCounts() const;
    bool upload();
    bool uploadClosed(unsigned int oldVBO, unsigned int oldEBO, unsigned int oldIBO);
    void deleteObjects();
    void deleteNames() const;
    void freeData();
    bool isDataLost() const;
    void sayLoss() const;
    void onContext(ContextResource::Event event);

    CommandList _commandList;
    // Before its first vertex a dynamic buffer has those that are gone, until they are moved out of the way.
    mutable cnt::PushBackVector<float, 0> _vertexData;
    // Of a dynamic buffer that GL alone keeps, these three have what GL lacks, one after the other.
    mutable cnt::PushBackVector<float, 0> _instanceData;
    mutable cnt::PushBackVector<unsigned int, 0> _indices;
    cnt::SafeFullVector<DataType, false> _vertexLayout;
    cnt::SafeFullVector<DataType, false> _instanceLayout;
    cnt::SafeFullVector<unsigned short, false> _divisors;
    unsigned int _vao = 0;
    // Where data changes, drawing brings it up to date, and larger buffers take these ones' places.
    mutable unsigned int _vbo = 0;
    mutable unsigned int _ibo = 0; // instances
    mutable unsigned int _ebo = 0; // indices
    unsigned short _vertexRecLenInBytes = 0;
    unsigned short _instanceRecLenInBytes = 0;
    unsigned char _nVertexFloats = 0;
    unsigned char _nInstanceFloats = 0;
    unsigned char _state = 0; // 0 open, 1 committed, 2 reset: the objects are still there
    bool _isWatched = false;  // appended vertices may go elsewhere
    bool _isKept = true;
    bool _isFreed = false;            // of what was committed
    bool _isLost = false;             // with its context, and nothing was kept
    mutable bool _isLossSaid = false; // in the log
    struct InGL
    {
        unsigned int nVertices = 0;
        unsigned int nIndices = 0;
        unsigned int nInstances = UINT_MAX; // when the layout has none
    };
    mutable InGL _inGL;
    std::unique_ptr<DynamicBuffer> _pDynamic; // null for data that is closed by the commit
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<Buffer*>(pThis)->onContext(event); }, this};
};

/// Appends many vertices, a few at a time, to room that was asked for once:
/// @code
/// Buffer::Appender corners(buffer, 4 * nBoxes);
/// for (const Box& box : boxes)
/// {
///     const Vertex around[4] = {box.at(0, 0), box.at(1, 0), box.at(1, 1), box.at(0, 1)};
///     corners.append(around);
/// }
/// @endcode
/// The buffer has them when the appender goes out of scope; until then nothing else may be done with the buffer. GUI
/// thread only.
class GUIGL_API Buffer::Appender
{
public:
    /// @param buffer  with a layout (an assertion). On a committed one that is not dynamic the log says what it says of
    ///                appending, and nothing is appended
    /// @param nVertices  to make room for; for more, room is found as it is needed
    Appender(Buffer& buffer, std::size_t nVertices);
    /// Hands over what was appended.
    ~Appender();
    Appender(const Appender&) = delete;
    Appender& operator=(const Appender&) = delete;

    /// @param data  nVertices times the floats of a vertex
    void append(const float* data, std::size_t nVertices) { appendBytes(data, nVertices * _nFloats * sizeof(float)); }
    /// The same by structures of the layout's size (an assertion), which is faster: how much is copied is known when
    /// it is compiled.
    template <typename Record>
    void append(const Record& record)
    {
        append<Record, 1>(&record);
    }
    template <typename Record, std::size_t cRecords>
    void append(const Record (&records)[cRecords])
    {
        append<Record, cRecords>(&records[0]);
    }

private:
    template <typename Record, std::size_t cRecords>
    void append(const Record* records)
    {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof(Record) % sizeof(float) == 0);
        constexpr std::size_t cFloats = sizeof(Record) / sizeof(float);
        TD_ASSERT(cFloats == _nFloats || _nFloats == 0);
        appendBytes(records, cRecords * sizeof(Record));
    }
    void appendBytes(const void* data, std::size_t n)
    {
        char* const pEnd = _pEnd;
        if (n >= static_cast<std::size_t>(_pLimit - pEnd)) [[unlikely]]
            return appendGrowing(data, n);
        _pEnd = pEnd + n;
        std::memcpy(pEnd, data, n);
    }
    void appendGrowing(const void* data, std::size_t nBytes);
    bool grow(std::size_t nFloats);
    void handOver();

    Buffer& _buffer;
    char* _pEnd = nullptr;    // of what was appended
    char* _pLimit = nullptr;  // of the room for it
    std::size_t _nFloats = 0; // of a vertex; 0 when nothing may be appended
};

} // namespace gui::gl
