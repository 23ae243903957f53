#include "support/OffscreenGL.h"

#include <gui/Color.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <span>
#include <string>

namespace
{

using gui::gl::Buffer;
using gui::gl::Command;
using gui::gl::Primitive;
using test::Pixel;

/// Points in pixels of a picture of 64 x 64, moved by a matrix, in one colour.
struct PixelProgram final : gui::gl::Program
{
    void onLinked() override
    {
        _color3Location = getUniformLocation("color3");
        _color4Location = getUniformLocation("color4");
        _matrixLocation = getUniformLocation("mvp");
    }

    static constexpr const char* cFragment = R"(#version 330 core
uniform vec3 color3;
uniform vec4 color4;
out vec4 color;
void main() { color = vec4(color3, 1.0) + color4; })";

    bool linkAll()
    {
        return link(R"(#version 330 core
uniform mat4 mvp;
layout(location = 0) in vec2 position;
void main() { gl_Position = mvp * vec4(position / 32.0 - 1.0, 0.0, 1.0); })",
                    cFragment);
    }

    using Program::_color3Location;
    using Program::_color4Location;
};

struct Position
{
    int x;
    int y;
};

constexpr Pixel cLit{255, 255, 255};

class CommandGLTest : public test::OffscreenGL
{
protected:
    void SetUp() override
    {
        OffscreenGL::SetUp();
        _program = std::make_unique<PixelProgram>();
        _buffer = std::make_unique<Buffer>();
        ASSERT_TRUE(_program->linkAll());
        _program->setBuffer(_buffer.get());
        ASSERT_TRUE(_buffer->init(0, 16, 16, {gui::gl::DataType::Vec2}));
    }

    void TearDown() override
    {
        _buffer.reset();
        _program.reset();
        OffscreenGL::TearDown();
    }

    void draw()
    {
        const glm::mat4 identity(1);
        ASSERT_TRUE(_buffer->commit());
        clear();
        _program->activate();
        _program->setMVP(identity);
        _program->execute();
    }

    /// The corners of a square, counter-clockwise from the lower left, and indices of which the first two are no one's.
    void startWithSquare()
    {
        const float corners[] = {10.5f, 10.5f, 50.5f, 10.5f, 50.5f, 50.5f, 10.5f, 50.5f};
        const unsigned int indices[] = {7, 7, 0, 1, 2, 3};
        _buffer->reset();
        _buffer->appendVertices(corners, 4);
        _buffer->appendIndices(indices, 6);
    }

    /// Which of the pixels are white: "10" for the first of two.
    static std::string lit(std::span<const Position> positions)
    {
        std::string text;
        for (const Position& position : positions)
            text += pixel(position.x, position.y) == cLit ? '1' : '0';
        return text;
    }

    std::unique_ptr<PixelProgram> _program;
    std::unique_ptr<Buffer> _buffer;
};

// Four corners of a square: each primitive joins them its own way, from vertices and through indices.
TEST_F(CommandGLTest, EachPrimitiveJoinsPointsItsOwnWay)
{
    const Position edges[] = {{30, 10}, {50, 30}, {30, 50}, {10, 30}}; // bottom, right, top, left
    const Position inside[] = {{30, 15}, {45, 30}, {30, 45}, {15, 30}};
    struct Case
    {
        Primitive primitive;
        const char* edges; // null for triangles: whose a pixel on an edge is, the driver says
        const char* inside;
    };
    const Case cases[] = {{Primitive::Points, "0000", "0000"},        {Primitive::Lines, "1010", "0000"},
                          {Primitive::LineStrip, "1110", "0000"},     {Primitive::LineLoop, "1111", "0000"},
                          {Primitive::Triangles, nullptr, "1100"},    {Primitive::TriangleFan, nullptr, "1111"},
                          {Primitive::TriangleStrip, nullptr, "1110"}};
    for (const Case& c : cases)
    {
        for (const int kind : {0, 1, 2, 3})
        {
            startWithSquare();
            Command* pCommand = _buffer->createCommand();
            if (kind % 2 == 0)
                pCommand->createDrawElements(c.primitive, 2, 4);
            else
                pCommand->createDrawArrays(c.primitive, 0, 4);
            pCommand->setColor(td::ColorID::White);
            if (kind >= 2)
                pCommand->setNumberOfInstances(1);
            ASSERT_TRUE(_buffer->encode(pCommand));
            draw();
            EXPECT_EQ(lit(inside), c.inside) << int(c.primitive) << ' ' << kind;
            if (c.edges != nullptr)
            {
                EXPECT_EQ(lit(edges), c.edges) << int(c.primitive) << ' ' << kind;
                EXPECT_EQ(pixel(10, 10), cLit) << int(c.primitive) << ' ' << kind;
            }
        }
    }
}

TEST_F(CommandGLTest, PointsHaveTheirSize)
{
    for (const bool byElements : {false, true})
    {
        startWithSquare();
        Command* pCommand = _buffer->createCommand();
        if (byElements)
            pCommand->createDrawElementPoints(2, 1, 5);
        else
            pCommand->createDrawArrayPoints(0, 1, 5);
        pCommand->setColor(td::ColorID::White);
        ASSERT_TRUE(_buffer->encode(pCommand));
        draw();
        const Position around[] = {{8, 8}, {12, 12}, {7, 10}, {13, 10}, {10, 7}, {10, 13}};
        EXPECT_EQ(lit(around), "110000") << byElements;
    }
}

