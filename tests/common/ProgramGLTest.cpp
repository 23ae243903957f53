#include "support/CapturedLog.h"
#include "support/GLTrace.h"
#include "support/OffscreenGL.h"

#include <gui/gl/Program.h>

#include <epoxy/gl.h>
#include <glm/gtc/type_ptr.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

using gui::gl::Program;
using test::GLTrace;
using test::Pixel;

constexpr const char* cVertex = R"(#version 410 core
void main() { gl_Position = vec4(0.0, 0.0, 0.0, 1.0); })";
constexpr const char* cFragment = R"(#version 410 core
out vec4 color;
void main() { color = vec4(1.0, 0.0, 0.0, 1.0); })";
constexpr const char* cTessControl = R"(#version 410 core
layout(vertices = 3) out;
void main()
{
    gl_TessLevelInner[0] = 1.0;
    gl_TessLevelOuter[0] = gl_TessLevelOuter[1] = gl_TessLevelOuter[2] = 1.0;
})";
constexpr const char* cTessEvaluation = R"(#version 410 core
layout(triangles) in;
void main() { gl_Position = vec4(gl_TessCoord.xy * 4.0 - 1.0, 0.0, 1.0); })";
constexpr const char* cGeometry = R"(#version 410 core
layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;
void main()
{
    for (int i = 0; i < 3; ++i)
    {
        gl_Position = gl_in[i].gl_Position;
        EmitVertex();
    }
})";

struct TestProgram : Program
{
    void onLinked() override {}
};

class ProgramGLTest : public test::OffscreenGL
{
};

TEST_F(ProgramGLTest, AllFiveStagesDraw)
{
    TestProgram program;
    ASSERT_TRUE(program.link(cVertex, cFragment, cTessControl, cTessEvaluation, cGeometry));
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    clear();
    program.activate();
    glPatchParameteri(GL_PATCH_VERTICES, 3);
    glDrawArrays(GL_PATCHES, 0, 3);
    EXPECT_EQ(pixel(32, 32), (Pixel{255, 0, 0}));
    GLint nAttached = 0;
    glGetProgramiv(program.getID(), GL_ATTACHED_SHADERS, &nAttached);
    EXPECT_EQ(nAttached, 5);
    glDeleteVertexArrays(1, &vertexArray);
}

// What the driver really says of a broken stage, and that every shader made for it is gone.
TEST_F(ProgramGLTest, BrokenStagesAreNamedWithTheirLine)
{
    const std::string broken = "#version 410 core\n\nvoid main()\n{\nundeclared = 1.0;\n}\n";
    const char* stages[] = {cVertex, cFragment, cTessControl, cTessEvaluation, cGeometry};
    const char* names[] = {"VertexShader", "FragmentShader", "TessellationCtrlShader", "TessellationEvalShader",
                           "GeometryShader"};
    for (std::size_t i = 0; i < 5; ++i)
    {
        const char* sources[5];
        std::copy(std::begin(stages), std::end(stages), sources);
        sources[i] = broken.c_str();
        test::CapturedLog log;
        GLTrace trace(GLTrace::Forward);
        TestProgram program;
        EXPECT_FALSE(program.link(sources[0], sources[1], sources[2], sources[3], sources[4]));
        const std::vector<std::string> lines = log.take();
        ASSERT_GE(lines.size(), 4u);
        EXPECT_TRUE(lines[0].starts_with(std::string("OpenGL ") + names[i] + " compilation failed! Info='0:5("))
            << lines[0];
        EXPECT_TRUE(lines[0].ends_with("'. FileName=" + broken)) << lines[0];
        EXPECT_NE(std::find(lines.begin(), lines.end(), "  5 | undeclared = 1.0;"), lines.end());
        EXPECT_NE(std::find(lines.begin(), lines.end(), "    | ^"), lines.end());
        EXPECT_TRUE(trace.nothingAlive()) << names[i];
        EXPECT_FALSE(takeErrors().empty()); // the driver says it in its own way, too
        EXPECT_NE(std::string(Program::getLastError().c_str()).find(lines[0] + "\n"), std::string::npos);
    }
}

