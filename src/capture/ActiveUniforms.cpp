#include "ActiveUniforms.h"

namespace gui::gl
{

std::vector<ActiveUniform> ActiveUniform::of(GLuint program)
{
    GLint n = 0, length = 0;
    glGetProgramiv(program, GL_ACTIVE_UNIFORMS, &n);
    glGetProgramiv(program, GL_ACTIVE_UNIFORM_MAX_LENGTH, &length);
    std::string name(static_cast<std::size_t>(length) + 1, '\0');
    std::vector<ActiveUniform> uniforms;
    for (GLint i = 0; i < n; ++i)
    {
        GLsizei nLetters = 0;
        GLint size = 0;
        GLenum type = 0;
        glGetActiveUniform(program, static_cast<GLuint>(i), static_cast<GLsizei>(name.size()), &nLetters, &size, &type,
                           name.data());
        std::string base = name.substr(0, static_cast<std::size_t>(nLetters));
        const bool isArray = base.ends_with("[0]");
        if (isArray)
            base.resize(base.size() - 3);
        for (GLint element = 0; element < size; ++element)
        {
            const std::string full = isArray ? base + "[" + std::to_string(element) + "]" : base;
            const GLint location = glGetUniformLocation(program, full.c_str());
            if (location >= 0)
                uniforms.push_back({full, type, location});
        }
    }
    return uniforms;
}

UniformShape UniformShape::of(GLenum type)
{
    using enum Number;
    switch (type)
    {
    case GL_FLOAT:
        return {1, Float};
    case GL_FLOAT_VEC2:
        return {2, Float};
    case GL_FLOAT_VEC3:
        return {3, Float};
    case GL_FLOAT_VEC4:
        return {4, Float};
    case GL_FLOAT_MAT2:
        return {4, Float, true};
    case GL_FLOAT_MAT3:
        return {9, Float, true};
    case GL_FLOAT_MAT4:
        return {16, Float, true};
    case GL_UNSIGNED_INT:
        return {1, Unsigned};
    case GL_UNSIGNED_INT_VEC2:
        return {2, Unsigned};
    case GL_UNSIGNED_INT_VEC3:
        return {3, Unsigned};
    case GL_UNSIGNED_INT_VEC4:
        return {4, Unsigned};
    case GL_INT_VEC2:
    case GL_BOOL_VEC2:
        return {2, Int};
    case GL_INT_VEC3:
    case GL_BOOL_VEC3:
        return {3, Int};
    case GL_INT_VEC4:
    case GL_BOOL_VEC4:
        return {4, Int};
    case GL_FLOAT_MAT2x3:
    case GL_FLOAT_MAT2x4:
    case GL_FLOAT_MAT3x2:
    case GL_FLOAT_MAT3x4:
    case GL_FLOAT_MAT4x2:
    case GL_FLOAT_MAT4x3:
        return {};
    default: // whole numbers, booleans, samplers
        return {1, Int};
    }
}

} // namespace gui::gl
