#include "support/CapturedLog.h"
#include "support/GLTrace.h"
#include "support/OffscreenGL.h"

#include <gui/Texture.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Context.h>
#include <gui/gl/Flat2DProgram.h>
#include <gui/gl/OffscreenContext.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>

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

using ProgramGLTest = test::OffscreenGL;

TEST_F(ProgramGLTest, AllFiveStagesDraw)
{
    if (!gui::gl::Context::isAtLeast(41, 0))
        GTEST_SKIP() << "tessellation shaders need OpenGL 4.1";
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
    if (!gui::gl::Context::isAtLeast(41, 0))
        GTEST_SKIP() << "tessellation shaders need OpenGL 4.1";
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

// What OpenGL ES has not in its shaders: values of uniforms, sizes of points from outside. And lines of errors stay.
TEST(ProgramES, TextOfOpenGLIsTaken)
{
    using gui::gl::Context;
    gui::gl::OffscreenContext context(
        {16, 16}, {gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None, Context::Profile::ES31});
    ASSERT_TRUE(context.isOk() && Context::isES());
    struct Plain : gui::gl::Program
    {
        void onLinked() override {}
    } program, broken;
    const char* const vertex = "// A point.\n#version 330 core\n"
                               "uniform vec2 place = vec2(1.0, -1) /* times */, half_ = vec2(.5f);\n"
                               "void main() { gl_Position = vec4(place * half_, 0.0, 1.0); }\n";
    const char* const fragment = "#version 410 core\n#extension GL_ARB_none : enable\n"
                                 "uniform mat4 turn = mat4(1.0);\nuniform vec4 paint = vec4(vec2(0, 1), 0.0, 1);\n"
                                 "out vec4 color;\nvoid main() { color = turn * paint; }\n";
    ASSERT_TRUE(program.link(vertex, fragment));
    Context::clear(Context::Clear::Color, td::ColorID::Black);
    Context::setPointSize(4);
    GLuint array = 0;
    glGenVertexArrays(1, &array);
    glBindVertexArray(array);
    program.activate();
    glDrawArrays(GL_POINTS, 0, 1);
    std::vector<unsigned char> picture(std::size_t{4} * 16 * 16);
    glReadPixels(0, 0, 16, 16, GL_RGBA, GL_UNSIGNED_BYTE, picture.data());
    int nGreen = 0;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
        {
            const unsigned char* const pPixel = picture.data() + 4 * (16 * y + x);
            const bool isInside = x >= 10 && x < 14 && y >= 2 && y < 6;
            nGreen += isInside && pPixel[0] == 0 && pPixel[1] == 255 ? 1 : isInside || pPixel[1] != 0 ? -1000 : 0;
        }
    EXPECT_EQ(nGreen, 16);
    test::CapturedLog log;
    EXPECT_FALSE(broken.link("#version 330 core\nvoid main()\n{\n    gl_Position = nothing;\n}\n", fragment));
    const std::vector<std::string> lines = log.take();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "  4 |     gl_Position = nothing;"), 1);
    program.deActivate();
    glDeleteVertexArrays(1, &array);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// Where GL has no wires the library draws them, wherever their triangles come from.
TEST(ProgramES, WiresAreTheSameOfEachKindOfDraw)
{
    using namespace gui::gl;
    OffscreenContext context({32, 32}, {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::ES31});
    ASSERT_TRUE(context.isOk());
    Flat2DProgram program;
    ASSERT_TRUE(program.link());
    constexpr float cCorners[] = {-0.75F, -0.75F, 0.75F, -0.75F, 0.75F, 0.75F};
    constexpr unsigned int cIndices[] = {0, 1, 2};
    const auto drawn = [&](bool isIndexed, bool isDynamic, bool isAll)
    {
        Buffer buffer;
        if (isDynamic)
            buffer.setDynamic();
        EXPECT_TRUE(buffer.init(1, 3, isIndexed ? 3 : 0, {DataType::Vec2}));
        buffer.appendVertices(cCorners, 3);
        if (isIndexed)
            buffer.appendIndices(cIndices, 3);
        Command* const pCommand = buffer.createCommand();
        if (isAll)
            pCommand->createDrawAll(Primitive::Triangles);
        else if (isIndexed)
            pCommand->createDrawElements(Primitive::Triangles, 0, 3);
        else
            pCommand->createDrawArrays(Primitive::Triangles, 0, 3);
        pCommand->setColor(td::ColorID::White);
        EXPECT_TRUE(buffer.encode(pCommand) && buffer.commit());
        Context::clear(Context::Clear::Color, td::ColorID::Black);
        Context::setPolygonMode(Context::PolygonMode::Line);
        program.draw(buffer, glm::mat4(1));
        Context::setPolygonMode(Context::PolygonMode::Fill);
        gui::Texture picture;
        EXPECT_TRUE(context.readPixels(picture));
        return std::vector<td::BYTE>(picture.getBytes(), picture.getBytes() + std::size_t(32 * 32 * 3));
    };
    const std::vector<td::BYTE> wires = drawn(false, false, false);
    const auto nWhite = std::count(wires.begin(), wires.end(), td::BYTE(255)) / 3;
    EXPECT_TRUE(nWhite > 60 && nWhite < 90) << nWhite; // three sides of 24 pixels
    for (const bool isIndexed : {false, true})
        for (const bool isDynamic : {false, true})
            for (const bool isAll : {false, true})
                EXPECT_TRUE(drawn(isIndexed, isDynamic, isAll) == wires) << isIndexed << isDynamic << isAll;
}

} // namespace
