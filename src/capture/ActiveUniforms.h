#pragma once

#include <epoxy/gl.h>

#include <string>
#include <vector>

namespace gui::gl
{

/// A uniform of a program; of an array one element.
struct ActiveUniform
{
    std::string name;
    GLenum type = 0;
    GLint location = -1;

    /// Those of a program that are in no block.
    static std::vector<ActiveUniform> of(GLuint program);
};

/// How many numbers a uniform of a type has, and of which kind; 0 for types that captured frames don't have.
struct UniformShape
{
    enum class Number
    {
        Float,
        Int,
        Unsigned
    };
    int n = 0;
    Number number = Number::Float;
    bool isMatrix = false;

    static UniformShape of(GLenum type);
};

} // namespace gui::gl
