#pragma once

#include <td/Types.h>

namespace gui::gl
{

/// The element of all vertex and instance data.
using VertexType = float;

/// The type of one position of a vertex layout, which is one vertex attribute: how many floats it takes.
///
/// All attributes reach the shader as floats, float to vec4 by their number of components. Mat3 and Mat4 count 9 and 16
/// floats at a single attribute location, which no GL accepts (one location holds 4 at most): describe a mat3 by Vec3
/// three times and a mat4 by Vec4 four times; the shader's mat3 or mat4 attribute then takes those three or four
/// locations.
///
/// The types from Half2 on are packed: two components of 16 bits, or four of 8, take the room of one float. Such
/// vertices are structures, appended by Buffer::appendRecords:
/// @code
/// struct Vertex // {DataType::Short2, DataType::NormUByte4}
/// {
///     std::int16_t x, y;
///     unsigned int color; // td::Color::rgba
/// };
/// @endcode
/// Numbers of Norm types are divided by their largest: 255 or 65535 become 1, 127 or 32767 too, and their negatives -1.
/// glm/gtc/packing.hpp has functions that pack halves and such numbers, two or four into a word.
enum class DataType : td::BYTE
{
    Float,
    Scalar1,
    Scalar2,
    Vec2,
    Vec3,
    Vec4,
    Vec1Alt,
    Vec2Alt,
    Vec3Alt,
    Vec4Alt,
    Mat3,
    Mat4,
    Half2 = 16,  ///< of 16-bit floats: 11 bits of precision, up to 65504
    Half4,       ///< takes two floats
    Short2,      ///< -32768 to 32767, as they are
    Short4,      ///< takes two floats
    UShort2,     ///< 0 to 65535, as they are
    UShort4,     ///< takes two floats
    NormShort2,  ///< -1 to 1
    NormShort4,  ///< takes two floats
    NormUShort2, ///< 0 to 1
    NormUShort4, ///< takes two floats
    NormByte4,   ///< -1 to 1
    NormUByte4   ///< 0 to 1: a colour, red in the first byte
};

} // namespace gui::gl
