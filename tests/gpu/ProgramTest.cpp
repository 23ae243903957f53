#include "support/NullGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>

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
    void onLinked() override {}
    void onError() override { ++nErrors; }

    using Program::_color3Location;
    using Program::_color4Location;
    using Program::_matrixLocation;
    using Program::_matrixLocations;
    using Program::_uniformLocations;

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

TEST_F(ProgramTest, FailuresAreNamedAndLeaveNothing)
{
    const auto cannotCreate = [this](const char* function, unsigned int nth)
    { return [=, this] { trace.failNext(function, nth); }; };
    const auto broken = [this](unsigned int stage, const char* infoLog)
    { return [=, this] { trace.failCompilation(stage, infoLog); }; };
    const auto unlinked = [this](const char* infoLog) { return [=, this] { trace.failLinking(infoLog); }; };
    const std::string files = "'. Vertex fileName=vs, fragment fileName=fs";
    const std::pair<std::function<void()>, std::string> cases[] = {
        {cannotCreate("glCreateShader", 1), "OpenGL VertexShader cannot be created!"},
        {cannotCreate("glCreateShader", 2), "OpenGL FragmentShader cannot be created!"},
        {cannotCreate("glCreateShader", 3), "OpenGL TessellationCtrlShader cannot be created!"},
        {cannotCreate("glCreateShader", 4), "OpenGL TessellationEvalShader cannot be created!"},
        {cannotCreate("glCreateShader", 5), "OpenGL GeometryShader cannot be created!"},
        {cannotCreate("glCreateProgram", 1), "OpenGL Program cannot be created!"},
        {broken(GL_FRAGMENT_SHADER, "100%s%n of it"),
         "OpenGL FragmentShader compilation failed! Info='100%s%n of it'. FileName=fs"},
        {broken(GL_TESS_CONTROL_SHADER, ""), "OpenGL TessellationCtrlShader compilation failed! Info=''. FileName=tcs"},
        {unlinked("50% linked"), "OpenGL Program linking failed! Info='50% linked" + files},
        {unlinked(""), "OpenGL Program linking failed! Info='" + files}, // of length 1: its zero
    };
    TestProgram program;
    int nErrors = 0;
    for (const auto& [fail, line] : cases)
    {
        trace.compileAndLinkAll();
        fail();
        EXPECT_FALSE(program.link("vs", "fs", "tcs", "tes", "gs"));
        EXPECT_TRUE(log.said(line));
        EXPECT_EQ(newErrors(), line + "\n");
        EXPECT_EQ(program.nErrors, ++nErrors);
        EXPECT_FALSE(program.isOK());
        EXPECT_TRUE(trace.nothingAlive()) << line; // what is deleted twice fails the trace
    }
    trace.compileAndLinkAll();
    trace.failCompilation(GL_FRAGMENT_SHADER, "bad");
    EXPECT_FALSE(program.link(":gl/flat2d.vert", ":gl/flat2d.frag"));
    EXPECT_TRUE(log.said("OpenGL FragmentShader compilation failed! Info='bad'. FileName=gl/flat2d.frag"));
}

// Logs as drivers write them: Mesa's, and those of the three large makers of graphics cards, of one in both its forms.
TEST_F(ProgramTest, CompileErrorsShowTheirLineInEveryDriversLog)
{
    const char* const source = "#version 330 core\nout vec4 color;\n\tvoid main() { color = vec4(tint, 1); }\n";
    const std::string shown = "  3 | \tvoid main() { color = vec4(tint, 1); }";
    const struct
    {
        const char* log;
        std::vector<std::string> lines;
    } cases[] = {
        {"0:3(29): error: `tint' undeclared\n0:3(24): error: cannot construct `vec4'\n",
         {"0:3(29): error: `tint' undeclared", shown, "    | \t" + std::string(27, ' ') + "^",
          "0:3(24): error: cannot construct `vec4'", shown, "    | \t" + std::string(22, ' ') + "^"}},
        {"0:1(10): preprocessor error: syntax error, unexpected NEWLINE\n",
         {"0:1(10): preprocessor error: syntax error, unexpected NEWLINE", "  1 | #version 330 core",
          "    |          ^"}},
        {"0(3) : error C1503: undefined variable \"tint\"\n0(2) : warning C7022: unrecognized profile\n",
         {"0(3) : error C1503: undefined variable \"tint\"", shown, "0(2) : warning C7022: unrecognized profile",
          "  2 | out vec4 color;"}},
        {"Fragment shader failed to compile with the following errors:\nERROR: 0:3: error(#143) Undeclared identifier: "
         "tint\nERROR: error(#273) 1 compilation errors.  No code generated\n\n",
         {"ERROR: 0:3: error(#143) Undeclared identifier: tint", shown}},
        {"ERROR: 0:3: 'tint' : undeclared identifier \nERROR: 0:3: '' : compilation terminated \nERROR: 2 compilation "
         "errors.  No code generated.\n",
         {"ERROR: 0:3: 'tint' : undeclared identifier ", shown, "ERROR: 0:3: '' : compilation terminated ", shown}},
        {"ERROR: 0:3: 'tint' : undeclared identifier \r\nERROR: 0:3: 'constructor' : not enough data provided for "
         "construction \r\n",
         {"ERROR: 0:3: 'tint' : undeclared identifier ", shown,
          "ERROR: 0:3: 'constructor' : not enough data provided for construction ", shown}},
        // None that there is.
        {"0(99) : error\n0:2147483648(1): error\nERROR: 0:-1: error\n0:3\n", {}},
    };
    for (const auto& c : cases)
    {
        TestProgram program;
        trace.compileAndLinkAll();
        trace.failCompilation(GL_FRAGMENT_SHADER, c.log);
        log.take();
        EXPECT_FALSE(program.link(":gl/flat2d.vert", source));
        std::vector<std::string> lines = log.take();
        ASSERT_FALSE(lines.empty());
        lines.erase(lines.begin()); // with all of the driver's text
        EXPECT_EQ(lines, c.lines) << c.log;
    }
    newErrors();
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
    gui::gl::CurrentContext::set(this);
    Program looksUpNothing;
    EXPECT_TRUE(looksUpNothing.link("vs", "fs"));
    EXPECT_TRUE(log.said("WARNNING! zavGL Program::onLinked not handled at all!"));
}

