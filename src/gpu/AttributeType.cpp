#include "AttributeType.h"

#include <epoxy/gl.h>

#include <array>

namespace gui::gl
{

namespace
{

constexpr AttributeType cNone{0, 0, 0, false};

// By DataType.
constexpr std::array<AttributeType, 28> cTypes{{
    {1, 1, GL_FLOAT, false},
    {1, 1, GL_FLOAT, false},
    {1, 1, GL_FLOAT, false},
    {2, 2, GL_FLOAT, false},
    {3, 3, GL_FLOAT, false},
    {4, 4, GL_FLOAT, false},
    {1, 1, GL_FLOAT, false},
    {2, 2, GL_FLOAT, false},
    {3, 3, GL_FLOAT, false},
    {4, 4, GL_FLOAT, false},
    {9, 9, GL_FLOAT, true},
    {16, 16, GL_FLOAT, true},
    cNone,
    cNone,
    cNone,
    cNone,
    {1, 2, GL_HALF_FLOAT, false},
    {2, 4, GL_HALF_FLOAT, false},
    {1, 2, GL_SHORT, false},
    {2, 4, GL_SHORT, false},
    {1, 2, GL_UNSIGNED_SHORT, false},
    {2, 4, GL_UNSIGNED_SHORT, false},
    {1, 2, GL_SHORT, true},
    {2, 4, GL_SHORT, true},
    {1, 2, GL_UNSIGNED_SHORT, true},
    {2, 4, GL_UNSIGNED_SHORT, true},
    {1, 4, GL_BYTE, true},
    {1, 4, GL_UNSIGNED_BYTE, true},
}};
static_assert(cTypes.size() == std::size_t(DataType::NormUByte4) + 1);

} // namespace

const AttributeType& AttributeType::of(DataType type)
{
    const auto i = static_cast<std::size_t>(type);
    return i < cTypes.size() ? cTypes[i] : cNone;
}

std::size_t AttributeType::enable(unsigned int location, DataType type, int recLenInBytes, std::size_t offset)
{
    const AttributeType& info = of(type);
    glEnableVertexAttribArray(location);
    glVertexAttribPointer(location, info.nComponents, info.type, info.isNormalized ? GL_TRUE : GL_FALSE, recLenInBytes,
                          reinterpret_cast<const void*>(offset));
    return offset + info.nFloats * sizeof(VertexType);
}

} // namespace gui::gl
