#include "StateTexts.h"

#include "Names.h"

#include <capture/ActiveUniforms.h>
#include <capture/StateFlags.h>
#include <context/GLNumber.h>

#include <array>
#include <cstdio>
#include <initializer_list>
#include <utility>

namespace replay
{

namespace
{

using gui::gl::glNumber;

using Texts = std::map<std::string, std::string>;

template <typename T>
std::string listText(const T* values, int n)
{
    std::string text;
    for (int i = 0; i < n; ++i)
    {
        char value[32];
        std::snprintf(value, sizeof value, "%g", static_cast<double>(values[i]));
        text += (i > 0 ? " " : "") + std::string(value);
    }
    return text;
}

std::string numbers(GLenum name, int n)
{
    std::array<GLdouble, 4> values{};
    glGetDoublev(name, values.data());
    return listText(values.data(), n);
}

std::string names(std::initializer_list<GLenum> parameters)
{
    std::string text;
    for (const GLenum parameter : parameters)
        text += (text.empty() ? "" : " ") + nameOf(glNumber(parameter));
    return text;
}

std::string nameBefore(const Player& player, GLCall::Kind kind, GLenum binding)
{
    return std::to_string(player.nameBefore(kind, static_cast<GLuint>(glNumber(binding))));
}

// What isn't in use says nothing.
void addTests(Texts& texts)
{
    for (const gui::gl::StateFlag& flag : gui::gl::cStateFlagNames)
        texts[flag.text] = glIsEnabled(flag.name) == GL_TRUE ? "on" : "off";
    texts["viewport"] = numbers(GL_VIEWPORT, 4);
    if (glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE)
        texts["scissor"] = numbers(GL_SCISSOR_BOX, 4);
    if (glIsEnabled(GL_BLEND) == GL_TRUE)
    {
        texts["blend function"] = names({GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA});
        texts["blend equation"] = names({GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA});
        texts["blend colour"] = numbers(GL_BLEND_COLOR, 4);
    }
    texts["colour mask"] = numbers(GL_COLOR_WRITEMASK, 4);
    if (glIsEnabled(GL_DEPTH_TEST) == GL_TRUE)
    {
        texts["depth function"] = names({GL_DEPTH_FUNC});
        texts["depth mask"] = glNumber(GL_DEPTH_WRITEMASK) != 0 ? "on" : "off";
    }
    texts["depth range"] = numbers(GL_DEPTH_RANGE, 2);
    if (epoxy_gl_version() >= 45)
        texts["clip control"] = names({GL_CLIP_ORIGIN, GL_CLIP_DEPTH_MODE});
    if (glIsEnabled(GL_STENCIL_TEST) == GL_TRUE)
    {
        texts["stencil function"] = names({GL_STENCIL_FUNC, GL_STENCIL_BACK_FUNC}) + ", reference " +
                                    numbers(GL_STENCIL_REF, 1) + ", mask " + numbers(GL_STENCIL_VALUE_MASK, 1);
        texts["stencil operations"] =
            names({GL_STENCIL_FAIL, GL_STENCIL_PASS_DEPTH_FAIL, GL_STENCIL_PASS_DEPTH_PASS, GL_STENCIL_BACK_FAIL,
                   GL_STENCIL_BACK_PASS_DEPTH_FAIL, GL_STENCIL_BACK_PASS_DEPTH_PASS});
        texts["stencil mask"] = numbers(GL_STENCIL_WRITEMASK, 1);
    }
    if (glIsEnabled(GL_CULL_FACE) == GL_TRUE)
        texts["culling"] = names({GL_CULL_FACE_MODE, GL_FRONT_FACE});
    texts["polygon mode"] = nameOf(glNumber(GL_POLYGON_MODE));
    texts["line width"] = numbers(GL_LINE_WIDTH, 1);
    texts["point size"] = numbers(GL_POINT_SIZE, 1);
    texts["clear colour"] = numbers(GL_COLOR_CLEAR_VALUE, 4);
    texts["clear depth"] = numbers(GL_DEPTH_CLEAR_VALUE, 1);
}

void addBindings(Texts& texts, const Player& player)
{
    using Kind = GLCall::Kind;
    texts["program"] = nameBefore(player, Kind::Program, GL_CURRENT_PROGRAM);
    texts["vertex array"] = nameBefore(player, Kind::VertexArray, GL_VERTEX_ARRAY_BINDING);
    texts["framebuffer"] = nameBefore(player, Kind::Framebuffer, GL_DRAW_FRAMEBUFFER_BINDING);
    const GLint active = glNumber(GL_ACTIVE_TEXTURE);
    constexpr GLenum cUnits = 16;
    for (GLenum i = 0; i < cUnits; ++i)
    {
        glActiveTexture(GL_TEXTURE0 + i);
        for (const auto& [binding, what] : {std::pair{GL_TEXTURE_BINDING_2D, "2D texture of unit "},
                                            std::pair{GL_TEXTURE_BINDING_CUBE_MAP, "cube map of unit "},
                                            std::pair{GL_TEXTURE_BINDING_BUFFER, "buffer texture of unit "}})
            if (glNumber(static_cast<GLenum>(binding)) != 0)
                texts[what + std::to_string(i)] = nameBefore(player, Kind::Texture, static_cast<GLenum>(binding));
    }
    glActiveTexture(static_cast<GLenum>(active));
}

void addUniforms(Texts& texts)
{
    using gui::gl::UniformShape;
    const auto program = static_cast<GLuint>(glNumber(GL_CURRENT_PROGRAM));
    GLint isLinked = GL_FALSE;
    if (program != 0)
        glGetProgramiv(program, GL_LINK_STATUS, &isLinked);
    if (isLinked == GL_FALSE)
        return;
    for (const gui::gl::ActiveUniform& uniform : gui::gl::ActiveUniform::of(program))
    {
        const UniformShape shape = UniformShape::of(uniform.type);
        std::array<GLfloat, 16> floats{};
        std::array<GLint, 16> ints{};
        if (shape.n == 0)
            continue;
        if (shape.number == UniformShape::Number::Float)
            glGetUniformfv(program, uniform.location, floats.data());
        else
            glGetUniformiv(program, uniform.location, ints.data());
        texts["uniform " + uniform.name] = shape.number == UniformShape::Number::Float
                                               ? listText(floats.data(), shape.n)
                                               : listText(ints.data(), shape.n);
    }
}

} // namespace

std::map<std::string, std::string> stateTexts(const Player& player)
{
    Texts texts;
    addTests(texts);
    addBindings(texts, player);
    addUniforms(texts);
    return texts;
}

} // namespace replay
