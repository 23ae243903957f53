#pragma once

#include <td/Types.h>

namespace gui::gl
{

/// The element of all vertex and instance data.
using VertexType = float;

/// The type of one position of a vertex layout, which is one vertex attribute: how many floats it takes.
///
/// All attributes reach the shader as floats. Mat3 and Mat4 count 9 and 16 floats at a single attribute location, which
/// no GL accepts (one location holds 4 at most): describe a mat3 by Vec3 three times and a mat4 by Vec4 four times; the
/// shader's mat3 or mat4 attribute then takes those three or four locations.
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
    Mat4
};

} // namespace gui::gl