TEST_F(ProgramGLTest, StagesThatDoNotMeetDoNotLink)
{
    test::CapturedLog log;
    GLTrace trace(GLTrace::Forward);
    TestProgram program;
    EXPECT_FALSE(program.link(R"(#version 410 core
out vec2 passed;
void main() { gl_Position = vec4(0.0); passed = vec2(1.0); })",
                              R"(#version 410 core
in vec3 passed;
out vec4 color;
void main() { color = vec4(passed, 1.0); })"));
    const std::vector<std::string> lines = log.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].starts_with("OpenGL Program linking failed! Info='")) << lines[0];
    EXPECT_TRUE(trace.nothingAlive());
    EXPECT_EQ(program.getID(), 0u);
}

TEST_F(ProgramGLTest, EachTypeOfUniformArrives)
{
    TestProgram program;
    ASSERT_TRUE(program.link(cVertex, R"(#version 410 core
uniform float f; uniform vec2 v2; uniform vec3 v3; uniform vec4 v4; uniform mat3 m3; uniform mat4 m4;
uniform int i; uniform ivec2 i2; uniform ivec3 i3; uniform ivec4 i4; uniform bool b; uniform sampler2D s;
out vec4 color;
void main()
{
    color = v4 + vec4(f) + vec4(v2, v2) + vec4(v3, 1.0) + vec4(m3[0], 1.0) + m4[0] + vec4(i) + vec4(i2, i2)
          + vec4(i3, 1) + vec4(i4) + (b ? vec4(1.0) : vec4(0.0)) + texture(s, v2);
})"));
    program.activate();
    const auto location = [&](const char* name)
    {
        const int found = program.getUniformLocation(name);
        EXPECT_GE(found, 0) << name;
        return static_cast<unsigned int>(found);
    };
    const auto floats = [&](const char* name, std::size_t n)
    {
        std::vector<float> values(n);
        glGetUniformfv(program.getID(), program.getUniformLocation(name), values.data());
        return values;
    };
    const auto integers = [&](const char* name, std::size_t n)
    {
        std::vector<int> values(n);
        glGetUniformiv(program.getID(), program.getUniformLocation(name), values.data());
        return values;
    };
    EXPECT_EQ(program.getUniformLocation("absent"), -1);
    glm::mat4 m4;
    for (int k = 0; k < 16; ++k)
        glm::value_ptr(m4)[k] = static_cast<float>(k);
    program.setUniformValue(location("f"), 0.5f);
    program.setUniformValue(location("v2"), glm::vec2(1, 2));
    program.setUniformValue(location("v3"), glm::vec3(1, 2, 3));
    program.setUniformValue(location("v4"), glm::vec4(1, 2, 3, 4));
    program.setUniformValue(location("m3"), glm::mat3(m4));
    program.setUniformValue(location("m4"), m4);
    program.setUniformValue(location("i"), 4294967295u);
    program.setUniformValue(location("i2"), glm::uvec2(1, 2));
    program.setUniformValue(location("i3"), glm::uvec3(1, 2, 3));
    program.setUniformValue(location("i4"), glm::uvec4(1, 2, 3, 4));
    program.setUniformValue(location("b"), 1u);
    program.setUniformValue(location("s"), gui::gl::Texture::Type::Tex2D, 0, gui::gl::Textures::Unit::T7);
    program.setUniformValue(static_cast<unsigned int>(-1), glm::vec3(1)); // ignored
    EXPECT_EQ(floats("f", 1), (std::vector<float>{0.5f}));
    EXPECT_EQ(floats("v2", 2), (std::vector<float>{1, 2}));
    EXPECT_EQ(floats("v3", 3), (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(floats("v4", 4), (std::vector<float>{1, 2, 3, 4}));
    EXPECT_EQ(floats("m3", 9), (std::vector<float>{0, 1, 2, 4, 5, 6, 8, 9, 10}));
    EXPECT_EQ(floats("m4", 16), std::vector<float>(glm::value_ptr(m4), glm::value_ptr(m4) + 16));
    EXPECT_EQ(integers("i", 1), (std::vector<int>{-1}));
    EXPECT_EQ(integers("i2", 2), (std::vector<int>{1, 2}));
    EXPECT_EQ(integers("i3", 3), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(integers("i4", 4), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(integers("b", 1), (std::vector<int>{1}));
    EXPECT_EQ(integers("s", 1), (std::vector<int>{7}));
    program.setUniformValue(location("v4"), td::ColorID::Red, 128);
    EXPECT_EQ(floats("v4", 4), (std::vector<float>{1, 0, 0, 128 / 255.0f}));
}

} // namespace
