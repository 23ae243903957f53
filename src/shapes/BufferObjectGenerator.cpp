#include <gui/gl/Buffer.h>

#include "SphereLoops.h"

#include <td/Assert.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace gui::gl
{

namespace
{

// Vertex numbers have 32 bits, and so has the place of a command's first index; it can draw fewer than 2^31.
constexpr std::uint64_t cMaxVertices = std::uint64_t(1) << 32;
constexpr std::uint64_t cMaxFirst = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t cMaxCount = std::numeric_limits<std::int32_t>::max();

constexpr float s1 = 1.0F / 6, s2 = 1.0F / 3, s4 = 2.0F / 3, s5 = 5.0F / 6;

// Faces +z, +x, -z, -x, +y, -y of a cube from -1 to 1: positions and texture coordinates.
// clang-format off
constexpr std::array<float, 24 * 5> cStripVertices{
    1, 1, 1, s1, 1,      -1, 1, 1, 0, 1,       -1, -1, 1, 0, 0,     1, -1, 1, s1, 0,
    1, -1, 1, s1, 0,     1, -1, -1, s2, 0,     1, 1, -1, s2, 1,     1, 1, 1, s1, 1,
    1, -1, -1, s2, 0,    -1, -1, -1, 0.5F, 0,  -1, 1, -1, 0.5F, 1,  1, 1, -1, s2, 1,
    -1, -1, -1, 0.5F, 0, -1, -1, 1, s4, 0,     -1, 1, 1, s4, 1,     -1, 1, -1, 0.5F, 1,
    -1, 1, 1, s4, 0,     1, 1, 1, s5, 0,       1, 1, -1, s5, 1,     -1, 1, -1, s4, 1,
    -1, -1, -1, s5, 0,   1, -1, -1, 1, 0,      1, -1, 1, 1, 1,      -1, -1, 1, s5, 1};

constexpr std::array<unsigned int, 36> cStripIndices{
    0, 1, 2, 2, 3, 0,        4, 5, 6, 4, 6, 7,        8, 9, 11, 9, 10, 11,
    12, 13, 14, 12, 14, 15,  16, 17, 18, 16, 18, 19,  20, 21, 22, 20, 22, 23};

constexpr std::array<float, 8 * 3> cMapVertices{
    -1, -1, 1,   1, -1, 1,   1, -1, -1,   -1, -1, -1,   -1, 1, 1,   1, 1, 1,   1, 1, -1,   -1, 1, -1};

constexpr std::array<unsigned int, 36> cMapIndices{
    1, 2, 6, 6, 5, 1,   0, 4, 7, 7, 3, 0,   4, 5, 6, 6, 7, 4,
    0, 3, 2, 2, 1, 0,   0, 1, 5, 5, 4, 0,   3, 7, 6, 6, 2, 3};
// clang-format on

struct CubeTable
{
    std::size_t nFloats; // of a vertex
    std::span<const float> vertices;
    std::span<const unsigned int, 36> indices;
};

// @return a table without vertices for a type that no cube has
CubeTable cubeTable(Texture::Type type)
{
    switch (type)
    {
    case Texture::Type::CubeStrip:
        return {5, cStripVertices, cStripIndices};
    case Texture::Type::CubeMap:
        return {3, cMapVertices, cMapIndices};
    default:
        return {0, {}, cMapIndices};
    }
}

bool isSphereInRange(unsigned int sectors, unsigned int stacks, std::uint64_t base, std::uint64_t first)
{
    const std::uint64_t nColumns = std::uint64_t(sectors) + 1;
    const std::uint64_t nRows = std::uint64_t(stacks) + 1;
    return sectors > 0 && stacks > 0 && base <= cMaxVertices && nRows <= (cMaxVertices - base) / nColumns &&
           first <= cMaxFirst && 6 * std::uint64_t(sectors) * (stacks - 1) <= cMaxCount;
}

/// What is the same for all vertices of one sector: lists of the cosines, of the sines, and of u.
class Columns
{
public:
    explicit Columns(unsigned int sectors)
        : _n(std::size_t(sectors) + 1 + SphereRow::cSlack)
        , _numbers(3 * _n)
    {
        constexpr float c2Pi = 6.283185F;
        const float sectorStep = c2Pi / static_cast<float>(sectors);
        for (unsigned int j = 0; j <= sectors; ++j)
        {
            const float sectorAngle = static_cast<float>(j) * sectorStep;
            _numbers[j] = std::cos(sectorAngle);
            _numbers[_n + j] = std::sin(sectorAngle);
            _numbers[2 * _n + j] = static_cast<float>(j) / static_cast<float>(sectors);
        }
    }

    const float* cosines() const { return _numbers.data(); }
    const float* sines() const { return cosines() + _n; }
    const float* u() const { return sines() + _n; }

private:
    std::size_t _n;
    std::vector<float> _numbers;
};

// The rows at the poles have one triangle per sector, the others two.
void writeSphereIndices(unsigned int base, unsigned int sectors, unsigned int stacks, unsigned int* pTo)
{
    const unsigned int nColumns = sectors + 1;
    const std::size_t nOfRow = 6 * std::size_t(sectors);
    for (unsigned int i = 0; i < stacks; ++i)
    {
        // What a row is when there is one above it, with one as well: the same one row on.
        if (i >= 2 && i + 1 < stacks)
        {
            const unsigned int* const pAbove = pTo - nOfRow;
            for (std::size_t k = 0; k < nOfRow; ++k)
                pTo[k] = pAbove[k] + nColumns;
            pTo += nOfRow;
            continue;
        }
        unsigned int k1 = base + i * nColumns, k2 = k1 + nColumns;
        for (unsigned int j = 0; j < sectors; ++j, ++k1, ++k2)
        {
            if (i != 0)
                pTo = std::copy_n(std::array{k1, k2, k1 + 1}.begin(), 3, pTo);
            if (i != stacks - 1)
                pTo = std::copy_n(std::array{k1 + 1, k2, k2 + 1}.begin(), 3, pTo);
        }
    }
}

} // namespace

Command* Buffer::addCube(float size, Texture::Type type, bool)
{
    const auto [nFloats, vertices, indices] = cubeTable(type);
    if (nFloats == 0)
        TD_ASSERT(false, nullptr);
    if (isAddOnCommitted())
        return nullptr;
    const std::size_t base = getNoOfVertices();
    if (_vertexRecLenInBytes == 0) // which asserted
        return nullptr;
    TD_ASSERT(_nVertexFloats == nFloats, nullptr);
    const std::size_t first = getNoOfIndices();
    TD_ASSERT(base + vertices.size() / nFloats <= cMaxVertices && first <= cMaxFirst, nullptr);

    const float h = size / 2;
    float* pTo = _vertexData.pushSlots(vertices.size());
    for (std::size_t i = 0; i < vertices.size(); ++i)
        *pTo++ = i % nFloats < 3 ? h * vertices[i] : vertices[i];
    unsigned int* pIndex = _indices.pushSlots(indices.size());
    for (const unsigned int index : indices)
        *pIndex++ = static_cast<unsigned int>(base) + index;

    Command* const pComm = _commandList.get();
    TD_ASSERT(pComm, nullptr);
    pComm->createDrawElements(Primitive::Triangles, first, static_cast<unsigned int>(indices.size()));
    return pComm;
}

Command* Buffer::addSphere(float radius, unsigned int sectors, unsigned int stacks, Texture::Type type, bool normals,
                           float xyScale)
{
    constexpr float cPi = 3.1415925F, cHalfPi = 1.5707963F;
    const bool hasTexture = type == Texture::Type::Tex2D;
    const std::size_t nFloats = 3U + (normals ? 3U : 0U) + (hasTexture ? 2U : 0U);
    const std::size_t base = getNoOfVertices();
    if (_vertexRecLenInBytes == 0) // which asserted
        return nullptr;
    TD_ASSERT(_nVertexFloats == nFloats, nullptr);
    const std::size_t first = getNoOfIndices();
    TD_ASSERT(isSphereInRange(sectors, stacks, base, first), nullptr);

    const Columns columns(sectors);
    SphereRow row{.pCos = columns.cosines(),
                  .pSin = columns.sines(),
                  .pU = columns.u(),
                  .nColumns = std::size_t(sectors) + 1,
                  .hasNormals = normals,
                  .nFloats = nFloats};
    const std::size_t nOfRow = row.nColumns * nFloats;
    float* pTo = _vertexData.pushSlots((std::size_t(stacks) + 1) * nOfRow);
    const float* const pEnd = pTo + (std::size_t(stacks) + 1) * nOfRow;
    const float stackStep = cPi / static_cast<float>(stacks);
    const SphereLoops& loops = sphereLoops();
    for (unsigned int i = 0; i <= stacks; ++i, pTo += nOfRow)
    {
        const float stackAngle = cHalfPi - static_cast<float>(i) * stackStep;
        row.xy = xyScale * radius * std::cos(stackAngle);
        row.z = radius * std::sin(stackAngle);
        row.v = static_cast<float>(i) / static_cast<float>(stacks);
        loops.addRow(row, pTo, pEnd);
    }

    const std::size_t nIndices = 6 * std::size_t(sectors) * (stacks - 1);
    writeSphereIndices(static_cast<unsigned int>(base), sectors, stacks, _indices.pushSlots(nIndices));

    Command* const pComm = _commandList.get();
    TD_ASSERT(pComm, nullptr);
    pComm->createDrawElements(Primitive::Triangles, first, static_cast<unsigned int>(nIndices));
    return pComm;
}

} // namespace gui::gl
