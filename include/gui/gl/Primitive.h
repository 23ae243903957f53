#pragma once

#include <td/Types.h>

namespace gui::gl
{

/// What the vertices of a draw command form, as GL's modes of the same names.
enum class Primitive : td::BYTE
{
    Points,
    Lines,
    LineStrip,
    LineLoop,
    Triangles,
    TriangleFan,
    TriangleStrip,
    Patches
};

} // namespace gui::gl
