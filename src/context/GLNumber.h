#pragma once

#include <epoxy/gl.h>

#include <array>

namespace gui::gl
{

/// What glGetIntegerv says of the current context; the first of what some drivers give two numbers for, as the polygon
/// mode.
inline int glNumber(GLenum name)
{
    std::array<GLint, 4> values{};
    glGetIntegerv(name, values.data());
    return values[0];
}

} // namespace gui::gl
