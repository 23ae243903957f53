// The uniform setters of Program.
#include <gui/gl/Program.h>

#include "../context/TextureBinding.h"

#include <gui/gl/Color.h>

#include <epoxy/gl.h>

#include <glm/gtc/type_ptr.hpp>

namespace gui::gl
{

namespace
{

// Location -1, which GL ignores, arrives here as the largest unsigned number.
GLint toGL(unsigned int loc) { return static_cast<GLint>(loc); }

} // namespace

void Program::setUniformValue(unsigned int loc, const glm::mat4& value)
{
    glUniformMatrix4fv(toGL(loc), 1, GL_FALSE, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::mat3& value)
{
    glUniformMatrix3fv(toGL(loc), 1, GL_FALSE, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::vec1& value) { setUniformValue(loc, value.x); }

void Program::setUniformValue(unsigned int loc, float value) { glUniform1f(toGL(loc), value); }

void Program::setUniformValue(unsigned int loc, double value) { setUniformValue(loc, static_cast<float>(value)); }

void Program::setUniformValue(unsigned int loc, const glm::vec2& value) { glUniform2f(toGL(loc), value.x, value.y); }

void Program::setUniformValue(unsigned int loc, const glm::vec3& value)
{
    glUniform3fv(toGL(loc), 1, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::vec4& value)
{
    glUniform4fv(toGL(loc), 1, glm::value_ptr(value));
}

void Program::setUniformValue(unsigned int loc, const glm::uvec1& value) { setUniformValue(loc, value.x); }

void Program::setUniformValue(unsigned int loc, unsigned int value)
{
    glUniform1i(toGL(loc), static_cast<GLint>(value));
}

void Program::setUniformValue(unsigned int loc, int value) { glUniform1i(toGL(loc), value); }

void Program::setUniformValue(unsigned int loc, const glm::uvec2& value)
{
    glUniform2i(toGL(loc), static_cast<GLint>(value.x), static_cast<GLint>(value.y));
}

void Program::setUniformValue(unsigned int loc, const glm::uvec3& value)
{
    const glm::ivec3 signedValue(value);
    glUniform3iv(toGL(loc), 1, glm::value_ptr(signedValue));
}

void Program::setUniformValue(unsigned int loc, const glm::uvec4& value)
{
    const glm::ivec4 signedValue(value);
    glUniform4iv(toGL(loc), 1, glm::value_ptr(signedValue));
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
    glUniform1i(toGL(loc), static_cast<GLint>(unit));
}

} // namespace gui::gl
