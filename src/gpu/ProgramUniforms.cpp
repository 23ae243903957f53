// The uniform setters of Program.
#include <gui/gl/Program.h>

#include "../context/TextureBinding.h"
#include "ProgHelper.h"

#include <gui/gl/Color.h>

#include <epoxy/gl.h>

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace gui::gl
{

namespace
{

// How many numbers a value has, by Program::UniformKind.
constexpr std::array<std::size_t, 11> cNumbersOf{0, 1, 2, 3, 4, 1, 2, 3, 4, 9, 16};

// Location -1, which GL ignores, arrives here as the largest unsigned number.
GLint toGL(unsigned int loc) { return static_cast<GLint>(loc); }

} // namespace

void Program::setUniformValue(unsigned int loc, const glm::mat4& value)
{
    glUniformMatrix4fv(toGL(loc), 1, GL_FALSE, glm::value_ptr(value));
    remember(loc, UniformKind::Mat4, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::mat3& value)
{
    glUniformMatrix3fv(toGL(loc), 1, GL_FALSE, glm::value_ptr(value));
    remember(loc, UniformKind::Mat3, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::vec1& value) { setUniformValue(loc, value.x); }

void Program::setUniformValue(unsigned int loc, float value)
{
    glUniform1f(toGL(loc), value);
    remember(loc, UniformKind::Float, &value);
}

void Program::setUniformValue(unsigned int loc, double value) { setUniformValue(loc, static_cast<float>(value)); }

void Program::setUniformValue(unsigned int loc, const glm::vec2& value)
{
    glUniform2f(toGL(loc), value.x, value.y);
    remember(loc, UniformKind::Float2, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::vec3& value)
{
    glUniform3fv(toGL(loc), 1, glm::value_ptr(value));
    remember(loc, UniformKind::Float3, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::vec4& value)
{
    glUniform4fv(toGL(loc), 1, glm::value_ptr(value));
    remember(loc, UniformKind::Float4, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::uvec1& value) { setUniformValue(loc, value.x); }

void Program::setUniformValue(unsigned int loc, unsigned int value) { setUniformValue(loc, static_cast<int>(value)); }

void Program::setUniformValue(unsigned int loc, int value)
{
    glUniform1i(toGL(loc), value);
    remember(loc, UniformKind::Int, &value);
}

void Program::setUniformValue(unsigned int loc, const glm::uvec2& value)
{
    glUniform2i(toGL(loc), static_cast<GLint>(value.x), static_cast<GLint>(value.y));
    remember(loc, UniformKind::Int2, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::uvec3& value)
{
    const glm::ivec3 signedValue(value);
    glUniform3iv(toGL(loc), 1, glm::value_ptr(signedValue));
    remember(loc, UniformKind::Int3, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::uvec4& value)
{
    const glm::ivec4 signedValue(value);
    glUniform4iv(toGL(loc), 1, glm::value_ptr(signedValue));
    remember(loc, UniformKind::Int4, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, td::ColorID color) { setUniformValue(loc, td::Color(color)); }

void Program::setUniformValue(unsigned int loc, td::ColorID color, unsigned char alpha)
{
    setUniformValue(loc, td::Color(color), alpha);
}

void Program::setUniformValue(unsigned int loc, td::Color color)
{
    glm::vec3 rgb;
    Color::get(color, rgb);
    setUniformValue(loc, rgb);
}

void Program::setUniformValue(unsigned int loc, td::Color color, unsigned char alpha)
{
    glm::vec4 rgba;
    Color::get(color, rgba);
    rgba.a = alpha / 255.0f;
    setUniformValue(loc, rgba);
}

void Program::setUniformValue(unsigned int loc, Texture::Type type, unsigned int textureID, Textures::Unit unit)
{
    if (!activateUnit(unit))
        return;
    bindTexture(type, textureID);
    setUniformValue(loc, static_cast<int>(unit));
}

// Of the program in use, whichever object's setter was called.
void Program::remember(unsigned int loc, UniformKind kind, const void* pValue) const
{
    const Program& program = s_pCurrentProgram != nullptr ? *s_pCurrentProgram : *this;
    if (program._pKept == nullptr || toGL(loc) < 0)
        return;
    std::vector<Uniform>& uniforms = program._pKept->uniforms;
    const auto known = std::find_if(uniforms.begin(), uniforms.end(),
                                    [loc](const Uniform& uniform) { return uniform.location == toGL(loc); });
    Uniform& uniform =
        known != uniforms.end() ? *known : uniforms.emplace_back(Uniform{.name = {}, .location = toGL(loc)});
    uniform.kind = kind;
    std::memcpy(uniform.value.data(), pValue, cNumbersOf[std::size_t(kind)] * sizeof(std::uint32_t));
}

// To the program in use, which is this.
void Program::sendUniforms() const
{
    for (const Uniform& uniform : _pKept->uniforms)
    {
        const auto* const floats = reinterpret_cast<const GLfloat*>(uniform.value.data());
        const auto* const ints = reinterpret_cast<const GLint*>(uniform.value.data());
        switch (uniform.kind)
        {
        case UniformKind::None:
            break;
        case UniformKind::Float:
            glUniform1fv(uniform.location, 1, floats);
            break;
        case UniformKind::Float2:
            glUniform2fv(uniform.location, 1, floats);
            break;
        case UniformKind::Float3:
            glUniform3fv(uniform.location, 1, floats);
            break;
        case UniformKind::Float4:
            glUniform4fv(uniform.location, 1, floats);
            break;
        case UniformKind::Int:
            glUniform1iv(uniform.location, 1, ints);
            break;
        case UniformKind::Int2:
            glUniform2iv(uniform.location, 1, ints);
            break;
        case UniformKind::Int3:
            glUniform3iv(uniform.location, 1, ints);
            break;
        case UniformKind::Int4:
            glUniform4iv(uniform.location, 1, ints);
            break;
        case UniformKind::Mat3:
            glUniformMatrix3fv(uniform.location, 1, GL_FALSE, floats);
            break;
        case UniformKind::Mat4:
            glUniformMatrix4fv(uniform.location, 1, GL_FALSE, floats);
            break;
        }
    }
}

} // namespace gui::gl