TEST_F(CommandGLTest, PatchesAreTessellated)
{
    PixelProgram program;
    ASSERT_TRUE(program.link(R"(#version 410 core
layout(location = 0) in vec2 position;
void main() { gl_Position = vec4(position / 32.0 - 1.0, 0.0, 1.0); })",
                             PixelProgram::cFragment, R"(#version 410 core
layout(vertices = 4) out;
void main()
{
    gl_out[gl_InvocationID].gl_Position = gl_in[gl_InvocationID].gl_Position;
    gl_TessLevelInner[0] = gl_TessLevelInner[1] = 1.0;
    gl_TessLevelOuter[0] = gl_TessLevelOuter[1] = gl_TessLevelOuter[2] = gl_TessLevelOuter[3] = 1.0;
})",
                             R"(#version 410 core
layout(quads) in;
void main()
{
    gl_Position = mix(mix(gl_in[0].gl_Position, gl_in[1].gl_Position, gl_TessCoord.x),
                      mix(gl_in[3].gl_Position, gl_in[2].gl_Position, gl_TessCoord.x), gl_TessCoord.y);
})",
                             nullptr));
    program.setBuffer(_buffer.get());
    const Position inside[] = {{30, 15}, {45, 30}, {30, 45}, {15, 30}, {5, 5}};
    for (const bool byElements : {false, true})
    {
        startWithSquare();
        Command* pCommand = _buffer->createCommand();
        if (byElements)
            pCommand->createDrawElementPatches(2, 4, 4);
        else
            pCommand->createDrawArrayPatches(0, 4, 4);
        pCommand->setColor(td::ColorID::White);
        ASSERT_TRUE(_buffer->encode(pCommand));
        ASSERT_TRUE(_buffer->commit());
        clear();
        program.activate();
        program.execute();
        EXPECT_EQ(lit(inside), "11110") << byElements;
    }
}

TEST_F(CommandGLTest, MatricesMoveWhatFollows)
{
    startWithSquare();
    glm::mat4 matrix(1);
    matrix[3][0] = 1; // half the picture to the right
    Command::_additinalUniform white{4, static_cast<td::BYTE>(_program->_color3Location), {255, 255, 255}};
    Command* pSetter = _buffer->createCommand();
    pSetter->createMVPSetter(&matrix, &white, 1);
    ASSERT_TRUE(_buffer->encode(pSetter));
    Command* pDraw = _buffer->createCommand();
    pDraw->createDrawArrays(Primitive::Points, 0, 1);
    ASSERT_TRUE(_buffer->encode(pDraw));
    draw();
    const Position corners[] = {{10, 10}, {42, 10}};
    EXPECT_EQ(lit(corners), "01");
}

// Each program has uniforms of its own: a colour that the last one got is not yet in this one.
TEST_F(CommandGLTest, EachProgramGetsItsColors)
{
    PixelProgram other;
    ASSERT_TRUE(other.linkAll());
    other.setBuffer(_buffer.get());
    startWithSquare();
    Command* pCommand = _buffer->createCommand();
    pCommand->createDrawArrays(Primitive::Points, 0, 1);
    pCommand->setColor(td::ColorID::White);
    ASSERT_TRUE(_buffer->encode(pCommand));
    draw();
    clear();
    other.activate();
    other.setMVP(glm::mat4(1));
    other.execute();
    EXPECT_EQ(pixel(10, 10), cLit);
}

// A channel times 1/255 is often not the channel over 255.
TEST_F(CommandGLTest, ColorsAreExactQuotients)
{
    startWithSquare();
    Command* pRGB = _buffer->createCommand();
    pRGB->createDrawArrays(Primitive::Points, 0, 1);
    pRGB->setColor(td::ColorID::White);
    ASSERT_TRUE(_buffer->encode(pRGB));
    Command rgba;
    rgba.createDrawArrays(Primitive::Points, 0, 1);
    rgba.setColor(td::ColorID::White, 1);
    ASSERT_TRUE(rgba.encode());
    draw();
    for (int i = 0; i < 256; ++i)
    {
        const auto id = static_cast<td::ColorID>(i % 183);
        const td::Color color = gui::Color::toTDColor(id);
        _program->activate();
        rgba.setColor(id, i);
        rgba.execute();
        _program->activate();
        pRGB->setColor(id);
        pRGB->execute();
        const float expected[] = {color.red() / 255.0f, color.green() / 255.0f, color.blue() / 255.0f,
                                  static_cast<float>(i) / 255.0f};
        float rgb[3] = {};
        float withAlpha[4] = {};
        glGetUniformfv(_program->getID(), _program->_color3Location, rgb);
        glGetUniformfv(_program->getID(), _program->_color4Location, withAlpha);
        EXPECT_TRUE(std::equal(rgb, rgb + 3, expected)) << i;
        EXPECT_TRUE(std::equal(withAlpha, withAlpha + 4, expected)) << i;
    }
}

} // namespace
