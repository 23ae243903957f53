#include "support/OffscreenGL.h"

#include <gui/gl/Context.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

// Every value of every enumeration is sent through the driver.

namespace
{

using gui::gl::Blend;
using gui::gl::Context;
using gui::gl::DepthBuffer;
using gui::gl::StencilBuffer;
using test::Pixel;

class ContextGLTest : public test::OffscreenGL
{
protected:
    ContextGLTest()
        : OffscreenGL({16, 16})
    {
    }

    static int stateOf(GLenum name)
    {
        GLint values[2] = {};
        glGetIntegerv(name, values);
        return values[0];
    }

    static int stencil()
    {
        unsigned char value = 0;
        glReadPixels(8, 8, 1, 1, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, &value);
        return value;
    }

    static float depth()
    {
        float value = 0;
        glReadPixels(8, 8, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &value);
        return value;
    }
};

TEST_F(ContextGLTest, ValuesAreThoseOfTheirNames)
{
    using Operation = StencilBuffer::Operation;
    const std::vector<int> operations{GL_KEEP,      GL_ZERO, GL_REPLACE,   GL_INCR,
                                      GL_INCR_WRAP, GL_DECR, GL_DECR_WRAP, GL_INVERT};
    const std::vector<int> factors{GL_ZERO,
                                   GL_ONE,
                                   GL_SRC_COLOR,
                                   GL_ONE_MINUS_SRC_COLOR,
                                   GL_DST_COLOR,
                                   GL_ONE_MINUS_DST_COLOR,
                                   GL_SRC_ALPHA,
                                   GL_ONE_MINUS_SRC_ALPHA,
                                   GL_DST_ALPHA,
                                   GL_ONE_MINUS_DST_ALPHA,
                                   GL_CONSTANT_COLOR,
                                   GL_ONE_MINUS_CONSTANT_COLOR,
                                   GL_CONSTANT_ALPHA,
                                   GL_ONE_MINUS_CONSTANT_ALPHA,
                                   GL_SRC_ALPHA_SATURATE,
                                   GL_SRC1_COLOR,
                                   GL_ONE_MINUS_SRC1_COLOR,
                                   GL_SRC1_ALPHA,
                                   GL_ONE_MINUS_SRC1_ALPHA};
    const struct
    {
        GLenum state;
        std::function<void(unsigned char)> set;
        std::vector<int> values;
    } cases[] = {
        {GL_DEPTH_FUNC,
         [](unsigned char v) { Context::setDepthBufferFunction(DepthBuffer::Function(v)); },
         {GL_ALWAYS, GL_NEVER, GL_LESS, GL_EQUAL, GL_LEQUAL, GL_GREATER, GL_NOTEQUAL, GL_GEQUAL}},
        {GL_STENCIL_FUNC,
         [](unsigned char v) { Context::setStencilBufferFunction(StencilBuffer::Function(v), 0x25, 0x1F); },
         {GL_NEVER, GL_LESS, GL_LEQUAL, GL_GREATER, GL_GEQUAL, GL_EQUAL, GL_NOTEQUAL, GL_ALWAYS}},
        {GL_STENCIL_FAIL,
         [](unsigned char v) { Context::setStencilBufferOperation(Operation(v), Operation::Keep, Operation::Keep); },
         operations},
        {GL_STENCIL_PASS_DEPTH_FAIL,
         [](unsigned char v) { Context::setStencilBufferOperation(Operation::Keep, Operation(v), Operation::Keep); },
         operations},
        {GL_STENCIL_PASS_DEPTH_PASS,
         [](unsigned char v) { Context::setStencilBufferOperation(Operation::Keep, Operation::Keep, Operation(v)); },
         operations},
        {GL_BLEND_SRC_RGB, [](unsigned char v) { Context::setBlendFunction(Blend::Factor(v), Blend::Factor::Zero); },
         factors},
        {GL_BLEND_DST_ALPHA, [](unsigned char v) { Context::setBlendFunction(Blend::Factor::Zero, Blend::Factor(v)); },
         factors},
        {GL_POLYGON_MODE,
         [](unsigned char v) { Context::setPolygonMode(Context::PolygonMode(v)); },
         {GL_FILL, GL_LINE, GL_POINT}},
        {GL_DEPTH_WRITEMASK, [](unsigned char v) { Context::maskDepthBuffer(v != 0); }, {GL_FALSE, GL_TRUE}},
        {GL_STENCIL_WRITEMASK, [](unsigned char v) { Context::setStencilBufferMask(v); }, {0, 1, 2, 3}},
    };
    for (const auto& [state, set, values] : cases)
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            set(static_cast<unsigned char>(i));
            EXPECT_EQ(stateOf(state), values[i]) << std::hex << state << ' ' << i;
        }
    EXPECT_EQ(stateOf(GL_STENCIL_REF), 0x25);
    EXPECT_EQ(stateOf(GL_STENCIL_VALUE_MASK), 0x1F);
}

TEST_F(ContextGLTest, FlagsAndPointSizeReachTheirState)
{
    const GLenum capabilities[] = {GL_DEPTH_TEST, GL_CULL_FACE, GL_STENCIL_TEST, GL_BLEND};
    for (unsigned char value = 0; value < 4; ++value)
    {
        Context::enable(Context::Flag(value));
        for (unsigned char other = 0; other < 4; ++other)
            EXPECT_EQ(glIsEnabled(capabilities[other]), other == value) << value << ' ' << int(other);
        Context::disable(Context::Flag(value));
        EXPECT_FALSE(glIsEnabled(capabilities[value]));
    }
    Context::setPointSize(3);
    float size = 0;
    glGetFloatv(GL_POINT_SIZE, &size);
    EXPECT_EQ(size, 3);
}

TEST_F(ContextGLTest, ClearTouchesTheNamedBuffersOnly)
{
    using enum Context::Clear;
    const std::initializer_list<Context::Clear> cases[] = {{Color}, {Depth}, {Stencil}, {Color, Stencil}, {}};
    for (const std::initializer_list<Context::Clear>& what : cases)
    {
        glClearDepth(0);
        glClearStencil(3);
        clear({0, 0, 255, 10});
        glClearDepth(1);
        glClearStencil(7);
        Context::clear(td::ColorID::Red);
        if (what.size() == 1)
            Context::clear(*what.begin());
        else
            Context::clear(what);
        const auto has = [&](Context::Clear one) { return std::find(what.begin(), what.end(), one) != what.end(); };
        EXPECT_EQ(pixel(8, 8), has(Color) ? (Pixel{255, 0, 0, 255}) : (Pixel{0, 0, 255, 10}));
        EXPECT_EQ(depth(), has(Depth) ? 1 : 0);
        EXPECT_EQ(stencil(), has(Stencil) ? 7 : 3);
    }
}

} // namespace
