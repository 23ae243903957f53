#include "TriangReference.h"
#include "support/OffscreenGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Context.h>
#include <gui/gl/Flat2DProgram.h>
#include <gui/gl/Triang2D.h>

namespace
{

using namespace gui::gl;
using td::ColorID;

using Triang2DGLTest = test::OffscreenGL;

// Mesa's other code for tiles that one triangle covers, from the second frame on and without a depth buffer, takes the
// channels of a fragment shader's vec3 uniform for one another.
TEST_F(Triang2DGLTest, LargeShapesHaveTheirColourAllOver)
{
    OffscreenContext flat({200, 200}, {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    Flat2DProgram program;
    ASSERT_TRUE(program.link());
    Triang2D triang(8);
    Buffer buffer{DataType::Vec2};
    const test::Outline wide{{-1, -1}, {1, -1}, {-1, 1}}, line{{-1, -0.9f}, {-0.8f, -0.9f}};
    ASSERT_NE(triang.triangulate(&buffer, wide, ColorID::Gold), nullptr);
    ASSERT_NE(triang.triangulateLine(&buffer, line, 0.05f, false, ColorID::Red), nullptr);
    EXPECT_EQ(triang.triangulateLine(&buffer, line, 0, false, ColorID::Red), nullptr);
    for (int frame = 0; frame < 3; ++frame)
    {
        Context::clear(Context::Clear::Color, ColorID::Navy);
        program.draw(buffer);
        for (int x = 0; x < 98; ++x)
            EXPECT_EQ(pixel(x, 98 - x), (test::Pixel{255, 215, 0})) << x;
        EXPECT_EQ(pixel(10, 10), (test::Pixel{255, 0, 0}));
    }
    buffer.release();
    program.release();
    ASSERT_TRUE(context().makeCurrent());
}

} // namespace
