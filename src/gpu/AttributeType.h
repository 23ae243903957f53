#pragma once

#include <gui/gl/DataType.h>

#include <cstddef>

namespace gui::gl
{

/// What a type of a layout is in memory and to GL.
struct AttributeType
{
    unsigned char nFloats; // that it takes the room of; 0 for a type that is none
    unsigned char nComponents;
    unsigned int type; // of GL's
    bool isNormalized;

    static const AttributeType& of(DataType type);

    /// Says where an attribute is found in the bound array buffer, and switches it on.
    /// @param offset  of the first, in bytes  @return the offset of the attribute behind it
    static std::size_t enable(unsigned int location, DataType type, int recLenInBytes, std::size_t offset);
};

} // namespace gui::gl