TEST_F(ProgramTest, EachTypeOfUniformHasItsCall)
{
    TestProgram program;
    const glm::mat3 m3(1, 2, 3, 4, 5, 6, 7, 8, 9);
    const glm::mat4 m4(2.0f);
    program.setUniformValue(1, m4);
    program.setUniformValue(2, m3);
    program.setUniformValue(3, glm::vec1(0.5f));
    program.setUniformValue(static_cast<unsigned int>(-1), 0.25f);
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
    program.setUniformValue(13, Texture::Type::CubeMap, 77, Textures::Unit::T4);
    EXPECT_TRUE(trace.only({"glUniformMatrix4fv(1, 1, 0, [2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2])",
                            "glUniformMatrix3fv(2, 1, 0, [1 2 3 4 5 6 7 8 9])", "glUniform1f(3, 0.5)",
                            "glUniform1f(-1, 0.25)", "glUniform2f(4, 1, 2)", "glUniform3fv(5, 1, [1 2 3])",
                            "glUniform4fv(6, 1, [1 2 3 4])", "glUniform1i(7, 9)", "glUniform1i(7, -1)",
                            "glUniform2i(8, 1, 2)", "glUniform3iv(9, 1, [1 2 3])", "glUniform4iv(10, 1, [1 2 3 4])",
                            "glUniform3fv(11, 1, [1 1 0])", "glUniform4fv(12, 1, [1 1 0 0.501961])",
                            "glActiveTexture(0x84c4)", "glBindTexture(0x8513, 77)", "glUniform1i(13, 4)"}));
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
    const glm::mat4* pointers[] = {&matrices[0], &matrices[1]};
    cnt::SafeFullVector<glm::mat4, false> vector;
    vector.reserve(2);
    std::copy(std::begin(matrices), std::end(matrices), vector.begin());
    const std::vector<std::string> calls{"glUniformMatrix4fv(4, 1, 0, [1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1])",
                                         "glUniformMatrix4fv(7, 1, 0, [2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2])"};
    trace.clear();
    program.setUniformValuesForMatrices(matrices, 2);
    EXPECT_TRUE(trace.only(calls));
    program.setUniformValuesForMatrices(pointers, 2);
    EXPECT_TRUE(trace.only(calls));
    program.setUniformValuesForMatrices(vector);
    EXPECT_TRUE(trace.only(calls));
    program.setUniformValuesForMatrices(vector, 1);
    EXPECT_TRUE(trace.only({calls[0]}));
    program.setUniformValuesForMatrices(matrices, 3);
    EXPECT_TRUE(asserts.caught("n <= _matrixLocations.size()"));
    program.setUniformValuesForMatrices(vector, 3);
    EXPECT_TRUE(asserts.caught("n <= matrices.size()"));
    EXPECT_TRUE(trace.only({}));

    // The table of locations starts unfound.
    EXPECT_TRUE(program.uniformLocationsAreOk());
    program.reserveUniforms(2);
    program._uniformLocations[0] = 0;
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
        const std::string condition = isOpaque ? "_color3Location >= 0" : "_color4Location >= 0";
        EXPECT_TRUE(asserts.caught({condition, condition}));
    }
}

} // namespace
