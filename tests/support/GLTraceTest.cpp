#include "support/GLTrace.h"

#include <epoxy/gl.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <vector>

namespace
{

using test::GLTrace;

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

} // namespace
