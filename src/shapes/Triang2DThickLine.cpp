#include <gui/gl/Triang2D.h>

#include "Band.h"

#include <gui/gl/Buffer.h>
#include <td/Assert.h>

#include <bit>
#include <cstddef>

namespace gui::gl
{

namespace
{

class ListBand : public Band
{
public:
    /// @param nPoints  of the line
    ListBand(Triang2D::Points& vertices, Triang2D::Indices& indices, std::size_t nPoints)
        : Band(bandLoops(), vertices.size())
        , _vertices(vertices)
        , _indices(indices)
    {
        makeRoom(_vertices, cVerticesPerPoint * nPoints);
        makeRoom(_indices, cIndicesPerPoint * nPoints);
    }

private:
    // What a line without bevels has. Pieces would have the lists grow a dozen times.
    static constexpr std::size_t cVerticesPerPoint = 2;
    static constexpr std::size_t cIndicesPerPoint = 6;

    // Of a list that has none; as much as growing would make of it.
    template <typename List>
    static void makeRoom(List& list, std::size_t n)
    {
        if (list.capacity() == 0)
            list.reserve(std::bit_ceil(n));
    }

    void append(std::span<const td::Point<float>> vertices, std::span<const unsigned int> indices) override
    {
        _vertices.push_back(vertices.data(), vertices.size());
        _indices.push_back(indices.data(), indices.size());
    }

    Triang2D::Points& _vertices;
    Triang2D::Indices& _indices;
};

class BufferBand : public Band
{
public:
    explicit BufferBand(Buffer& buffer)
        : Band(bandLoops(), buffer.getNoOfVertices())
        , _buffer(buffer)
    {
    }

private:
    void append(std::span<const td::Point<float>> vertices, std::span<const unsigned int> indices) override
    {
        _buffer.appendVertices(vertices.data(), vertices.size());
        _buffer.appendIndices(indices.data(), indices.size());
    }

    Buffer& _buffer;
};

} // namespace

std::tuple<Primitive, unsigned int, unsigned int> Triang2D::triangulateLine(const td::Point<float>* points,
                                                                            unsigned int n, float width, bool closed,
                                                                            Points& vertices, Indices& indices)
{
    constexpr std::tuple<Primitive, unsigned int, unsigned int> nothing{Primitive::Triangles, 0, 0};
    if (n < 2)
        TD_ASSERT(false, nothing);
    ListBand band(vertices, indices, n);
    band.add({points, n}, width, closed);
    return {Primitive::Triangles, band.getNoOfVertices(), band.getNoOfIndices()};
}

Command* Triang2D::triangulateLine(Buffer* pBuffer, const td::Point<float>* points, unsigned int n, float width,
                                   bool closed)
{
    TD_ASSERT(pBuffer != nullptr, nullptr);
    TD_ASSERT(pBuffer->getVertexStride() == 2 * sizeof(float), nullptr);
    if (n < 2)
        TD_ASSERT(false, nullptr);
    if (pBuffer->isAddOnCommitted())
        return nullptr;

    const std::size_t firstIndex = pBuffer->getNoOfIndices();
    BufferBand band(*pBuffer);
    if (!band.add({points, n}, width, closed))
        return nullptr;
    Command* pComm = pBuffer->getCommandList().get();
    TD_ASSERT(pComm, nullptr);
    pComm->createDrawElements(Primitive::Triangles, firstIndex, band.getNoOfIndices());
    return pComm;
}

} // namespace gui::gl
