#include "TriangReference.h"
#include "support/OffscreenGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Context.h>
#include <gui/gl/Flat2DProgram.h>
#include <gui/gl/Triang2D.h>

#include <gtest/gtest.h>

namespace
{

using gui::gl::Command;
using td::ColorID;
using test::Outline;
using test::Pixel;

constexpr Pixel cEmpty{0, 0, 0, 0}, cRed{255, 0, 0}, cBlue{0, 0, 255}, cWhite{255, 255, 255};

class Triang2DGLTest : public test::OffscreenGL
{
protected:
    void SetUp() override
    {
        OffscreenGL::SetUp();
        ASSERT_TRUE(_buffer.init(4, 100, 100, {gui::gl::DataType::Vec2}));
        ASSERT_TRUE(_program.link());
        _program.setBuffer(&_buffer);
    }

    void TearDown() override
    {
        _buffer.release();
        _program.release();
        OffscreenGL::TearDown();
    }

    /// A point of the picture, in pixels from the lower left.
    static td::Point<float> at(float x, float y) { return {x / 32 - 1, y / 32 - 1}; }

    void record(Command* pCommand, ColorID color)
    {
        ASSERT_NE(pCommand, nullptr);
        pCommand->setColor(color);
        ASSERT_TRUE(_buffer.encode(pCommand));
    }

    void draw()
    {
        ASSERT_TRUE(_buffer.commit());
        clear();
        _program.activate();
        _program.execute();
    }

    gui::gl::Triang2D _triang{8};
    gui::gl::Buffer _buffer;
    gui::gl::Flat2DProgram _program;
};

// The second shape's indices would draw the first one's vertices if they did not count from where its own begin.
TEST_F(Triang2DGLTest, PolygonsFillTheirInsideAndRecycledLinesTheirEdge)
{
    const Outline arrow{at(2, 2), at(30, 2), at(30, 30), at(16, 16), at(2, 30)};
    const Outline cup{at(34, 34), at(62, 34), at(62, 62), at(54, 62), at(54, 44), at(42, 44), at(42, 62), at(34, 62)};
    ASSERT_NE(_triang.triangulate(&_buffer, arrow, ColorID::Red), nullptr);
    record(_triang.triangulate(&_buffer, cup.data(), 8), ColorID::Blue);
    record(_triang.createRecycledLine(&_buffer, gui::gl::Primitive::LineLoop, cup.data(), 5, 8), ColorID::White);
    draw();
    for (const td::Point<int> p : {td::Point(16, 8), {4, 20}, {27, 20}, {16, 13}})
        EXPECT_EQ(pixel(p.x, p.y), cRed) << p.x << ", " << p.y;
    for (const td::Point<int> p : {td::Point(38, 58), {58, 58}, {48, 39}, {37, 37}, {59, 37}})
        EXPECT_EQ(pixel(p.x, p.y), cBlue) << p.x << ", " << p.y;
    for (const td::Point<int> p : {td::Point(16, 24), {48, 54}, {32, 32}, {16, 40}, {48, 20}})
        EXPECT_EQ(pixel(p.x, p.y), cEmpty) << p.x << ", " << p.y;
    int nWhite = 0; // across the left side of the cup
    for (int x = 30; x < 40; ++x)
        nWhite += pixel(x, 50) == cWhite ? 1 : 0;
    EXPECT_EQ(nWhite, 1);
}

TEST_F(Triang2DGLTest, SharpCornersAreCutOff)
{
    // Both of 8 pixels, with a turn of some 153 degrees to the left: the miter would reach 17 pixels beyond the corner.
    const Outline line{at(4, 12), at(44, 12), at(4, 32)};
    ASSERT_NE(_triang.triangulateLine(&_buffer, line, 0.125f, false, ColorID::Red), nullptr);
    EXPECT_EQ(_triang.triangulateLine(&_buffer, line, 0, false, ColorID::Red), nullptr);
    draw();
    for (const td::Point<int> p : {td::Point(6, 9), {6, 14}, {40, 12}, {44, 11}, {46, 11}, {20, 26}, {44, 14}})
        EXPECT_EQ(pixel(p.x, p.y), cRed) << p.x << ", " << p.y;
    for (const td::Point<int> p : {td::Point(6, 6), {6, 18}, {52, 9}, {50, 12}, {56, 9}, {2, 12}, {20, 32}})
        EXPECT_EQ(pixel(p.x, p.y), cEmpty) << p.x << ", " << p.y;
}

// Mesa's other code for tiles that one triangle covers, from the second frame on and without a depth buffer, takes the
// channels of a fragment shader's vec3 uniform for one another.
TEST_F(Triang2DGLTest, LargeShapesHaveTheirColourAllOver)
{
    using namespace gui::gl;
    OffscreenContext flat({200, 200}, {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    Flat2DProgram program;
    ASSERT_TRUE(program.link());
    Buffer buffer{DataType::Vec2};
    const Outline wide{{-1, -1}, {1, -1}, {-1, 1}};
    ASSERT_NE(_triang.triangulate(&buffer, wide, ColorID::Gold), nullptr);
    for (int frame = 0; frame < 3; ++frame)
    {
        Context::clear(Context::Clear::Color, ColorID::Navy);
        program.draw(buffer);
        for (int x = 0; x < 98; ++x)
            EXPECT_EQ(pixel(x, 98 - x), (Pixel{255, 215, 0})) << x;
    }
    buffer.release();
    program.release();
    ASSERT_TRUE(context().makeCurrent());
}

} // namespace
