#include "ProgramTexts.h"

#include "ActiveUniforms.h"

#include <epoxy/gl.h>

namespace gui::gl
{

void ProgramTexts::keep(unsigned int program)
{
    GLint n = 0;
    glGetProgramiv(program, GL_ATTACHED_SHADERS, &n);
    std::vector<GLuint> names(static_cast<std::size_t>(n));
    if (n > 0)
        glGetAttachedShaders(program, n, nullptr, names.data());
    std::vector<Shader> shaders;
    for (const GLuint name : names)
    {
        GLint type = 0, length = 0;
        glGetShaderiv(name, GL_SHADER_TYPE, &type);
        glGetShaderiv(name, GL_SHADER_SOURCE_LENGTH, &length);
        std::string text(static_cast<std::size_t>(length), '\0');
        GLsizei nLetters = 0;
        if (length > 0)
            glGetShaderSource(name, length, &nLetters, text.data());
        text.resize(static_cast<std::size_t>(nLetters));
        shaders.push_back({static_cast<unsigned int>(type), std::move(text)});
    }
    _programs[{CurrentContext::getID(), program}] = std::move(shaders);
}

bool ProgramTexts::write(unsigned int program, ByteWriter& writer) const
{
    const auto it = _programs.find({CurrentContext::getID(), program});
    if (it == _programs.end())
        return false;
    writer.number(static_cast<std::uint32_t>(it->second.size()));
    for (const Shader& shader : it->second)
    {
        writer.number(static_cast<std::uint32_t>(shader.type));
        writer.text(shader.text);
    }

    GLint n = 0, length = 0;
    glGetProgramiv(program, GL_ACTIVE_ATTRIBUTES, &n);
    glGetProgramiv(program, GL_ACTIVE_ATTRIBUTE_MAX_LENGTH, &length);
    std::vector<std::pair<std::string, GLint>> places;
    std::string name(static_cast<std::size_t>(length) + 1, '\0');
    for (GLint i = 0; i < n; ++i)
    {
        GLsizei nLetters = 0;
        GLint size = 0;
        GLenum type = 0;
        glGetActiveAttrib(program, static_cast<GLuint>(i), static_cast<GLsizei>(name.size()), &nLetters, &size, &type,
                          name.data());
        const GLint location = glGetAttribLocation(program, name.c_str());
        if (location >= 0) // not what GL has by itself, as gl_VertexID
            places.emplace_back(name.substr(0, static_cast<std::size_t>(nLetters)), location);
    }
    for (int pass = 0; pass < 2; ++pass)
    {
        writer.number(static_cast<std::uint32_t>(places.size()));
        for (const auto& [text, location] : places)
        {
            writer.number(static_cast<std::int32_t>(location));
            writer.text(text);
        }
        if (pass == 1)
            break;
        places.clear();
        for (ActiveUniform& uniform : ActiveUniform::of(program))
            places.emplace_back(std::move(uniform.name), uniform.location);
    }
    return true;
}

} // namespace gui::gl
