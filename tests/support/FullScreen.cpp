#include "FullScreen.h"

#include <epoxy/gl.h>
#include <gtest/gtest.h>

namespace test
{

namespace
{

constexpr const char* cVertexShader = R"(#version 330 core
uniform float depth;
uniform float scale;
void main()
{
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0;
    gl_Position = vec4(corner * scale, depth, 1.0);
})";

void attach(GLuint program, GLenum stage, const char* source)
{
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint status = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    EXPECT_EQ(status, GL_TRUE) << source;
    glAttachShader(program, shader);
    glDeleteShader(shader);
}

} // namespace

FullScreen::FullScreen(const char* fragmentShader)
    : _program(glCreateProgram())
{
    attach(_program, GL_VERTEX_SHADER, cVertexShader);
    attach(_program, GL_FRAGMENT_SHADER, fragmentShader);
    glLinkProgram(_program);
    glGenVertexArrays(1, &_vertexArray);
}

FullScreen::~FullScreen()
{
    glDeleteProgram(_program);
    glDeleteVertexArrays(1, &_vertexArray);
}

void FullScreen::draw(float depth, float scale) const
{
    glUseProgram(_program);
    glUniform1f(glGetUniformLocation(_program, "depth"), depth);
    glUniform1f(glGetUniformLocation(_program, "scale"), scale);
    glBindVertexArray(_vertexArray);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glBindVertexArray(0);
}

} // namespace test
