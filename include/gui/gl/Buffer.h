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

#include <cstddef>
#include <initializer_list>

namespace gui::gl
{

/// Vertices, indices and instances collected in memory and uploaded at once: init, append, commit; then activate and
/// draw. Beside them it keeps the list of commands that draw them.
///
/// Committed data stays in memory but is closed: appending, inserting, changing and reading a point writes "ERROR!
/// Buffer::append vertices on committed buffer! Call reset first!" and asserts, until reset() opens the buffer for new
/// data. When the context is lost and another takes its place (see View), what was committed is uploaded again, from
/// that memory; a program that is short of it declines by setKeptForRestore. Not copyable. commit, activate and
/// deActivate need the view's context current. GUI thread only.
class GUIGL_API Buffer
{
public:
    Buffer() = default;
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

    /// @param data  nVertices times the floats of a vertex, one vertex after the other. The layout must be set.
    void appendVertices(const float* data, std::size_t nVertices)
    {
        if (isClosed())
            return;
        TD_ASSERT(_vertexRecLenInBytes > 0);
        // From the 8 bits of _nVertexFloats, compilers conclude that few floats are copied, and choose a slow way.
        _vertexData.push_back(data, nVertices * (_vertexRecLenInBytes / sizeof(float)));
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
    void updateVertex(std::size_t i, const td::Point<float>& pt);
    void getVertex(std::size_t i, td::Point<float>& pt) const;
    /// Moves vertices from i up by one place; at or past the end it appends.
    void insertVertex(std::size_t i, const td::Point<float>& pt);

    /// 0 without a layout (an assertion).
    std::size_t getNoOfVertices() const;
    std::size_t getNoOfIndices() const { return _indices.size(); }
    /// The number of floats in the instance data. It is not divided by the floats of an instance.
    std::size_t getNoOfInstances() const { return _instanceData.size(); }
    /// Bytes from one vertex, or instance, to the next.
    unsigned short getVertexStride() const { return _vertexRecLenInBytes; }
    unsigned short getInstanceStride() const { return _instanceRecLenInBytes; }
    const cnt::PushBackVector<float, 0>& getVertices() const { return _vertexData; }
    /// False when data may be appended; see the class for what it does on a committed buffer, where the answer is true.
    bool isAddOnCommitted() const;
    /// True from commit to reset or release, and to the end of the context that it was committed in.
    bool isCommitted() const { return _state == 1 && _home.isAlive(); }

    /// Uploads what was appended. Does nothing on a committed buffer; one whose context has died is uploaded anew.
    /// @return false when GL has no object to give, after "ERROR! Buffer::commit cannot create VAO!" (or VBO, EBO,
    ///         IBO). Objects made so far are kept. Once there is a VAO, further calls do nothing and answer true,
    ///         though isCommitted stays false and Program::draw draws nothing: reset the buffer and fill it again to
    ///         start over
    bool commit();

    /// Binds the vertex array. Commit first (an assertion).
    void activate() const;
    /// Binds no vertex array.
    void deActivate() const;

    /// false frees the memory of the data after each commit, and now if it is committed; GL alone has it then. The
    /// buffer counts no vertices, indices and instances any more, and getVertices is empty. When the context is lost
    /// the data is too: the commands are dropped, and until reset or release the buffer draws nothing and commit is
    /// refused ("Error! Buffer: what was committed went with its context, as it is not kept for restoring", once).
    /// true, the default, costs the bytes that were appended, and holds from the next commit of new data on.
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
    bool isClosed() const { return _state == 1 && isAddOnCommitted(); }
    bool upload();
    void deleteObjects();
    void deleteNames() const;
    void freeData();
    bool isDataLost() const;
    void sayLoss() const;
    void onContext(ContextResource::Event event);

    CommandList _commandList;
    cnt::PushBackVector<float, 0> _vertexData;
    cnt::PushBackVector<float, 0> _instanceData;
    cnt::PushBackVector<unsigned int, 0> _indices;
    cnt::SafeFullVector<DataType, false> _vertexLayout;
    cnt::SafeFullVector<DataType, false> _instanceLayout;
    cnt::SafeFullVector<unsigned short, false> _divisors;
    unsigned int _vao = 0;
    unsigned int _vbo = 0;
    unsigned int _ibo = 0; // instances
    unsigned int _ebo = 0; // indices
    unsigned short _vertexRecLenInBytes = 0;
    unsigned short _instanceRecLenInBytes = 0;
    unsigned char _nVertexFloats = 0;
    unsigned char _nInstanceFloats = 0;
    unsigned char _state = 0; // 0 open, 1 committed, 2 reset: the objects are still there
    bool _isKept = true;
    bool _isFreed = false;            // of what was committed
    bool _isLost = false;             // with its context, and nothing was kept
    mutable bool _isLossSaid = false; // in the log
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<Buffer*>(pThis)->onContext(event); }, this};
};

} // namespace gui::gl
