#include "support/NullGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace
{

using gui::gl::GLSL;
using gui::gl::Program;
using gui::gl::Texture;
using gui::gl::Textures;

struct TestProgram : Program
{
    void onLinked() override { ++nLinked; }
    void onError() override { ++nErrors; }

    using Program::_color3Location;
    using Program::_color4Location;
    using Program::_matrixLocation;
    using Program::_matrixLocations;
    using Program::_uniformLocations;

    int nLinked = 0;
    int nErrors = 0;
};

/// The texts that all programs' failures left since the last call.
std::string newErrors()
{
    static std::string s_before;
    const std::string all = Program::getLastError().c_str();
    EXPECT_TRUE(all.starts_with(s_before));
    std::string added = all.substr(s_before.size());
    s_before = all;
    return added;
}

class ProgramTest : public test::NullGL
{
protected:
    ProgramTest() { newErrors(); }

    static std::vector<int> toVector(const cnt::SafeFullVector<int, false>& values)
    {
        return {values.begin(), values.end()};
    }
};

TEST_F(ProgramTest, LinksAllStagesAndDeletesTheirShaders)
{
    TestProgram program;
    ASSERT_TRUE(program.link("vs", "fs", "tcs", "tes", "gs"));
    EXPECT_TRUE(trace.only({
        "glCreateShader(0x8b31)",
        "glShaderSource(1, 1, ptr, 0)",
        "glCompileShader(1)",
        "glGetShaderiv(1, 0x8b81, ptr)",
        "glCreateShader(0x8b30)",
        "glShaderSource(2, 1, ptr, 0)",
        "glCompileShader(2)",
        "glGetShaderiv(2, 0x8b81, ptr)",
        "glCreateProgram()",
        "glAttachShader(1, 1)",
        "glAttachShader(1, 2)",
        "glCreateShader(0x8e88)",
        "glShaderSource(3, 1, ptr, 0)",
        "glCompileShader(3)",
        "glGetShaderiv(3, 0x8b81, ptr)",
        "glAttachShader(1, 3)",
        "glCreateShader(0x8e87)",
        "glShaderSource(4, 1, ptr, 0)",
        "glCompileShader(4)",
        "glGetShaderiv(4, 0x8b81, ptr)",
        "glAttachShader(1, 4)",
        "glCreateShader(0x8dd9)",
        "glShaderSource(5, 1, ptr, 0)",
        "glCompileShader(5)",
        "glGetShaderiv(5, 0x8b81, ptr)",
        "glAttachShader(1, 5)",
        "glLinkProgram(1)",
        "glGetProgramiv(1, 0x8b82, ptr)",
        "glDeleteShader(1)",
        "glDeleteShader(2)",
        "glDeleteShader(5)",
        "glDeleteShader(4)",
        "glDeleteShader(3)",
    }));
    EXPECT_EQ(trace.shaderSource(3), "tcs");
    EXPECT_TRUE(program.isOK());
    EXPECT_EQ(program.getID(), 1u);
    EXPECT_EQ(program.nLinked, 1);
    EXPECT_EQ(program.nErrors, 0);
    program.release();
    program.release();
    EXPECT_TRUE(trace.only({"glDeleteProgram(1)"}));
    EXPECT_FALSE(program.isOK());
}

TEST_F(ProgramTest, OneTessellationStageAloneIsSkipped)
{
    for (const bool hasControl : {true, false})
    {
        TestProgram program;
        EXPECT_TRUE(program.link("vs", "fs", hasControl ? "x" : nullptr, hasControl ? nullptr : "x", nullptr));
    }
    EXPECT_EQ(trace.count("glCreateShader"), 4u);
    TestProgram program;
    EXPECT_TRUE(program.link("vs", "fs", "gs"));
    EXPECT_EQ(trace.count("glCreateShader"), 7u);
}

TEST_F(ProgramTest, StagesThatDoNotCompileAreNamed)
{
    struct Case
    {
        unsigned int stage;
        std::string name;
        std::string source;
    };
    const Case cases[] = {{GL_VERTEX_SHADER, "VertexShader", "vs"},
                          {GL_FRAGMENT_SHADER, "FragmentShader", "fs"},
                          {GL_TESS_CONTROL_SHADER, "TessellationCtrlShader", "tcs"},
                          {GL_TESS_EVALUATION_SHADER, "TessellationEvalShader", "tes"},
                          {GL_GEOMETRY_SHADER, "GeometryShader", "gs"}};
    for (const Case& failing : cases)
    {
        for (const char* infoLog : {"100%s%n of it", ""})
        {
            trace.compileAndLinkAll();
            trace.failCompilation(failing.stage, infoLog);
            TestProgram program;
            EXPECT_FALSE(program.link("vs", "fs", "tcs", "tes", "gs"));
            const std::string line =
                "OpenGL " + failing.name + " compilation failed! Info='" + infoLog + "'. FileName=" + failing.source;
            EXPECT_TRUE(log.said(line));
            EXPECT_EQ(newErrors(), line + "\n");
            EXPECT_EQ(program.nErrors, 1);
            EXPECT_FALSE(program.isOK());
            EXPECT_TRUE(trace.nothingAlive()) << failing.name; // a shader deleted twice fails the trace
        }
    }
}

TEST_F(ProgramTest, TheLogShowsTheLinesThatTheDriverNames)
{
    trace.failCompilation(GL_FRAGMENT_SHADER, "0:2(5): error: no `%x'\n0:9(1): error: no such line\nand more");
    TestProgram program;
    EXPECT_FALSE(program.link("vs", "void main()\n{\t%x = 1;\n}"));
    const std::vector<std::string> lines = log.take();
    EXPECT_EQ(std::vector<std::string>(lines.begin() + 1, lines.end()),
              (std::vector<std::string>{"0:2(5): error: no `%x'", "  2 | {\t%x = 1;", "    |  \t  ^"}));
}

TEST_F(ProgramTest, ProgramsThatDoNotLinkLeaveNothing)
{
    trace.failLinking("50% linked");
    TestProgram program;
    EXPECT_FALSE(program.link("vs", "fs", "gs"));
    const std::string line =
        "OpenGL Program linking failed! Info='50% linked'. Vertex fileName=vs, fragment fileName=fs";
    EXPECT_TRUE(log.said(line));
    EXPECT_TRUE(trace.inOrder({"glDeleteProgram(1)", "glDeleteShader(1)", "glDeleteShader(2)", "glDeleteShader(3)"}));
    EXPECT_TRUE(trace.nothingAlive());
    EXPECT_FALSE(program.link("vs", "fs"));
    EXPECT_TRUE(log.said(line));
    EXPECT_EQ(newErrors(), line + "\n" + line + "\n");
    EXPECT_EQ(program.nErrors, 2);
    trace.failLinking(""); // of length 1: its zero
    EXPECT_FALSE(program.link("vs", "fs"));
    const std::string noReason = "OpenGL Program linking failed! Info=''. Vertex fileName=vs, fragment fileName=fs";
    EXPECT_TRUE(log.said(noReason));
    EXPECT_EQ(newErrors(), noReason + "\n");
    EXPECT_TRUE(trace.nothingAlive());
}

TEST_F(ProgramTest, ObjectsThatGLCannotGiveAreNamed)
{
    struct Case
    {
        const char* function;
        unsigned int nth;
        std::string name;
    };
    const Case cases[] = {
        {"glCreateShader", 1, "VertexShader"},           {"glCreateShader", 2, "FragmentShader"},
        {"glCreateShader", 3, "TessellationCtrlShader"}, {"glCreateShader", 4, "TessellationEvalShader"},
        {"glCreateShader", 5, "GeometryShader"},         {"glCreateProgram", 1, "Program"}};
    for (const Case& failing : cases)
    {
        trace.failNext(failing.function, failing.nth);
        TestProgram program;
        EXPECT_FALSE(program.link("vs", "fs", "tcs", "tes", "gs"));
        EXPECT_TRUE(log.said("OpenGL " + failing.name + " cannot be created!"));
        EXPECT_EQ(newErrors(), "OpenGL " + failing.name + " cannot be created!\n");
        EXPECT_EQ(program.nErrors, 1);
        EXPECT_TRUE(trace.nothingAlive()) << failing.name;
    }
}

TEST_F(ProgramTest, MisuseIsRefusedBeforeGLIsTouched)
{
    TestProgram program;
    EXPECT_FALSE(program.link(nullptr, "fs"));
    EXPECT_TRUE(asserts.caught("vertexResID != nullptr"));
    EXPECT_FALSE(program.link("vs", nullptr));
    EXPECT_TRUE(asserts.caught("fragmentResID != nullptr"));
    program.setColor3({});
    EXPECT_TRUE(asserts.caught("_color3Location >= 0"));
    EXPECT_TRUE(log.said("Error! Program::setColor3 on a program that takes no colour"));
    program.setColor4({});
    EXPECT_TRUE(asserts.caught("_color4Location >= 0"));
    program.setMVP({});
    EXPECT_TRUE(asserts.caught("_matrixLocation >= 0"));
    program.execute();
    EXPECT_TRUE(asserts.caught("_pBuffer != nullptr"));
    program.createCommand()->createDrawArrays(gui::gl::Primitive::Points, 0, 1);
    program.execute(0, 1); // its own list does not count
    EXPECT_TRUE(asserts.caught("_pBuffer != nullptr"));
    EXPECT_STREQ(GLSL::toString(GLSL::Type(6)), "");
    EXPECT_TRUE(asserts.caught("false"));
    gui::gl::CurrentContext::set(nullptr);
    EXPECT_FALSE(program.link("vs", "fs"));
    EXPECT_TRUE(log.said("Error! Program::link without a current GL context!"));
    EXPECT_TRUE(trace.only({}));
    EXPECT_EQ(program.nErrors, 3);
}

TEST_F(ProgramTest, AProgramThatLooksUpNothingSaysSo)
{
    Program program;
    EXPECT_TRUE(program.link("vs", "fs"));
    EXPECT_TRUE(log.said("WARNNING! zavGL Program::onLinked not handled at all!"));
}

TEST_F(ProgramTest, ResourcesAreCompiledByName)
{
    TestProgram program;
    EXPECT_TRUE(program.link(":gl/flat2d.vert", ":gl/flat2d.frag"));
    EXPECT_TRUE(trace.shaderSource(1).starts_with("#version 330 core\n")) << trace.shaderSource(1);
    trace.failCompilation(GL_FRAGMENT_SHADER, "bad");
    TestProgram failing;
    EXPECT_FALSE(failing.link(":gl/flat2d.vert", ":gl/flat2d.frag"));
    EXPECT_TRUE(log.said("OpenGL FragmentShader compilation failed! Info='bad'. FileName=gl/flat2d.frag"));
}

TEST_F(ProgramTest, EachTypeOfUniformHasItsCall)
{
    TestProgram program;
    const glm::mat3 m3(1, 2, 3, 4, 5, 6, 7, 8, 9);
    const glm::mat4 m4(2.0f);
    program.setUniformValue(1, m4);
    program.setUniformValue(2, m3);
    program.setUniformValue(3, glm::vec1(0.5f));
    program.setUniformValue(3, 0.25f);
    program.setUniformValue(4, glm::vec2(1, 2));
    program.setUniformValue(5, glm::vec3(1, 2, 3));
    program.setUniformValue(6, glm::vec4(1, 2, 3, 4));
    program.setUniformValue(7, glm::uvec1(9));
    program.setUniformValue(7, 4294967295u);
    program.setUniformValue(8, glm::uvec2(1, 2));
    program.setUniformValue(9, glm::uvec3(1, 2, 3));
    program.setUniformValue(10, glm::uvec4(1, 2, 3, 4));
    program.setUniformValue(11, td::ColorID::Yellow);
    program.setUniformValue(12, td::ColorID::Yellow, 128);
    program.setUniformValue(static_cast<unsigned int>(-1), 1.0f);
    program.setUniformValue(13, Texture::Type::CubeMap, 77, Textures::Unit::T4);
    program.setUniformValue(14, Texture::Type::FontAtlas, 78, Textures::Unit::T0);
    EXPECT_TRUE(trace.only({"glUniformMatrix4fv(1, 1, 0, [2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2])",
                            "glUniformMatrix3fv(2, 1, 0, [1 2 3 4 5 6 7 8 9])",
                            "glUniform1f(3, 0.5)",
                            "glUniform1f(3, 0.25)",
                            "glUniform2f(4, 1, 2)",
                            "glUniform3fv(5, 1, [1 2 3])",
                            "glUniform4fv(6, 1, [1 2 3 4])",
                            "glUniform1i(7, 9)",
                            "glUniform1i(7, -1)",
                            "glUniform2i(8, 1, 2)",
                            "glUniform3iv(9, 1, [1 2 3])",
                            "glUniform4iv(10, 1, [1 2 3 4])",
                            "glUniform3fv(11, 1, [1 1 0])",
                            "glUniform4fv(12, 1, [1 1 0 0.501961])",
                            "glUniform1f(-1, 1)",
                            "glActiveTexture(0x84c4)",
                            "glBindTexture(0x8513, 77)",
                            "glUniform1i(13, 4)",
                            "glActiveTexture(0x84c0)",
                            "glBindTexture(0xde1, 78)",
                            "glUniform1i(14, 0)"}));
}

TEST_F(ProgramTest, MatricesGoToTheLocationsFoundByName)
{
    TestProgram program;
    ASSERT_TRUE(program.link("vs", "fs"));
    trace.setUniformLocation("model", 4);
    trace.setUniformLocation("view", 7);
    const char* names[] = {"model", "missing", "view"};
    program._matrixLocations.reserve(3);
    std::fill(program._matrixLocations.begin(), program._matrixLocations.end(), 5); // left by an earlier look-up
    EXPECT_FALSE(program.getUniformLocationsForMatrices(names, 3));
    EXPECT_EQ(toVector(program._matrixLocations), (std::vector<int>{4, -1, -1}));
    names[1] = "view";
    EXPECT_TRUE(program.getUniformLocationsForMatrices(names, 2));

    const glm::mat4 matrices[] = {glm::mat4(1), glm::mat4(2)};
    const glm::mat4* pointers[] = {&matrices[1], &matrices[0]};
    cnt::SafeFullVector<glm::mat4, false> vector;
    vector.reserve(2);
    vector[0] = matrices[0];
    vector[1] = matrices[1];
    trace.clear();
    program.setUniformValuesForMatrices(matrices, 2);
    program.setUniformValuesForMatrices(pointers, 1);
    program.setUniformValuesForMatrices(vector, 1);
    program.setUniformValuesForMatrices(vector);
    const std::string one = ", 1, 0, [1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1])";
    const std::string two = ", 1, 0, [2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2])";
    const std::string call = "glUniformMatrix4fv(";
    EXPECT_TRUE(trace.only(
        {call + "4" + one, call + "7" + two, call + "4" + two, call + "4" + one, call + "4" + one, call + "7" + two}));
    program.setUniformValuesForMatrices(matrices, 3);
    EXPECT_TRUE(asserts.caught("n <= _matrixLocations.size()"));
    program.setUniformValuesForMatrices(vector, 3);
    EXPECT_TRUE(asserts.caught("n <= matrices.size()"));
    EXPECT_TRUE(trace.only({}));
}

TEST_F(ProgramTest, TheTableOfLocationsStartsUnfound)
{
    TestProgram program;
    EXPECT_TRUE(program.uniformLocationsAreOk()); // an empty one
    program.reserveUniforms(3);
    EXPECT_EQ(toVector(program._uniformLocations), (std::vector<int>{-1, -1, -1}));
    program._uniformLocations[0] = program._uniformLocations[2] = 0;
    EXPECT_FALSE(program.uniformLocationsAreOk());
    program._uniformLocations[1] = 0;
    EXPECT_TRUE(program.uniformLocationsAreOk());
}

TEST_F(ProgramTest, ActivatesWithItsBufferAndExecutesTheListThatCounts)
{
    gui::gl::Buffer buffer;
    const float points[] = {0, 0};
    ASSERT_TRUE(buffer.init(2, 1, 0, {gui::gl::DataType::Vec2}));
    buffer.appendVertices(points, 1);
    ASSERT_TRUE(buffer.commit());
    for (unsigned int count : {1u, 2u})
    {
        gui::gl::Command* pCommand = buffer.createCommand();
        pCommand->createDrawArrays(gui::gl::Primitive::Points, 0, count);
        ASSERT_TRUE(buffer.encode(pCommand));
    }
    TestProgram program;
    ASSERT_TRUE(program.link("vs", "fs"));
    program.setBuffer(&buffer);
    trace.clear();
    program.activate();
    program.execute();
    program.deActivate();
    Program::useNone();
    EXPECT_TRUE(trace.only({"glBindVertexArray(1)", "glUseProgram(1)", "glDrawArrays(0, 0, 1)", "glDrawArrays(0, 0, 2)",
                            "glBindVertexArray(0)", "glUseProgram(0)", "glUseProgram(0)"}));

    gui::gl::Command* pOwn = program.createCommand();
    pOwn->createDrawArrays(gui::gl::Primitive::Lines, 0, 4);
    ASSERT_TRUE(program.encode(pOwn));
    program.execute();
    program.execute(1, 5);
    EXPECT_TRUE(trace.only({"glDrawArrays(1, 0, 4)", "glDrawArrays(0, 0, 2)"}));
    program.remove(nullptr);
    program.execute();
    EXPECT_EQ(trace.count("glDrawArrays"), 2u); // the buffer's again
}

// A frame that a newcomer forgot to prepare must say so once, not draw with another's program or fill the log.
TEST_F(ProgramTest, DrawPreparesWhatItDraws)
{
    TestProgram program;
    gui::gl::Buffer buffer{gui::gl::DataType::Vec2};
    constexpr float cPoint[] = {0, 0};
    buffer.appendShape(gui::gl::Primitive::Points, cPoint, 1);
    program.draw(buffer);
    program.draw(buffer, glm::mat4(1));
    EXPECT_TRUE(trace.only({}));
    EXPECT_EQ(log.take(), std::vector<std::string>{"Error! Program::draw on a program that is not linked"});

    ASSERT_TRUE(program.link("vs", "fs"));
    trace.failNext("glGenBuffers");
    program.draw(buffer);
    EXPECT_TRUE(log.said("ERROR! Buffer::commit cannot create VBO!"));
    program.draw(buffer); // from what is not there, and with a line in each frame
    EXPECT_EQ(trace.count("glDrawArrays"), 0u);
    buffer.reset();
    buffer.appendVertices(cPoint, 1);
    buffer.createCommand()->createDrawArrays(gui::gl::Primitive::Points, 0, 1);
    program._matrixLocation = 3;
    program.draw(buffer, glm::mat4(1));
    program.draw(buffer);
    EXPECT_EQ(trace.count("glBufferData"), 1u);
    EXPECT_TRUE(trace.inOrder({"glBufferData(0x8892, 8, ptr, 0x88e4)", "glBindVertexArray(2)", "glUseProgram(1)"}));
    EXPECT_EQ(trace.count("glUniformMatrix4fv"), 1u);
    EXPECT_EQ(trace.count("glDrawArrays"), 2u);
    buffer.release();
    program.release();
    gui::gl::setCurrentProgram(nullptr);
}

// Black shapes, and in release no word of why.
TEST_F(ProgramTest, ColoursThatDoNotFitAreSaidOncePerProgram)
{
    constexpr float cPoint[] = {0, 0};
    for (const bool isOpaque : {true, false})
    {
        gui::gl::Buffer buffer{gui::gl::DataType::Vec2};
        for (const td::ColorID color : {td::ColorID::Red, td::ColorID::Blue})
        {
            gui::gl::Command* const pCommand = buffer.appendShape(gui::gl::Primitive::Points, cPoint, 1);
            isOpaque ? pCommand->setColor(color) : pCommand->setColor(color, 0.5f);
        }
        TestProgram program;
        ASSERT_TRUE(program.link("vs", "fs"));
        (isOpaque ? program._color4Location : program._color3Location) = 2;
        program.draw(buffer);
        EXPECT_TRUE(log.said(isOpaque ? "Error! Program::setColor3 on a program that takes a colour of 4 components: "
                                        "setColor(id, alpha)"
                                      : "Error! Program::setColor4 on a program that takes a colour of 3 components: "
                                        "setColor(id)"));
        EXPECT_TRUE(
            asserts.caught(std::vector<std::string>(2, isOpaque ? "_color3Location >= 0" : "_color4Location >= 0")));
    }
}

// Commands would send to a program that is no more.
TEST_F(ProgramTest, AReleasedProgramIsNotCurrent)
{
    gui::gl::Command command;
    command.createDrawArrays(gui::gl::Primitive::Points, 0, 1);
    command.setColor(td::ColorID::Red);
    ASSERT_TRUE(command.encode());
    {
        TestProgram program;
        ASSERT_TRUE(program.link("vs", "fs"));
        program.activate();
    }
    EXPECT_FALSE(command.execute());
    EXPECT_TRUE(asserts.caught("s_pCurrentProgram != nullptr"));
    EXPECT_EQ(trace.count("glDrawArrays"), 0u);
}

} // namespace
