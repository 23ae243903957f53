#include "support/GLTrace.h"

#include <epoxy/gl.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using test::GLTrace;

TEST(GLTrace, WritesEachKindOfArgument)
{
    GLTrace trace(GLTrace::Null);
    const float vectors[] = {1, 0, 0, 0.5f, 2, 3, 4, 5};
    const int integers[] = {-1, 2, 3};
    glBindBuffer(GL_ARRAY_BUFFER, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDrawElements(GL_TRIANGLES, 300, GL_UNSIGNED_INT, reinterpret_cast<const void*>(24));
    glVertexAttribPointer(2, 3, GL_FLOAT, GL_FALSE, 32, nullptr);
    glUniform4fv(3, 2, vectors);
    glUniform3iv(-1, 1, integers);
    glStencilFunc(GL_ALWAYS, -1, 0xFFFFFFFF);
    glGetUniformLocation(1, "mvp");
    glBufferData(GL_ARRAY_BUFFER, sizeof vectors, vectors, GL_STATIC_DRAW);
    EXPECT_TRUE(trace.only({"glBindBuffer(0x8892, 1)", "glClear(0x4100)", "glDrawElements(4, 300, 0x1405, 24)",
                            "glVertexAttribPointer(2, 3, 0x1406, 0, 32, 0)", "glUniform4fv(3, 2, [1 0 0 0.5 2 3 4 5])",
                            "glUniform3iv(-1, 1, [-1 2 3])", "glStencilFunc(0x207, -1, 0xffffffff)",
                            "glGetUniformLocation(1, \"mvp\")", "glBufferData(0x8892, 32, ptr, 0x88e4)"}));
    EXPECT_EQ(trace.lastBuffer<float>(GL_ARRAY_BUFFER), std::vector<float>(vectors, vectors + 8));
}

TEST(GLTrace, KnowsWhichNamesLive)
{
    GLTrace trace(GLTrace::Null);
    GLuint names[3] = {};
    glGenBuffers(2, names);
    trace.failNext("glGenBuffers");
    names[2] = 77;
    glGenBuffers(1, names + 2);
    EXPECT_EQ(names[2], 0u);
    glDeleteBuffers(3, names);
    EXPECT_TRUE(trace.only({"glGenBuffers(2, [1 2])", "glGenBuffers(1, [0])", "glDeleteBuffers(3, [1 2 0])"}));
    EXPECT_NONFATAL_FAILURE(glDeleteBuffers(1, names), "glDeleteBuffers of 1, which is not alive");

    trace.failNext("glCreateShader", 2);
    const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
    EXPECT_EQ(glCreateShader(GL_VERTEX_SHADER), 0u);
    const GLuint program = glCreateProgram();
    EXPECT_EQ(trace.aliveNames(GLTrace::Kind::Shader), std::vector<unsigned int>{shader});
    EXPECT_FALSE(trace.nothingAlive());
    glDeleteShader(shader);
    glDeleteProgram(program);
    EXPECT_TRUE(trace.nothingAlive());
}

TEST(GLTrace, NullGLFailsAsToldWithAnInfoLogCutToTheBuffer)
{
    GLTrace trace(GLTrace::Null);
    trace.failCompilation(GL_FRAGMENT_SHADER, "0:1: bad");
    trace.failLinking("");
    const GLuint vertex = glCreateShader(GL_VERTEX_SHADER);
    const GLuint fragment = glCreateShader(GL_FRAGMENT_SHADER);
    GLint values[4] = {};
    glGetShaderiv(vertex, GL_COMPILE_STATUS, values);
    glGetShaderiv(fragment, GL_COMPILE_STATUS, values + 1);
    glGetShaderiv(fragment, GL_INFO_LOG_LENGTH, values + 2);
    glGetProgramiv(1, GL_INFO_LOG_LENGTH, values + 3);
    EXPECT_EQ(std::vector<GLint>(values, values + 4), (std::vector<GLint>{GL_TRUE, GL_FALSE, 9, 0}));
    char text[] = "........";
    GLsizei length = 0;
    glGetShaderInfoLog(fragment, 4, &length, text);
    EXPECT_EQ(std::string(text, 8), std::string("0:1\0....", 8));
    EXPECT_EQ(length, 3);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
}

TEST(GLTrace, KeepsImagesAsGLReadsThem)
{
    GLTrace trace(GLTrace::Null);
    const std::vector<unsigned char> padded{1, 2, 3, 0, 4, 5, 6}; // one pixel, one byte of padding, one pixel
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 1, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, padded.data());
    ASSERT_EQ(trace.images().size(), 1u);
    EXPECT_EQ(trace.images().front().bytes, padded);
}

} // namespace
